// Collects the times of frames while a grab runs.
#ifndef KXHOST_CLOCK_RECORDER_H
#define KXHOST_CLOCK_RECORDER_H

#include "clock/camera_timeline.h"
#include "clock/clock_fit.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kxhost {

/// For the grab thread; who else wants the samples waits for its end.
class ClockRecorder {
public:
    /// Sets memory aside for so many frames; with more of them it has to allocate.
    explicit ClockRecorder(std::size_t frames) { samples_.reserve(frames); }

    /// A frame arrived: microseconds since 1970, and on a clock that never steps.
    void arrived(std::uint64_t hostUs, std::uint64_t steadyUs);
    /// The camera's time of the frame that arrived last, as the plug-in publishes it; nothing when
    /// it does not. Only the first call for each frame counts.
    void stamped(const std::optional<std::uint64_t>& cameraUs);

    std::span<const ClockSample> samples() const { return samples_; }

private:
    std::vector<ClockSample> samples_;
    CameraTimeline timeline_;
    std::optional<ClockSample> arrival_; ///< of a frame without a camera's time yet
};

} // namespace kxhost

#endif
