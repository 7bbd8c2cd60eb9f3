// Bounds on how far exported time stamps are from the true starts of exposure, in both modes.
//
// The mean is early by one exposure: the latency that is measured on the first frame has the
// exposure time added to a delay which, with a camera that stamps the start of the exposure,
// contains it already. What is left of it is the time of the register access less the fixed offset
// of 5 us.
#include "timestamp_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

using kxtest::ErrorSummary;
using kxtest::TimestampCase;

/// Twice the time of a register access, and the steps of the camera clock as it is decoded.
constexpr double kFixedUs = 100;
/// Half the range of a sawtooth: the decoded clock runs to 93 us within each cycle of 125 us.
constexpr double kClockStepUs = 32;

ErrorSummary measured(const TimestampCase& what)
{
    return kxtest::summarize(kxtest::timestampErrors(what), what.frameRate);
}

class TimestampError : public testing::TestWithParam<double> {
protected:
    TimestampError()
    {
        what_.driftPpm = GetParam();
        what_.frames = 900;
    }
    TimestampCase what_;
};

TEST_P(TimestampError, RegularModeFollowsTheArrival)
{
    what_.jitterUs = 200;
    const ErrorSummary error = measured(what_);
    EXPECT_NEAR(error.mean, -what_.exposureUs, kFixedUs);
    EXPECT_LE(error.largest - error.smallest, what_.jitterUs + 2); // the jitter shows as it is
    EXPECT_GT(error.deviation, what_.jitterUs / 5);
}

TEST_P(TimestampError, ReferenceModeKeepsTheJitterOut)
{
    what_.jitterUs = 200;
    what_.tsadjns = GetParam() == 0 ? 1 : kxtest::matchingCorrection(GetParam());
    const ErrorSummary error = measured(what_);
    EXPECT_NEAR(error.mean, -what_.exposureUs, kFixedUs + what_.jitterUs);
    EXPECT_LE(error.largest - error.smallest, 2 * kClockStepUs);
    EXPECT_LT(std::abs(error.drift), 0.5);
}

INSTANTIATE_TEST_SUITE_P(Drift, TimestampError, testing::Values(0.0, 20.0, -100.0));

TEST(TimestampErrorAlone, ADriftThatIsNotCorrectedShows)
{
    TimestampCase what;
    what.driftPpm = 20;
    what.tsadjns = 1;
    what.frames = 300; // ten seconds, before the pace watch steps in
    EXPECT_NEAR(measured(what).drift, 20, 3);
}

TEST(TimestampErrorAlone, WrapsOfTheCameraClockLeaveNoTrace)
{
    TimestampCase what;
    what.driftPpm = 20;
    what.tsadjns = kxtest::matchingCorrection(20);
    what.frameRate = 10;
    what.frames = 10 * 300; // two wraps
    const ErrorSummary error = measured(what);
    EXPECT_NEAR(error.mean, -what.exposureUs, kFixedUs);
    EXPECT_LE(error.largest - error.smallest, 4 * kClockStepUs);
}

/// A minute at 100 frames a second, 300 us of jitter and 1 % spikes.
TimestampCase clockCase(double driftPpm)
{
    TimestampCase what;
    what.driftPpm = driftPpm;
    what.jitterUs = 300;
    what.spikeShare = 0.01;
    what.spikeUs = 3000;
    what.frameRate = 100;
    what.frames = 6000;
    return what;
}

kxhost::ClockFit clockOf(const TimestampCase& what)
{
    std::string problem;
    const auto fit = kxhost::fitClock(kxtest::clockSamples(what), problem);
    if (!fit) {
        throw std::runtime_error(problem);
    }
    return *fit;
}

class MeasuredClock : public testing::TestWithParam<double> {};

TEST_P(MeasuredClock, AMinuteTellsTheDriftToOnePpmAndTheCorrectionKeepsItOut)
{
    TimestampCase what = clockCase(GetParam());
    const kxhost::ClockFit fit = clockOf(what);
    EXPECT_NEAR(fit.rateNs, 1000 * GetParam(), 1000);
    EXPECT_NEAR(fit.rateNs, 1000 * GetParam(), 2 * fit.uncertaintyNs);
    EXPECT_LT(fit.uncertaintyNs, 500);
    EXPECT_TRUE(fit.steps.empty());
    EXPECT_FALSE(fit.wanders);

    what.exposureUs = 1000;
    what.tsadjns = static_cast<std::int32_t>(kxhost::clockCorrectionNs(fit));
    EXPECT_LT(std::abs(measured(what).drift), 0.5);
}

INSTANTIATE_TEST_SUITE_P(Drift, MeasuredClock, testing::Values(0.0, 35.0, -100.0));

TEST(MeasuredClockAlone, AWanderingClockIsFollowed)
{
    TimestampCase what = clockCase(35);
    what.wanderPpm = 5;
    what.wanderSeconds = 60; // the rate's mean over the minute is that of the drift
    const kxhost::ClockFit fit = clockOf(what);
    EXPECT_TRUE(fit.wanders);
    EXPECT_NEAR(fit.rateNs, 35'000, 1000);
    EXPECT_NEAR(fit.residual.medianUs, 150, 25);
}

} // namespace
