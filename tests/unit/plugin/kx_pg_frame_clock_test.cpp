// Tests of the frame clock: latency, anchors, interval, pace watch, drift, next time stamp.
#include "kx_pg_frame_clock.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using KxPGrey::FrameClock;
using KxPGrey::FrameTimes;
using KxPGrey::FrameTiming;

constexpr std::uint64_t kNow = 1'700'000'000'000'000;
constexpr std::uint32_t kPeriod = 33'333;
constexpr std::uint32_t kLatency = 20'000;

constexpr std::uint32_t pack(std::uint32_t seconds, std::uint32_t count)
{
    return (seconds << 25U) | (count << 12U);
}

FrameTiming timing(std::int32_t tsAdjNs = 0)
{
    return {kPeriod, 30.0F, 5, tsAdjNs, 0};
}

/// A clock after a first frame that started at 10 s on the camera's clock and took `kLatency`.
FrameClock startedClock(const FrameTiming& settings)
{
    FrameClock clock(kPeriod);
    const FrameTimes first = {kNow, 10'000'000};
    clock.start(settings, first, pack(10, kLatency / 125), 0, 1);
    clock.finish(first);
    return clock;
}

// ---- First frame.

TEST(FrameClockStart, MeasuresTheLatencyOnTheCamerasClock)
{
    FrameClock clock(kPeriod);
    FrameTiming settings = timing(1);
    settings.exposureUs = 4'000;
    const FrameClock::Start start = clock.start(settings, {kNow, 9'990'000}, pack(10, 8), 0, 1);
    EXPECT_EQ(start.btsFGotUs, 10'001'000U);
    EXPECT_EQ(clock.latencyUs, 11'000 + 4'000);
    const std::uint64_t hostStart = kNow + 5 - 15'000;
    EXPECT_EQ(clock.refUs, hostStart);
    EXPECT_EQ(clock.tsDiffAdjUs, hostStart - 9'990'000);
    EXPECT_EQ(clock.diffCheck, 15'000U - 5U);
}

TEST(FrameClockStart, KnowsThatTheCamerasClockWrapped)
{
    FrameClock clock(kPeriod);
    FrameTiming settings = timing();
    settings.exposureUs = 10'000;
    clock.start(settings, {kNow, 127'900'000}, pack(0, 800), 0, 1);
    EXPECT_EQ(clock.latencyUs, 210'000);
}

TEST(FrameClockStart, TakesEqualTimesAsNoLatency)
{
    FrameClock clock(kPeriod);
    clock.start(timing(), {kNow, 10'000'000}, pack(10, 0), 0, 1);
    EXPECT_EQ(clock.latencyUs, 0);
}

TEST(FrameClockStart, FallsBackToTheHostsClock)
{
    FrameClock clock(kPeriod);
    FrameTiming settings = timing();
    settings.exposureUs = 10'000; // does not count here
    const auto grabStart = static_cast<std::uint32_t>(kNow - 100'000);
    const FrameClock::Start start = clock.start(settings, {kNow, 77}, 0, grabStart, 3);
    EXPECT_EQ(start.btsFGotUs, 0U);
    EXPECT_EQ(clock.latencyUs, static_cast<std::int32_t>(100'000 - 2 * kPeriod));
}

TEST(FrameClockStart, HostLatencySurvivesTheWrapOf32Bits)
{
    FrameClock clock(kPeriod);
    const std::uint64_t now = 0x1'0000'0010;
    clock.start(timing(), {now, 77}, 0, 0xFFFFFFF0U, 1);
    EXPECT_EQ(clock.latencyUs, 0x20);
}

TEST(FrameClockStart, ANegativeLatencyIsSignExtended)
{
    FrameClock clock(kPeriod);
    const auto grabStart = static_cast<std::uint32_t>(kNow - 1'000);
    clock.start(timing(1), {kNow, 77}, 0, grabStart, 2);
    EXPECT_EQ(clock.latencyUs, 1'000 - static_cast<std::int32_t>(kPeriod));
    EXPECT_EQ(clock.refUs, kNow + 5 + kPeriod - 1'000);
    EXPECT_EQ(clock.diffCheck, std::uint64_t{0} - 5U - kPeriod + 1'000U);
}

TEST(FrameClockStart, PredictsAtOnceInRegularModeOnly)
{
    FrameClock regular(kPeriod);
    EXPECT_TRUE(regular.start(timing(), {kNow, 10'000'000}, pack(10, 160), 0, 1).predicted);
    EXPECT_EQ(regular.frameTs, kNow + kPeriod + 5 - 20'000);

    FrameClock camera(kPeriod);
    EXPECT_FALSE(camera.start(timing(7), {kNow, 10'000'000}, pack(10, 160), 0, 1).predicted);
    EXPECT_EQ(camera.frameTs, 0U);
}

// ---- Arrival of a later frame.

TEST(FrameClockArrive, FollowsTheInterval)
{
    FrameClock clock = startedClock(timing());
    clock.arrive(timing(), {kNow + 40'000, 10'040'000}, 2);
    EXPECT_EQ(clock.frameInterval, 40'000U);
}

TEST(FrameClockArrive, AMissedFrameKeepsTheInterval)
{
    FrameClock clock = startedClock(timing());
    clock.arrive(timing(), {kNow, 10'000'000 + 63'332}, 2);
    EXPECT_EQ(clock.frameInterval, 63'332U);
    clock = startedClock(timing());
    clock.arrive(timing(), {kNow, 10'000'000 + 63'333}, 2);
    EXPECT_EQ(clock.frameInterval, kPeriod);
}

TEST(FrameClockArrive, AWrapMovesTheAnchorAndKeepsTheInterval)
{
    FrameClock clock = startedClock(timing());
    const FrameTimes frame = {kNow + kPeriod, 5'000};
    const FrameClock::Arrival arrival = clock.arrive(timing(), frame, 2);
    EXPECT_TRUE(arrival.wrapped);
    EXPECT_EQ(arrival.oldBtsUs, 10'000'000U);
    const std::uint64_t hostStart = frame.nowUs + 5 - kLatency;
    EXPECT_EQ(clock.refUs, hostStart);
    EXPECT_EQ(clock.tsDiffAdjUs, hostStart - 5'000);
    EXPECT_EQ(clock.frameInterval, kPeriod);
}

TEST(FrameClockArrive, AnEqualCameraTimeIsNoWrap)
{
    FrameClock clock = startedClock(timing());
    EXPECT_FALSE(clock.arrive(timing(), {kNow + kPeriod, 10'000'000}, 2).wrapped);
    EXPECT_EQ(clock.frameInterval, 0U);
}

TEST(FrameClockArrive, TheSecondFrameIsTheAnchorOfTheCamerasTime)
{
    FrameClock clock = startedClock(timing(1));
    const std::uint64_t oldDiff = clock.tsDiffAdjUs;
    const FrameTimes frame = {kNow + kPeriod + 100, 10'000'000 + kPeriod};
    const FrameClock::Arrival arrival = clock.arrive(timing(1), frame, 2);
    const std::uint64_t hostStart = frame.nowUs + 5 - kLatency;
    EXPECT_TRUE(arrival.anchored);
    EXPECT_EQ(arrival.oldDiffUs, oldDiff);
    EXPECT_EQ(arrival.oldFrameTs, 0U);
    EXPECT_EQ(clock.frameTs, hostStart);
    EXPECT_EQ(clock.refUs, hostStart);
    EXPECT_EQ(clock.tsDiffAdjUs, hostStart - frame.btsFStartUs);
}

TEST(FrameClockArrive, NoLaterFrameIsTakenForTheSecondOne)
{
    FrameClock clock = startedClock(timing(1));
    clock.frameTs = kNow;
    constexpr std::uint64_t kAfterAHundredDays = (1ULL << 32U) + 2;
    EXPECT_FALSE(
        clock.arrive(timing(1), {kNow + kPeriod, 10'033'333}, kAfterAHundredDays).anchored);
}

TEST(FrameClockArrive, APredictionThatIsNotBeforeTheArrivalIsReplaced)
{
    FrameClock clock = startedClock(timing(1));
    clock.frameTs = kNow + kPeriod - 1;
    EXPECT_FALSE(clock.arrive(timing(1), {kNow + kPeriod, 10'033'333}, 3).anchored);
    clock.frameTs = kNow + kPeriod;
    EXPECT_TRUE(clock.arrive(timing(1), {kNow + kPeriod, 10'033'333}, 3).anchored);
    EXPECT_EQ(clock.frameTs, kNow + kPeriod + 5 - kLatency);
}

TEST(FrameClockArrive, RegularModeHasNoAnchor)
{
    FrameClock clock = startedClock(timing());
    const std::uint64_t predicted = clock.frameTs;
    EXPECT_FALSE(clock.arrive(timing(), {kNow + 1, 10'033'333}, 2).anchored);
    EXPECT_EQ(clock.frameTs, predicted);
}

// ---- Pace watch. The expected delay is 10000 us here, so in time is 9000 to 10999.

struct PaceTest : testing::Test {
    PaceTest()
    {
        clock.latencyUs = 20'000;
        clock.diffCheck = 10'000;
    }

    FrameClock::Pace watch(std::uint64_t delayUs, std::int32_t tsAdjNs = 1)
    {
        clock.frameTs = kNow - delayUs;
        return clock.watchPace(timing(tsAdjNs), {kNow, 10'000'000});
    }

    void expectReadjusted() const
    {
        EXPECT_EQ(clock.tsDiffAdjUs, kNow + 5 - 20'000 - 10'000'000);
        EXPECT_EQ(clock.refUs, kNow);
        EXPECT_EQ(clock.diffCheck, 20'000U);
    }

    FrameClock clock{kPeriod};
};

TEST_F(PaceTest, CountsEarlyAndLateFramesAtTheirBounds)
{
    watch(8'999);
    EXPECT_EQ(clock.fastCnt, 1U);
    watch(11'000);
    EXPECT_EQ(clock.slowCnt, 1U);
    EXPECT_EQ(clock.fastCnt, 1U) << "only a frame in time clears the counters";
    watch(40'000);
    EXPECT_EQ(clock.extraSlowCnt, 1U);
    watch(9'000);
    EXPECT_EQ(clock.fastCnt, 0U);
    EXPECT_EQ(clock.slowCnt, 0U);
    EXPECT_EQ(clock.extraSlowCnt, 0U);
    watch(10'999);
    EXPECT_EQ(clock.slowCnt, 0U);
}

TEST_F(PaceTest, TheNinetyFirstEarlyFrameReadjusts)
{
    for (int frame = 1; frame <= 90; ++frame) {
        EXPECT_FALSE(watch(100).fast.fired) << frame;
    }
    const FrameClock::Pace pace = watch(100);
    EXPECT_TRUE(pace.fast.fired);
    EXPECT_EQ(pace.fast.delayUs, 100U);
    EXPECT_EQ(pace.fast.limitUs, 9'000U);
    EXPECT_EQ(clock.fastCnt, 0U);
    expectReadjusted();
}

TEST_F(PaceTest, TheNinetyFirstLateFrameReadjusts)
{
    for (int frame = 1; frame <= 90; ++frame) {
        EXPECT_FALSE(watch(12'000).slow.fired) << frame;
    }
    const FrameClock::Pace pace = watch(12'000);
    EXPECT_TRUE(pace.slow.fired);
    EXPECT_FALSE(pace.extraSlow.fired);
    EXPECT_EQ(pace.slow.delayUs, 12'000U);
    EXPECT_EQ(pace.slow.limitUs, 11'000U);
    EXPECT_EQ(clock.slowCnt, 0U);
    expectReadjusted();
}

TEST_F(PaceTest, TheThirtyFirstVeryLateFrameReadjusts)
{
    for (int frame = 1; frame <= 30; ++frame) {
        EXPECT_FALSE(watch(40'000).extraSlow.fired) << frame;
    }
    const FrameClock::Pace pace = watch(40'000);
    EXPECT_TRUE(pace.extraSlow.fired);
    EXPECT_EQ(pace.extraSlow.delayUs, 40'000U);
    EXPECT_EQ(pace.extraSlow.limitUs, 40'000U);
    EXPECT_FALSE(pace.slow.fired);
    EXPECT_EQ(clock.extraSlowCnt, 0U);
    EXPECT_EQ(clock.slowCnt, 31U);
    expectReadjusted();
}

TEST_F(PaceTest, TheVeryLateTestSeesTheReadjustmentJustMade)
{
    clock.slowCnt = 90;
    clock.extraSlowCnt = 30;
    // Four times the old expectation, but not of the new one.
    const FrameClock::Pace pace = watch(50'000);
    EXPECT_TRUE(pace.slow.fired);
    EXPECT_FALSE(pace.extraSlow.fired);
    EXPECT_EQ(clock.extraSlowCnt, 30U);

    clock.slowCnt = 90;
    clock.diffCheck = 10'000;
    const FrameClock::Pace both = watch(80'000);
    EXPECT_TRUE(both.slow.fired);
    EXPECT_TRUE(both.extraSlow.fired);
    EXPECT_EQ(both.slow.limitUs, 11'000U);
    EXPECT_EQ(both.extraSlow.limitUs, 80'000U);
}

TEST_F(PaceTest, ATimeStampBehindTheArrivalCountsAsLate)
{
    clock.frameTs = kNow + 1;
    clock.watchPace(timing(), {kNow, 10'000'000});
    EXPECT_EQ(clock.slowCnt, 1U);
    EXPECT_EQ(clock.extraSlowCnt, 1U);
}

TEST_F(PaceTest, AnUnknownRateNeverReadjusts)
{
    FrameTiming settings = timing();
    settings.resultingFps = std::numeric_limits<float>::max();
    for (int frame = 0; frame < 1'000; ++frame) {
        clock.frameTs = kNow - 100;
        EXPECT_FALSE(clock.watchPace(settings, {kNow, 0}).fast.fired);
    }
}

TEST_F(PaceTest, RunsInRegularModeToo)
{
    clock.fastCnt = 90;
    EXPECT_TRUE(watch(100, 0).fast.fired);
    EXPECT_EQ(clock.frameTs, kNow - 100);
}

// ---- Prediction.

TEST(FrameClockPredict, RegularModeFollowsTheArrival)
{
    FrameClock clock = startedClock(timing());
    const FrameClock::Prediction prediction = clock.predict(timing(), {kNow + 99, 10'033'333});
    EXPECT_FALSE(prediction.overflow);
    EXPECT_EQ(prediction.adjUs, 0);
    EXPECT_EQ(clock.frameTs, kNow + 99 + kPeriod + 5 - kLatency);
}

TEST(FrameClockPredict, RegularModeHasNoOverflow)
{
    FrameClock clock = startedClock(timing());
    clock.refUs = 0;
    EXPECT_FALSE(clock.predict(timing(0), {kNow, 10'033'333}).overflow);
}

TEST(FrameClockPredict, CorrectsTheDriftOfTheCamerasClock)
{
    const FrameTiming settings = timing(-40'000); // 40 us per s
    FrameClock clock = startedClock(settings);
    clock.frameInterval = 30'000;
    const std::uint64_t diff = clock.tsDiffAdjUs;
    const FrameTimes frame = {kNow + 2'500'000, 12'500'000};
    const FrameClock::Prediction prediction = clock.predict(settings, frame);
    EXPECT_EQ(prediction.adjUs, -100);
    EXPECT_FALSE(prediction.overflow);
    EXPECT_EQ(clock.frameTs, 30'000U + 12'500'000U - 100U + diff);
}

TEST(FrameClockPredict, TruncatesTheCorrectionTowardZero)
{
    const FrameTiming settings = timing(-1'000);
    FrameClock clock = startedClock(settings);
    EXPECT_EQ(clock.predict(settings, {kNow + 1'999'999, 11'000'000}).adjUs, -1);
}

TEST(FrameClockPredict, ATooLargeCorrectionMovesTheAnchorButIsStillUsed)
{
    const FrameTiming settings = timing(1'000'000'000);
    FrameClock clock = startedClock(settings);
    const FrameTimes frame = {kNow, 10'000'000};
    const std::uint64_t hostStart = frame.nowUs + 5 - kLatency;

    clock.refUs = hostStart - 0x60000000U;
    EXPECT_FALSE(clock.predict(settings, frame).overflow) << "the bound itself is allowed";

    clock.refUs = hostStart - 0x60000001U;
    clock.tsDiffAdjUs = 1;
    const FrameClock::Prediction prediction = clock.predict(settings, frame);
    EXPECT_TRUE(prediction.overflow);
    EXPECT_EQ(prediction.adjUs, 0x60000001);
    EXPECT_EQ(clock.refUs, hostStart);
    EXPECT_EQ(clock.tsDiffAdjUs, hostStart - frame.btsFStartUs);
    EXPECT_EQ(clock.frameTs, kPeriod + hostStart + 0x60000001U);

    clock.refUs = hostStart + 0x60000001U;
    EXPECT_TRUE(clock.predict(settings, frame).overflow);
}

TEST(FrameClockPredict, ACorrectionBeyond32BitsIsTheMostNegativeOne)
{
    const FrameTiming settings = timing(2'000'000'000);
    FrameClock clock = startedClock(settings);
    clock.refUs = kNow - 1'000'000'000'000;
    const FrameClock::Prediction prediction = clock.predict(settings, {kNow, 10'000'000});
    EXPECT_EQ(prediction.adjUs, std::numeric_limits<std::int32_t>::min());
    EXPECT_TRUE(prediction.overflow);
}

} // namespace
