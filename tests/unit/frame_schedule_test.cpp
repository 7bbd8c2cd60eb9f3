// The schedule of frames: which settings each frame has, and when it comes.
#include <gtest/gtest.h>

#include <frame_schedule.h>

using fcsim::FrameSchedule;
using fcsim::FrameSettings;

namespace {

FrameSettings settingsOf(double periodUs, double exposureUs, unsigned gainRaw)
{
    FrameSettings settings;
    settings.periodUs = periodUs;
    settings.exposureUs = exposureUs;
    settings.transferUs = 30;
    settings.gainRaw = gainRaw;
    return settings;
}

class FrameScheduleTest : public testing::Test {
protected:
    void SetUp() override { schedule.begin(5000, settingsOf(1000, 100, 1)); }
    unsigned gainOf(std::uint64_t number) const { return schedule.frame(number).settings.gainRaw; }

    FrameSchedule schedule{200, 0, 1};
};

TEST_F(FrameScheduleTest, AFrameIsExposedTransferredAndArrives)
{
    const fcsim::FrameTimes times = schedule.times(3);
    EXPECT_DOUBLE_EQ(times.startUs, 8000);
    EXPECT_DOUBLE_EQ(times.exposureEndUs, 8100);
    EXPECT_DOUBLE_EQ(times.arrivalUs, 8330);
}

TEST_F(FrameScheduleTest, AFrameThatBeginsNowHasBegun)
{
    EXPECT_EQ(schedule.firstAfter(4999), 0U);
    EXPECT_EQ(schedule.firstAfter(5000), 1U);
    EXPECT_EQ(schedule.firstAfter(5999), 1U);
    EXPECT_EQ(schedule.firstAfter(6000), 2U);
}

TEST_F(FrameScheduleTest, EachFrameKeepsTheSettingsOfItsStart)
{
    schedule.change(2, settingsOf(500, 50, 2));
    schedule.change(4, settingsOf(2000, 70, 3));
    EXPECT_EQ(gainOf(1), 1U);
    EXPECT_EQ(gainOf(2), 2U);
    EXPECT_EQ(gainOf(3), 2U);
    EXPECT_EQ(gainOf(4), 3U);
    EXPECT_DOUBLE_EQ(schedule.times(2).startUs, 7000);
    EXPECT_DOUBLE_EQ(schedule.times(3).startUs, 7500);
    EXPECT_DOUBLE_EQ(schedule.times(4).startUs, 8000);
    EXPECT_DOUBLE_EQ(schedule.times(5).startUs, 10'000);
    EXPECT_DOUBLE_EQ(schedule.times(5).exposureEndUs, 10'070);
}

TEST_F(FrameScheduleTest, TheLaterOfTwoChangesForOneFrameHolds)
{
    schedule.change(2, settingsOf(500, 50, 2));
    schedule.change(2, settingsOf(1000, 50, 3));
    schedule.change(1, settingsOf(1000, 50, 4)); // never before the change that was there
    EXPECT_EQ(gainOf(1), 1U);
    EXPECT_EQ(gainOf(2), 4U);
    EXPECT_DOUBLE_EQ(schedule.times(3).startUs, 8050); // the exposure ends when the others do
}

TEST_F(FrameScheduleTest, AShorterExposureDoesNotBringTheNextFrameEarly)
{
    schedule.begin(0, settingsOf(1000, 900, 1));
    schedule.change(3, settingsOf(1000, 100, 2));
    EXPECT_DOUBLE_EQ(schedule.times(2).exposureEndUs, 2900);
    EXPECT_DOUBLE_EQ(schedule.times(3).startUs, 3800);
    EXPECT_DOUBLE_EQ(schedule.times(3).exposureEndUs, 3900);
    EXPECT_DOUBLE_EQ(schedule.times(4).exposureEndUs, 4900);
    EXPECT_EQ(schedule.firstAfter(3799), 3U); // it has not begun when it would have
}

TEST_F(FrameScheduleTest, AShorterExposureAtAnotherRateKeepsTheShorterPeriod)
{
    schedule.begin(0, settingsOf(1000, 900, 1));
    schedule.change(3, settingsOf(400, 300, 2));
    EXPECT_DOUBLE_EQ(schedule.times(3).exposureEndUs, 3300);
    schedule.change(5, settingsOf(1000, 100, 3)); // frame 4 ends at 3700
    EXPECT_DOUBLE_EQ(schedule.times(5).exposureEndUs, 4100);
    schedule.change(5, settingsOf(1000, 800, 4)); // before it begins, and never sooner for it
    EXPECT_DOUBLE_EQ(schedule.times(5).startUs, 4000);
}

TEST_F(FrameScheduleTest, ALongerExposureBeginsInItsTurn)
{
    schedule.change(3, settingsOf(1000, 900, 2));
    EXPECT_DOUBLE_EQ(schedule.times(3).startUs, 8000);
    EXPECT_DOUBLE_EQ(schedule.times(3).exposureEndUs, 8900);
}

TEST_F(FrameScheduleTest, ForgettingKeepsTheSettingsOfTheFramesThatFollow)
{
    schedule.change(2, settingsOf(1000, 50, 2));
    schedule.change(4, settingsOf(1000, 50, 3));
    schedule.forget(3);
    EXPECT_EQ(gainOf(3), 2U);
    EXPECT_EQ(gainOf(4), 3U);
    EXPECT_DOUBLE_EQ(schedule.times(3).startUs, 8050);
}

TEST_F(FrameScheduleTest, TheNewestOfVeryManyChangesHold)
{
    for (unsigned change = 1; change <= 10'000; ++change) {
        schedule.change(change, settingsOf(1000, 50, 1000 + change));
    }
    for (std::uint64_t number = 9800; number <= 10'000; ++number) {
        ASSERT_EQ(gainOf(number), 1000 + number);
        ASSERT_DOUBLE_EQ(schedule.times(number).startUs,
                         5050 + 1000.0 * static_cast<double>(number));
    }
    EXPECT_EQ(gainOf(0), 1U);
}

} // namespace
