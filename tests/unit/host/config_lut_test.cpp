// The look-up table of a configuration: its three sources, and what is wrong with them.
#include "config_fixture.h"
#include "temporary_folder.h"

#include <numeric>

namespace kxhost {
namespace {

/// A table of `count` entries 0, 1, 2 ..., whose entry `at` is `value`.
std::string array(std::size_t count, std::size_t at = 0, const std::string& value = "0")
{
    std::string text = "[";
    for (std::size_t entry = 0; entry < count; ++entry) {
        text += (entry == at ? value : std::to_string(entry)) + ",";
    }
    return text + "]";
}

std::vector<std::uint16_t> straight()
{
    std::vector<std::uint16_t> entries(kLutEntries);
    std::iota(entries.begin(), entries.end(), 0);
    return entries;
}

TEST(ConfigLut, IsReadFromAnArray)
{
    const Settings settings = good("[lut]\ntable = " + array(512) + "\n").settings;
    EXPECT_EQ(settings.lut, straight());
    EXPECT_EQ(settings.lutMode, kSweepManual);
    EXPECT_EQ(settings.lutBits, 9U);
}

TEST(ConfigLut, IsCalculatedFromACurve)
{
    const Settings settings = good("[lut]\ncurve = \"invert\"\nbits = 8\n").settings;
    EXPECT_EQ(settings.lut, curveEntries({CurveShape::kInvert, 1}, 8));
    EXPECT_EQ(settings.lutMode, kSweepManual);
}

TEST(ConfigLut, IsReadFromAFileInTheConfigurationsFolder)
{
    const kxtest::TemporaryFolder folder;
    std::string text;
    for (const std::uint16_t entry : straight()) {
        text += std::to_string(entry) + "\n";
    }
    kxtest::writeText(folder.file("t.txt"), text);
    const Configuration relative = good("[lut]\nfile = \"t.txt\"\n", {}, folder.path().string());
    EXPECT_EQ(relative.settings.lut, straight());
    EXPECT_EQ(relative.settings.lutMode, kSweepManual);
    EXPECT_EQ(good("[lut]\nfile = \"" + folder.file("t.txt") + "\"\n").settings.lut, straight());
    EXPECT_EQ(good("", {"lut.file=" + folder.file("t.txt")}).settings.lut, straight());
}

TEST(ConfigLut, IsAlwaysOfTheCamerasLength)
{
    EXPECT_EQ(onlyError("[lut]\ntable = [1, 2]\n"),
              "camera.toml:2: lut.table = [ 1, 2 ]: holds 2 values, a table has 512");
    for (const auto& [count, reason] :
         {std::pair{0, "holds 0 values"}, std::pair{511, "holds 511 values"},
          std::pair{513, "holds 513 values"}}) {
        const std::string error =
            onlyError("[lut]\ntable = " + array(static_cast<std::size_t>(count)) + "\n");
        EXPECT_TRUE(error.ends_with(std::string(reason) + ", a table has 512")) << error;
    }
}

TEST(ConfigLut, NamesTheEntryThatIsWrong)
{
    const std::string before = "camera.toml:2: lut.table = ";
    for (const char* value : {"-1", "65536", "1.5", "\"7\""}) {
        const std::string error = onlyError("[lut]\ntable = " + array(512, 37, value) + "\n");
        EXPECT_TRUE(error.starts_with(before)) << error;
        EXPECT_TRUE(error.ends_with(": entry 37 is not a whole number from 0 to 65535")) << error;
    }
    const std::string error =
        onlyError("[lut]\nbits = 10\ntable = " + array(512, 37, "1024") + "\n");
    EXPECT_TRUE(error.starts_with("camera.toml:3: lut.table = [ 0, 1, ")) << error;
    EXPECT_TRUE(error.ends_with("...: entry 37 is \"1024\", expected a whole number from 0 to 1023 "
                                "(lut.bits is 10)"))
        << error;
}

TEST(ConfigLut, NamesTheFileAndTheLineThatAreWrong)
{
    const kxtest::TemporaryFolder folder;
    const std::string path = folder.file("t.txt");
    kxtest::writeText(path, "1\n2\nthree\n");
    EXPECT_EQ(onlyError("[lut]\nfile = \"t.txt\"\n", {}, folder.path().string()),
              "camera.toml:2: lut.file = \"" + path + "\": " + path +
                  ":3: entry 2 is \"three\", expected a whole number from 0 to 511 (lut.bits is "
                  "9)");
    EXPECT_EQ(onlyError("", {"lut.file=no/such.bin"}),
              "--set lut.file=no/such.bin: lut.file = \"" +
                  std::filesystem::absolute("no/such.bin").string() +
                  "\": no/such.bin: does not exist");
    EXPECT_EQ(onlyError("[lut]\nfile = \"\"\n"),
              "camera.toml:2: lut.file = \"\": expected the name of a file in quotes");
    EXPECT_EQ(onlyError("[lut]\ntable = \"t.txt\"\n"),
              "camera.toml:2: lut.table = \"t.txt\": expected an array of 512 whole numbers from 0 "
              "to 65535 (a file's name goes to lut.file)");
    EXPECT_EQ(onlyError("[lut]\ncurve = \"contrast 99\"\n"),
              "camera.toml:2: lut.curve = \"contrast 99\": expected one of \"linear\", \"invert\", "
              "\"contrast S\" with S from 0.1 to 20, \"gamma G\" with G from 0.1 to 10");
}

TEST(ConfigLut, HasOneSource)
{
    EXPECT_EQ(onlyError("[lut]\ncurve = \"invert\"\nfile = \"t.txt\"\n", {}, "/folder"),
              "camera.toml:2: lut.curve = \"invert\": lut.file is given too (camera.toml:3); a "
              "table has one source");
    EXPECT_EQ(onlyError("[lut]\ntable = " + array(512) + "\n", {"lut.curve=linear"}),
              "--set lut.curve=linear: lut.curve = \"linear\": lut.table is given too "
              "(camera.toml:2); a table has one source");
}

TEST(ConfigLut, NoSourceIsNoTable)
{
    const Settings settings = good("[lut]\nmode = \"manual\"\nbits = 12\n").settings;
    EXPECT_TRUE(settings.lut.empty());
    EXPECT_EQ(settings.lutMode, kSweepManual);
    EXPECT_EQ(settings.lutBits, 12U);
}

TEST(ConfigLut, EachSourceIsDescribedSoThatItCanBeReadAgain)
{
    const kxtest::TemporaryFolder folder;
    std::string numbers;
    for (const std::uint16_t entry : straight()) {
        numbers += std::to_string(entry) + "\n";
    }
    kxtest::writeText(folder.file("t.txt"), numbers);
    for (const std::string& source : {"table = " + array(512), std::string("file = \"t.txt\""),
                                      std::string("curve = \"contrast 2.5\"")}) {
        const Configuration first =
            good("[lut]\n" + source + "\nbits = 10\n", {}, folder.path().string());
        const std::string text = describeConfiguration(first);
        const Configuration second = good(text);
        EXPECT_EQ(second.settings.lut, first.settings.lut) << text;
        EXPECT_EQ(describeConfiguration(second), text);
    }
}

} // namespace
} // namespace kxhost
