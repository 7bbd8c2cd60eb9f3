// Pace watch: cameras that run ahead of their time stamps or behind them.
#include "camera_test.h"

using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::kStartUs;
using kxtest::ScriptedFrame;
using kxtest::warning;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// Latency of 30 ms: the expected delay is 29,995 us, and a tenth of it 2,999 us.
constexpr std::int64_t kExpected = 29'995;
constexpr std::int64_t kTenth = 2'999;

/// Time stamps follow the host: a frame's delay is the expected one plus what its interval is
/// longer than the period.
class PaceWatchTest : public kxtest::CameraTest {
protected:
    PaceWatchTest()
    {
        connect();
        cam_->clockRegister = kxtest::packedCycleTime(1'020'000);
    }
    /// Adds `count` frames whose delay is the expected one plus `extra`.
    void add(unsigned count, std::int64_t extra)
    {
        for (unsigned index = 0; index < count; ++index) {
            arrival_ += static_cast<std::uint64_t>(std::int64_t{period_} + extra);
            cameraUs_ += 100;
            frames_.push_back({arrival_, cameraUs_, false});
        }
    }
    /// A grab at this rate; the frames are then `add`ed.
    void rate(float fps, unsigned period)
    {
        cam_->absValues[FlyCapture2::FRAME_RATE] = fps;
        period_ = period;
    }
    std::vector<std::string> paceLines()
    {
        EXPECT_EQ(grab(frames_), 0);
        return journal().logsWith("TS readjusting");
    }

    static constexpr std::int64_t kFast = -kTenth - 1;
    static constexpr std::int64_t kSlow = kTenth;
    static constexpr std::int64_t kExtraSlow = 3 * kExpected;

private:
    unsigned period_ = kPeriodUs;
    std::uint64_t arrival_ = 50'000;
    std::uint64_t cameraUs_ = 1'000'000;
    std::vector<ScriptedFrame> frames_ = {{50'000, 1'000'000, false}};
};

TEST_F(PaceWatchTest, ReportsTheNinetyFirstFastFrame)
{
    add(91, kFast);
    EXPECT_THAT(paceLines(), ElementsAre(info("Loop_92(92): cam is Fast (26995us < 26996us), TS "
                                              "readjusting...")));
}

TEST_F(PaceWatchTest, BearsNinetyFastFrames)
{
    add(90, kFast);
    EXPECT_THAT(paceLines(), IsEmpty());
}

TEST_F(PaceWatchTest, ReportsTheNinetyFirstSlowFrame)
{
    add(91, kSlow);
    EXPECT_THAT(paceLines(), ElementsAre(info("Loop_92(92): cam is Slow or frames delaying (32994 "
                                              ">= 32994), TS readjusting...")));
}

TEST_F(PaceWatchTest, BearsNinetySlowFrames)
{
    add(90, kSlow);
    EXPECT_THAT(paceLines(), IsEmpty());
}

TEST_F(PaceWatchTest, ReportsTheThirtyFirstVeryLateFrame)
{
    add(31, kExtraSlow);
    EXPECT_THAT(paceLines(),
                ElementsAre(warning("ProcLoop", "Loop_32(32): cam is extra-Slow or frames delay "
                                                "(119980 >= 119980), TS readjusting...")));
}

TEST_F(PaceWatchTest, BearsThirtyVeryLateFrames)
{
    add(30, kExtraSlow);
    EXPECT_THAT(paceLines(), IsEmpty());
}

TEST_F(PaceWatchTest, FindsFramesJustUnderFourDelaysOnlyLate)
{
    add(40, kExtraSlow - 1);
    EXPECT_THAT(paceLines(), IsEmpty());
}

TEST_F(PaceWatchTest, ForgetsAllWithOneFrameInTime)
{
    for (const std::int64_t pace : {kFast, kSlow, kExtraSlow}) {
        add(30, pace);
        add(1, kTenth - 1);
        add(30, pace);
        add(1, -kTenth);
        add(30, pace);
        add(1, 0);
    }
    add(60, kFast);
    add(1, 0);
    add(60, kFast);
    EXPECT_THAT(paceLines(), IsEmpty());
}

TEST_F(PaceWatchTest, KeepsLateFramesInMindOverFastOnes)
{
    add(90, kSlow);
    add(5, kFast);
    add(1, kSlow);
    EXPECT_THAT(paceLines(), ElementsAre(testing::HasSubstr("cam is Slow")));
}

TEST_F(PaceWatchTest, ExpectsTheWholeLatencyAfterAReport)
{
    add(182, kFast);
    // 30,000 us and its tenth from now on.
    EXPECT_THAT(paceLines(), ElementsAre(testing::HasSubstr("(26995us < 26996us)"),
                                         testing::HasSubstr("(26995us < 27000us)")));
}

TEST_F(PaceWatchTest, CountsAnewAfterAReport)
{
    add(181, kFast);
    EXPECT_THAT(paceLines(), SizeIs(1));
}

TEST_F(PaceWatchTest, WaitsThreeSecondsOfTheWholeRate)
{
    rate(1.9F, 526'316);
    add(3, kFast);
    add(1, 0);
    add(4, kFast);
    EXPECT_THAT(paceLines(), ElementsAre(testing::HasSubstr("Loop_9(9): cam is Fast")));
}

TEST_F(PaceWatchTest, JudgesVeryLateFramesByTheNewExpectation)
{
    // Under one frame per second each late frame is reported. With the new expectation of 30,000 us
    // four times the delay is not reached any more.
    rate(0.5F, 2'000'000);
    add(1, kExtraSlow);
    EXPECT_THAT(paceLines(), ElementsAre(testing::HasSubstr("cam is Slow or frames delaying "
                                                            "(119980 >= 32994)")));
}

TEST_F(PaceWatchTest, ReportsSlowAndVeryLateOfOneFrame)
{
    rate(0.5F, 2'000'000);
    add(1, kExtraSlow + 20);
    EXPECT_THAT(paceLines(),
                ElementsAre(info("Loop_2(2): cam is Slow or frames delaying (120000 >= 32994), TS "
                                 "readjusting..."),
                            warning("ProcLoop", "Loop_2(2): cam is extra-Slow or frames delay "
                                                "(120000 >= 120000), TS readjusting...")));
}

TEST_F(PaceWatchTest, ChangesNoTimeStampOfTheHostsClock)
{
    add(95, kFast);
    EXPECT_THAT(paceLines(), SizeIs(1));
    const auto& exports = host().exports;
    for (std::size_t index = 1; index < exports.size(); ++index) {
        ASSERT_EQ(exports[index].timestampUs - exports[index - 1].timestampUs,
                  kPeriodUs - kTenth - 1);
    }
}

TEST_F(PaceWatchTest, MovesTheAnchorOfTheCamerasClock)
{
    // At one frame per second the fourth late frame is reported. The correction of the drift then
    // counts from its arrival, and its start becomes the anchor.
    host().config.tsadjns = 1000;
    cam_->absValues[FlyCapture2::FRAME_RATE] = 1;
    std::vector<ScriptedFrame> frames;
    for (std::uint64_t index = 0; index < 8; ++index) {
        // From the third frame on everything arrives 5 ms late.
        const std::uint64_t late = index >= 2 ? 5'000 : 0;
        frames.push_back({50'000 + index * 1'000'000 + late, 1'000'000 + index * 1'000'000, false});
    }
    ASSERT_EQ(grab(frames), 0);
    EXPECT_THAT(journal().logsWith("TS readjusting"),
                ElementsAre(testing::HasSubstr("Loop_6(6): cam is Slow or frames delaying (34")));
    const std::uint64_t sixthArrival = kStartUs + 50'000 + 5'000'000 + 5'000;
    const std::uint64_t sixthStart = sixthArrival + 5 - 30'000;
    // Seventh: right behind the anchor, (H - arrival) is negative and corrects by less than 1 us.
    EXPECT_EQ(host().exports.at(5).timestampUs, sixthStart + 1'000'000);
    // Eighth: 970,005 us since the reference at 1 us per second.
    EXPECT_EQ(host().exports.at(6).timestampUs, sixthStart + 2'000'000);
}

} // namespace
