// Tests of logging: thresholds, sinks, prefixes, evaluation of arguments, length.
#include "kx_log.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <string>
#include <vector>

#define KX_LOG_TAG "KX_PG_TEST"

namespace {

struct Line {
    int priority;
    std::string text;
};

std::vector<Line>& syslogLines()
{
    static std::vector<Line> lines;
    return lines;
}

} // namespace

/// Takes the place of the C library's, for the logging that is linked into this program.
extern "C" void syslog(int priority, const char* format, ...)
{
    EXPECT_STREQ(format, "%s");
    std::va_list arguments;
    va_start(arguments, format);
    syslogLines().push_back({priority, va_arg(arguments, const char*)});
    va_end(arguments);
}

namespace {

constexpr std::uint32_t kBoth = kxlog::kToStdout | kxlog::kToSyslog;

class Log : public testing::Test {
protected:
    void SetUp() override { syslogLines().clear(); }
    void TearDown() override { set(0, 0); }

    static void set(std::uint32_t level, std::uint32_t mode)
    {
        gKxLogLevelLib = level;
        gKxLogModeLib = mode;
    }

    template <typename Write>
    static std::string stdoutOf(Write write)
    {
        testing::internal::CaptureStdout();
        write();
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }
};

void writeAllLevels()
{
    KX_LOG_E("error %u\n", 1U);
    KX_LOG_W("warning\n");
    KX_LOG_I("info %s\n", "text");
    KX_LOG_D("debug\n");
    KX_LOG_T("trace\n");
}

TEST_F(Log, WritesTheStdoutFormWithTheTag)
{
    set(5, kxlog::kToStdout);
    EXPECT_EQ(stdoutOf(writeAllLevels), "[KX_PG_TEST:e]: error 1\n[KX_PG_TEST:w]: warning\n"
                                        "[KX_PG_TEST:i]: info text\n[KX_PG_TEST:d]: debug\n"
                                        "[KX_PG_TEST:t]: trace\n");
    EXPECT_TRUE(syslogLines().empty());
}

TEST_F(Log, WritesTheSyslogFormWithPriorityAndPlace)
{
    set(5, kxlog::kToSyslog);
    EXPECT_EQ(stdoutOf(writeAllLevels), "");
    ASSERT_EQ(syslogLines().size(), 5U);
    EXPECT_EQ(syslogLines()[0].priority, LOG_ERR);
    EXPECT_TRUE(syslogLines()[0].text.starts_with("[e|"));
    EXPECT_NE(syslogLines()[0].text.find("kx_log_test.cpp:"), std::string::npos);
    EXPECT_TRUE(syslogLines()[0].text.ends_with("] error 1\n"));
    EXPECT_EQ(syslogLines()[1].priority, LOG_WARNING);
    EXPECT_EQ(syslogLines()[1].text, "[w|writeAllLevels] warning\n");
    EXPECT_EQ(syslogLines()[2].priority, LOG_INFO);
    EXPECT_EQ(syslogLines()[2].text, "[i] info text\n");
    EXPECT_EQ(syslogLines()[3].priority, LOG_DEBUG);
    EXPECT_EQ(syslogLines()[3].text, "[d|writeAllLevels] debug\n");
    EXPECT_EQ(syslogLines()[4].priority, LOG_DEBUG);
    EXPECT_EQ(syslogLines()[4].text, "[t|writeAllLevels] trace\n");
}

TEST_F(Log, EachLevelIncludesTheOnesBelow)
{
    for (std::uint32_t level = 0; level <= 7; ++level) {
        syslogLines().clear();
        set(level, kxlog::kToSyslog);
        writeAllLevels();
        EXPECT_EQ(syslogLines().size(), std::min<std::size_t>(level, 5)) << level;
    }
}

TEST_F(Log, TheLevelIsUnsigned)
{
    set(0xFFFFFFFFU, kxlog::kToSyslog);
    writeAllLevels();
    EXPECT_EQ(syslogLines().size(), 5U);
}

TEST_F(Log, WritesNothingWithoutASink)
{
    set(5, 4);
    EXPECT_EQ(stdoutOf(writeAllLevels), "");
    EXPECT_TRUE(syslogLines().empty());
}

TEST_F(Log, TheSyslogIsWrittenBeforeStdout)
{
    set(3, kBoth);
    const auto write = [] {
        KX_LOG_I("lines so far: %u\n", static_cast<unsigned>(syslogLines().size()));
    };
    EXPECT_EQ(stdoutOf(write), "[KX_PG_TEST:i]: lines so far: 1\n");
    ASSERT_EQ(syslogLines().size(), 1U);
    EXPECT_EQ(syslogLines()[0].text, "[i] lines so far: 0\n");
}

TEST_F(Log, ArgumentsAreEvaluatedOncePerWrittenSink)
{
    unsigned evaluations = 0;
    const auto write = [&evaluations] { KX_LOG_I("%u\n", evaluations++); };
    set(2, kBoth);
    EXPECT_EQ(stdoutOf(write), "");
    EXPECT_EQ(evaluations, 0U);
    set(3, 0);
    write();
    EXPECT_EQ(evaluations, 0U);
    set(3, kxlog::kToSyslog);
    write();
    EXPECT_EQ(evaluations, 1U);
    set(3, kBoth);
    EXPECT_EQ(stdoutOf(write), "[KX_PG_TEST:i]: 2\n");
    EXPECT_EQ(evaluations, 3U);
}

TEST_F(Log, LongTextIsCutInTheSyslogOnly)
{
    const std::string body(3000, 'x');
    set(3, kBoth);
    const std::string written = stdoutOf([&body] { KX_LOG_I("%s\n", body.c_str()); });
    EXPECT_EQ(written, "[KX_PG_TEST:i]: " + body + "\n");
    ASSERT_EQ(syslogLines().size(), 1U);
    EXPECT_EQ(syslogLines()[0].text, "[i] " + std::string(1018, 'x'));
    EXPECT_EQ(syslogLines()[0].text.size(), kxlog::kSyslogTextMax);
}

TEST_F(Log, TextOfExactlyTheLimitIsWhole)
{
    const std::string body(1018, 'y');
    set(3, kxlog::kToSyslog);
    KX_LOG_I("%s", body.c_str());
    ASSERT_EQ(syslogLines().size(), 1U);
    EXPECT_EQ(syslogLines()[0].text, "[i] " + body);
}

TEST_F(Log, PerCentSignsOfArgumentsStayText)
{
    set(3, kBoth);
    EXPECT_EQ(stdoutOf([] { KX_LOG_I("%s\n", "100%s%n"); }), "[KX_PG_TEST:i]: 100%s%n\n");
    EXPECT_EQ(syslogLines()[0].text, "[i] 100%s%n\n");
}

TEST_F(Log, HelpersSpeakForAnotherFunction)
{
    set(5, kxlog::kToSyslog);
    KX_LOG_W_AS("ProcLoop", "a %u\n", 1U);
    KX_LOG_D_AS("ProcLoop", "b\n");
    KX_LOG_T_AS("ProcLoop", "c\n");
    ASSERT_EQ(syslogLines().size(), 3U);
    EXPECT_EQ(syslogLines()[0].text, "[w|ProcLoop] a 1\n");
    EXPECT_EQ(syslogLines()[1].text, "[d|ProcLoop] b\n");
    EXPECT_EQ(syslogLines()[2].text, "[t|ProcLoop] c\n");
}

} // namespace
