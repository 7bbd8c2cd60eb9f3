// The GPIO pins of one camera: their control registers, their lines, and the boxes on them.
#ifndef FCSIM_GPIO_BANK_H
#define FCSIM_GPIO_BANK_H

#include "base/newest_ring.h"
#include "pins/io_box.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace fcsim {

/// What a pin is for, as bits 16 to 19 of its register say. Others are storage.
enum class PinMode : std::uint32_t { input = 0, output = 1, strobe = 3 };

/// Registers of the pins. Bit 31 says that the pin is there and cannot be written; bit 0 is the
/// level that an output has been given, and that an input's line has at the time of the read.
/// Times are microseconds of the simulation's clock and never go back. Not thread-safe.
class GpioBank {
public:
    GpioBank(unsigned pins, const std::vector<IoBoxDescription>& boxes);

    /// The pin whose control register is at `address`.
    std::optional<unsigned> pinAt(std::uint32_t address) const;
    /// As the bus description sets it at power-up. Bit 0 is what an input reads that nothing
    /// drives.
    void preset(unsigned pin, std::uint32_t value);
    /// The power goes: outputs let go of their lines, and nothing of the registers is left.
    void powerDown(std::uint64_t nowUs);
    std::uint32_t read(unsigned pin, std::uint64_t nowUs);
    void write(unsigned pin, std::uint32_t value, std::uint64_t nowUs);
    bool inMode(unsigned pin, PinMode mode) const;
    /// Turns a pin into a strobe's output.
    void useForStrobe(unsigned pin);

    /// Lets boxes work out what they have heard until `nowUs`.
    void catchUp(std::uint64_t nowUs);

    // ---- For `sim_control.h`; see there. Pins and boxes that are not there are left out.
    void drive(unsigned pin, std::vector<LineTransition> plan);
    std::vector<LineTransition> takeTransitions(unsigned pin);
    std::vector<IoBoxEntry> takeBoxLog(unsigned box, std::uint64_t nowUs);

private:
    struct Pin {
        std::uint32_t value = 0;
        bool pull = false;                ///< level of the line when nothing drives it
        bool driven = false;              ///< level that the camera gave the line last
        std::vector<LineTransition> plan; ///< by hand; empty: none
        NewestRing<LineTransition, 4096> transitions;
    };

    bool lineLevel(unsigned pin, std::uint64_t nowUs);
    void driveLine(unsigned pin, const LineTransition& transition);

    std::vector<Pin> pins_;
    std::vector<std::unique_ptr<IoBox>> boxes_;
};

} // namespace fcsim

#endif
