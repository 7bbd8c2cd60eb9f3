// The clock inside a camera and its 1394 cycle-time form.
#include "camera/camera_clock.h"

#include <cmath>
#include <numbers>

namespace fcsim {

namespace {

constexpr double kUsPerSecond = 1e6;
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

CameraClock::CameraClock(const ClockDescription& clock)
    : offsetUs_(clock.offsetUs), rate_(1.0 + clock.driftPpm * 1e-6),
      wander_(clock.wanderPpm * 1e-6), wanderPeriodUs_(clock.wanderSeconds * kUsPerSecond),
      wrapSeconds_(clock.wrapSeconds)
{}

/// What the swing of the rate has come to: the integral of a sine that begins at 0 and rises.
double CameraClock::swungUs(double hostUs) const
{
    const double turn = 2 * std::numbers::pi / wanderPeriodUs_;
    return wander_ / turn * (1 - std::cos(turn * hostUs));
}

CycleTime CameraClock::at(double hostUs) const
{
    return cycleTimeOf(offsetUs_ + hostUs * rate_ + swungUs(hostUs), wrapSeconds_);
}

} // namespace fcsim
