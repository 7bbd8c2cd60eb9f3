// Bounds on how far exported time stamps are from the true starts of exposure, in both modes.
//
// The mean is early by one exposure: the latency that is measured on the first frame has the
// exposure time added to a delay which, with a camera that stamps the start of the exposure,
// contains it already. What is left of it is the time of the register access less the fixed offset
// of 5 us.
#include "timestamp_run.h"

#include <gtest/gtest.h>

#include <cmath>

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

} // namespace
