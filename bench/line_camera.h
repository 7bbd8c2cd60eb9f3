// The camera of the line benchmarks: simulated, with an I/O box on its pins 0 and 1, and with a
// record of when its input was polled.
#ifndef KX_BENCH_LINE_CAMERA_H
#define KX_BENCH_LINE_CAMERA_H

#include "kx_pg_cthr.h"
#include "kx_pg_excam.h"
#include "real_time.h"

#include <FlyCapture2.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kxbench {

inline constexpr unsigned kLineSerial = 1;
inline constexpr KxPGrey::pg_pins kCommandPin = KxPGrey::kPgPin0;
inline constexpr KxPGrey::pg_pins kReplyPin = KxPGrey::kPgPin1;

/// Whether the box answers a command with the same word, or not at all.
enum class Box { echoes, isSilent };

/// Connected from construction to destruction; ends the program if that fails. Each of its
/// registers takes `registerUs` at least.
class LineCamera : public KxPGrey::CExCam {
public:
    LineCamera(Box box, unsigned registerUs);
    ~LineCamera() override;
    LineCamera(const LineCamera&) = delete;
    LineCamera& operator=(const LineCamera&) = delete;

    /// As the grab thread does with each pass over the configuration: a command of 12 bits, and its
    /// reply within `polls`. Needs a control thread to become true.
    void send(std::uint32_t word, std::int32_t polls);

    /// Forgets the polls so far and records the next `count`; they are here when it returns.
    Times periods(std::size_t count);
    /// Does not return before the input is polled.
    void waitForPoll() const;

    FlyCapture2::Error ReadRegister(unsigned int address, unsigned int* value) override;

private:
    std::vector<double> stamps_;
    std::atomic<std::size_t> wanted_ = 0;
    std::atomic<std::size_t> taken_ = 0;
    std::atomic<unsigned> polls_ = 0;
};

/// Bits of a command that `LineCamera::send` sends.
inline constexpr unsigned kCommandBits = 12;

} // namespace kxbench

#endif
