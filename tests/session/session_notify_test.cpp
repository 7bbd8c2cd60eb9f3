// What a service manager hears of kxhost grab.
#include "live_grab.h"
#include "notify_listener.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <sys/stat.h>

namespace {

using kxtest::Finished;
using kxtest::GrabSession;
using kxtest::LiveGrab;
using kxtest::NotifyListener;

/// A grab with a service manager.
class SessionNotify : public testing::Test {
protected:
    SessionNotify() { session_.environment = {"NOTIFY_SOCKET=" + manager_.address()}; }

    static std::string pacedBus()
    {
        kxtest::TestSensor sensor;
        sensor.paced = true;
        sensor.frameRate = 50;
        return kxtest::busWith(sensor);
    }
    /// What came, without status lines.
    std::vector<std::string> states()
    {
        std::vector<std::string> states = manager_.received();
        std::erase_if(states, [](const std::string& each) { return each.starts_with("STATUS="); });
        return states;
    }

    NotifyListener manager_;
    GrabSession session_;
};

TEST_F(SessionNotify, AShortGrabIsReadyAndThenStops)
{
    EXPECT_EQ(session_.run().code, 0);
    EXPECT_EQ(states(), (std::vector<std::string>{"READY=1", "STOPPING=1"}));
    EXPECT_EQ(manager_.received().back(), "STATUS=Finished.");
}

TEST_F(SessionNotify, AGrabIsReadyReloadsAndStops)
{
    session_.bus = pacedBus();
    LiveGrab grab(session_);
    manager_.waitFor("READY=1");
    grab.waitForMoreFrames(1);
    const std::string status = manager_.waitFor("STATUS=");
    EXPECT_NE(status.find(" frames  "), std::string::npos) << status;
    EXPECT_NE(status.find(" fps  "), std::string::npos) << status;
    EXPECT_NE(status.find(" lost  "), std::string::npos) << status;
    grab.signal(SIGHUP);
    const std::string reloading = manager_.waitFor("RELOADING=1");
    EXPECT_TRUE(reloading.starts_with("RELOADING=1\nMONOTONIC_USEC=")) << reloading;
    manager_.waitFor("READY=1");
    grab.signal(SIGTERM);
    manager_.waitFor("STOPPING=1");
    EXPECT_EQ(grab.process().wait(), 0);
    manager_.waitFor("STATUS=Finished as asked by a signal.");
    EXPECT_EQ(manager_.count("READY=1"), 2);
    EXPECT_EQ(manager_.count("STOPPING=1"), 1);
}

TEST_F(SessionNotify, WithoutACameraItIsNeverReady)
{
    session_.bus = "";
    session_.arguments = {"--wait", "0"};
    EXPECT_EQ(session_.run().code, 4);
    EXPECT_EQ(states(), std::vector<std::string>{"STOPPING=1"});
    EXPECT_EQ(manager_.received().back(), "STATUS=There is no camera on the buses.");
}

TEST_F(SessionNotify, AGrabThatCannotBeginSaysWhy)
{
    session_.set("region.width=none");
    EXPECT_EQ(session_.run().code, 3);
    EXPECT_EQ(manager_.received(),
              std::vector<std::string>{"STOPPING=1\nSTATUS=The configuration was refused."});
}

TEST_F(SessionNotify, WaitingForACameraIsASignOfLife)
{
    session_.bus = "";
    session_.environment.emplace_back("WATCHDOG_USEC=400000");
    session_.endsWithTest = true;
    const auto grab = session_.start();
    for (int i = 0; i < 3; ++i) {
        manager_.waitFor("WATCHDOG=1");
    }
    EXPECT_EQ(manager_.count("READY=1"), 0);
    grab->signal(SIGTERM);
    EXPECT_EQ(grab->wait(), 0);
}

/// Metadata that goes into a pipe without a reader is a disk that hangs.
TEST_F(SessionNotify, AGrabThatHangsGivesNoSignOfLife)
{
    session_.bus = pacedBus();
    session_.set("grab.frames=0");
    session_.set("output.overwrite=true");
    session_.set("output.queue=2");
    session_.environment.emplace_back("WATCHDOG_USEC=400000");
    session_.endsWithTest = true;
    std::filesystem::create_directories(session_.output());
    ASSERT_EQ(mkfifo(session_.output("frames.ndjson").c_str(), 0600), 0);
    const auto grab = session_.start();
    manager_.waitFor("READY=1");
    // The queue fills, and then nothing moves, while the status goes on.
    std::string status;
    std::string before;
    do {
        before = status;
        status = manager_.waitFor("STATUS=");
    } while (status != before);
    const long signs = manager_.count("WATCHDOG=1");
    EXPECT_GE(signs, 1);
    manager_.waitFor("STATUS=");
    manager_.waitFor("STATUS=");
    EXPECT_EQ(manager_.count("WATCHDOG=1"), signs);
    EXPECT_TRUE(grab->running());
}

/// A picture that goes into a pipe without a reader keeps the queue from being written, and so the
/// plug-in from setting up the camera anew.
TEST_F(SessionNotify, WritingWithoutThePlugInShowsLifeAndEndsAtASecondSignal)
{
    session_.bus = pacedBus();
    session_.configuration = "[region]\nwidth = 64\nheight = 48\n";
    session_.settings = {"output.writers=1", "output.queue=1000", "output.prefix=p",
                         "log.level=info"};
    session_.endsWithTest = true;
    LiveGrab grab(session_);
    grab.waitForLog("Using device Model");
    grab.waitForMoreFrames(1); // what a killed grab may have left is removed by now
    ASSERT_EQ(mkfifo(session_.output(".p00000000100.png.part").c_str(), 0600), 0);
    grab.waitForFrame("frame 99", [](const auto& frame) { return frame["number"] == 99; });
    grab.writeConfiguration("[region]\nwidth = 64\nheight = 24\n");
    grab.signal(SIGHUP);
    grab.waitForMessage("the grab ends and starts again with it");
    grab.waitForLog("Using device Model");
    grab.signal(SIGTERM);
    // More than passes until the plug-in is abandoned.
    for (int i = 0; i < 3; ++i) {
        manager_.waitFor("STATUS=finishing  ");
    }
    EXPECT_TRUE(grab.process().running());
    EXPECT_EQ(grab.finish(SIGINT), 128 + SIGINT);
}

TEST_F(SessionNotify, AWatchdogOfAnotherProcessIsNotServed)
{
    session_.environment.insert(session_.environment.end(),
                                {"WATCHDOG_USEC=400000", "WATCHDOG_PID=1"});
    EXPECT_EQ(session_.run().code, 0);
    EXPECT_EQ(manager_.count("WATCHDOG=1"), 0);
    EXPECT_EQ(manager_.count("READY=1"), 1);
}

TEST_F(SessionNotify, AManagerThatIsNotThereDoesNotHurt)
{
    session_.environment = {"NOTIFY_SOCKET=/no/such/socket"};
    const Finished finished = session_.run();
    EXPECT_EQ(finished.code, 0);
    EXPECT_EQ(finished.err, "kxhost: Cannot tell the service manager at /no/such/socket: No such "
                            "file or directory.\n");
}

} // namespace
