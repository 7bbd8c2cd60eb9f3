// Time stamps from the host's clock: the measured latency, and the prediction for each frame.
#include "camera_test.h"

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::kStartUs;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::uint64_t kOffset = 5;

unsigned long long wide(std::uint64_t value)
{
    return value;
}

class TimestampsRegularTest : public kxtest::CameraTest {
protected:
    TimestampsRegularTest() { connect(); }

    static std::string initTimings(int latency, std::uint64_t difference, std::uint64_t check,
                                   std::uint64_t got, std::uint64_t start)
    {
        return info(format("Init timings: latencyUs=%i, tsDiffAdjUs=%llu, diffCheck=%llu "
                           "(btsFGotUs=%llu, btsFStartUs=%llu)",
                           latency, wide(difference), wide(check), wide(got), wide(start)));
    }
    static std::string announced(std::uint64_t timestamp, int exposure = kExposureUs)
    {
        return format("KxGi__CommTriggerAll(%llu, 5, %i)", wide(timestamp), exposure);
    }
};

TEST_F(TimestampsRegularTest, MeasuresTheLatencyWithTheCameraClock)
{
    cam_->clockRegister = kxtest::packedCycleTime(1'020'000);
    ASSERT_EQ(grab({{50'000, 1'000'000, false}}), 0);
    // 20 ms from the frame's start to the reading, and the exposure.
    const std::uint64_t arrival = kStartUs + 50'000;
    EXPECT_THAT(journal().logs(),
                Contains(initTimings(30'000, arrival + kOffset - 30'000 - 1'000'000, 29'995,
                                     1'020'000, 1'000'000)));
    EXPECT_THAT(journal().lines({"KxGi__CommTriggerAll"}),
                ElementsAre(announced(arrival + kPeriodUs + kOffset - 30'000)));
}

TEST_F(TimestampsRegularTest, ExportsThePredictionOfTheFrameBefore)
{
    cam_->clockRegister = kxtest::packedCycleTime(1'020'000);
    // The third frame comes early, the fourth late.
    ASSERT_EQ(grab({{50'000, 1'000'000, false},
                    {83'333, 1'033'333, false},
                    {116'000, 1'066'666, false},
                    {151'000, 1'099'999, false}}),
              0);
    const auto prediction = [](std::uint64_t arrival) {
        return kStartUs + arrival + kPeriodUs + kOffset - 30'000;
    };
    ASSERT_THAT(host().exports, SizeIs(3));
    EXPECT_EQ(host().exports[0].timestampUs, prediction(50'000));
    EXPECT_EQ(host().exports[1].timestampUs, prediction(83'333));
    EXPECT_EQ(host().exports[2].timestampUs, prediction(116'000));
    EXPECT_THAT(journal().lines({"KxGi__CommTriggerAll"}),
                ElementsAre(announced(prediction(50'000)), announced(prediction(83'333)),
                            announced(prediction(116'000)), announced(prediction(151'000))));
    EXPECT_THAT(journal().logsWith("init TS trigger"), IsEmpty());
}

TEST_F(TimestampsRegularTest, AnnouncesTheExposureOfEachFrame)
{
    cam_->clockRegister = kxtest::packedCycleTime(1'020'000);
    cam_->onRetrieve = [this](unsigned number) {
        cam_->absValues[FlyCapture2::SHUTTER] = static_cast<float>(number);
    };
    ASSERT_EQ(grab({{50'000, 1'000'000, false}, {83'333, 1'033'333, false}}), 0);
    // The latency keeps the exposure of the first frame.
    EXPECT_THAT(journal().lines({"KxGi__CommTriggerAll"}),
                ElementsAre(announced(kStartUs + 50'000 + kPeriodUs + kOffset - 21'000, 1000),
                            announced(kStartUs + 83'333 + kPeriodUs + kOffset - 21'000, 2000)));
}

struct Latency {
    const char* name;
    std::uint32_t clock; ///< the register
    std::uint64_t frameStartUs;
    std::uint64_t gotUs;
    int latencyUs;
};

class LatencyTest : public TimestampsRegularTest, public testing::WithParamInterface<Latency> {};

TEST_P(LatencyTest, IsMeasuredOnTheFirstFrame)
{
    const Latency& latency = GetParam();
    cam_->clockRegister = latency.clock;
    ASSERT_EQ(grab({{50'000, latency.frameStartUs, false}}), 0);
    const std::uint64_t start =
        kStartUs + 50'000 + kOffset - static_cast<std::uint64_t>(std::int64_t{latency.latencyUs});
    EXPECT_THAT(
        journal().logs(),
        Contains(initTimings(latency.latencyUs, start - latency.frameStartUs,
                             kStartUs + 50'000 - start, latency.gotUs, latency.frameStartUs)));
}

INSTANTIATE_TEST_SUITE_P(
    Timestamps, LatencyTest,
    testing::Values(
        // 5 s, 4000 cycles, offset 0x800, of which only the upper eight bits count.
        Latency{"WithOffset", (5U << 25U) | (4000U << 12U) | 0x800U, 5'480'000, 5'500'062, 30'062},
        Latency{"LowOffsetBitsDoNotCount", (5U << 25U) | (4000U << 12U) | 0x80FU, 5'480'000,
                5'500'062, 30'062},
        Latency{"Wrapped", (0U << 25U) | (800U << 12U), 127'900'000, 100'000, 210'000},
        Latency{"AtOnce", (1U << 25U), 1'000'000, 1'000'000, 10'000},
        Latency{"JustWrapped", (1U << 25U), 1'000'001, 1'000'000, 128'009'999}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(TimestampsRegularTest, TakesTheLatencyFromTheHostWithoutCameraClock)
{
    cam_->clockRegister = 0;
    ASSERT_EQ(grab({{50'000, 7'000'000, false}}), 0);
    // Since the start of the grab; no exposure is added.
    EXPECT_THAT(journal().logs(), Contains(initTimings(50'000, kStartUs + kOffset - 7'000'000,
                                                       49'995, 0, 7'000'000)));
}

TEST_F(TimestampsRegularTest, TakesOffThePeriodsOfFramesThatFailedBefore)
{
    cam_->clockRegister = 0;
    ASSERT_EQ(grab({{0, 0, true}, {0, 0, true}, {120'000, 7'000'000, false}}), 0);
    const int latency = 120'000 - 2 * static_cast<int>(kPeriodUs);
    EXPECT_THAT(journal().logsWith(format("latencyUs=%i,", latency)), SizeIs(1));
}

TEST_F(TimestampsRegularTest, MayHaveANegativeLatency)
{
    cam_->clockRegister = 0;
    ASSERT_EQ(grab({{0, 0, true}, {0, 0, true}, {10'000, 7'000'000, false}, {43'333, 1, false}}),
              0);
    const int latency = 10'000 - 2 * static_cast<int>(kPeriodUs);
    EXPECT_THAT(journal().logsWith(format("latencyUs=%i,", latency)), SizeIs(1));
    ASSERT_THAT(host().exports, SizeIs(1));
    EXPECT_EQ(host().exports[0].timestampUs, kStartUs + 10'000 + kPeriodUs + kOffset + 56'666);
}

TEST_F(TimestampsRegularTest, ReadsNothingFromAFailedClock)
{
    cam_->onRetrieve = [](unsigned) {
        fcsim::Fault fault;
        fault.operation = "ReadRegister";
        fcsim::addFault(fault);
    };
    ASSERT_EQ(grab({{50'000, 7'000'000, false}}), 0);
    EXPECT_THAT(journal().logsWith("btsFGotUs=0,"), SizeIs(1));
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

TEST_F(TimestampsRegularTest, ReadsTheClockAfterEachRetrieval)
{
    ASSERT_EQ(grab({{50'000, 1, false}, {0, 0, true}, {90'000, 2, false}}), 0);
    EXPECT_THAT(journal().lines({"Camera.ReadRegister"}),
                ElementsAre("Camera.ReadRegister(0x1EA8)", "Camera.ReadRegister(0x1EA8)",
                            "Camera.ReadRegister(0x1EA8)"));
}

TEST_F(TimestampsRegularTest, ReportsAWrapWithoutMinding)
{
    cam_->clockRegister = kxtest::packedCycleTime(127'990'000);
    ASSERT_EQ(grab({{50'000, 127'970'000, false}, {83'333, 3'333, false}}), 0);
    EXPECT_THAT(journal().logs(),
                Contains(info("Loop_2(2): bTS wrap is detected: old 127970000us, new 3333us")));
    EXPECT_EQ(host().exports.at(0).timestampUs, kStartUs + 50'000 + kPeriodUs + kOffset - 30'000);
}

TEST_F(TimestampsRegularTest, NeverCorrectsDrift)
{
    cam_->clockRegister = kxtest::packedCycleTime(1'020'000);
    ASSERT_EQ(grab({{50'000, 1'000'000, false}, {9'000'000'000, 1'033'333, false}}), 0);
    EXPECT_THAT(journal().logsWith("sync adjust"), IsEmpty());
    EXPECT_EQ(journal().lines({"KxGi__CommTriggerAll"}).back(),
              announced(kStartUs + 9'000'000'000 + kPeriodUs + kOffset - 30'000));
}

TEST_F(TimestampsRegularTest, ForgetsTheLastGrab)
{
    cam_->clockRegister = kxtest::packedCycleTime(1'020'000);
    ASSERT_EQ(grab({{50'000, 1'000'000, false}, {83'333, 1'033'333, false}}), 0);
    const std::uint64_t second = fcsim::nowUs();
    host().exports.clear();
    cam_->clockRegister = kxtest::packedCycleTime(1'010'000);
    ASSERT_EQ(grab({{50'000, 1'000'000, false}, {83'333, 1'033'333, false}}), 0);
    ASSERT_THAT(host().exports, SizeIs(1));
    EXPECT_EQ(host().exports[0].timestampUs, second + 50'000 + kPeriodUs + kOffset - 20'000);
}

} // namespace
