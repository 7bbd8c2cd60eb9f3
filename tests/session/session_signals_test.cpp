// Signals end a grab without losing a frame that was accepted.
#include "live_grab.h"
#include "notify_listener.h"

#include <gtest/gtest.h>

#include <csignal>

#include <sys/stat.h>

namespace {

using kxtest::GrabSession;
using kxtest::LiveGrab;
using kxtest::Process;

std::string pacedBus()
{
    kxtest::TestSensor sensor;
    sensor.paced = true;
    return kxtest::busWith(sensor);
}

class Termination : public testing::TestWithParam<int> {};

TEST_P(Termination, FinishesAndWritesEveryAcceptedFrame)
{
    GrabSession session;
    session.bus = pacedBus();
    LiveGrab grab(session);
    grab.waitForMoreFrames(10);
    EXPECT_EQ(grab.finish(GetParam()), 0) << grab.process().standardError();
    kxtest::expectBalance(session);
    const auto summary = session.summary();
    EXPECT_GE(summary["exported"]["frames"], 10);
    EXPECT_EQ(summary["exported"]["written"], summary["exported"]["frames"]);
    EXPECT_EQ(summary["lost"]["export"], 0);
}

INSTANTIATE_TEST_SUITE_P(SessionSignals, Termination, testing::Values(SIGINT, SIGTERM),
                         [](const auto& each) {
                             return std::string(each.param == SIGINT ? "Interrupt" : "Terminate");
                         });

TEST(SessionSignals, FinishesAlsoWhileItWaitsForACamera)
{
    GrabSession session;
    session.bus = "";
    session.set("log.level=info");
    LiveGrab grab(session);
    grab.waitForLog("no any devices found");
    EXPECT_EQ(grab.finish(SIGINT), 0) << grab.process().standardError();
    EXPECT_EQ(session.summary()["reason"], "Finished as asked by a signal, before a camera came.");
}

/// A grab that is told to end while no frame comes, and what it has printed.
void expectQuietEnd(const std::string& level)
{
    SCOPED_TRACE(level);
    GrabSession session;
    session.quiet = false;
    session.set("log.level=" + level);
    session.bus = kxtest::busWith({}, "register_time_us = 2000\n[[camera.fault]]\n"
                                      "kind = \"error\"\nframe = 4\ncount = 100000\n");
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    EXPECT_EQ(grab.finish(SIGINT), 0);
    const std::string out = grab.process().standardOutput();
    const std::string all = out + grab.process().standardError();
    EXPECT_EQ(all.find("exception"), all.npos) << all;
    EXPECT_EQ(session.summary()["reason"],
              "Finished as asked by a signal, while no frame arrived.");
    // What the plug-in says of the end is there again.
    EXPECT_EQ(out.find("grabbing loop is completed") != out.npos, level == "info") << out;
}

TEST(SessionSignals, AnEndWhileNoFrameComesIsNoAlarm)
{
    expectQuietEnd("warning");
    expectQuietEnd("info");
}

TEST(SessionSignals, FinishesAlsoWhenEveryRetrievalFails)
{
    GrabSession session;
    // The grab loop looks at signals behind a frame only, and no frame comes any more. Frames come
    // when they are fetched, so none is lost on a busy machine; slow registers keep the failures,
    // of which the plug-in bears 5000, from rushing by.
    session.bus = kxtest::busWith({}, "register_time_us = 2000\n[[camera.fault]]\n"
                                      "kind = \"error\"\nframe = 4\ncount = 100000\n");
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    EXPECT_EQ(grab.finish(SIGTERM), 0) << grab.process().standardError();
    EXPECT_EQ(session.summary()["exported"]["written"], 3);
    EXPECT_EQ(session.summary()["reason"],
              "Finished as asked by a signal, while no frame arrived.");
}

TEST(SessionSignals, ASecondFinishingSignalEndsAtOnce)
{
    GrabSession session;
    // The camera delivers nothing more, so that the first signal is not seen until the time-out.
    session.bus = kxtest::busWithFault("kind = \"stall\"\nframe = 4\n");
    LiveGrab grab(session);
    grab.waitForMoreFrames(3);
    // Two kinds, of which both arrive even if they are taken together, this one first.
    grab.signal(SIGINT);
    EXPECT_EQ(grab.finish(SIGTERM), 128 + SIGTERM);
    // What is on disk is whole nevertheless.
    for (const std::string& name : session.pictures()) {
        EXPECT_TRUE(name.ends_with(".png") || name.ends_with(".part")) << name;
    }
}

/// The report goes into a pipe without a reader, so the end of the grab is not that of the process.
TEST(SessionSignals, ASecondFinishingSignalEndsAtOnceAlsoBehindTheGrab)
{
    kxtest::NotifyListener manager;
    GrabSession session;
    session.environment = {"NOTIFY_SOCKET=" + manager.address()};
    const std::string pipe = session.folder().file("report.html");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    session.arguments = {"--report", pipe};
    const std::unique_ptr<Process> process = session.start();
    manager.waitFor("STATUS=Finished.");
    // Two kinds, of which both arrive even if they are taken together, this one first.
    process->signal(SIGINT);
    process->signal(SIGTERM);
    EXPECT_EQ(process->wait(), 128 + SIGTERM);
}

TEST(SessionSignals, EndsAtOnceWhileACameraIsPoweredUp)
{
    GrabSession session;
    // It takes most of a second until the camera has power, and nobody looks at signals meanwhile.
    session.bus = pacedBus() + "[camera.power]\nbehaviour = \"delayed\"\nreads = 9\n";
    session.set("log.level=info");
    LiveGrab grab(session);
    grab.waitForLog("Check configured Model");
    EXPECT_EQ(grab.finish(SIGTERM), 0) << grab.process().standardError();
    EXPECT_EQ(session.summary()["reason"], "Finished as asked by a signal, outside the grab loop.");
    EXPECT_EQ(session.summary()["passes"], 1);
}

TEST(SessionSignals, AReloadWhileItWaitsForACameraIsTakenOver)
{
    GrabSession session;
    session.bus = "";
    session.set("log.level=info");
    LiveGrab grab(session);
    grab.waitForLog("no any devices found");
    grab.signal(SIGHUP);
    grab.waitForMessage("kxhost: Reloaded ");
    grab.signal(SIGUSR1);
    EXPECT_EQ(grab.finish(SIGINT), 0) << grab.process().standardError();
}

} // namespace
