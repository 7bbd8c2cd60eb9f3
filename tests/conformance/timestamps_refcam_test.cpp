// Time stamps from the camera's clock: anchors, drift correction, missed frames, overflow.
#include "camera_test.h"

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::kStartUs;
using kxtest::ScriptedFrame;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::uint64_t kOffset = 5;
constexpr std::uint64_t kLatency = 30'000;
constexpr std::uint64_t kFirstArrival = 50'000;
constexpr std::uint64_t kFirstStart = 1'000'000; ///< on the camera's clock

unsigned long long wide(std::uint64_t value)
{
    return value;
}

/// Host time of the start of a frame with this arrival.
std::uint64_t startOf(std::uint64_t arrival)
{
    return kStartUs + arrival + kOffset - kLatency;
}

class TimestampsRefcamTest : public kxtest::CameraTest {
protected:
    TimestampsRefcamTest()
    {
        connect();
        host().config.tsadjns = 1;
        cam_->clockRegister = kxtest::packedCycleTime(kFirstStart + 20'000);
    }
    /// Frames with these arrivals and starts, counted from those of the first.
    static std::vector<ScriptedFrame>
    after(const std::vector<std::pair<std::uint64_t, std::uint64_t>>& steps)
    {
        std::vector<ScriptedFrame> frames = {{kFirstArrival, kFirstStart, false}};
        for (const auto& [arrival, start] : steps) {
            frames.push_back({kFirstArrival + arrival, kFirstStart + start, false});
        }
        return frames;
    }
    static std::vector<std::uint64_t> stamps()
    {
        std::vector<std::uint64_t> all;
        for (const auto& one : host().exports) {
            all.push_back(one.timestampUs);
        }
        return all;
    }
    static std::string trigger(unsigned frame, std::uint64_t oldD, std::uint64_t newD,
                               std::uint64_t oldTs, std::uint64_t newTs)
    {
        return info(format("Loop_%u(%u): init TS trigger oldD=%llu, newD=%llu, oldFTS=%llu, "
                           "newFTS=%llu",
                           frame, frame, wide(oldD), wide(newD), wide(oldTs), wide(newTs)));
    }
};

TEST_F(TimestampsRefcamTest, IsAnnouncedWithItsAccuracy)
{
    host().config.tsadjns = -25;
    ASSERT_EQ(grab(after({})), 0);
    EXPECT_THAT(journal().logs(), Contains(info("REFCAMTS mode - TS is obtained from cam (sync "
                                                "accuracy -2.5e-08)")));
    EXPECT_THAT(journal().lines({"KxGi__CommTriggerAll"}), IsEmpty());
}

TEST_F(TimestampsRefcamTest, StartsWithTheSecondFrame)
{
    ASSERT_EQ(grab(after({{33'400, 33'300}})), 0);
    const std::uint64_t start = startOf(kFirstArrival + 33'400);
    EXPECT_THAT(journal().logsWith("init TS trigger"),
                ElementsAre(trigger(2, startOf(kFirstArrival) - kFirstStart,
                                    start - (kFirstStart + 33'300), 0, start)));
    EXPECT_THAT(stamps(), ElementsAre(start));
    // The next one: the interval of the camera's clock later.
    EXPECT_THAT(journal().lines({"KxGi__CommTriggerAll"}),
                ElementsAre(format("KxGi__CommTriggerAll(%llu, 5, 10000)", wide(start + 33'300))));
}

TEST_F(TimestampsRefcamTest, FollowsTheCameraNotTheArrivals)
{
    // Arrivals jitter by some milliseconds, the camera does not.
    ASSERT_EQ(
        grab(after({{33'333, 33'333}, {68'000, 66'666}, {99'000, 99'999}, {134'000, 133'332}})), 0);
    const std::uint64_t anchor = startOf(kFirstArrival + 33'333);
    EXPECT_THAT(stamps(), ElementsAre(anchor, anchor + 33'333, anchor + 66'666, anchor + 99'999));
    EXPECT_THAT(journal().logsWith("init TS trigger"), SizeIs(1));
}

struct Drift {
    const char* name;
    int nsPerSecond;
    std::int64_t correctionUs; ///< on the frame after 33,333 us since the anchor
};

class TimestampsDriftTest : public TimestampsRefcamTest,
                            public testing::WithParamInterface<Drift> {};

TEST_P(TimestampsDriftTest, IsCorrectedSinceTheAnchor)
{
    host().config.tsadjns = GetParam().nsPerSecond;
    ASSERT_EQ(grab(after({{33'333, 33'333}, {66'666, 66'666}, {99'999, 99'999}})), 0);
    const std::uint64_t anchor = startOf(kFirstArrival + 33'333);
    const auto correction = static_cast<std::uint64_t>(GetParam().correctionUs);
    EXPECT_THAT(stamps(), ElementsAre(anchor, anchor + 33'333, anchor + 66'666 + correction));
}

INSTANTIATE_TEST_SUITE_P(Timestamps, TimestampsDriftTest,
                         testing::Values(Drift{"TooSmall", 29'000, 0}, Drift{"Fast", 31'000, 1},
                                         Drift{"Slow", -31'000, -1},
                                         Drift{"TruncatedTowardZero", -59'000, -1},
                                         Drift{"TenPercent", 100'000'000, 3333}),
                         [](const auto& one) { return std::string(one.param.name); });

struct Step {
    const char* name;
    std::uint64_t cameraStep; ///< from the second to the third frame
    std::uint64_t interval;   ///< estimate after it
};

class TimestampsIntervalTest : public TimestampsRefcamTest,
                               public testing::WithParamInterface<Step> {};

TEST_P(TimestampsIntervalTest, FollowsStepsOfLessThanTwoPeriods)
{
    ASSERT_EQ(grab(after({{33'000, 33'000}, {100'000, 33'000 + GetParam().cameraStep}})), 0);
    const std::uint64_t anchor = startOf(kFirstArrival + 33'000);
    EXPECT_EQ(journal().lines({"KxGi__CommTriggerAll"}).back(),
              format("KxGi__CommTriggerAll(%llu, 5, 10000)",
                     wide(anchor + GetParam().cameraStep + GetParam().interval)));
}

INSTANTIATE_TEST_SUITE_P(Timestamps, TimestampsIntervalTest,
                         testing::Values(Step{"Usual", 33'333, 33'333},
                                         Step{"Longest", 63'332, 63'332},
                                         Step{"FrameMissed", 63'333, 33'000},
                                         Step{"FramesMissed", 500'000, 33'000},
                                         Step{"Standing", 0, 0}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(TimestampsRefcamTest, StartsTheIntervalAtThePeriod)
{
    // The second frame already misses one.
    ASSERT_EQ(grab(after({{70'000, 70'000}})), 0);
    const std::uint64_t anchor = startOf(kFirstArrival + 70'000);
    EXPECT_EQ(journal().lines({"KxGi__CommTriggerAll"}).back(),
              format("KxGi__CommTriggerAll(%llu, 5, 10000)", wide(anchor + kPeriodUs)));
}

TEST_F(TimestampsRefcamTest, AnchorsAnewWhenTheCameraClockWraps)
{
    cam_->clockRegister = kxtest::packedCycleTime(127'920'000);
    ASSERT_EQ(grab({{50'000, 127'900'000, false},
                    {83'333, 127'933'333, false},
                    {116'666, 127'966'666, false},
                    {150'500, 100, false},
                    {183'332, 33'433, false}}),
              0);
    EXPECT_THAT(journal().logsWith("wrap"),
                ElementsAre(info("Loop_4(4): bTS wrap is detected: old 127966666us, new 100us")));
    const std::uint64_t anchor = startOf(83'333);
    const std::uint64_t wrapped = startOf(150'500);
    // The wrap's frame was predicted before it; what follows counts from its own start.
    EXPECT_THAT(stamps(), ElementsAre(anchor, anchor + 33'333, anchor + 66'666, wrapped + 33'333));
}

TEST_F(TimestampsRefcamTest, AnchorsTwiceWhenTheClockWrapsOnTheSecondFrame)
{
    cam_->clockRegister = kxtest::packedCycleTime(127'995'000);
    ASSERT_EQ(
        grab({{50'000, 127'975'000, false}, {83'333, 8'333, false}, {116'666, 41'666, false}}), 0);
    // The wrap has moved the anchor to this frame already, which is where the trigger puts it.
    const std::uint64_t second = startOf(83'333);
    EXPECT_THAT(journal().logsWith("Loop_2(2)"),
                ElementsAre(info("Loop_2(2): bTS wrap is detected: old 127975000us, new 8333us"),
                            trigger(2, second - 8'333, second - 8'333, 0, second)));
    EXPECT_THAT(stamps(), ElementsAre(second, second + 33'333));
}

TEST_F(TimestampsRefcamTest, AnchorsTwiceWhenTheClockWrapsOnAnImpossiblePrediction)
{
    cam_->clockRegister = kxtest::packedCycleTime(127'961'667);
    ASSERT_EQ(grab({{50'000, 127'941'667, false},
                    {83'333, 127'975'000, false},
                    {86'000, 8'333, false},
                    {149'999, 41'666, false}}),
              0);
    const std::uint64_t second = startOf(83'333);
    const std::uint64_t third = startOf(86'000);
    EXPECT_THAT(journal().logsWith("Loop_3(3)"),
                ElementsAre(info("Loop_3(3): bTS wrap is detected: old 127975000us, new 8333us"),
                            trigger(3, third - 8'333, third - 8'333, second + 33'333, third)));
    EXPECT_THAT(stamps(), ElementsAre(second, third, third + 33'333));
}

TEST_F(TimestampsRefcamTest, AnchorsAnewWhenAPredictionCannotBe)
{
    // The third frame arrives before its predicted start.
    ASSERT_EQ(grab(after({{33'333, 33'333}, {36'000, 66'666}, {99'999, 99'999}})), 0);
    const std::uint64_t second = startOf(kFirstArrival + 33'333);
    const std::uint64_t third = startOf(kFirstArrival + 36'000);
    EXPECT_THAT(journal().logsWith("init TS trigger"),
                Contains(trigger(3, second - (kFirstStart + 33'333), third - (kFirstStart + 66'666),
                                 second + 33'333, third)));
    EXPECT_THAT(stamps(), ElementsAre(second, third, third + 33'333));
}

TEST_F(TimestampsRefcamTest, AcceptsAPredictionJustBeforeTheArrival)
{
    const std::uint64_t predicted = 33'333 + 33'333 + kOffset - kLatency;
    ASSERT_EQ(grab(after({{33'333, 33'333}, {predicted + 1, 66'666}})), 0);
    EXPECT_THAT(journal().logsWith("init TS trigger"), SizeIs(1));
    journal().clear();
    // On the arrival itself it is too late.
    connect();
    cam_->clockRegister = kxtest::packedCycleTime(kFirstStart + 20'000);
    ASSERT_EQ(grab(after({{33'333, 33'333}, {predicted, 66'666}})), 0);
    EXPECT_THAT(journal().logsWith("init TS trigger"), SizeIs(2));
}

struct Overflow {
    const char* name;
    int nsPerSecond;
    std::uint64_t secondsLater;
    int adjustUs;
    bool protects;
};

class TimestampsOverflowTest : public TimestampsRefcamTest,
                               public testing::WithParamInterface<Overflow> {};

TEST_P(TimestampsOverflowTest, MovesTheAnchorAndStillUsesTheCorrection)
{
    const Overflow& overflow = GetParam();
    host().config.tsadjns = overflow.nsPerSecond;
    const std::uint64_t later = overflow.secondsLater * 1'000'000;
    ASSERT_EQ(grab(after({{33'333, 33'333}, {33'333 + later, 66'666}})), 0);
    const std::uint64_t anchor = startOf(kFirstArrival + 33'333);
    const auto message = info(format(
        "Loop_3(3): sync adjust us value %i overflow protection trigger", overflow.adjustUs));
    if (overflow.protects) {
        EXPECT_THAT(journal().logsWith("sync adjust"), ElementsAre(message));
    } else {
        EXPECT_THAT(journal().logsWith("sync adjust"), IsEmpty());
    }
    const std::uint64_t base = overflow.protects ? anchor + later : anchor + 33'333;
    EXPECT_EQ(
        journal().lines({"KxGi__CommTriggerAll"}).back(),
        format("KxGi__CommTriggerAll(%llu, 5, 10000)",
               wide(base + 33'333 + static_cast<std::uint64_t>(std::int64_t{overflow.adjustUs}))));
}

INSTANTIATE_TEST_SUITE_P(
    Timestamps, TimestampsOverflowTest,
    testing::Values(Overflow{"AtTheLimit", 1'610'612'736, 1000, 0x60000000, false},
                    Overflow{"OverTheLimit", 1'610'612'737, 1000, 0x60000001, true},
                    Overflow{"AtTheLowerLimit", -1'610'612'736, 1000, -0x60000000, false},
                    Overflow{"UnderTheLowerLimit", -1'610'612'737, 1000, -0x60000001, true},
                    Overflow{"Largest", 2'000'000'000, 1000, 2'000'000'000, true},
                    Overflow{"OutOfRange", 2'000'000'000, 2000, INT32_MIN, true},
                    Overflow{"OutOfRangeBelow", -2'000'000'000, 2000, INT32_MIN, true}),
    [](const auto& one) { return std::string(one.param.name); });

} // namespace
