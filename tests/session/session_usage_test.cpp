// The command line of kxhost: its help, and what it says of mistakes.
#include "grab_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <sstream>

namespace {

using kxtest::Finished;
using kxtest::kxhostPath;
using kxtest::run;

constexpr int kUsage = 2;

const std::vector<std::string> kVerbs = {"grab",  "list", "check", "version",
                                         "clock", "ctl",  "doctor"};

Finished runWith(std::vector<std::string> words)
{
    words.insert(words.begin(), kxhostPath());
    return run(words);
}

struct Mistake {
    const char* name;
    std::vector<std::string> words;
    const char* told; ///< behind "kxhost: "
    const char* help; ///< where the way out stands
};

void PrintTo(const Mistake& each, std::ostream* out)
{
    *out << each.name;
}

class UsageMistake : public testing::TestWithParam<Mistake> {};

TEST_P(UsageMistake, IsNamedWithTheWayOut)
{
    const Mistake& each = GetParam();
    const Finished finished = runWith(each.words);
    EXPECT_EQ(finished.code, kUsage);
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err,
              std::string("kxhost: ") + each.told + "\nSee \"" + each.help + " --help\".\n");
}

INSTANTIATE_TEST_SUITE_P(
    SessionUsage, UsageMistake,
    testing::Values(
        Mistake{"NoVerb",
                {},
                "a verb is missing, one of grab, list, check, version, clock, ctl, doctor",
                "kxhost"},
        Mistake{"NearlyAVerb", {"grb"}, "there is no verb \"grb\"; did you mean grab?", "kxhost"},
        Mistake{"NothingLikeAVerb",
                {"photograph"},
                "there is no verb \"photograph\"; there are grab, list, check, version, clock, "
                "ctl, doctor",
                "kxhost"},
        Mistake{"NearlyAnOption",
                {"grab", "--frame", "3"},
                "grab has no option --frame; did you mean --frames?",
                "kxhost grab"},
        Mistake{"NearlyAnOptionWithItsValue",
                {"grab", "--frame=3"},
                "grab has no option --frame; did you mean --frames?",
                "kxhost grab"},
        Mistake{"NothingLikeAnOption",
                {"list", "--photograph"},
                "list has no option --photograph",
                "kxhost list"},
        Mistake{"ShortOption", {"list", "-x"}, "list has no option -x", "kxhost list"},
        Mistake{"NoOptionOfKxhost", {"--nonsense"}, "kxhost has no option --nonsense", "kxhost"},
        Mistake{"OptionBeforeTheVerb",
                {"-n", "3", "grab"},
                "-n belongs behind the verb",
                "kxhost grab"},
        Mistake{"WordBehindTheVerb",
                {"list", "all"},
                "list takes no further word, \"all\" is one",
                "kxhost list"},
        Mistake{"MissingValue", {"grab", "-c"}, "--config: FILE missing", "kxhost grab"},
        Mistake{"MissingWord", {"ctl"}, "PID is required", "kxhost ctl"},
        Mistake{"Frames",
                {"grab", "-n", "x"},
                "--frames: \"x\": expected a whole number from 0 to 4294967293",
                "kxhost grab"},
        Mistake{"Level",
                {"check", "--log-level", "loud"},
                "--log-level: \"loud\": expected one of \"off\", \"error\", \"warning\", "
                "\"info\", \"debug\", \"trace\"",
                "kxhost check"},
        Mistake{"NoUnicode",
                {"check", "-o", "\xff"},
                "--output: \"\xff\": Encountered invalid utf-8 sequence",
                "kxhost check"},
        Mistake{"Time",
                {"check", "--wait", "5parsecs"},
                "--wait: \"5parsecs\": expected a number from 0 s to 1000000000 s, with its unit "
                "(s, ms, min, h); without a unit, seconds are meant",
                "kxhost check"}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(SessionUsage, HelpFitsIntoAHundredColumnsWithoutGaps)
{
    std::vector<std::vector<std::string>> all = {{"--help"}};
    for (const std::string& verb : kVerbs) {
        all.push_back({verb, "--help"});
    }
    for (const std::vector<std::string>& words : all) {
        const Finished finished = runWith(words);
        EXPECT_EQ(finished.code, 0);
        EXPECT_EQ(finished.out.find("\n\n\n"), std::string::npos) << finished.out;
        EXPECT_TRUE(finished.out.ends_with(".\n")) << finished.out;
        std::istringstream lines(finished.out);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 100U) << line;
            EXPECT_FALSE(line.ends_with(' ')) << line;
        }
    }
}

TEST(SessionUsage, EachVerbHasLinesOfItsOwn)
{
    std::vector<std::string> footers;
    for (const std::string& verb : kVerbs) {
        const std::string help = runWith({verb, "--help"}).out;
        footers.push_back(help.substr(help.find("\n\n", help.find("\nOptions:\n"))));
        EXPECT_NE(footers.back().find("xit codes"), std::string::npos) << help;
        for (const std::string& other : kVerbs) {
            const bool named = help.find("\n  kxhost " + other + " ") != std::string::npos;
            EXPECT_TRUE(!named || other == verb) << other << " in the help of " << verb;
        }
    }
    std::ranges::sort(footers);
    EXPECT_EQ(std::ranges::adjacent_find(footers), footers.end());
}

TEST(SessionUsage, HelpNamesNoFileThatAnInstallationLacks)
{
    for (const std::string& verb : kVerbs) {
        EXPECT_EQ(runWith({verb, "--help"}).out.find("docs/"), std::string::npos) << verb;
    }
    const std::string general = runWith({"--help"}).out;
    EXPECT_EQ(general.find("docs/"), std::string::npos);
    EXPECT_NE(general.find("kxhost.toml\""), std::string::npos) << general;
}

} // namespace
