// Fuzz target: the frame clock, given any times, and given those of a camera that keeps its pace.
#include "fuzz_input.h"
#include "kx_pg_cycle_time.h"
#include "kx_pg_frame_clock.h"

#include <cmath>

namespace kxfuzz {
namespace {

using KxPGrey::FrameClock;
using KxPGrey::FrameTimes;
using KxPGrey::FrameTiming;

constexpr std::uint32_t kMostFrames = 500;

std::uint32_t low32(std::uint64_t value)
{
    return static_cast<std::uint32_t>(value);
}

/// Host time of a frame's start as the clock takes it from its arrival.
std::uint64_t hostStart(const FrameClock& clock, const FrameTiming& timing, const FrameTimes& frame)
{
    return frame.nowUs + timing.tsOffsetUs -
           static_cast<std::uint64_t>(std::int64_t{clock.latencyUs});
}

// ---- Any times.

FrameTiming anyTiming(Bytes& bytes)
{
    FrameTiming timing;
    timing.framePeriodUs = bytes.take<std::uint32_t>();
    timing.resultingFps = bytes.take<float>();
    timing.tsOffsetUs = bytes.take<std::uint32_t>();
    timing.tsAdjNs = bytes.take<std::int32_t>();
    timing.exposureUs = bytes.take<std::int32_t>();
    return timing;
}

/// Frames of a camera that is nearly in order have times near each other.
FrameTimes anyFrame(Bytes& bytes, const FrameTimes& before)
{
    if (bytes.flag()) {
        const auto nowUs = bytes.take<std::uint64_t>();
        return {nowUs, bytes.take<std::uint64_t>()};
    }
    const std::uint64_t nowUs = before.nowUs + bytes.take<std::uint16_t>();
    return {nowUs, before.btsFStartUs + bytes.take<std::uint16_t>()};
}

void checkStart(const FrameClock& clock, const FrameTiming& timing, const FrameTimes& frame,
                const FrameClock::Start& start, std::uint32_t reading)
{
    KX_MUST(start.btsFGotUs == KxPGrey::cycleTimeUs(reading));
    KX_MUST(start.predicted == (timing.tsAdjNs == 0));
    KX_MUST(clock.refUs == hostStart(clock, timing, frame));
    KX_MUST(clock.tsDiffAdjUs + frame.btsFStartUs == clock.refUs);
    KX_MUST(clock.diffCheck + clock.refUs == frame.nowUs);
    KX_MUST(!start.predicted || clock.frameTs == clock.refUs + timing.framePeriodUs);
}

void checkArrival(const FrameClock& before, const FrameClock& clock, const FrameTiming& timing,
                  const FrameTimes& frame, const FrameClock::Arrival& arrival)
{
    KX_MUST(arrival.wrapped == (frame.btsFStartUs < before.prevBtsUs));
    const bool usable = timing.tsAdjNs == 0 || clock.frameTs < frame.nowUs || arrival.anchored;
    KX_MUST(usable);
    KX_MUST(!arrival.anchored || clock.frameTs == hostStart(clock, timing, frame));
    KX_MUST(arrival.anchored || clock.frameTs == before.frameTs);
    const bool anew = arrival.wrapped || arrival.anchored;
    KX_MUST(!anew || clock.tsDiffAdjUs + frame.btsFStartUs == hostStart(clock, timing, frame));
    KX_MUST(anew || (clock.tsDiffAdjUs == before.tsDiffAdjUs && clock.refUs == before.refUs));
    KX_MUST(clock.frameInterval == before.frameInterval ||
            clock.frameInterval == low32(frame.btsFStartUs - before.prevBtsUs));
}

void checkPace(const FrameClock& before, const FrameClock& clock, const FrameTimes& frame,
               const FrameClock::Pace& pace)
{
    const std::uint64_t delayUs = frame.nowUs - before.frameTs;
    KX_MUST(!pace.fast.fired || (pace.fast.delayUs == delayUs && delayUs < pace.fast.limitUs));
    KX_MUST(!pace.slow.fired || (pace.slow.delayUs == delayUs && delayUs >= pace.slow.limitUs));
    KX_MUST(!pace.extraSlow.fired || delayUs >= pace.extraSlow.limitUs);
    KX_MUST(!pace.fast.fired || (!pace.slow.fired && !pace.extraSlow.fired));
    KX_MUST(!pace.fast.fired || clock.fastCnt == 0);
    KX_MUST(!pace.slow.fired || clock.slowCnt == 0);
    KX_MUST(!pace.extraSlow.fired || clock.extraSlowCnt == 0);
    const bool readjusted = pace.fast.fired || pace.slow.fired || pace.extraSlow.fired;
    KX_MUST(readjusted ? clock.refUs == frame.nowUs : clock.refUs == before.refUs);
    KX_MUST(clock.frameTs == before.frameTs);
}

void checkPrediction(const FrameClock& before, const FrameClock& clock, const FrameTiming& timing,
                     const FrameTimes& frame, const FrameClock::Prediction& prediction)
{
    const std::uint64_t startUs = hostStart(clock, timing, frame);
    if (timing.tsAdjNs == 0) {
        KX_MUST(clock.frameTs == startUs + timing.framePeriodUs);
        return;
    }
    KX_MUST(prediction.overflow == (std::abs(std::int64_t{prediction.adjUs}) > 0x60000000));
    KX_MUST(!prediction.overflow || clock.refUs == startUs);
    KX_MUST(prediction.overflow || clock.tsDiffAdjUs == before.tsDiffAdjUs);
    KX_MUST(clock.frameTs - clock.frameInterval - frame.btsFStartUs - clock.tsDiffAdjUs ==
            static_cast<std::uint64_t>(std::int64_t{prediction.adjUs}));
}

void anyTimes(Bytes& bytes)
{
    FrameTiming timing = anyTiming(bytes);
    FrameTimes frame = anyFrame(bytes, {});
    FrameClock clock(timing.framePeriodUs);
    const auto reading = bytes.take<std::uint32_t>();
    const auto grabStartUs = bytes.take<std::uint32_t>();
    const auto loops = bytes.take<std::uint32_t>();
    checkStart(clock, timing, frame, clock.start(timing, frame, reading, grabStartUs, loops),
               reading);
    clock.finish(frame);
    for (std::uint32_t captured = 2; !bytes.empty() && captured < kMostFrames; ++captured) {
        if (bytes.take<std::uint8_t>() == 0) {
            timing = anyTiming(bytes); // a live change
        }
        frame = anyFrame(bytes, frame);
        FrameClock before = clock;
        const FrameClock::Arrival arrival = clock.arrive(timing, frame, captured);
        checkArrival(before, clock, timing, frame, arrival);
        before = clock;
        const FrameClock::Pace pace = clock.watchPace(timing, frame);
        checkPace(before, clock, frame, pace);
        before = clock;
        const FrameClock::Prediction prediction = clock.predict(timing, frame);
        checkPrediction(before, clock, timing, frame, prediction);
        clock.finish(frame);
    }
}

// ---- A camera that keeps its pace.

/// Its clock runs up to 100 ppm away from the host's, which is known and configured, or not; frames
/// are delivered late by up to a twentieth of what the delivery takes.
struct SteadyCamera {
    std::uint32_t periodUs = 0;
    std::uint32_t exposureUs = 0;
    std::uint32_t deliveryUs = 0; ///< from the start of exposure
    std::int32_t driftNs = 0;     ///< per second; how much slower the camera's clock runs
    std::uint64_t startUs = 0;    ///< of the first exposure, on the host's clock
    std::uint64_t cameraUs = 0;   ///< the same on the camera's

    explicit SteadyCamera(Bytes& bytes)
        : periodUs(bytes.within(2'000U, 500'000U)), exposureUs(bytes.within(10U, periodUs / 2)),
          deliveryUs(bytes.within(200U, periodUs)),
          driftNs(static_cast<std::int32_t>(bytes.within(0U, 200'000U)) - 100'000),
          startUs(1'600'000'000'000'000U + bytes.take<std::uint32_t>()),
          cameraUs(bytes.within(0U, KxPGrey::kCycleTimeWrapUs - 1))
    {}

    std::uint64_t exposureStartUs(std::uint64_t number) const
    {
        return startUs + number * periodUs;
    }
    std::uint64_t cameraTimeUs(std::uint64_t number) const
    {
        const auto elapsedUs = static_cast<double>(number * periodUs);
        const double slowerUs = elapsedUs * 1e-9 * driftNs;
        const auto gone = static_cast<std::uint64_t>(std::llround(elapsedUs - slowerUs));
        return (cameraUs + gone) % KxPGrey::kCycleTimeWrapUs;
    }
};

/// Time stamps rise, and follow the true starts of exposure at a constant distance.
void steadyPace(Bytes& bytes)
{
    const SteadyCamera camera(bytes);
    FrameTiming timing;
    timing.framePeriodUs = camera.periodUs;
    timing.resultingFps = 1e6F / static_cast<float>(camera.periodUs);
    timing.exposureUs = static_cast<std::int32_t>(camera.exposureUs);
    timing.tsAdjNs = bytes.flag() ? camera.driftNs : 0;
    const std::uint32_t mostLateUs = camera.deliveryUs / 20;
    // The lateness of one frame, the drift within an interval and after a report of the pace
    // within a delivery, and roundings.
    const std::int64_t boundUs = mostLateUs + (camera.periodUs + camera.deliveryUs) / 5000 + 4;

    FrameClock clock(timing.framePeriodUs);
    const FrameTimes first{camera.exposureStartUs(0) + camera.deliveryUs, camera.cameraTimeUs(0)};
    // Without the camera's clock the latency follows from the start of the grab.
    static_cast<void>(clock.start(timing, first, 0, low32(camera.startUs), 1));
    KX_MUST(clock.latencyUs == static_cast<std::int32_t>(camera.deliveryUs));
    clock.finish(first);

    std::uint64_t lastTs = 0;
    for (std::uint32_t number = 1; !bytes.empty() && number < kMostFrames; ++number) {
        const std::uint64_t lateUs = mostLateUs == 0 ? 0 : bytes.take<std::uint8_t>() % mostLateUs;
        const FrameTimes frame{camera.exposureStartUs(number) + camera.deliveryUs + lateUs,
                               camera.cameraTimeUs(number)};
        static_cast<void>(clock.arrive(timing, frame, number + 1));
        KX_MUST(clock.frameTs > lastTs);
        const auto errorUs =
            static_cast<std::int64_t>(clock.frameTs - camera.exposureStartUs(number));
        KX_MUST(std::abs(errorUs) <= boundUs);
        lastTs = clock.frameTs;
        static_cast<void>(clock.watchPace(timing, frame));
        static_cast<void>(clock.predict(timing, frame));
        clock.finish(frame);
    }
}

void frameClock(Input input)
{
    Bytes bytes(input);
    if (bytes.flag()) {
        steadyPace(bytes);
    } else {
        anyTimes(bytes);
    }
}

} // namespace
} // namespace kxfuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kxfuzz::frameClock({data, size});
    return 0;
}
