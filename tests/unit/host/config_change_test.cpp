// What differs between configurations, key by key.
#include "config/config_change.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace kxhost {
namespace {

using Names = std::vector<std::string>;

Configuration read(std::string_view text, const std::string& folder = ".")
{
    Configuration result;
    EXPECT_EQ(readConfiguration(text, "camera.toml", folder, {}, result), ConfigErrors{});
    return result;
}

Names all(const Configuration& before, const Configuration& after)
{
    return changedKeys(before, after,
                       {Takes::kLive, Takes::kReload, Takes::kRestart, Takes::kStart});
}

TEST(ConfigChange, EqualValuesAreNoChangeHoweverTheyAreWritten)
{
    EXPECT_EQ(all(read("[acquisition]\nexposure = \"10 ms\"\n"),
                  read("# new\n[acquisition]\nexposure = \"10000 us\"\n")),
              Names{});
    EXPECT_EQ(all(read(""), read("[grab]\nbuffers = 8\n")), Names{}) << "what stands without it";
}

TEST(ConfigChange, NamesWhatChangedComesOrGoes)
{
    const Configuration none = read("");
    const Configuration some = read("[region]\nwidth = 640\n[acquisition]\ngain = 3\n"
                                    "frame_rate = 20\n[output]\nprefix = \"a\"\n");
    const Names names = {"region.width", "acquisition.frame_rate", "acquisition.gain",
                         "output.prefix"};
    EXPECT_EQ(all(none, some), names);
    EXPECT_EQ(all(some, none), names);
}

TEST(ConfigChange, ValuesAreThoseOfTheLaterOne)
{
    const Configuration before =
        read("[acquisition]\ngain = 3\nexposure = \"10 ms\"\n"
             "[[iobox]]\npin = \"gpio0\"\nmode = \"output\"\nsource = \"strobe\"\n");
    const Configuration after = read("[acquisition]\nexposure = \"20 ms\"\n[lut]\n"
                                     "curve = \"invert\"\n[output]\nprefix = \"a\"\n");
    const std::vector<KeyValue> live = changedValues(before, after, {Takes::kLive});
    const auto has = [&](const std::string& key, const std::string& value) {
        return std::ranges::find(live, KeyValue(key, value)) != live.end();
    };
    EXPECT_TRUE(has("acquisition.exposure", "20000 us"));
    EXPECT_TRUE(has("acquisition.gain", "")) << "not set any more";
    EXPECT_TRUE(has("lut.curve", "invert"));
    EXPECT_TRUE(has("iobox[0].mode", ""));
    EXPECT_EQ(changedValues(before, after, {Takes::kStart}),
              (std::vector<KeyValue>{{"output.prefix", "a"}}));
}

TEST(ConfigChange, GivenValuesAreThoseThatSomebodyHasSet)
{
    EXPECT_EQ(givenValues(read("[output]\nprefix = \"a\"\n[acquisition]\ngain = 3\n")),
              (std::vector<KeyValue>{{"acquisition.gain", "3 dB"}, {"output.prefix", "a"}}));
    EXPECT_TRUE(givenValues(read("")).empty());
}

TEST(ConfigChange, SortsByWhenItTakesEffect)
{
    const Configuration none = read("");
    const Configuration some = read("[region]\nwidth = 640\n[acquisition]\ngain = 3\n"
                                    "frame_rate = 20\n[output]\nprefix = \"a\"\n");
    EXPECT_EQ(changedKeys(none, some, {Takes::kLive}), Names{"acquisition.gain"});
    EXPECT_EQ(changedKeys(none, some, {Takes::kReload}), Names{"acquisition.frame_rate"});
    EXPECT_EQ(changedKeys(none, some, {Takes::kRestart}), Names{"region.width"});
    EXPECT_EQ(changedKeys(none, some, {Takes::kStart}), Names{"output.prefix"});
}

TEST(ConfigChange, PinsAreComparedOneByOne)
{
    const Configuration one = read("[[iobox]]\npin = \"gpio1\"\n");
    EXPECT_EQ(all(one, read("[[iobox]]\npin = \"gpio2\"\n")), Names{"iobox.pin"});
    EXPECT_EQ(all(one, read("[[iobox]]\npin = \"gpio1\"\n[[iobox]]\npin = \"gpio2\"\n")),
              Names{"iobox.pin"});
    const std::string strobe = "[[iobox]]\npin = \"gpio1\"\nmode = \"output\"\n"
                               "source = \"strobe\"\n";
    EXPECT_EQ(all(read(strobe + "delay = \"5 us\"\n"), read(strobe + "delay = \"6 us\"\n")),
              Names{"iobox.delay"})
        << "not the other names of the same value";
}

TEST(ConfigChange, ATableIsNamedByItsSource)
{
    const std::string folder = testing::TempDir();
    const std::string path = folder + "kxhost_change_lut.txt";
    const auto write = [&](int value) {
        std::ofstream file(path);
        for (int entry = 0; entry < 512; ++entry) {
            file << value << "\n";
        }
    };
    const std::string text = "[lut]\nfile = \"kxhost_change_lut.txt\"\n";
    write(1);
    const Configuration before = read(text, folder);
    EXPECT_EQ(all(before, read(text, folder)), Names{});
    write(2);
    EXPECT_EQ(all(before, read(text, folder)), Names{"lut.file"});
    EXPECT_EQ(all(read("[lut]\ncurve = \"invert\"\n"), read("[lut]\ncurve = \"gamma 2\"\n")),
              Names{"lut.curve"});
    std::filesystem::remove(path);
}

TEST(ConfigChange, SwapsTheKeysOfOneKindOnly)
{
    Settings one = read("[region]\nwidth = 640\n[acquisition]\ngain = 3\n[[iobox]]\n"
                        "pin = \"gpio1\"\n[output]\nprefix = \"a\"\n")
                       .settings;
    Settings other = read("[acquisition]\ngain = 6\n").settings;
    swapKeys(one, other, Takes::kLive);
    EXPECT_EQ(one.gainDb, 6.0F);
    EXPECT_EQ(other.gainDb, 3.0F);
    EXPECT_TRUE(one.iobox.empty());
    EXPECT_EQ(other.iobox.size(), 1U);
    EXPECT_EQ(one.width, 640U);
    EXPECT_EQ(one.outputPrefix, "a");
    swapKeys(one, other, Takes::kStart);
    EXPECT_EQ(other.outputPrefix, "a");
    EXPECT_EQ(one.width, 640U);
}

/// The plug-in leaves a data input alone that only has other parameters.
TEST(ConfigChange, OtherParametersOfADataInputNeedANewStart)
{
    const auto needs = [](const std::string& one, const std::string& other) {
        Settings before = read(one).settings;
        Settings after = read(other).settings;
        return needsRestart(before, after);
    };
    const std::string output = "[[iobox]]\npin = \"gpio0\"\nmode = \"output\"\nsource = \"data\"\n"
                               "bits = 2\nword = ";
    const std::string input = "[[iobox]]\npin = \"gpio1\"\nmode = \"input\"\nsource = \"data\"\n";
    EXPECT_FALSE(needs(output + "1\n" + input, output + "2\n" + input));
    EXPECT_TRUE(needs(output + "1\n" + input, output + "1\n" + input + "gap_polls = 9\n"));
    EXPECT_TRUE(needs(input + "timeout_polls = 99\n", input));
    EXPECT_FALSE(needs(input, input + "invert = \"yes\"\ngap_polls = 9\n"));
    EXPECT_FALSE(needs("", input + "gap_polls = 9\n"));
}

TEST(ConfigChange, OnlySomeKeysNeedANewStartOfTheGrab)
{
    Settings before = read("").settings;
    const auto needs = [&](std::string_view text) {
        Settings after = read(text).settings;
        return needsRestart(before, after);
    };
    EXPECT_FALSE(needs(""));
    EXPECT_FALSE(needs("[acquisition]\nframe_rate = 20\ngain = 3\n"));
    EXPECT_TRUE(needs("[region]\noffset_x = 2\n"));
    EXPECT_TRUE(needs("[format]\npixel_format = \"mono12\"\n"));
    EXPECT_TRUE(needs("[grab]\nbuffers = 9\n"));
    EXPECT_TRUE(needs("[gige]\npacket_size = 9000\n"));
}

TEST(ConfigChange, ListsNamesAsPeopleDo)
{
    EXPECT_EQ(listed({}), "");
    EXPECT_EQ(listed({"a"}), "a");
    EXPECT_EQ(listed({"a", "b"}), "a and b");
    EXPECT_EQ(listed({"a", "b", "c"}), "a, b and c");
}

} // namespace
} // namespace kxhost
