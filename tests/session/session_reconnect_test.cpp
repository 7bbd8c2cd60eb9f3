// A camera that is unplugged while kxhost grabs: it goes on by itself, or ends as documented.
#include "grab_session.h"

#include <gtest/gtest.h>

namespace {

using kxtest::busWith;
using kxtest::expectBalance;
using kxtest::Finished;
using kxtest::GrabSession;
using kxtest::TestSensor;

constexpr int kFine = 0;
constexpr int kCamera = 5;

/// The camera leaves the bus with one of the frames from 20 on, once, and comes back.
constexpr const char* kUnplugged =
    "[[camera.fault]]\nkind = \"detach\"\nframe = 20\ncount = 1000\nback_after = 0.3\n";
constexpr const char* kUnpluggedForGood =
    "[[camera.fault]]\nkind = \"detach\"\nframe = 20\ncount = 1000\n";

std::size_t countOf(const std::string& part, const std::string& text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

/// Every frame has its number, and was taken with the configured gain.
void expectFrames(const GrabSession& session, std::size_t count, double gainDb)
{
    const auto frames = session.frames();
    ASSERT_EQ(frames.size(), count);
    for (std::size_t index = 0; index < count; ++index) {
        EXPECT_EQ(frames[index]["number"], index + 1);
        EXPECT_NEAR(frames[index]["gain_db"].get<double>(), gainDb, 0.1) << index;
    }
}

/// One frame tells that it lies behind a gap, of no less than the half second between two looks.
void expectOneGap(const GrabSession& session)
{
    std::size_t gaps = 0;
    for (const auto& frame : session.frames()) {
        if (frame.contains("camera_away_s")) {
            ++gaps;
            EXPECT_EQ(frame["number"], 20);
            EXPECT_GE(frame["camera_away_s"].get<double>(), 0.5);
        }
    }
    EXPECT_EQ(gaps, 1U);
}

/// One way in which a camera goes and comes back.
struct Way {
    std::string name;
    std::string description; ///< of the camera
    std::string sign;        ///< how the loss shows
};

class Unplugged : public testing::TestWithParam<Way> {};

TEST_P(Unplugged, GoesOnWithTheWholeConfiguration)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), GetParam().description);
    session.settings = {"grab.frames=60", "acquisition.gain=9 dB", "region.width=32"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kFine) << finished.err;
    EXPECT_EQ(countOf(" Camera 424242 is lost: " + GetParam().sign, finished.err), 1U)
        << finished.err;
    EXPECT_EQ(countOf(" is lost: ", finished.err), 1U) << finished.err;
    EXPECT_EQ(countOf(" Camera 424242 is back after ", finished.err), 1U) << finished.err;
    expectFrames(session, 60, 9);
    EXPECT_EQ(session.frames().at(59)["width"], 32);
    expectOneGap(session);
    EXPECT_EQ(session.summary()["timing_only"], 2);
    expectBalance(session);
}

/// A call of the set-up behind the return fails, and with `more` the camera goes again.
std::string failsBehindReturn(const std::string& call, const std::string& more)
{
    return kUnplugged + ("[[camera.call_fault]]\noperation = " + call + "\n" + more);
}

INSTANTIATE_TEST_SUITE_P(
    SessionReconnect, Unplugged,
    testing::Values(
        Way{"WithAnError", kUnplugged, "it does not answer any more."},
        Way{"WithAnException", std::string("detach_throws = \"gone\"\n") + kUnplugged,
            "the camera library gave it up."},
        Way{"AndAgainWhileItIsSetUp",
            failsBehindReturn("\"SetFormat7Configuration\"",
                              "skip = 1\ndetach = true\nback_after = 0.2\n"),
            "it does not answer any more."},
        Way{"AndAgainWhileGainIsSet",
            failsBehindReturn("\"SetProperty\"\narguments = \"GAIN\"",
                              "skip = 2\ndetach = true\nback_after = 0.2\n"),
            "it does not answer any more."},
        Way{"AndWithoutPowerAtFirst",
            failsBehindReturn("\"WriteRegister\"\narguments = \"0x610\"", "skip = 1\ncount = 2\n"),
            "it does not answer any more."},
        Way{"AndRefusesBuffersAtFirst",
            failsBehindReturn("\"SetUserBuffers\"", "skip = 1\ncount = 2\n"),
            "it does not answer any more."},
        Way{"AndTheLibraryThrowsWhileItIsSetUp",
            failsBehindReturn("\"SetFormat7Configuration\"", "skip = 1\nthrows = \"gone\"\n"),
            "it does not answer any more."},
        Way{"AndDoesNotStartAtFirst", failsBehindReturn("\"StartCapture\"", "skip = 1\n"),
            "it does not answer any more."}),
    [](const auto& each) { return each.param.name; });

TEST(SessionReconnect, SurvivesACameraThatComesAndGoes)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), std::string(kUnplugged) + "times = 5\n");
    session.set("grab.frames=150");
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kFine) << finished.err;
    EXPECT_EQ(countOf(" is lost: ", finished.err), 5U) << finished.err;
    EXPECT_EQ(countOf(" is back after ", finished.err), 5U) << finished.err;
    expectFrames(session, 150, 3);
    expectBalance(session);
}

TEST(SessionReconnect, GivesUpWhenTheTimeIsOver)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), kUnpluggedForGood);
    session.set("grab.frames=100");
    session.arguments = {"--reconnect", "0.7"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kCamera) << finished.err;
    EXPECT_NE(
        finished.err.find("kxhost: Camera 424242 was lost and did not come back within 0.7 s.\n"),
        std::string::npos)
        << finished.err;
    EXPECT_GE(session.summary()["passes"], 2); // a third one unless the machine is busy
    EXPECT_EQ(session.summary()["exit_code"], kCamera);
    expectFrames(session, 19, 3);
    expectBalance(session);
}

TEST(SessionReconnect, DoesNotWaitForACameraThatNeverDelivered)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), "detach_throws = \"gone\"\n[[camera.fault]]\n"
                                        "kind = \"detach\"\nframe = 0\nback_after = 0.1\n");
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kCamera) << finished.err;
    EXPECT_EQ(session.summary()["passes"], 1);
}

/// The camera answers each configuration behind its return so; the grab is to end for that.
void expectGivesUpOn(const std::string& answer)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), failsBehindReturn("\"SetFormat7Configuration\"",
                                                          "skip = 1\ncount = 0\n" + answer));
    session.set("grab.frames=100");
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kCamera) << finished.err;
    EXPECT_NE(
        finished.err.find("kxhost: Camera 424242 came back, but refused its configuration.\n"),
        std::string::npos)
        << finished.err;
    expectFrames(session, 19, 3);
    expectBalance(session);
}

TEST(SessionReconnect, GivesUpWhenTheConfigurationIsRefused)
{
    expectGivesUpOn("");
}

TEST(SessionReconnect, GivesUpWhenTheLibraryThrowsEachTimeItIsSetUp)
{
    expectGivesUpOn("throws = \"confused\"\n");
}

/// The library throws in the last call that a session makes of the camera.
constexpr const char* kThrowsAtTheEnd = "[[camera.call_fault]]\noperation = \"Disconnect\"\n"
                                        "skip = 1\nthrows = \"gone\"\n";

TEST(SessionReconnect, ALibraryThatThrowsWhenAllFramesAreThereIsNoLoss)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), kThrowsAtTheEnd);
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kFine) << finished.err;
    EXPECT_EQ(finished.err, "");
    expectFrames(session, 5, 3);
    EXPECT_EQ(session.summary()["passes"], 1);
}

TEST(SessionReconnect, GivesUpWhenFramesAreOthersThanBefore)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), std::string(kUnplugged) + "back_max_size = [32, 16]\n");
    session.settings = {"grab.frames=100", "region.width=48", "region.height=32"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kCamera) << finished.err;
    EXPECT_NE(finished.err.find("kxhost: Camera 424242 came back with frames of 32 x 16 MONO8T "
                                "instead of 48 x 32 MONO8T.\n"),
              std::string::npos)
        << finished.err;
    expectFrames(session, 19, 3);
    expectBalance(session);
}

/// Behind the frame that does not fit on the disk nothing is handed over any more.
TEST(SessionReconnect, AFullDiskEndsAGrabWhoseCameraIsAway)
{
    GrabSession session;
    session.bus =
        busWith(TestSensor(), "[[camera.fault]]\nkind = \"detach\"\nframe = 2\ncount = 1000\n");
    session.settings = {"grab.frames=100", "output.format=raw"};
    session.filesMayGrowTo = 2000; // a picture has 3072 bytes
    const Finished finished = session.run();
    constexpr int kExport = 6;
    EXPECT_EQ(finished.code, kExport) << finished.err;
    // On a busy machine the grab ends before three retrievals have failed.
    EXPECT_LE(countOf(" is lost: ", finished.err), 1U) << finished.err;
    EXPECT_EQ(countOf("File too large", finished.err), 1U) << finished.err;
    EXPECT_TRUE(session.frames().empty());
}

/// Choices of a camera that both on the bus fit.
class OtherCamera : public testing::TestWithParam<std::string> {};

TEST_P(OtherCamera, IsNotTakenInItsPlace)
{
    GrabSession session;
    const std::string one = busWith(TestSensor(), kUnplugged);
    std::string other = busWith(TestSensor());
    other.replace(other.find("424242"), 6, "424243");
    session.bus = one + other;
    session.settings = {"grab.frames=40", "log.level=info", GetParam()};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kFine) << finished.err;
    EXPECT_EQ(countOf("Using device Model:Tester TST-1 Serial:424242\n", finished.out), 2U);
    EXPECT_EQ(countOf("Using device Model:", finished.out), 2U);
    EXPECT_EQ(countOf(" is back after ", finished.err), 1U) << finished.err;
    expectFrames(session, 40, 3);
}

INSTANTIATE_TEST_SUITE_P(SessionReconnect, OtherCamera,
                         testing::Values("camera.model=Tester", "camera.bus_mask=3",
                                         "camera.serial=0x67932"));

/// Two cameras that do not tell at first who they are. The first one is unplugged for good.
TEST(SessionReconnect, NoCameraIsTakenBeforeItIsKnownWhichOneItIs)
{
    const std::string silent = "[[camera.call_fault]]\noperation = \"GetCameraInfo\"\n";
    GrabSession session;
    std::string other = busWith(TestSensor(), silent);
    other.replace(other.find("424242"), 6, "424243");
    session.bus = busWith(TestSensor(), silent + kUnpluggedForGood) + other;
    session.settings = {"grab.frames=40", "log.level=info", "camera.model=Tester"};
    session.arguments = {"--reconnect", "0.7"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kCamera) << finished.err;
    EXPECT_EQ(countOf("Camera 424242 was lost and did not come back", finished.err), 1U)
        << finished.err;
    EXPECT_EQ(countOf("Using device Model:Tester TST-1 Serial:424242\n", finished.out), 1U);
    EXPECT_EQ(countOf("Using device Model:", finished.out), 1U);
    expectFrames(session, 19, 3);
}

/// A camera that does not answer once, in a grab that gives it no time.
TEST(SessionReconnect, WithoutTimeToWaitACameraIsAskedTwice)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), "[[camera.call_fault]]\noperation = \"GetCameraInfo\"\n");
    session.arguments = {"--wait", "0"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kFine) << finished.err;
    expectFrames(session, 5, 3);
}

TEST(SessionReconnect, ACameraThatFallsSilentIsSetUpAgain)
{
    GrabSession session;
    // In each capture nothing comes from frame 20 on; the plug-in looks every 2 s.
    session.bus = busWith(TestSensor(), "[[camera.fault]]\nkind = \"stall\"\nframe = 20\n");
    // It is looked for, though the silence was longer than the time to wait.
    session.settings = {"grab.frames=30", "camera.silence=1 s", "camera.reconnect=0.5 s"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kFine) << finished.err;
    EXPECT_EQ(countOf(" is lost: it has delivered no frame for ", finished.err), 1U)
        << finished.err;
    expectFrames(session, 30, 3);
    expectBalance(session);
}

TEST(SessionReconnect, ACameraThatFallsSilentEndsAGrabThatDoesNotWait)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), "[[camera.fault]]\nkind = \"stall\"\nframe = 20\n");
    session.settings = {"grab.frames=30", "camera.silence=1 s", "camera.reconnect=no"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kCamera) << finished.err;
    EXPECT_TRUE(finished.err.starts_with("kxhost: The camera was lost: it has delivered no frame"))
        << finished.err;
    expectFrames(session, 19, 3);
}

} // namespace
