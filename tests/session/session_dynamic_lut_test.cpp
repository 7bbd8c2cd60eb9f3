// Look-up tables that are calculated from what the camera sees, asked for by signals.
#include "live_frames.h"
#include "picture_levels.h"
#include "scene_session.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using kxtest::LiveGrab;
using kxtest::ReadPicture;
using kxtest::SceneSession;
using kxtest::slowCamera;
using Json = nlohmann::json;

/// Mist: all within a tenth of the range, and every level of twelve bits in there occurs.
std::uint16_t mist(unsigned x, unsigned y)
{
    return static_cast<std::uint16_t>(26000 + (y * kxtest::kSceneWidth + x) * 6553 /
                                                  (kxtest::kSceneWidth * kxtest::kSceneHeight));
}
const kxtest::GreyLight kMist = mist;

/// N of "Grabbed N images, ...". Frames are counted from 0.
unsigned imagesOf(const std::string& line)
{
    return static_cast<unsigned>(std::stoul(line.substr(line.find("Grabbed ") + 8)));
}

class SessionDynamicLut : public testing::Test {
protected:
    SessionDynamicLut() { session_.set("log.level=info"); }

    /// A picture some frames behind what was waited for.
    ReadPicture pictureBehind(LiveGrab& grab)
    {
        grab.waitForMoreFrames(4);
        return session_.picture(grab.frames().back());
    }

    SceneSession session_{kMist, slowCamera()};
};

/// Equal levels stay equal and brighter ones are not darker: a table was in between, nothing else.
void expectThroughATable(const ReadPicture& before, const ReadPicture& after)
{
    std::map<unsigned, unsigned> table;
    for (std::size_t i = 0; i < before.samples.size(); ++i) {
        // Two of the nine bits' levels share one of the eight bits'.
        const auto [entry, isNew] = table.emplace(before.samples[i], after.samples[i]);
        ASSERT_LE(std::abs(static_cast<int>(entry->second) - after.samples[i]), 16);
        entry->second = std::max<unsigned>(entry->second, after.samples[i]);
    }
    unsigned last = 0;
    for (const auto& [from, to] : table) {
        EXPECT_GE(to, last) << from;
        last = to;
    }
}

TEST_F(SessionDynamicLut, SpreadsTheLevelsOfALowContrastScene)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    const ReadPicture before = pictureBehind(grab);
    EXPECT_NEAR(kxtest::spreadOfLevels(before), 24, 3);
    grab.signal(SIGUSR1);
    const unsigned grabbed = imagesOf(grab.waitForLog("images, processing SIGUSR1..."));
    grab.waitForLog("triggered dynamic LUT calc/apply right now");
    grab.waitForLog("a new LUT was dynamically calculated...");
    grab.waitForLog("LUT handler exit");
    grab.waitForLog("continue operation with new LUT (dynamically calculated)...");
    const ReadPicture after = pictureBehind(grab);
    EXPECT_GT(kxtest::spreadOfLevels(after), 2 * kxtest::spreadOfLevels(before));
    expectThroughATable(before, after);
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(kxtest::expectNothingLost(session_), 0U);
    for (const Json& frame : session_.frames()) {
        // The table was made of the frame at hand, which is the last one without it.
        const bool isNew = frame["frame_counter"].get<unsigned>() >= grabbed;
        ASSERT_EQ(session_.picture(frame).samples, isNew ? after.samples : before.samples)
            << "frame counter " << frame["frame_counter"] << ", " << grabbed << " grabbed";
    }
}

TEST_F(SessionDynamicLut, ASecondPassLooksAtClearFramesAndWorksLikeTheFirst)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    grab.signal(SIGUSR1);
    grab.waitForLog("continue operation with new LUT");
    const ReadPicture first = pictureBehind(grab);
    grab.signal(SIGUSR1);
    grab.waitForLog("LUT is turned off temporary for new 'clear' frames capture");
    grab.waitForLog("LUT handler exit");
    grab.waitForLog("continue operation with new LUT");
    EXPECT_EQ(pictureBehind(grab).samples, first.samples);
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(kxtest::expectNothingLost(session_), 0U);
    const ReadPicture clear = session_.picture(session_.frames().front());
    std::size_t changes = 0; // from one table to another, or to none
    for (const ReadPicture* before = &clear; const Json& frame : session_.frames()) {
        const ReadPicture picture = session_.picture(frame);
        const bool isClear = picture.samples == clear.samples;
        ASSERT_TRUE(isClear || picture.samples == first.samples) << "torn: " << frame;
        changes += isClear == (before == &clear) ? 0 : 1;
        before = isClear ? &clear : &first;
    }
    EXPECT_EQ(changes, 3U); // on, off for the second look, on
}

TEST_F(SessionDynamicLut, ATwelveBitPassGoesThroughTwelveBitsAndReturns)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    const ReadPicture before = pictureBehind(grab);
    EXPECT_EQ(grab.frames().back()["codec"], "MONO8T");
    grab.signal(SIGUSR2);
    grab.waitForLog("...Switching to 12-bit mode for dynamic LUT calculation/applying...");
    // The whole pass looks at one frame of 12 bits, which starts its loop and is not exported.
    grab.waitForLog("PixelFormat         : 0x00100000");
    grab.waitForLog("allocated CDF array for 12 bits pixel");
    grab.waitForLog("allocated LUT array for 12 bits pixel");
    grab.waitForLog("...Switching back to 8-bit mode...");
    grab.waitForLog("PixelFormat         : 0x80000000");
    grab.waitForLog("continue operation with new LUT (dynamically calculated)...");
    const ReadPicture after = pictureBehind(grab);
    EXPECT_GT(kxtest::spreadOfLevels(after), 2 * kxtest::spreadOfLevels(before));
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(kxtest::expectNothingLost(session_), 1U); // no frame of the 12-bit loop in between
    for (const Json& frame : session_.frames()) {
        ASSERT_EQ(frame["codec"], "MONO8T");
        ASSERT_EQ(session_.picture(frame).bitDepth, 8U);
    }
    EXPECT_EQ(session_.summary()["timing_only"], 3); // one for each loop: 8, 12 and 8 bits
}

TEST_F(SessionDynamicLut, BothPassesFollowOneAnother)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    const unsigned before = kxtest::spreadOfLevels(pictureBehind(grab));
    for (const int number : {SIGUSR2, SIGUSR1, SIGUSR2, SIGUSR1}) {
        grab.signal(number);
        grab.waitForLog("continue operation with new LUT");
        EXPECT_GT(kxtest::spreadOfLevels(pictureBehind(grab)), 2 * before);
    }
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(kxtest::expectNothingLost(session_), 2U);
}

class SessionWithoutLut : public testing::TestWithParam<int> {
protected:
    SessionWithoutLut() { session_.set("log.level=info"); }
    SceneSession session_{kMist, slowCamera("lut.supported = false")};
};

TEST_P(SessionWithoutLut, GrabsOnAndCanBeEndedAfterAPassThatNeverComes)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    grab.signal(GetParam());
    grab.waitForLog(GetParam() == SIGUSR1 ? "processing SIGUSR1..." : "Switching to 12-bit mode");
    const std::string codec = GetParam() == SIGUSR1 ? "MONO8T" : "MONO12PT";
    grab.waitForMoreFrames(5);
    const Json frame = grab.waitForFrame(codec + " frame",
                                         [&](const Json& each) { return each["codec"] == codec; });
    EXPECT_EQ(session_.picture(frame).bitDepth, GetParam() == SIGUSR1 ? 8U : 16U);
    EXPECT_EQ(grab.finish(), 0) << grab.process().standardError();
    kxtest::expectNothingLost(session_);
}

INSTANTIATE_TEST_SUITE_P(Signals, SessionWithoutLut, testing::Values(SIGUSR1, SIGUSR2),
                         [](const auto& each) {
                             return std::string(each.param == SIGUSR1 ? "Usr1" : "Usr2");
                         });

} // namespace
