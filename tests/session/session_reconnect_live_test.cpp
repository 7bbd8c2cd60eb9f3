// What is asked of a grab around a loss of its camera: signals, reloads, live changes, tables.
#include "live_grab.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

using kxtest::busWith;
using kxtest::GrabSession;
using kxtest::LiveGrab;
using kxtest::TestSensor;

using Json = LiveGrab::Json;

/// Slow enough that an endless grab writes hundreds of pictures, not thousands.
constexpr const char* kSlow = "register_time_us = 500\n";

std::string busWithDetach(const std::string& more)
{
    return busWith(TestSensor(), std::string(kSlow) +
                                     "[[camera.fault]]\nkind = \"detach\"\n"
                                     "frame = 20\ncount = 1000\n" +
                                     more);
}

/// A call of which one takes the camera off the bus, for a moment or for good.
std::string busWithLossAt(const std::string& call, const std::string& back = "back_after = 0.2\n")
{
    return busWith(TestSensor(), std::string(kSlow) + "[[camera.call_fault]]\noperation = " + call +
                                     "\ndetach = true\n" + back);
}

LiveGrab::Wanted hasGain(double gainDb)
{
    return [gainDb](const Json& frame) {
        return std::abs(frame["gain_db"].get<double>() - gainDb) < 0.1;
    };
}

class FinishWhileAway : public testing::TestWithParam<int> {};

TEST_P(FinishWhileAway, EndsAtOnce)
{
    GrabSession session;
    session.bus = busWithDetach("");
    LiveGrab grab(session);
    grab.waitForMessage(" is lost: ");
    EXPECT_EQ(grab.finish(GetParam()), 0) << grab.process().standardError();
    EXPECT_EQ(session.summary()["reason"],
              "Finished as asked by a signal, while the camera was away.");
    EXPECT_EQ(session.frames().size(), 19U);
    kxtest::expectBalance(session);
}

INSTANTIATE_TEST_SUITE_P(SessionReconnectLive, FinishWhileAway, testing::Values(SIGINT, SIGTERM),
                         [](const auto& each) {
                             return std::string(each.param == SIGINT ? "Interrupt" : "Terminate");
                         });

TEST(SessionReconnectLive, AReloadWhileItIsAwayIsInForceWhenItIsBack)
{
    GrabSession session;
    session.bus = busWithDetach("back_after = 1.5\n");
    session.configuration = "[acquisition]\ngain = \"5 dB\"\n[region]\nwidth = 64\n";
    session.set("grab.watch=false");
    LiveGrab grab(session);
    grab.waitForMessage(" is lost: ");
    grab.writeConfiguration("[acquisition]\ngain = \"8 dB\"\n[region]\nwidth = 32\n");
    grab.signal(SIGHUP);
    grab.waitForMessage("acquisition.gain): the grab starts with it.");
    grab.waitForMessage(" is back after ");
    const Json frame = grab.waitForFrame("one with the new gain", hasGain(8));
    EXPECT_EQ(frame["number"], 20);
    EXPECT_EQ(frame["width"], 32);
    EXPECT_EQ(grab.finish(), 0);
}

TEST(SessionReconnectLive, ATableAskedForWhileItIsAwayIsComputedWhenItIsBack)
{
    GrabSession session;
    session.bus = busWithDetach("back_after = 1.5\n");
    session.set("log.level=info");
    LiveGrab grab(session);
    grab.waitForMessage(" is lost: ");
    grab.signal(SIGUSR1);
    grab.waitForMessage(" is back after ");
    grab.waitForLog("a new LUT was dynamically calculated");
    EXPECT_EQ(grab.finish(), 0);
}

TEST(SessionReconnectLive, AComputedTableIsComputedAgain)
{
    GrabSession session;
    session.bus = busWithLossAt("\"SetProperty\"\narguments = \"GAIN abs=7\"");
    session.configuration = "[acquisition]\ngain = \"5 dB\"\n";
    session.set("log.level=info");
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    grab.signal(SIGUSR1);
    grab.waitForLog("continue operation with new LUT (dynamically calculated)");
    grab.writeConfiguration("[acquisition]\ngain = \"7 dB\"\n");
    grab.waitForMessage(" is back after ");
    grab.waitForLog("continue operation with new LUT (dynamically calculated)");
    EXPECT_EQ(grab.finish(), 0);
}

TEST(SessionReconnectLive, ALiveChangeThatLosesTheCameraIsInForceWhenItIsBack)
{
    GrabSession session;
    session.bus = busWithLossAt("\"SetProperty\"\narguments = \"GAIN abs=7\"");
    session.configuration = "[acquisition]\ngain = \"5 dB\"\n";
    LiveGrab grab(session);
    grab.waitForFrame("one with the first gain", hasGain(5));
    grab.writeConfiguration("[acquisition]\ngain = \"7 dB\"\n");
    grab.waitForMessage(" in force from now on.");
    grab.waitForMessage(" is lost: it does not answer any more.");
    grab.waitForMessage(" is back after ");
    grab.waitForFrame("one with the new gain", hasGain(7));
    EXPECT_EQ(grab.finish(), 0);
    kxtest::expectBalance(session);
}

TEST(SessionReconnectLive, AReloadThatLosesTheCameraIsNotTakenForRefused)
{
    GrabSession session;
    // It is still away at the next look, also of a machine that is busy.
    session.bus = busWithLossAt("\"SetFormat7Configuration\"\nskip = 1", "back_after = 1.5\n");
    session.configuration = "[region]\nwidth = 64\n";
    session.set("grab.watch=false");
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    grab.writeConfiguration("[region]\nwidth = 32\n");
    grab.signal(SIGHUP);
    grab.waitForMessage("region.width): the grab ends and starts again with it.");
    grab.waitForMessage(" is lost: it is not on the bus.");
    grab.waitForMessage(" is back after ");
    grab.waitForFrame("one of the new width",
                      [](const Json& frame) { return frame["width"] == 32; });
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(grab.process().standardError().find("refused"), std::string::npos)
        << grab.process().standardError();
}

/// Between the two captures, when nothing fails that the camera would have to answer.
TEST(SessionReconnectLive, ACameraThatIsGoneAtAReloadEndsAGrabThatDoesNotWait)
{
    GrabSession session;
    session.bus = busWithLossAt("\"Disconnect\"", "");
    session.configuration = "[region]\nwidth = 64\n";
    session.settings = {"grab.watch=false", "camera.reconnect=no", "camera.serial=424242"};
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    grab.writeConfiguration("[region]\nwidth = 32\n");
    grab.signal(SIGHUP);
    grab.waitForMessage("kxhost: The camera was lost: it is not on the bus.");
    constexpr int kCamera = 5;
    EXPECT_EQ(grab.process().wait(), kCamera);
    kxtest::expectBalance(session);
}

/// A grab of the width 64 is to go on with 32, for which the library throws `times` times; 0 =
/// always.
std::string busThatThrowsAtSecondSetUp(unsigned times)
{
    return busWith(TestSensor(), std::string(kSlow) +
                                     "[[camera.call_fault]]\noperation = "
                                     "\"SetFormat7Configuration\"\nskip = 1\nthrows = "
                                     "\"confused\"\ncount = " +
                                     std::to_string(times) + "\n");
}

TEST(SessionReconnectLive, AReloadAtWhichTheLibraryThrowsIsTriedAgain)
{
    GrabSession session;
    session.bus = busThatThrowsAtSecondSetUp(1);
    session.configuration = "[region]\nwidth = 64\n";
    session.set("grab.watch=false");
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    grab.writeConfiguration("[region]\nwidth = 32\n");
    grab.signal(SIGHUP);
    grab.waitForFrame("one of the new width",
                      [](const Json& frame) { return frame["width"] == 32; });
    EXPECT_EQ(grab.finish(), 0) << grab.process().standardError();
    kxtest::expectBalance(session);
}

TEST(SessionReconnectLive, AReloadAtWhichTheLibraryThrowsEndsAGrabThatDoesNotWait)
{
    GrabSession session;
    session.bus = busThatThrowsAtSecondSetUp(0);
    session.configuration = "[region]\nwidth = 64\n";
    session.settings = {"grab.watch=false", "camera.reconnect=no"};
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    grab.writeConfiguration("[region]\nwidth = 32\n");
    grab.signal(SIGHUP);
    grab.waitForMessage("The camera refused the new configuration: the grab goes on with the one "
                        "before.");
    grab.waitForMessage("kxhost: The camera was lost: the camera library gave it up: confused.");
    constexpr int kCamera = 5;
    EXPECT_EQ(grab.process().wait(), kCamera);
    kxtest::expectBalance(session);
}

TEST(SessionReconnectLive, APassOfTwelveBitsThatLosesTheCameraIsMadeAgain)
{
    GrabSession session;
    session.bus = busWithLossAt("\"SetFormat7Configuration\"\nskip = 1");
    session.set("log.level=info");
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    grab.signal(SIGUSR2);
    grab.waitForLog("Switching to 12-bit mode");
    grab.waitForMessage(" is lost: ");
    grab.waitForMessage(" is back after ");
    grab.waitForLog("Switching to 12-bit mode");
    grab.waitForLog("continue operation with new LUT (dynamically calculated)");
    grab.waitForMoreFrames(3);
    EXPECT_EQ(grab.frames().back()["codec"], "MONO8T");
    EXPECT_EQ(grab.finish(), 0);
}

} // namespace
