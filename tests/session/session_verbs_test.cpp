// The verbs beside grab, and the messages for broken configurations.
#include "grab_session.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

using kxtest::Finished;
using kxtest::kxhostPath;
using kxtest::run;
using kxtest::TemporaryFolder;

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

TEST(SessionVerbs, ListShowsWhatIsOnTheBuses)
{
    const Finished finished = run({kxhostPath(), "list", "--simulate"});
    EXPECT_EQ(finished.code, 0) << finished.err;
    for (const char* part : {"Flea3 FL3-U3-13S2C", "14120301", "Blackfly BFLY-PGE-13E4M",
                             "15340477", "Chameleon CMLN-13S2M", "12340128"}) {
        EXPECT_TRUE(holds(finished.out, part)) << part << " in:\n" << finished.out;
    }
}

TEST(SessionVerbs, ListOfAnEmptyBusSaysSo)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("bus.toml"), "");
    const Finished finished = run({kxhostPath(), "list", "--simulate=" + folder.file("bus.toml")});
    EXPECT_TRUE(holds(finished.out + finished.err, "no camera")) << finished.out << finished.err;
}

TEST(SessionVerbs, VersionNamesProgramAndPlugin)
{
    const Finished finished = run({kxhostPath(), "version", "--simulate"});
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_TRUE(holds(finished.out, "kxhost")) << finished.out;
    EXPECT_TRUE(holds(finished.out, "0.37.28-")) << finished.out;
}

TEST(SessionVerbs, HelpTeaches)
{
    const Finished finished = run({kxhostPath(), "--help"});
    EXPECT_EQ(finished.code, 0);
    for (const char* part : {"grab", "list", "check", "version", "Exit codes", "Examples"}) {
        EXPECT_TRUE(holds(finished.out, part)) << part;
    }
    EXPECT_TRUE(holds(run({kxhostPath(), "grab", "--help"}).out, "--summary"));
}

TEST(SessionVerbs, CheckPrintsWhatIsInForce)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("c.toml"), "[acquisition]\nframe_rate = 25\n");
    const Finished finished =
        run({kxhostPath(), "check", "-c", folder.file("c.toml"), "--set", "region.width=320"});
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_TRUE(holds(finished.out, "frame_rate")) << finished.out;
    EXPECT_TRUE(holds(finished.out, "25")) << finished.out;
    EXPECT_TRUE(holds(finished.out, "320")) << finished.out;
}

struct BrokenCase {
    const char* name;
    const char* toml;
    std::vector<std::string> parts; ///< that the message must hold
};

void PrintTo(const BrokenCase& each, std::ostream* out)
{
    *out << each.name;
}

class BrokenConfiguration : public testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenConfiguration, IsExplainedWithFileAndLine)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("c.toml"), GetParam().toml);
    const Finished finished = run({kxhostPath(), "check", "-c", folder.file("c.toml")});
    EXPECT_EQ(finished.code, 3);
    for (const std::string& part : GetParam().parts) {
        EXPECT_TRUE(holds(finished.err, part)) << part << " in:\n" << finished.err;
    }
}

INSTANTIATE_TEST_SUITE_P(
    SessionVerbs, BrokenConfiguration,
    testing::Values(
        BrokenCase{"UnknownKey", "[acquisition]\nframe_rte = 25\n", {"c.toml:2", "frame_rate"}},
        BrokenCase{
            "UnknownSection", "[aquisition]\nframe_rate = 25\n", {"c.toml:1", "acquisition"}},
        BrokenCase{"ImpossibleValue", "\n[acquisition]\nframe_rate = -5\n", {"c.toml:3"}},
        BrokenCase{"WrongWord", "[format]\npixel_format = \"mono9\"\n", {"c.toml:2", "mono8"}},
        BrokenCase{"NoToml", "[format\n", {"c.toml:1"}}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(SessionVerbs, ABusThatCannotBeReadEndsTheGrab)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("bus.toml"), "[[camera]]\nserail = 5\n");
    for (const std::string& bus : {folder.file("bus.toml"), folder.file("missing.toml")}) {
        const Finished finished = run({kxhostPath(), "grab", "--simulate=" + bus});
        EXPECT_EQ(finished.code, 3);
        EXPECT_TRUE(holds(finished.err, bus)) << finished.err;
    }
}

TEST(SessionVerbs, AMissingConfigurationIsNamed)
{
    const Finished finished = run({kxhostPath(), "check", "-c", "/nowhere/c.toml"});
    EXPECT_EQ(finished.code, 3);
    EXPECT_TRUE(holds(finished.err, "/nowhere/c.toml")) << finished.err;
}

} // namespace
