// Logging: levels, sinks, prefixes, order, truncation, and the identity in the system log.
#include "kx_pg_factory.h"
#include "plugin_test.h"
#include "stdout_capture.h"
#include "system_calls.h"

#include <algorithm>

using kxtest::format;
using kxtest::host;
using kxtest::journal;
using kxtest::StdoutCapture;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

class LoggingTest : public kxtest::PluginTest {
protected:
    /// Makes the plug-in speak at the levels e, w, i and d, once each.
    static void speak()
    {
        KxPGrey::CBufferFactory factory;
        static char memory[64];
        unsigned size = 16;
        factory.GetBuffer(nullptr, 1); // warning
        host().bufPtr = [](std::uint32_t index) { return memory + std::size_t{16} * index; };
        factory.GetBuffer(&size, 2); // two of debug, information
        host().bufPtr = [](std::uint32_t) { return memory; };
        factory.GetBuffer(&size, 2); // debug, error
    }
    /// The letters of the lines, in order, from "[e|...", "[TAG:e]: ...".
    static std::string lettersOf(const std::vector<std::string>& lines)
    {
        std::string letters;
        for (const std::string& line : lines) {
            const std::size_t tag = line.find("[KX_PG_FACTORY:");
            const std::size_t bracket = line.find('[');
            letters += tag != std::string::npos ? line[tag + 15] : line[bracket + 1];
        }
        return letters;
    }
    static std::string unique(std::string letters)
    {
        std::sort(letters.begin(), letters.end());
        letters.erase(std::unique(letters.begin(), letters.end()), letters.end());
        return letters;
    }
};

struct Level {
    std::uint32_t level;
    const char* letters; ///< sorted
};

class LoggingLevelTest : public LoggingTest, public testing::WithParamInterface<Level> {};

TEST_P(LoggingLevelTest, LetsItsLevelsPassInBothSinks)
{
    gKxLogLevelLib = GetParam().level;
    gKxLogModeLib = 3;
    StdoutCapture output;
    speak();
    const auto lines = output.lines();
    EXPECT_EQ(unique(lettersOf(lines)), GetParam().letters);
    EXPECT_EQ(lettersOf(journal().logs()), lettersOf(lines));
}

INSTANTIATE_TEST_SUITE_P(Logging, LoggingLevelTest,
                         testing::Values(Level{0, ""}, Level{1, "e"}, Level{2, "ew"},
                                         Level{3, "eiw"}, Level{4, "deiw"}, Level{5, "deiw"},
                                         Level{0xFFFFFFFF, "deiw"}),
                         [](const auto& one) { return format("Level%u", one.param.level); });

struct Sinks {
    std::uint32_t mode;
    bool toStdout;
    bool toSyslog;
};

class LoggingSinkTest : public LoggingTest, public testing::WithParamInterface<Sinks> {};

TEST_P(LoggingSinkTest, WritesToTheChosenSinksOnly)
{
    gKxLogModeLib = GetParam().mode;
    StdoutCapture output;
    speak();
    EXPECT_EQ(!output.lines().empty(), GetParam().toStdout);
    EXPECT_EQ(!journal().logs().empty(), GetParam().toSyslog);
}

INSTANTIATE_TEST_SUITE_P(Logging, LoggingSinkTest,
                         testing::Values(Sinks{0, false, false}, Sinks{1, true, false},
                                         Sinks{2, false, true}, Sinks{3, true, true},
                                         Sinks{4, false, false}, Sinks{0xFFFFFFFE, false, true}),
                         [](const auto& one) { return format("Mode%X", one.param.mode); });

TEST_F(LoggingTest, PrefixesEachLevelInBothSinks)
{
    gKxLogModeLib = 3;
    StdoutCapture output;
    speak();
    EXPECT_THAT(output.lines(),
                ElementsAre("[KX_PG_FACTORY:w]: Incorrect input params detected",
                            MatchesRegex("\\[KX_PG_FACTORY:d\\]: AllocBuffer: .* idx=0 .*"),
                            MatchesRegex("\\[KX_PG_FACTORY:d\\]: AllocBuffer: .* idx=1 .*"),
                            MatchesRegex("\\[KX_PG_FACTORY:i\\]: return flat buffer: .*"),
                            MatchesRegex("\\[KX_PG_FACTORY:d\\]: AllocBuffer: .* idx=0 .*"),
                            MatchesRegex("\\[KX_PG_FACTORY:d\\]: AllocBuffer: .* idx=1 .*"),
                            "[KX_PG_FACTORY:e]: Allocated buffer flat is incorrect !"));
    EXPECT_THAT(journal().logs(),
                ElementsAre("4 [w|GetBuffer] Incorrect input params detected",
                            MatchesRegex("7 \\[d\\|GetBuffer\\] AllocBuffer: .* idx=0 .*"),
                            MatchesRegex("7 \\[d\\|GetBuffer\\] AllocBuffer: .* idx=1 .*"),
                            MatchesRegex("6 \\[i\\] return flat buffer: .*"),
                            MatchesRegex("7 \\[d\\|GetBuffer\\] AllocBuffer: .* idx=0 .*"),
                            MatchesRegex("7 \\[d\\|GetBuffer\\] AllocBuffer: .* idx=1 .*"),
                            MatchesRegex("3 \\[e\\|.*kx_pg_factory\\.cpp:[0-9]+\\] "
                                         "Allocated buffer flat is incorrect !")));
}

TEST_F(LoggingTest, WritesTheSystemLogFirst)
{
    gKxLogModeLib = 3;
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    StdoutCapture output;
    std::vector<std::size_t> written;
    kxtest::onSyslog([&] { written.push_back(output.size()); });
    KxPGrey::CBufferFactory factory;
    factory.GetBuffer(nullptr, 1);
    kxtest::onSyslog(nullptr);
    EXPECT_EQ(output.lines().size(), 1U);
    EXPECT_THAT(written, ElementsAre(0U));
}

TEST_F(LoggingTest, NeverUsesTheTextAsAFormat)
{
    plugIn({});
    host().config.model = "100%n %s";
    run();
    for (const kxtest::Event& event : journal().events()) {
        if (event.kind == kxtest::Kind::log) {
            EXPECT_EQ(event.name, "%s");
        }
    }
    EXPECT_THAT(journal().logs(), Contains(HasSubstr("(Model:100%n %s ID:")));
}

TEST_F(LoggingTest, CutsLongTextInTheSystemLogOnly)
{
    plugIn({});
    gKxLogModeLib = 3;
    host().config.model = std::string(2000, 'm');
    host().config.id = "end";
    StdoutCapture output;
    run();
    EXPECT_THAT(output.lines(), Contains(HasSubstr("mmm ID:end)...")));
    const auto logged = journal().logsWith("mmmm");
    ASSERT_EQ(logged.size(), 1U);
    const std::string priority = "6 ";
    EXPECT_EQ(logged[0].size(), priority.size() + 1022 + std::string(kxtest::kNoLineEnd).size());
    EXPECT_THAT(logged[0], testing::EndsWith(std::string("mmm") + kxtest::kNoLineEnd));
}

TEST_F(LoggingTest, LeavesTextOfTheGreatestLengthWhole)
{
    plugIn({});
    run();
    // The line with an empty model is this long; the model makes it up to the limit.
    const auto logged = journal().logsWith("no any devices found");
    ASSERT_EQ(logged.size(), 1U);
    const std::size_t shortLength = logged[0].size() - std::string("6 ").size() + 1;
    journal().clear();
    host().config.model = std::string(1022 - shortLength, 'm');
    run();
    EXPECT_THAT(journal().logsWith("mmmm"), ElementsAre(testing::EndsWith(")...")));
}

/// Counters of the waiting messages in the lines, in order.
std::vector<int> countersOf(const std::vector<std::string>& lines)
{
    std::vector<int> counters;
    for (const std::string& line : lines) {
        const std::size_t place = line.find(": (");
        if (place != std::string::npos && line.find("no any devices") != std::string::npos) {
            counters.push_back(std::stoi(line.substr(place + 3)));
        }
    }
    return counters;
}

TEST_F(LoggingTest, EvaluatesArgumentsOncePerSink)
{
    KX_IN_FRESH_PROCESS({
        plugIn({});
        const auto loggedBy = [](std::uint32_t level, std::uint32_t mode) {
            gKxLogLevelLib = level;
            gKxLogModeLib = mode;
            journal().clear();
            StdoutCapture output;
            run();
            auto counters = countersOf(journal().logs());
            for (const int counter : countersOf(output.lines())) {
                counters.push_back(counter);
            }
            return counters;
        };
        EXPECT_THAT(loggedBy(5, 3), ElementsAre(0, 1));
        EXPECT_THAT(loggedBy(2, 3), IsEmpty());
        EXPECT_THAT(loggedBy(5, 0), IsEmpty());
        EXPECT_THAT(loggedBy(3, 2), ElementsAre(2));
        EXPECT_THAT(loggedBy(3, 1), ElementsAre(3));
    });
}

TEST_F(LoggingTest, OpensTheSystemLogOnceWithItsIdentity)
{
    KX_IN_FRESH_PROCESS({
        plugIn({});
        gKxLogIdLib = 7;
        gKxLogModeLib = 2;
        run();
        gKxLogIdLib = 8;
        run();
        EXPECT_THAT(journal().lines({"openlog"}), ElementsAre("openlog(korvex.7, 5, 24)"));
        EXPECT_EQ(journal().events().front().name, "openlog");
    });
}

TEST_F(LoggingTest, OpensTheSystemLogLateWithoutAName)
{
    KX_IN_FRESH_PROCESS({
        plugIn({});
        gKxLogIdLib = 3;
        gKxLogModeLib = 0;
        // The host switches the system log on during the run.
        host().onCall = [](std::string_view name) {
            gKxLogModeLib = name == "KxUtl__CheckSignal" ? 2 : gKxLogModeLib;
        };
        run();
        EXPECT_THAT(journal().lines({"openlog"}), ElementsAre("openlog((null).3, 5, 24)"));
        EXPECT_EQ(journal().logs().size(), 1U);
        EXPECT_THAT(journal().events().back().line(), HasSubstr("Loop completed (exitCode = 2)"));
        run();
        EXPECT_EQ(journal().count("openlog"), 1U);
    });
}

TEST_F(LoggingTest, NeverOpensTheSystemLogWithoutItsBit)
{
    KX_IN_FRESH_PROCESS({
        plugIn({});
        gKxLogLevelLib = 0;
        gKxLogModeLib = 1;
        run();
        EXPECT_EQ(journal().count("openlog"), 0U);
    });
}

} // namespace
