// Collects the times of frames while a grab runs.
#include "clock/clock_recorder.h"

namespace kxhost {

void ClockRecorder::arrived(std::uint64_t hostUs, std::uint64_t steadyUs)
{
    arrival_ = {0, static_cast<std::int64_t>(hostUs), static_cast<std::int64_t>(steadyUs)};
}

void ClockRecorder::stamped(const std::optional<std::uint64_t>& cameraUs)
{
    if (arrival_ && cameraUs) {
        const std::int64_t full = fullCameraTime(static_cast<std::int64_t>(*cameraUs));
        arrival_->cameraUs = timeline_.place(full, arrival_->steadyUs);
        samples_.push_back(*arrival_);
    }
    arrival_.reset();
}

} // namespace kxhost
