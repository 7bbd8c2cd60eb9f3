// A reload that a signal asks for: with a new size, a new format, an error.
#include "live_frames.h"
#include "scene_session.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using kxtest::LiveGrab;
using kxtest::SceneSession;
using kxtest::slowCamera;
using Json = nlohmann::json;

const std::string kWide = "[region]\nwidth = 64\nheight = 48\n";
const std::string kSmall = "[region]\nwidth = 32\nheight = 24\n";
constexpr const char* kStartsAgain = "the grab ends and starts again with it";

class SessionReload : public testing::Test {
protected:
    SessionReload() { session_.configuration = kWide; }

    std::size_t count(const std::string& text, const std::string& part)
    {
        std::size_t times = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1)) {
            ++times;
        }
        return times;
    }

    SceneSession session_{kxtest::GreyLight([](unsigned x, unsigned) { return 500 * x; }),
                          slowCamera()};
};

TEST_F(SessionReload, ANewSizeStartsTheGrabAgainAndTheNumbersGoOn)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(5);
    grab.writeConfiguration(kSmall);
    grab.signal(SIGHUP);
    grab.waitForMessage(kStartsAgain);
    grab.waitForFrame("small frame", [](const Json& frame) { return frame["width"] == 32; });
    grab.waitForMoreFrames(5);
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(kxtest::expectNothingLost(session_), 1U);
    EXPECT_EQ(count(grab.process().standardError(), kStartsAgain), 1U)
        << grab.process().standardError();

    const auto frames = session_.frames();
    const auto firstSmall = std::find_if(frames.begin(), frames.end(),
                                         [](const Json& frame) { return frame["width"] == 32; });
    EXPECT_EQ((*firstSmall)["frame_counter"], 1);
    for (auto frame = frames.begin(); frame != frames.end(); ++frame) {
        const bool isSmall = frame >= firstSmall;
        ASSERT_EQ((*frame)["width"], isSmall ? 32 : 64);
        ASSERT_EQ((*frame)["height"], isSmall ? 24 : 48);
        const kxtest::ReadPicture picture = session_.picture(*frame);
        ASSERT_EQ(picture.width, isSmall ? 32U : 64U);
        ASSERT_EQ(picture.height, isSmall ? 24U : 48U);
    }
}

TEST_F(SessionReload, ANewFormatComesWithItsPictures)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(5);
    grab.writeConfiguration(kWide + "[format]\npixel_format = \"mono12\"\n");
    grab.signal(SIGHUP);
    const Json frame = grab.waitForFrame(
        "12-bit frame", [](const Json& each) { return each["codec"] == "MONO12T"; });
    EXPECT_EQ(session_.picture(frame).bitDepth, 16U);
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(kxtest::expectNothingLost(session_), 1U);
    EXPECT_EQ(session_.picture(session_.frames().front()).bitDepth, 8U);
}

TEST_F(SessionReload, ABrokenFileIsRefusedWithItsLineAndTheGrabGoesOn)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(5);
    const std::string good = kWide + "[acquisition]\n";
    grab.writeConfiguration(good + "gain = \"12 dB\"\nexposure = \"-3 ms\"\n");
    grab.signal(SIGHUP);
    grab.waitForMessage("camera.toml:6:");
    grab.waitForMessage("The configuration is refused; the one in force stays.");
    grab.waitForMoreFrames(10);
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(kxtest::expectNothingLost(session_), 0U);
    for (const Json& frame : session_.frames()) {
        ASSERT_NEAR(frame["gain_db"].get<double>(), 0, 0.01);
        ASSERT_EQ(frame["width"], 64);
    }
}

TEST_F(SessionReload, ACameraThatRefusesItGetsTheOneBefore)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(5);
    // A camera without colours has no mosaic.
    grab.writeConfiguration(kSmall + "[format]\npixel_format = \"bayer8\"\n");
    grab.signal(SIGHUP);
    grab.waitForMessage("The camera refused the new configuration");
    const Json frame = grab.waitForFrame(
        "frame behind it", [](const Json& each) { return each["configuration"] == 3; });
    EXPECT_EQ(frame["width"], 64);
    EXPECT_EQ(frame["codec"], "MONO8T");
    EXPECT_EQ(grab.finish(), 0);
}

TEST_F(SessionReload, AnUnchangedFileChangesNothing)
{
    session_.set("log.level=info");
    LiveGrab grab(session_);
    grab.waitForMoreFrames(5);
    grab.signal(SIGHUP);
    grab.waitForMessage("(nothing has changed)");
    grab.waitForLog("continue grabbing with new configuration...");
    grab.waitForMoreFrames(5);
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(kxtest::expectNothingLost(session_), 0U);
}

TEST_F(SessionReload, TheEndMayBeAskedForTogetherWithAReload)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(5);
    grab.writeConfiguration(kSmall);
    grab.signal(SIGHUP);
    EXPECT_EQ(grab.finish(SIGTERM), 0) << grab.process().standardError();
    EXPECT_LE(kxtest::expectNothingLost(session_), 1U);
}

} // namespace
