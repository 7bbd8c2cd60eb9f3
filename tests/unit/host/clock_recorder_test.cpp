// The recorder: which of a grab's calls make a sample.
#include "clock/clock_recorder.h"

#include <gtest/gtest.h>

namespace {

using kxhost::ClockRecorder;

TEST(ClockRecorder, AFrameIsItsArrivalAndTheCamerasTime)
{
    ClockRecorder recorder(10);
    recorder.arrived(1'700'000'000'000'000, 5000);
    recorder.stamped(1'000'250);
    ASSERT_EQ(recorder.samples().size(), 1U);
    EXPECT_EQ(recorder.samples()[0].hostUs, 1'700'000'000'000'000);
    EXPECT_EQ(recorder.samples()[0].steadyUs, 5000);
    EXPECT_EQ(recorder.samples()[0].cameraUs, 1'000'250);
}

TEST(ClockRecorder, TheCamerasTimeRunsOnAndItsCyclesAreWhole)
{
    ClockRecorder recorder(10);
    recorder.arrived(0, 0);
    recorder.stamped(127'999'875 + 75);
    recorder.arrived(125, 125);
    recorder.stamped(75);
    ASSERT_EQ(recorder.samples().size(), 2U);
    EXPECT_EQ(recorder.samples()[0].cameraUs, 127'999'875 + 100);
    EXPECT_EQ(recorder.samples()[1].cameraUs, 128'000'000 + 100);
}

TEST(ClockRecorder, AFrameThatIsNotExportedIsNone)
{
    ClockRecorder recorder(10);
    recorder.arrived(100, 100); // the first one only starts the timing
    recorder.arrived(200, 200);
    recorder.stamped(250);
    ASSERT_EQ(recorder.samples().size(), 1U);
    EXPECT_EQ(recorder.samples()[0].hostUs, 200);
}

TEST(ClockRecorder, NeitherIsAnExportWithoutArrivalOrTime)
{
    ClockRecorder recorder(10);
    recorder.stamped(250);
    recorder.arrived(100, 100);
    recorder.stamped(std::nullopt);
    recorder.stamped(250);
    EXPECT_TRUE(recorder.samples().empty());
}

TEST(ClockRecorder, TakesMoreFramesThanWereExpected)
{
    ClockRecorder recorder(1);
    for (std::uint64_t i = 0; i < 100; ++i) {
        recorder.arrived(i, i);
        recorder.stamped(125 * i);
    }
    ASSERT_EQ(recorder.samples().size(), 100U);
    EXPECT_EQ(recorder.samples()[99].cameraUs, 125 * 99);
}

} // namespace
