// Who may be sent a signal: a look at process information that the test has made.
#include "grab/grab_process.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include <unistd.h>

namespace kxhost {
namespace {

class GrabProcess : public testing::Test {
protected:
    /// Makes the information of process 77.
    void process(const std::string& name, const std::string& blocked)
    {
        std::filesystem::create_directory(folder_.file("77"));
        kxtest::writeText(folder_.file("77/comm"), name + "\n");
        kxtest::writeText(folder_.file("77/status"),
                          "Name:\t" + name + "\nSigPnd:\t0\nSigBlk:\t" + blocked + "\n");
    }
    std::string why(int signal) const { return whyNoGrab(77, signal, folder_.file("")); }

    kxtest::TemporaryFolder folder_;
};

TEST_F(GrabProcess, AGrabWaitsForTheSignal)
{
    process("kxhost", "0000000000000a01"); // HUP, USR1, USR2
    EXPECT_EQ(why(SIGHUP), "");
    EXPECT_EQ(why(SIGUSR1), "");
    EXPECT_EQ(why(SIGUSR2), "");
    EXPECT_EQ(why(SIGTERM), "Process 77 is a kxhost that does not grab.");
}

TEST_F(GrabProcess, OtherProgramsAreLeftAlone)
{
    process("vim", "ffffffffffffffff");
    EXPECT_EQ(why(SIGHUP), "Process 77 is not kxhost but vim.");
    process("a\x1b[2J", "ffffffffffffffff");
    EXPECT_EQ(why(SIGHUP), "Process 77 is not kxhost but a\\u001B[2J.");
    EXPECT_EQ(whyNoGrab(getpid(), SIGHUP),
              "Process " + std::to_string(getpid()) + " is not kxhost but grab_process_te.");
}

TEST_F(GrabProcess, AProcessMustBeThere)
{
    EXPECT_EQ(why(SIGHUP), "There is no process 77.");
}

TEST_F(GrabProcess, WhatCannotBeReadIsNotTrusted)
{
    std::filesystem::create_directory(folder_.file("77"));
    EXPECT_EQ(why(SIGHUP), "Process 77 is not kxhost but unknown.");
    kxtest::writeText(folder_.file("77/comm"), "kxhost\n");
    EXPECT_EQ(why(SIGHUP), "Process 77 is a kxhost that does not grab.");
}

} // namespace
} // namespace kxhost
