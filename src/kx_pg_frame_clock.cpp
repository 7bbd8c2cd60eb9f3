// The frame clock: latency, anchors, interval, pace watch, drift and the next frame's time stamp.
#include "kx_pg_frame_clock.h"

#include "kx_pg_cycle_time.h"
#include "kx_pg_number.h"

namespace KxPGrey {

namespace {

constexpr std::uint32_t low32(std::uint64_t value)
{
    return static_cast<std::uint32_t>(value);
}

/// A rate that is out of range gives a bound that no counter reaches.
std::uint32_t wholeFps(const FrameTiming& timing)
{
    return static_cast<std::uint32_t>(truncateToI32(static_cast<double>(timing.resultingFps)));
}

} // namespace

/// Host time of the frame's start, as far as its arrival tells.
std::uint64_t FrameClock::hostStart(const FrameTiming& timing, const FrameTimes& frame) const
{
    return frame.nowUs + timing.tsOffsetUs - latency();
}

void FrameClock::anchor(std::uint64_t hostStartUs, const FrameTimes& frame)
{
    refUs = hostStartUs;
    tsDiffAdjUs = hostStartUs - frame.btsFStartUs;
}

FrameClock::Start FrameClock::start(const FrameTiming& timing, const FrameTimes& frame,
                                    std::uint32_t clockRegister, std::uint32_t grabStartUs,
                                    std::uint32_t loops)
{
    const std::uint32_t gotUs = cycleTimeUs(clockRegister);
    std::uint32_t latencyBits = 0;
    if (gotUs == 0) {
        latencyBits = (low32(frame.nowUs) - grabStartUs) - (loops - 1U) * timing.framePeriodUs;
    } else {
        const bool wrapped = frame.btsFStartUs > gotUs;
        latencyBits = gotUs + (wrapped ? kCycleTimeWrapUs : 0U) - low32(frame.btsFStartUs) +
                      static_cast<std::uint32_t>(timing.exposureUs);
    }
    latencyUs = static_cast<std::int32_t>(latencyBits);

    const std::uint64_t hostStartUs = hostStart(timing, frame);
    anchor(hostStartUs, frame);
    diffCheck = frame.nowUs - hostStartUs;

    const bool regular = timing.tsAdjNs == 0;
    if (regular) {
        predictRegular(timing, frame);
    }
    return {gotUs, regular};
}

FrameClock::Arrival FrameClock::arrive(const FrameTiming& timing, const FrameTimes& frame,
                                       std::uint64_t captured)
{
    Arrival arrival;
    const std::uint64_t hostStartUs = hostStart(timing, frame);
    const std::uint64_t step = frame.btsFStartUs - prevBtsUs;
    const std::uint32_t missed = 2U * timing.framePeriodUs - timing.framePeriodUs / 10U;
    if (frame.btsFStartUs < prevBtsUs) {
        arrival.wrapped = true;
        arrival.oldBtsUs = prevBtsUs;
        anchor(hostStartUs, frame);
    } else if (step < missed) {
        // A longer step means that a frame is missing; the interval then stays.
        frameInterval = low32(step);
    }

    // A prediction that is not before the arrival cannot be right.
    if (timing.tsAdjNs != 0 && (captured == 2 || frameTs >= frame.nowUs)) {
        arrival.anchored = true;
        arrival.oldDiffUs = tsDiffAdjUs;
        arrival.oldFrameTs = frameTs;
        frameTs = hostStartUs;
        anchor(hostStartUs, frame);
    }
    return arrival;
}

/// After a report of the pace. Unlike an anchor, drift counts from the arrival, and the whole
/// latency becomes the expected delay.
void FrameClock::readjust(const FrameTiming& timing, const FrameTimes& frame)
{
    tsDiffAdjUs = hostStart(timing, frame) - frame.btsFStartUs;
    refUs = frame.nowUs;
    diffCheck = latency();
}

FrameClock::Pace FrameClock::watchPace(const FrameTiming& timing, const FrameTimes& frame)
{
    Pace pace;
    const std::uint64_t delayUs = frame.nowUs - frameTs;
    const std::uint64_t tenth = diffCheck / 10U;
    if (delayUs < diffCheck - tenth) {
        if (++fastCnt > 3U * wholeFps(timing)) {
            pace.fast = {true, delayUs, diffCheck - tenth};
            fastCnt = 0;
            readjust(timing, frame);
        }
    } else if (delayUs < diffCheck + tenth) {
        fastCnt = 0;
        slowCnt = 0;
        extraSlowCnt = 0;
    } else {
        watchLate(timing, frame, delayUs, pace);
    }
    return pace;
}

void FrameClock::watchLate(const FrameTiming& timing, const FrameTimes& frame,
                           std::uint64_t delayUs, Pace& pace)
{
    if (++slowCnt > 3U * wholeFps(timing)) {
        pace.slow = {true, delayUs, diffCheck + diffCheck / 10U};
        slowCnt = 0;
        readjust(timing, frame);
    }
    // With the expected delay as it now stands, so a readjustment just made counts.
    if (delayUs >= 4U * diffCheck && ++extraSlowCnt > wholeFps(timing)) {
        pace.extraSlow = {true, delayUs, 4U * diffCheck};
        extraSlowCnt = 0;
        readjust(timing, frame);
    }
}

FrameClock::Prediction FrameClock::predict(const FrameTiming& timing, const FrameTimes& frame)
{
    Prediction prediction;
    if (timing.tsAdjNs == 0) {
        predictRegular(timing, frame);
        return prediction;
    }
    constexpr std::int32_t kAdjMax = 0x60000000;
    const std::uint64_t hostStartUs = hostStart(timing, frame);
    const auto sinceRefUs = static_cast<double>(static_cast<std::int64_t>(hostStartUs - refUs));
    prediction.adjUs = truncateToI32(sinceRefUs * 1e-9 * timing.tsAdjNs);
    if (prediction.adjUs < -kAdjMax || prediction.adjUs > kAdjMax) {
        prediction.overflow = true;
        anchor(hostStartUs, frame);
    }
    frameTs = frameInterval + frame.btsFStartUs +
              static_cast<std::uint64_t>(std::int64_t{prediction.adjUs}) + tsDiffAdjUs;
    return prediction;
}

void FrameClock::predictRegular(const FrameTiming& timing, const FrameTimes& frame)
{
    frameTs = timing.framePeriodUs + hostStart(timing, frame);
}

} // namespace KxPGrey
