// The schedule of frames: which settings each frame has, and when it comes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <capture/frame_schedule.h>

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

    FrameSchedule schedule{fcsim::DeliveryDescription{.latencyUs = 200}};
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

/// How late frames arrive, beyond exposure, transfer and latency.
std::vector<double> lateness(const fcsim::DeliveryDescription& delivery, std::size_t frames)
{
    FrameSchedule schedule(delivery);
    schedule.begin(0, settingsOf(1000, 100, 1));
    std::vector<double> late;
    for (std::uint64_t number = 0; number < frames; ++number) {
        const fcsim::FrameTimes times = schedule.times(number);
        late.push_back(times.arrivalUs - times.exposureEndUs - 30 - delivery.latencyUs);
    }
    return late;
}

TEST(FrameScheduleLateness, ASpikeComesOnTopOfTheJitterOfItsShareOfTheFrames)
{
    constexpr std::size_t kFrames = 20'000;
    fcsim::DeliveryDescription delivery{.latencyUs = 200, .jitterUs = 50, .seed = 3};
    const std::vector<double> without = lateness(delivery, kFrames);
    delivery.spikeShare = 0.01;
    delivery.spikeUs = 400;
    const std::vector<double> with = lateness(delivery, kFrames);
    std::size_t spikes = 0;
    for (std::size_t i = 0; i < kFrames; ++i) {
        const double more = with[i] - without[i];
        ASSERT_TRUE(std::abs(more) < 1e-6 || std::abs(more - 400) < 1e-6) << more;
        spikes += more > 200 ? 1 : 0;
    }
    EXPECT_NEAR(static_cast<double>(spikes), 200, 60); // four standard deviations
    EXPECT_EQ(lateness(delivery, kFrames), with) << "the same for the same seed";
    delivery.seed = 4;
    EXPECT_NE(lateness(delivery, kFrames), with);
}

TEST(FrameScheduleLateness, NoFrameIsLaterThanOnePeriod)
{
    const std::vector<double> late =
        lateness({.latencyUs = 200, .jitterUs = 5000, .spikeShare = 1, .spikeUs = 700}, 1000);
    EXPECT_NEAR(*std::max_element(late.begin(), late.end()), 1000, 1e-6);
    EXPECT_GE(*std::min_element(late.begin(), late.end()), 700 - 1e-6);
}

TEST(FrameScheduleLateness, AShareOfAllIsEachFrameAndOneOfNothingNone)
{
    for (const double late : lateness({.spikeShare = 1, .spikeUs = 70}, 100)) {
        EXPECT_NEAR(late, 70, 1e-6);
    }
    for (const double late : lateness({.spikeShare = 0, .spikeUs = 70}, 100)) {
        EXPECT_NEAR(late, 0, 1e-6);
    }
}

} // namespace
