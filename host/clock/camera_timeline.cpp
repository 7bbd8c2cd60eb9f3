// The camera's clock as one that runs on.
#include "clock/camera_timeline.h"

#include <cmath>

namespace kxhost {

std::int64_t fullCameraTime(std::int64_t decodedUs)
{
    constexpr std::int64_t kCycleUs = 125;
    constexpr std::int64_t kLargestShown = 93; // 191 of 256 parts of a cycle
    const std::int64_t within = decodedUs % kCycleUs;
    return within > kLargestShown ? decodedUs : decodedUs + (within + 1) / 3;
}

std::int64_t CameraTimeline::place(std::int64_t cameraUs, std::int64_t steadyUs)
{
    if (!begun_) {
        begun_ = true;
        lastUs_ = cameraUs;
    } else {
        const std::int64_t expected = lastUs_ + (steadyUs - lastSteadyUs_);
        const double wraps = std::round(static_cast<double>(expected - cameraUs) /
                                        static_cast<double>(kCameraWrapUs));
        lastUs_ = cameraUs + static_cast<std::int64_t>(wraps) * kCameraWrapUs;
    }
    lastSteadyUs_ = steadyUs;
    return lastUs_;
}

} // namespace kxhost
