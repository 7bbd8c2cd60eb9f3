// When the frames of a capture are exposed and with what, and when they arrive.
#ifndef FCSIM_FRAME_SCHEDULE_H
#define FCSIM_FRAME_SCHEDULE_H

#include "description/bus_description.h"
#include "pins/gpio_strobe.h"
#include "scene/sensor_state.h"

#include <cstdint>
#include <vector>

namespace fcsim {

/// What a frame is taken with: what the properties, the look-up tables and the region give.
struct FrameSettings {
    double periodUs = 0; ///< on the host's clock
    double exposureUs = 0;
    double transferUs = 0; ///< read-out and way to the host
    unsigned shutterRaw = 0;
    unsigned gainRaw = 0;
    SensorState state;
    StrobeSettings strobes;
};

/// The life of one frame, in microseconds of the host's clock.
struct FrameTimes {
    double startUs = 0;       ///< of the exposure
    double exposureEndUs = 0; ///< the camera has seen the picture
    double arrivalUs = 0;     ///< complete in host memory
};

/// One frame of a capture.
struct ScheduledFrame {
    std::uint64_t number = 0; ///< counts frames from 0
    FrameTimes times;
    FrameSettings settings;
};

/// The frames of one capture. A free-running camera: frame k starts one period after frame k - 1,
/// and arrives after exposure, transfer, latency and jitter, a few also after a spike. Each frame
/// is taken with the settings that are in force when its exposure begins. Where a shorter exposure
/// would end sooner than one period after the one before, it begins later: the sensor reads out no
/// faster for a change, and who fetches a frame in each period loses none. Not thread-safe.
class FrameSchedule {
public:
    explicit FrameSchedule(const DeliveryDescription& delivery) : delivery_(delivery) {}

    /// Frame 0 starts at `startUs`.
    void begin(double startUs, const FrameSettings& settings);
    /// The first frame that starts after `nowUs`, as far as frames with the newest settings go.
    std::uint64_t firstAfter(double nowUs) const;
    /// Frames from `first` on are taken with `settings`, at the earliest those that the change
    /// before concerns. After the first calls it allocates nothing: at most 256 changes are kept
    /// apart.
    void change(std::uint64_t first, const FrameSettings& settings);
    /// Frames before `number` will not be asked for any more.
    void forget(std::uint64_t number);
    /// Times of a frame; arrivals never overtake each other.
    FrameTimes times(std::uint64_t number) const;
    /// What a frame is taken with; valid until the next change.
    const FrameSettings& settings(std::uint64_t number) const { return stretchOf(number).settings; }
    /// All about a frame.
    ScheduledFrame frame(std::uint64_t number) const;

private:
    /// Frames with the same settings.
    struct Stretch {
        std::uint64_t first;
        double startUs;
        double endBeforeUs;    ///< of the exposure of the frame before the first
        double periodBeforeUs; ///< of that frame
        FrameSettings settings;
    };

    static void apply(Stretch& stretch, const FrameSettings& settings);
    const Stretch& stretchOf(std::uint64_t number) const;
    double lateUs(std::uint64_t number, double periodUs) const;

    DeliveryDescription delivery_;
    std::vector<Stretch> stretches_; ///< by first frame; never empty once begun
};

} // namespace fcsim

#endif
