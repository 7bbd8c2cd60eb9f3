// kxhost ctl: words become signals, and nobody else is hurt.
#include "live_grab.h"

#include <gtest/gtest.h>

namespace {

using kxtest::Finished;
using kxtest::GrabSession;
using kxtest::kxhostPath;
using kxtest::LiveGrab;

Finished ctl(pid_t pid, const std::string& word)
{
    return kxtest::run({kxhostPath(), "ctl", std::to_string(pid), word});
}

std::string pacedBus()
{
    kxtest::TestSensor sensor;
    sensor.paced = true;
    return kxtest::busWith(sensor);
}

TEST(SessionCtl, EachWordDoesWhatItsSignalDoes)
{
    GrabSession session;
    session.bus = pacedBus();
    session.set("log.level=info");
    LiveGrab grab(session);
    const pid_t pid = grab.process().pid();
    grab.waitForMoreFrames(2);
    EXPECT_EQ(ctl(pid, "reload").code, 0);
    grab.waitForMessage("kxhost: Reloaded ");
    EXPECT_EQ(ctl(pid, "lut").code, 0);
    grab.waitForLog("processing SIGUSR1...");
    grab.waitForLog("continue operation with new LUT");
    EXPECT_EQ(ctl(pid, "lut12").code, 0);
    grab.waitForLog("processing SIGUSR2...");
    grab.waitForLog("...Switching back to 8-bit mode...");
    grab.waitForLog("continue operation with new LUT");
    EXPECT_EQ(ctl(pid, "finish").code, 0);
    EXPECT_EQ(grab.process().wait(), 0) << grab.process().standardError();
    kxtest::expectBalance(session);
    EXPECT_EQ(session.summary()["reason"], "Finished as asked by a signal.");
}

TEST(SessionCtl, AnyOtherWordIsAMistake)
{
    const Finished finished = ctl(1, "explode");
    EXPECT_EQ(finished.code, 2);
    EXPECT_TRUE(finished.err.starts_with(
        "kxhost: WORD: \"explode\" is unknown, expected finish, reload, lut or lut12\n"))
        << finished.err;
    EXPECT_EQ(ctl(1, "10").code, 2) << "no numbers of signals";
    EXPECT_EQ(kxtest::run({kxhostPath(), "ctl", "lut"}).code, 2);
}

TEST(SessionCtl, WhatIsNoProcessIdIsToldSo)
{
    for (const std::string text : {"0", "-5", "x", "12abc", "99999999999999", "lut"}) {
        const Finished finished = kxtest::run({kxhostPath(), "ctl", text, "lut"});
        EXPECT_EQ(finished.code, 2);
        EXPECT_TRUE(finished.err.starts_with(
            "kxhost: PID: \"" + text + "\" is no process id, expected a whole number above 0\n"))
            << finished.err;
    }
}

TEST(SessionCtl, AProcessThatIsNotThereIsNamed)
{
    // Process ids end far below.
    const Finished finished = ctl(2147483646, "reload");
    EXPECT_EQ(finished.code, 11);
    EXPECT_EQ(finished.err, "kxhost: There is no process 2147483646.\n");
}

TEST(SessionCtl, OtherProcessesAreLeftAlone)
{
    kxtest::Process other({"/bin/sleep", "60"});
    const Finished finished = ctl(other.pid(), "finish");
    EXPECT_EQ(finished.code, 11);
    EXPECT_NE(finished.err.find(" is not kxhost but "), std::string::npos) << finished.err;
    EXPECT_TRUE(other.running());
}

} // namespace
