// A configuration file that changes while the grab runs.
#include "live_frames.h"
#include "picture_levels.h"
#include "scene_session.h"

#include <gtest/gtest.h>

namespace {

using kxtest::LiveGrab;
using kxtest::SceneSession;
using kxtest::slowCamera;
using Json = nlohmann::json;

const std::string kQuiet = "[acquisition]\ngain = \"0 dB\"\nexposure = \"8 ms\"\n";
const std::string kLoud = "[acquisition]\ngain = \"6 dB\"\nexposure = \"8 ms\"\n";

bool hasGain(const Json& frame, double gain)
{
    return std::abs(frame["gain_db"].get<double>() - gain) < 0.01;
}

class SessionLive : public testing::Test {
protected:
    SessionLive() { session_.configuration = kQuiet; }

    Json waitForGain(LiveGrab& grab, double gain)
    {
        return grab.waitForFrame("frame of " + std::to_string(gain) + " dB",
                                 [gain](const Json& frame) { return hasGain(frame, gain); });
    }

    /// The mean level of a frame some frames behind this one, which have all what it has.
    double levelBehind(LiveGrab& grab)
    {
        grab.waitForMoreFrames(3);
        return kxtest::meanLevel(session_.picture(grab.frames().back()));
    }

    void finish(LiveGrab& grab, std::size_t starts = 0)
    {
        EXPECT_EQ(grab.finish(), 0) << grab.process().standardError();
        EXPECT_EQ(kxtest::expectNothingLost(session_), starts);
    }

    SceneSession session_{kxtest::GreyLight([](unsigned, unsigned) { return 13107; }),
                          slowCamera()};
};

TEST_F(SessionLive, AFileWrittenInPlaceIsTakenOver)
{
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    EXPECT_NEAR(levelBehind(grab), 51, 1);
    grab.writeConfiguration(kLoud);
    grab.waitForMessage("acquisition.gain in force from now on");
    EXPECT_EQ(waitForGain(grab, 6).value("configuration_next", 0), 2) << "on its way";
    EXPECT_NEAR(levelBehind(grab), 51 * 1.995, 2);
    finish(grab);
}

TEST_F(SessionLive, AFileThatAnEditorReplacesIsTakenOverEachTime)
{
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    grab.renameConfiguration(kLoud);
    waitForGain(grab, 6);
    grab.renameConfiguration(kQuiet);
    waitForGain(grab, 0);
    grab.writeConfiguration(kLoud);
    waitForGain(grab, 6);
    finish(grab);
}

TEST_F(SessionLive, AnEditorThatKeepsABackupIsFollowed)
{
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    std::filesystem::rename(session_.configurationFile(), session_.configurationFile() + "~");
    grab.writeConfiguration(kLoud);
    waitForGain(grab, 6);
    finish(grab);
}

TEST_F(SessionLive, WhatIsSetOnTheCommandLineStays)
{
    session_.set("acquisition.exposure=4 ms");
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    grab.writeConfiguration(kLoud);
    const Json frame = waitForGain(grab, 6);
    EXPECT_NEAR(frame["exposure_us"].get<double>(), 4000, 1);
    finish(grab);
}

TEST_F(SessionLive, AChangeThatNeedsAReloadIsHeldUntilThen)
{
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    grab.writeConfiguration(kLoud + "[region]\nwidth = 32\n");
    const std::string held = grab.waitForMessage("nothing of the change is in force");
    EXPECT_NE(held.find("region.width takes a reload (kxhost ctl " +
                        std::to_string(grab.process().pid()) + " reload)"),
              std::string::npos)
        << held;
    grab.waitForMoreFrames(10);
    for (const Json& frame : grab.frames()) {
        ASSERT_TRUE(hasGain(frame, 0)) << frame;
        ASSERT_EQ(frame["width"], 64);
        ASSERT_EQ(frame["configuration"], 1);
    }
    grab.signal(SIGHUP);
    EXPECT_EQ(waitForGain(grab, 6)["width"], 32);
    finish(grab, 1);
}

TEST_F(SessionLive, AHeldChangeThatNeedsNoStartIsTakenBetweenTwoFrames)
{
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    grab.writeConfiguration(kLoud + "frame_rate = \"3 fps\"\n");
    grab.waitForMessage("acquisition.frame_rate takes a reload");
    grab.signal(SIGHUP);
    grab.waitForMessage("the grab goes on with it");
    waitForGain(grab, 6);
    finish(grab);
}

TEST_F(SessionLive, AKeyThatTakesANewStartKeepsItsValue)
{
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    const std::string renamed = kLoud + "[output]\nprefix = \"other_\"\n";
    grab.writeConfiguration(renamed);
    grab.waitForMessage("output.prefix takes a new start of kxhost");
    grab.signal(SIGHUP);
    grab.waitForMessage("output.prefix cannot change in a running grab");
    const Json frame = waitForGain(grab, 6);
    EXPECT_TRUE(frame["pictures"][0]["file"].get<std::string>().starts_with("frame_")) << frame;
    finish(grab);
}

TEST_F(SessionLive, ABrokenFileIsRefusedAndTheCorrectedOneTaken)
{
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    grab.writeConfiguration("[acquisition]\ngain = \"loud\"\n");
    grab.waitForMessage("camera.toml:2:");
    grab.waitForMessage("The configuration is refused; the one in force stays.");
    grab.waitForMoreFrames(5);
    EXPECT_TRUE(hasGain(grab.frames().back(), 0));
    grab.writeConfiguration(kLoud);
    waitForGain(grab, 6);
    finish(grab);
}

TEST_F(SessionLive, ALookUpTableComesAndGoes)
{
    LiveGrab grab(session_);
    waitForGain(grab, 0);
    EXPECT_NEAR(levelBehind(grab), 51, 1);
    grab.writeConfiguration(kQuiet + "[lut]\ncurve = \"invert\"\n");
    grab.waitForMessage("in force from now on");
    grab.waitForMoreFrames(3);
    EXPECT_NEAR(levelBehind(grab), 255 - 51, 1);
    grab.writeConfiguration(kQuiet + "[lut]\nmode = \"manual\"\n");
    grab.waitForMessage("in force from now on");
    grab.waitForMoreFrames(3);
    EXPECT_NEAR(levelBehind(grab), 51, 1);
    finish(grab);
}

TEST_F(SessionLive, AChangedTableFileIsTakenOver)
{
    const auto writeTable = [&](unsigned value) {
        std::string table;
        for (unsigned i = 0; i < 512; ++i) {
            table += std::to_string(value) + "\n";
        }
        kxtest::writeText(session_.folder().file("table.txt"), table);
    };
    writeTable(200);
    session_.configuration = kQuiet + "[lut]\nfile = \"table.txt\"\n";
    LiveGrab grab(session_);
    EXPECT_EQ(levelBehind(grab), 100);
    writeTable(300);
    grab.waitForMessage("in force from now on");
    grab.waitForMoreFrames(3);
    EXPECT_EQ(levelBehind(grab), 150);
    finish(grab);
}

} // namespace
