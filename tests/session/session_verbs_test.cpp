// The verbs beside grab, and the messages for broken configurations.
#include "grab_session.h"

#include <gtest/gtest.h>

#include <filesystem>
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
    // All of it is read from the plug-in's log.
    EXPECT_EQ(finished.out, "index  serial       interface      model\n"
                            "0      14120301     USB3           Flea3 FL3-U3-13S2C\n"
                            "1      15340477     GigE           Blackfly BFLY-PGE-13E4M\n"
                            "2      12340128     USB2           Chameleon CMLN-13S2M\n");
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

TEST(SessionVerbs, VersionIsAnOptionToo)
{
    const Finished verb = run({kxhostPath(), "version"});
    const Finished option = run({kxhostPath(), "--version"});
    EXPECT_EQ(option.code, 0) << option.err;
    EXPECT_EQ(option.out, verb.out);
    EXPECT_TRUE(holds(option.out, "\nplug-in 0.37.28-")) << option.out;
}

/// kxhost and the plug-in alone, away from the simulated cameras.
TEST(SessionVerbs, VersionNeedsNoSimulation)
{
    const TemporaryFolder folder;
    for (const char* piece : {"kxhost", "libdriver-pointgrey.so"}) {
        std::filesystem::copy_file(std::filesystem::path(kxhostPath()).parent_path() / piece,
                                   folder.file(piece));
    }
    const std::string kxhost = folder.file("kxhost");
    for (const char* asked : {"version", "--version"}) {
        const Finished finished = run({kxhost, asked});
        EXPECT_EQ(finished.code, 0) << finished.err;
        EXPECT_TRUE(holds(finished.out, "kxhost 0.37.28\nplug-in not loaded, as there is no camera "
                                        "library\n"))
            << finished.out;
    }
    const Finished named = run({kxhost, "version", "--camera-library", "/no/such.so"});
    EXPECT_EQ(named.code, 9);
    EXPECT_TRUE(holds(named.err, "/no/such.so")) << named.err;
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

TEST(SessionVerbs, ATimeThatIsNoneIsNamedAsItWasTyped)
{
    for (const char* const option : {"--wait", "--reconnect"}) {
        for (const char* const typed : {"", ".", "1.2.3", "soon", "3 kg", "-1"}) {
            const Finished finished = run({kxhostPath(), "check", option, typed});
            EXPECT_EQ(finished.code, 2) << option << " " << typed;
            EXPECT_TRUE(holds(finished.err, std::string(option) + ": \"" + typed + "\": expected "))
                << finished.err;
        }
    }
    EXPECT_EQ(run({kxhostPath(), "check", "--reconnect", "0"}).code, 2);
    for (const char* const typed : {"0", "5", "0.5", "500 ms"}) {
        EXPECT_EQ(run({kxhostPath(), "check", "--wait", typed}).code, 0) << typed;
    }
    for (const char* const typed : {"no", "forever", "0.1", "2 min"}) {
        EXPECT_EQ(run({kxhostPath(), "check", "--reconnect", typed}).code, 0) << typed;
    }
}

/// Runs kxhost with an output that takes nothing.
Finished runWithFullOutput(const std::string& arguments)
{
    return run({"/bin/sh", "-c", "exec \"$0\" " + arguments + " > /dev/full", kxhostPath()});
}

TEST(SessionVerbs, AReportThatCannotBePrintedIsNoSuccess)
{
    for (const char* const arguments :
         {"--help", "ctl --help", "--version", "check", "version --simulate", "list --simulate",
          "grab --simulate -n 1 --log-level off"}) {
        const Finished finished = runWithFullOutput(arguments);
        EXPECT_EQ(finished.code, 6) << arguments;
        EXPECT_TRUE(holds(finished.err, "kxhost: Cannot write standard output: No space left on "
                                        "device.\n"))
            << finished.err;
    }
    const Finished doctor = runWithFullOutput("doctor --simulate");
    EXPECT_NE(doctor.code, 0);
    EXPECT_TRUE(holds(doctor.err, "Cannot write standard output")) << doctor.err;
    EXPECT_EQ(runWithFullOutput("grab --simulate -n 1 --quiet").code, 0) << "there is no report";
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

TEST(SessionVerbs, CheckSaysWhatAValueMeansAndWhatHasNoEffect)
{
    const Finished finished = run({kxhostPath(), "check", "--set", "acquisition.gamma=1", "--set",
                                   "acquisition.exposure_mode=auto", "--set",
                                   "acquisition.exposure=20 ms", "--set", "lut.curve=invert"});
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_TRUE(holds(finished.out, "# the camera's gamma is switched off")) << finished.out;
    EXPECT_TRUE(holds(finished.out, "# 512 values of 9 bits from curve invert")) << finished.out;
    EXPECT_TRUE(holds(finished.out, "#   hint: exposure has no effect")) << finished.out;
    EXPECT_EQ(finished.err, "");
}

TEST(SessionVerbs, GrabHintsAtWhatHasNoEffect)
{
    const std::vector<std::string> words = {kxhostPath(), "grab",  "--simulate",         "-n",
                                            "1",          "--set", "auto.brightness=0.5"};
    const Finished finished = run(words);
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_TRUE(holds(finished.err, "kxhost: hint: --set auto.brightness=0.5: auto.brightness = "
                                    "0.5: has no effect"))
        << finished.err;
    std::vector<std::string> quietly = words;
    quietly.emplace_back("--quiet");
    EXPECT_EQ(run(quietly).err, "");
}

TEST(SessionVerbs, AFolderMayBeCalledLikeADate)
{
    const TemporaryFolder folder;
    const std::string name = "2024-05-01";
    const Finished finished = run({"/usr/bin/env", "--chdir=" + folder.path().string(),
                                   kxhostPath(), "grab", "--simulate", "-n", "1", "-o", name});
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_TRUE(std::filesystem::exists(folder.path() / name / "frame_000001.png"));
}

TEST(SessionVerbs, APrefixWithASlashIsAMistakeOfTheConfiguration)
{
    const Finished finished =
        run({kxhostPath(), "grab", "--simulate", "-n", "1", "--set", "output.prefix=a/b"});
    EXPECT_EQ(finished.code, 3);
    EXPECT_TRUE(holds(finished.err, "without slashes")) << finished.err;
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
        BrokenCase{"LowWithoutHigh", "[auto]\ngain_min = 3\n", {"c.toml:2", "gain_max", "3 dB"}},
        BrokenCase{
            "NoSuchTable", "[lut]\nfile = \"no.txt\"\n", {"c.toml:2", "/no.txt: does not exist"}},
        BrokenCase{"SlashInPrefix", "[output]\nprefix = \"a/b\"\n", {"c.toml:2", "slashes"}},
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
