// Look-up tables from files: good ones, and each way to be malformed.
#include "config/lut_file.h"
#include "config/settings.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <ostream>

namespace kxhost {
namespace {

using Entries = std::vector<std::uint16_t>;

/// Entries 0, 1, 2 ... `count` - 1 as text, one per line.
std::string lines(std::size_t count)
{
    std::string text;
    for (std::size_t entry = 0; entry < count; ++entry) {
        text += std::to_string(entry) + "\n";
    }
    return text;
}

/// `count` 16-bit values, low byte first.
std::string bytes(std::size_t count, unsigned (*value)(std::size_t))
{
    std::string content;
    for (std::size_t entry = 0; entry < count; ++entry) {
        content += static_cast<char>(value(entry) & 0xFFU);
        content += static_cast<char>(value(entry) >> 8U);
    }
    return content;
}

unsigned itself(std::size_t entry)
{
    return static_cast<unsigned>(entry);
}

class LutFile : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& content)
    {
        kxtest::writeText(folder_.file(name), content);
        return folder_.file(name);
    }

    kxtest::TemporaryFolder folder_;
};

TEST_F(LutFile, ReadsNumbersPartedByAnything)
{
    std::string text = "# a table\n\n";
    for (int entry = 0; entry < 512; ++entry) {
        text += std::to_string(entry) + (entry % 4 == 0   ? "\n"
                                         : entry % 4 == 1 ? ", "
                                         : entry % 4 == 2 ? " ;\t"
                                                          : " # comment, 5\r\n");
    }
    Entries entries;
    EXPECT_EQ(readLutFile(write("t.txt", text), 9, entries), "");
    ASSERT_EQ(entries.size(), kLutEntries);
    for (std::size_t index = 0; index < kLutEntries; ++index) {
        EXPECT_EQ(entries[index], index);
    }
}

TEST_F(LutFile, TheLastLineMayLackItsEnd)
{
    std::string text = lines(512);
    text.pop_back();
    Entries entries;
    EXPECT_EQ(readLutFile(write("table", text), 9, entries), "");
    EXPECT_EQ(entries.size(), kLutEntries);
}

TEST_F(LutFile, ReadsLittleEndianValuesByTheNameOfTheFile)
{
    const std::string content =
        bytes(512, [](std::size_t entry) { return static_cast<unsigned>(entry * 128 + 7); });
    for (const char* name : {"t.bin", "t.raw", "t.u16", "t.BIN"}) {
        Entries entries;
        EXPECT_EQ(readLutFile(write(name, content), 16, entries), "") << name;
        ASSERT_EQ(entries.size(), kLutEntries);
        EXPECT_EQ(entries[0], 7U);
        EXPECT_EQ(entries[511], 511U * 128 + 7);
    }
}

TEST_F(LutFile, EachValueMayUseAllItsBits)
{
    std::string text;
    for (int entry = 0; entry < 512; ++entry) {
        text += "65535 ";
    }
    Entries entries;
    EXPECT_EQ(readLutFile(write("t.txt", text), 16, entries), "");
    EXPECT_EQ(entries[511], 65535U);
}

/// A file that is refused, and what follows its path in the message.
struct Malformed {
    const char* title;
    const char* name;
    std::function<std::string()> content;
    const char* message;
};

void PrintTo(const Malformed& each, std::ostream* out)
{
    *out << each.title;
}

class MalformedLutFile : public LutFile, public testing::WithParamInterface<Malformed> {};

TEST_P(MalformedLutFile, IsRefusedAndNothingChanges)
{
    const std::string path = write(GetParam().name, GetParam().content());
    Entries entries = {1, 2, 3};
    EXPECT_EQ(readLutFile(path, 9, entries), path + GetParam().message);
    EXPECT_EQ(entries, (Entries{1, 2, 3}));
}

INSTANTIATE_TEST_SUITE_P(
    Text, MalformedLutFile,
    testing::Values(
        Malformed{"Empty", "t.txt", [] { return ""; }, ": holds 0 values, a table has 512"},
        Malformed{"OnlyComments", "t.txt", [] { return "# 1\n#2\n"; },
                  ": holds 0 values, a table has 512"},
        Malformed{"TooShort", "t.txt", [] { return lines(511); },
                  ": holds 511 values, a table has 512"},
        Malformed{"TooLong", "t.txt", [] { return lines(512) + "\n9 10"; },
                  ":514: \"9\" is one value too many, a table has 512"},
        Malformed{"NoNumber", "t.txt", [] { return "1\n2 x3\n4"; },
                  ":2: entry 2 is \"x3\", expected a whole number from 0 to 511 (lut.bits is 9)"},
        Malformed{"HalfANumber", "t.txt", [] { return "12a"; },
                  ":1: entry 0 is \"12a\", expected a whole number from 0 to 511 (lut.bits is 9)"},
        Malformed{"Fraction", "t.txt", [] { return "1 2 3.5"; },
                  ":1: entry 2 is \"3.5\", expected a whole number from 0 to 511 (lut.bits is 9)"},
        Malformed{"Negative", "t.txt", [] { return "0\n0\n-5\n"; },
                  ":3: entry 2 is \"-5\", expected a whole number from 0 to 511 (lut.bits is 9)"},
        Malformed{"TooBig", "t.txt", [] { return "511 512"; },
                  ":1: entry 1 is \"512\", expected a whole number from 0 to 511 (lut.bits is 9)"},
        Malformed{"MoreThan16Bits", "t.txt", [] { return "65536"; },
                  ":1: entry 0 is \"65536\", expected a whole number from 0 to 511 "
                  "(lut.bits is 9)"},
        Malformed{"ALongWord", "t.txt", [] { return std::string(30, '9'); },
                  ":1: entry 0 is \"99999999999999999999\"..., expected a whole number from 0 to "
                  "511 (lut.bits is 9)"},
        Malformed{"Quotes", "t.txt", [] { return "\"1\""; },
                  ":1: entry 0 is \"\\\"1\\\"\", expected a whole number from 0 to 511 "
                  "(lut.bits is 9)"},
        Malformed{"BinaryUnderATextsName", "t.txt", [] { return bytes(512, itself); },
                  ": holds no text; the name of a binary table ends in .bin, .raw or .u16"},
        Malformed{"Huge", "t.txt", [] { return std::string((1U << 20) + 1, ' '); },
                  ": is too large for a table"}),
    [](const auto& each) { return std::string(each.param.title); });

INSTANTIATE_TEST_SUITE_P(
    Binary, MalformedLutFile,
    testing::Values(
        Malformed{"Empty", "t.bin", [] { return ""; }, ": is 0 bytes long, a binary table 1024"},
        Malformed{"TooShort", "t.raw", [] { return bytes(512, itself).substr(1); },
                  ": is 1023 bytes long, a binary table 1024"},
        Malformed{"TooLong", "t.u16", [] { return bytes(513, itself); },
                  ": is 1026 bytes long, a binary table 1024"},
        Malformed{"TooBig", "t.bin",
                  [] { return bytes(512, [](std::size_t at) { return at == 300 ? 512U : 511U; }); },
                  " at byte 600: entry 300 is \"512\", expected a whole number from 0 to 511 "
                  "(lut.bits is 9)"},
        Malformed{"Text", "t.bin", [] { return lines(512); },
                  ": is 1938 bytes long, a binary table 1024"}),
    [](const auto& each) { return std::string(each.param.title); });

TEST_F(LutFile, RefusesWhatIsNoFile)
{
    Entries entries;
    const std::string missing = folder_.file("missing.txt");
    EXPECT_EQ(readLutFile(missing, 9, entries), missing + ": does not exist");
    const std::string folder = folder_.file("folder.bin");
    std::filesystem::create_directory(folder);
    EXPECT_EQ(readLutFile(folder, 9, entries), folder + ": is a folder");
    EXPECT_EQ(readLutFile("/dev/null", 9, entries), "/dev/null: is no ordinary file");
    const std::string below = write("t.txt", "") + "/below.txt";
    EXPECT_EQ(readLutFile(below, 9, entries), below + ": does not exist");
}

} // namespace
} // namespace kxhost
