// The text log of the simulated I/O box.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include <pins/io_box_text.h>
#include <unistd.h>

using fcsim::IoBoxEntry;
using fcsim::IoBoxText;
using fcsim::IoBoxVerdict;

namespace {

IoBoxEntry answeredEntry()
{
    return {IoBoxVerdict::good,
            0x392,
            10,
            1'700'000'000'000'000,
            1'700'000'000'250'075,
            true,
            0x123,
            9,
            1'700'000'000'378'075,
            1'700'000'000'946'075};
}

std::string content(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

class IoBoxTextTest : public testing::Test {
protected:
    void TearDown() override { std::remove(path.c_str()); }

    std::string path = testing::TempDir() + "io_box_text_" + std::to_string(getpid()) + ".log";
};

TEST(IoBoxLine, ACommandHasTheTimeOfItsLastPulse)
{
    EXPECT_EQ(commandLine(answeredEntry()), "1700000000.250075 command 0x00000392 10 bits, good");
}

TEST(IoBoxLine, AnAnswerSaysWhenItBeginsAndHowLongItTakes)
{
    EXPECT_EQ(replyLine(answeredEntry()), "1700000000.378075 reply   0x00000123 9 bits, 0.568 s");
}

TEST(IoBoxLine, WhatWentWrongIsSaid)
{
    IoBoxEntry entry;
    entry.verdict = IoBoxVerdict::wrongParity;
    EXPECT_EQ(commandLine(entry), "0.000000 command 0x00000000 0 bits, wrong parity");
    entry.verdict = IoBoxVerdict::garbled;
    EXPECT_EQ(commandLine(entry), "0.000000 command 0x00000000 0 bits, garbled");
    entry.verdict = IoBoxVerdict::stuck;
    EXPECT_EQ(commandLine(entry),
              "0.000000 command 0x00000000 0 bits, line stuck at its active level");
}

TEST_F(IoBoxTextTest, LinesAreAppendedAtOnce)
{
    IoBoxEntry silent = answeredEntry();
    silent.answered = false;
    IoBoxText text(path);
    EXPECT_NE(access(path.c_str(), F_OK), 0); // made with the first line
    text.add(silent);
    EXPECT_EQ(content(path), commandLine(silent) + "\n");
    IoBoxText(path).add(answeredEntry());
    EXPECT_EQ(content(path), commandLine(silent) + "\n" + commandLine(silent) + "\n" +
                                 replyLine(answeredEntry()) + "\n");
}

TEST(IoBoxTextFailure, AFileThatCannotBeWrittenIsReportedOnce)
{
    testing::internal::CaptureStderr();
    IoBoxText text("/does/not/exist/box.log");
    text.add(answeredEntry());
    text.add(answeredEntry());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "libflycapture (simulated): /does/not/exist/box.log: cannot be written: "
              "No such file or directory\n");
}

TEST(IoBoxTextFailure, WithoutAPathNothingIsWritten)
{
    testing::internal::CaptureStderr();
    IoBoxText("").add(answeredEntry());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
