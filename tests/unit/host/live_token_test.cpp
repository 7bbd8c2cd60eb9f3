// Where the token of a live page comes from, and what is none.
#include "live/live_token.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace kxhost {
namespace {

constexpr const char* kVariable = "KXHOST_LIVE_TOKEN";
constexpr const char* kNeeded =
    " holds no token: 16 to 256 characters are needed, letters, digits and signs without spaces.";

class LiveTokenTest : public testing::Test {
protected:
    LiveTokenTest() { unsetenv(kVariable); }
    ~LiveTokenTest() override { unsetenv(kVariable); }

    LiveToken ofFile(const std::string& text) const
    {
        kxtest::writeText(file_, text);
        return readLiveToken(file_);
    }

    kxtest::TemporaryFolder folder_;
    std::string file_ = folder_.file("token");
};

TEST_F(LiveTokenTest, ItIsTheFirstLineOfAFile)
{
    EXPECT_EQ(ofFile("0123456789abcdef").token, "0123456789abcdef");
    EXPECT_EQ(ofFile("0123456789abcdef\r\nmore\n").token, "0123456789abcdef");
    EXPECT_EQ(ofFile(std::string(256, 'x') + "\n").token, std::string(256, 'x'));
}

TEST_F(LiveTokenTest, WhatIsTooShortTooLongOrNotWritableInAHeaderIsNone)
{
    for (const std::string& text :
         {std::string(), std::string("\n0123456789abcdef"), std::string("0123456789abcde"),
          std::string(257, 'x'), std::string("0123456789 abcdef"),
          std::string("0123456789\tabcdef"), std::string("0123456789abcdef\x7f"),
          std::string("0123456789abcd\xc3\xa9\n")}) {
        const LiveToken token = ofFile(text);
        EXPECT_EQ(token.token, "") << text;
        EXPECT_EQ(token.error, file_ + kNeeded) << text;
    }
}

TEST_F(LiveTokenTest, AFileThatCannotBeReadIsSaid)
{
    EXPECT_EQ(readLiveToken(folder_.file("none")).error, "Cannot read the token file " +
                                                             folder_.file("none") +
                                                             ": No such file or directory.");
    EXPECT_EQ(readLiveToken(folder_.path()).error,
              "Cannot read the token file " + folder_.path().string() + ": Is a directory.");
}

TEST_F(LiveTokenTest, WithoutAFileTheEnvironmentHasIt)
{
    EXPECT_EQ(readLiveToken("").token, "");
    EXPECT_EQ(readLiveToken("").error, "");
    setenv(kVariable, "fedcba9876543210", 1);
    EXPECT_EQ(readLiveToken("").token, "fedcba9876543210");
    EXPECT_EQ(ofFile("0123456789abcdef").token, "0123456789abcdef");
    setenv(kVariable, "", 1);
    EXPECT_EQ(readLiveToken("").error, std::string(kVariable) + kNeeded);
}

} // namespace
} // namespace kxhost
