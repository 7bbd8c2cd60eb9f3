// The clock inside a camera and its 1394 cycle-time form.
#include "camera_clock.h"

#include <cmath>

namespace fcsim {

namespace {

constexpr double kTicksPerUs = 24.576;
constexpr std::int64_t kTicksPerCycle = 3072;
constexpr std::int64_t kTicksPerSecond = 24'576'000;

} // namespace

CycleTime cycleTimeOf(double us, unsigned wrapSeconds)
{
    const std::int64_t period = kTicksPerSecond * wrapSeconds;
    std::int64_t ticks = std::llround(us * kTicksPerUs) % period;
    if (ticks < 0) {
        ticks += period;
    }
    CycleTime time;
    time.seconds = static_cast<unsigned>(ticks / kTicksPerSecond);
    time.count = static_cast<unsigned>(ticks % kTicksPerSecond / kTicksPerCycle);
    time.offset = static_cast<unsigned>(ticks % kTicksPerCycle);
    return time;
}

std::uint32_t packCycleTime(const CycleTime& time)
{
    return time.seconds << 25 | time.count << 12 | time.offset;
}

FlyCapture2::TimeStamp timeStampOf(const CycleTime& time)
{
    FlyCapture2::TimeStamp stamp;
    stamp.cycleSeconds = time.seconds;
    stamp.cycleCount = time.count;
    stamp.cycleOffset = time.offset;
    return stamp;
}

CameraClock::CameraClock(double offsetUs, double driftPpm, unsigned wrapSeconds)
    : offsetUs_(offsetUs), rate_(1.0 + driftPpm * 1e-6), wrapSeconds_(wrapSeconds)
{}

CycleTime CameraClock::at(double hostUs) const
{
    return cycleTimeOf(offsetUs_ + hostUs * rate_, wrapSeconds_);
}

} // namespace fcsim
