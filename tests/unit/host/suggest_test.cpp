// Suggestions for words that nobody knows.
#include "config/suggest.h"

#include <gtest/gtest.h>

#include <array>

namespace kxhost {
namespace {

TEST(Suggest, CountsEdits)
{
    EXPECT_EQ(editDistance("gain", "gain"), 0U);
    EXPECT_EQ(editDistance("gian", "gain"), 1U);
    EXPECT_EQ(editDistance("gai", "gain"), 1U);
    EXPECT_EQ(editDistance("gains", "gain"), 1U);
    EXPECT_EQ(editDistance("", "gain"), 4U);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

TEST(Suggest, OffersTheNearestWordOrNone)
{
    constexpr std::array<std::string_view, 3> known = {"frame_rate", "exposure", "gain"};
    EXPECT_EQ(nearestWord("framerate", known), "frame_rate");
    EXPECT_EQ(nearestWord("expossure", known), "exposure");
    EXPECT_EQ(nearestWord("gain", known), "gain");
    EXPECT_EQ(nearestWord("turbo", known), "");
    EXPECT_EQ(nearestWord("", known), "");
}

} // namespace
} // namespace kxhost
