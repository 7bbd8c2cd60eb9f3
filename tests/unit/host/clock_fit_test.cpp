// What a run says about the camera's clock, against runs of which the truth is known.
#include "clock/camera_timeline.h"
#include "clock/clock_rate.h"
#include "clock_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using kxhost::clockCorrectionNs;
using kxhost::ClockFit;
using kxhost::ClockSample;
using kxhost::fitClock;
using kxtest::ClockRun;
using kxtest::fitOf;

constexpr double kPpm = 1000; // in ns per s

double errorOf(const ClockRun& run)
{
    return std::abs(fitOf(run).rateNs - run.meanRateNs());
}

std::string problemOf(const std::vector<ClockSample>& samples)
{
    std::string problem;
    EXPECT_FALSE(fitClock(samples, problem).has_value());
    return problem;
}

TEST(ClockFit, AMinuteGivesTheRateToOnePpmAndTellsItsUncertainty)
{
    constexpr int kRuns = 100;
    int held = 0;
    for (unsigned seed = 1; seed <= kRuns; ++seed) {
        ClockRun run; // 100 frames a second, 300 us of jitter, 1 % spikes
        run.seed = seed;
        run.driftPpm = 3.7 * seed - 180;
        const ClockFit fit = fitOf(run);
        const double error = std::abs(fit.rateNs - run.meanRateNs());
        ASSERT_LT(error, kPpm) << seed;
        EXPECT_LT(error, kPpm / 10) << seed;
        EXPECT_LT(fit.uncertaintyNs, kPpm / 2) << seed;
        EXPECT_TRUE(fit.steps.empty()) << seed;
        EXPECT_FALSE(fit.wanders) << seed;
        held += error <= fit.uncertaintyNs ? 1 : 0;
    }
    EXPECT_GE(held, 90);
}

TEST(ClockFit, SaysHowLongItLooked)
{
    const ClockFit fit = fitOf({.seconds = 30});
    EXPECT_EQ(fit.frames, 3000U);
    EXPECT_NEAR(fit.seconds, 30, 0.02);
    EXPECT_EQ(fit.windowSeconds, 10);
    EXPECT_EQ(fit.windows.size(), 5U);
    EXPECT_EQ(fit.windows.front().fromSeconds, 0);
    EXPECT_NEAR(fit.windows.back().toSeconds, fit.seconds, 1e-9);
}

TEST(ClockFit, TheWindowsOfALongRunGrowWithIt)
{
    const ClockFit fit = fitOf({.frameRate = 20, .seconds = 600});
    EXPECT_NEAR(fit.windowSeconds, 50, 0.1);
    EXPECT_EQ(fit.windows.size(), 23U);
}

TEST(ClockFit, AShortRunHasNoWindows)
{
    EXPECT_TRUE(fitOf({.seconds = 9.9}).windows.empty());
    EXPECT_EQ(fitOf({.seconds = 10.1}).windows.size(), 2U);
}

TEST(ClockFit, TheOffsetIsThatOfTheShortestDelay)
{
    ClockRun run;
    run.driftPpm = 50;
    const ClockFit fit = fitOf(run);
    const ClockSample last = run.samples().back();
    EXPECT_EQ(fit.atCameraUs, last.cameraUs);
    // Started at 1.7e15 us and 1 s; the host's clock falls behind by 50 us a second.
    const double trueUs = 1.7e15 - 1e6 - 50 * 59.99 + run.latencyUs;
    EXPECT_NEAR(static_cast<double>(fit.offsetUs), trueUs, 15);
}

TEST(ClockFit, TheOffsetBelongsToTheTimeThatTheCameraShows)
{
    const ClockRun run{.frameRate = 30, .seconds = 300, .driftPpm = 50};
    const ClockFit fit = fitOf(run);
    EXPECT_EQ(fit.atCameraUs, run.samples().back().cameraUs - 2 * kxhost::kCameraWrapUs);
    const double trueUs = 1.7e15 - 1e6 - 50 * 300 + run.latencyUs + 2 * 128e6;
    EXPECT_NEAR(static_cast<double>(fit.offsetUs), trueUs, 15);
}

TEST(ClockFit, ResidualsAreThoseOfTheDelivery)
{
    const ClockFit fit = fitOf({.driftPpm = 20});
    EXPECT_NEAR(fit.residual.medianUs, 150, 15);
    EXPECT_NEAR(fit.residual.p99Us, 300, 20);
    EXPECT_GT(fit.residual.largestUs, 2500);
    EXPECT_LT(fit.residual.largestUs, 3400);
}

TEST(ClockFit, LostFramesCostPrecisionOnly)
{
    EXPECT_LT(errorOf({.driftPpm = -80, .lostShare = 0.9}), kPpm);
}

TEST(ClockFit, AStepOfTheCameraIsReportedAndDoesNotHurt)
{
    for (const double sizeUs : {5000.0, -5000.0, -4e6}) {
        ClockRun run{.driftPpm = 35};
        run.cameraStepUs = [=](double seconds) { return seconds >= 20 ? sizeUs : 0; };
        const ClockFit fit = fitOf(run);
        ASSERT_EQ(fit.steps.size(), 1U) << sizeUs;
        EXPECT_FALSE(fit.steps[0].ofHost);
        EXPECT_NEAR(fit.steps[0].atSeconds, 20, 0.05);
        EXPECT_NEAR(fit.steps[0].sizeUs, sizeUs, 60);
        EXPECT_LT(std::abs(fit.rateNs - run.meanRateNs()), kPpm);
        EXPECT_LT(fit.residual.largestUs, 3400) << "each part has its own line";
    }
}

TEST(ClockFit, AStepOfThisComputersClockIsToldFromOneOfTheCamera)
{
    for (const double sizeUs : {1.5e6, -1.5e6, -400.0}) {
        ClockRun run{.driftPpm = 35};
        run.hostStepUs = [=](double seconds) { return seconds >= 30 ? sizeUs : 0; };
        const ClockFit fit = fitOf(run);
        ASSERT_EQ(fit.steps.size(), 1U) << sizeUs;
        EXPECT_TRUE(fit.steps[0].ofHost);
        EXPECT_NEAR(fit.steps[0].atSeconds, 30, 0.05);
        EXPECT_NEAR(fit.steps[0].sizeUs, sizeUs, 60);
        EXPECT_LT(std::abs(fit.rateNs - run.meanRateNs()), kPpm);
    }
}

TEST(ClockFit, TheOffsetIsThatBehindTheLastStep)
{
    ClockRun run;
    run.hostStepUs = [](double seconds) { return seconds >= 30 ? 1e6 : 0.0; };
    EXPECT_NEAR(static_cast<double>(fitOf(run).offsetUs), 1.7e15 - 1e6 + 1e6 + run.latencyUs, 15);
}

TEST(ClockFit, AWanderingClockIsFollowedAndItsMeanRateReported)
{
    int held = 0;
    constexpr int kRuns = 40;
    for (unsigned seed = 1; seed <= kRuns; ++seed) {
        ClockRun run{.seconds = 130, .driftPpm = 35, .wanderPpm = 5, .wanderPeriodS = 50};
        run.seed = seed;
        const ClockFit fit = fitOf(run);
        ASSERT_TRUE(fit.wanders) << seed;
        const double error = std::abs(fit.rateNs - run.meanRateNs());
        EXPECT_LT(error, kPpm) << seed;
        held += error <= fit.uncertaintyNs ? 1 : 0;
        // A line below the whole would be off by the 40 us that the clock swings to either side.
        EXPECT_LT(fit.residual.medianUs, 165) << seed;
        EXPECT_GT(fit.residual.medianUs, 145) << seed;
    }
    EXPECT_GE(held, 36);
}

TEST(ClockFit, TheWindowsShowHowTheRateChanges)
{
    const ClockRun run{.seconds = 120, .wanderPpm = 5, .wanderPeriodS = 120};
    const ClockFit fit = fitOf(run);
    ASSERT_TRUE(fit.wanders);
    for (const kxhost::ClockWindow& window : fit.windows) {
        const double middle = (window.fromSeconds + window.toSeconds) / 2;
        const double trueNs = 5 * kPpm * std::sin(2 * 3.14159265 * middle / 120);
        EXPECT_NEAR(window.rateNs, trueNs, std::max(2 * window.uncertaintyNs, kPpm)) << middle;
    }
    // From one window's length to the next the sine changes by 5 ppm x 2 pi / 12 at most.
    EXPECT_GT(fit.spreadNs, 700);
    EXPECT_LT(fit.spreadNs, 2600);
}

TEST(ClockFit, ASlowWanderBelowTheUncertaintyIsNone)
{
    EXPECT_FALSE(fitOf({.wanderPpm = 0.05, .wanderPeriodS = 120}).wanders);
}

TEST(ClockFit, TheOffsetOfAWanderingClockIsThatOfItsLastWindow)
{
    // After a whole period the swing has come back to nothing.
    const ClockRun run{.seconds = 120, .wanderPpm = 5, .wanderPeriodS = 60};
    const ClockFit fit = fitOf(run);
    ASSERT_TRUE(fit.wanders);
    EXPECT_NEAR(static_cast<double>(fit.offsetUs), 1.7e15 - 1e6 + run.latencyUs, 20);
}

TEST(ClockFit, AHoleInTheRunIsBridgedByOneLine)
{
    const ClockRun run{.seconds = 120, .driftPpm = 35};
    std::vector<ClockSample> samples = run.samples();
    samples.erase(samples.begin() + 4000, samples.begin() + 6000); // two windows' lengths
    std::string problem;
    const ClockFit fit = fitClock(samples, problem).value();
    EXPECT_TRUE(fit.windows.empty());
    EXPECT_FALSE(fit.wanders);
    EXPECT_LT(std::abs(fit.rateNs - run.meanRateNs()), kPpm);
}

TEST(ClockFit, AShiftOfEitherClockChangesNothingButTheOffset)
{
    const ClockRun run{.seconds = 20, .driftPpm = 35};
    std::vector<ClockSample> samples = run.samples();
    std::string problem;
    const ClockFit before = fitClock(samples, problem).value();
    for (ClockSample& sample : samples) {
        sample.hostUs += 3'600'000'000;
        sample.steadyUs -= 77'000'000;
        sample.cameraUs += 1'000'000;
    }
    const ClockFit behind = fitClock(samples, problem).value();
    EXPECT_EQ(behind.rateNs, before.rateNs);
    EXPECT_EQ(behind.uncertaintyNs, before.uncertaintyNs);
    EXPECT_EQ(behind.offsetUs, before.offsetUs + 3'600'000'000 - 1'000'000);
    EXPECT_EQ(behind.residual.medianUs, before.residual.medianUs);
}

TEST(ClockFit, TheCorrectionIsTheOppositeOfTheRateAndNeverNothing)
{
    ClockFit fit;
    fit.rateNs = 35'012.4;
    EXPECT_EQ(clockCorrectionNs(fit), -35'012);
    fit.rateNs = -0.6;
    EXPECT_EQ(clockCorrectionNs(fit), 1);
    fit.rateNs = 0.4;
    EXPECT_EQ(clockCorrectionNs(fit), 1);
    fit.rateNs = 0.6;
    EXPECT_EQ(clockCorrectionNs(fit), -1);
}

TEST(ClockFit, TooFewFramesAreRefused)
{
    const std::vector<ClockSample> three = {
        {0, 100, 100}, {10'000, 10'100, 10'100}, {20'000, 20'100, 20'100}};
    EXPECT_EQ(problemOf(three), "too few frames to tell a clock's rate: 3, at least 16 are needed");
    EXPECT_EQ(problemOf({}), "too few frames to tell a clock's rate: 0, at least 16 are needed");
    std::string problem;
    EXPECT_TRUE(fitClock(ClockRun{.seconds = 0.16}.samples(), problem).has_value()) << problem;
    EXPECT_FALSE(fitClock(ClockRun{.seconds = 0.15}.samples(), problem).has_value());
}

TEST(ClockFit, ACameraWithoutTimeStampsIsToldSo)
{
    std::vector<ClockSample> samples = ClockRun().samples();
    for (ClockSample& sample : samples) {
        sample.cameraUs = 0;
    }
    EXPECT_EQ(problemOf(samples),
              "the camera embeds no time stamp in its images, its time stays at 0 us");
}

TEST(ClockFit, FramesThatAllArriveAtOnceAreRefused)
{
    std::vector<ClockSample> samples = ClockRun().samples();
    for (ClockSample& sample : samples) {
        sample.hostUs = samples[0].hostUs;
        sample.steadyUs = samples[0].steadyUs;
    }
    EXPECT_EQ(problemOf(samples), "all frames arrived at the same time");
}

TEST(ClockFit, TooManyStepsAreRefused)
{
    std::vector<ClockSample> samples = ClockRun{.seconds = 0.2, .jitterUs = 0}.samples();
    for (std::size_t i = 10; i < samples.size(); ++i) {
        samples[i].cameraUs += 50'000;
    }
    EXPECT_EQ(problemOf(samples), "the clocks step too often to tell a rate");
}

} // namespace
