// When the frames of a capture are exposed and when they arrive.
#ifndef FCSIM_FRAME_SCHEDULE_H
#define FCSIM_FRAME_SCHEDULE_H

#include <cstdint>
#include <vector>

namespace fcsim {

/// How frames are taken: what the properties and the region give.
struct FrameTiming {
    double periodUs = 0; ///< on the host's clock
    double exposureUs = 0;
    double transferUs = 0; ///< read-out and way to the host
    float gainDb = 0;
    unsigned shutterRaw = 0;
    unsigned gainRaw = 0;
};

/// The life of one frame, in microseconds of the host's clock.
struct FrameTimes {
    double startUs = 0;   ///< of the exposure
    double arrivalUs = 0; ///< complete in host memory
    FrameTiming timing;
};

/// The frames of one capture. A free-running camera: frame k starts one period after frame k - 1,
/// and arrives after exposure, transfer, latency and jitter. Not thread-safe.
class FrameSchedule {
public:
    FrameSchedule(double latencyUs, double jitterUs, std::uint64_t seed);

    /// Frame 0 starts at `startUs`.
    void begin(double startUs, const FrameTiming& timing);
    /// From the first frame on that starts after `nowUs` frames are taken with `timing`.
    void change(double nowUs, const FrameTiming& timing);
    /// Frames before `number` will not be asked for any more.
    void forget(std::uint64_t number);
    /// Times of a frame; arrivals never overtake each other.
    FrameTimes times(std::uint64_t number) const;
    /// The first frame that has not arrived at `nowUs`, at least `from`.
    std::uint64_t firstNotArrived(double nowUs, std::uint64_t from) const;

private:
    /// Frames with the same timing.
    struct Stretch {
        std::uint64_t first;
        double startUs;
        FrameTiming timing;
    };

    const Stretch& stretchOf(std::uint64_t number) const;

    double latencyUs_;
    double jitterUs_;
    std::uint64_t seed_;
    std::vector<Stretch> stretches_; ///< by first frame; never empty once begun
};

} // namespace fcsim

#endif
