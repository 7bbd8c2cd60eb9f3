// Named curves: their words, and every value that they give.
#include "config/lut_curve.h"
#include "config/settings.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kxhost {
namespace {

/// Whole number division, rounded to nearest, half up.
std::uint64_t divided(std::uint64_t value, std::uint64_t by)
{
    return (2 * value + by) / (2 * by);
}

std::vector<std::uint16_t> entriesOf(std::string_view text, unsigned bits = 9)
{
    const auto curve = parseCurve(text);
    EXPECT_TRUE(curve) << text;
    return curveEntries(curve.value_or(LutCurve{}), bits);
}

TEST(LutCurve, LinearLeavesNineBitsAsTheyAre)
{
    const auto entries = entriesOf("linear");
    ASSERT_EQ(entries.size(), kLutEntries);
    for (std::size_t index = 0; index < kLutEntries; ++index) {
        EXPECT_EQ(entries[index], index);
    }
}

TEST(LutCurve, InvertTurnsTheTableAround)
{
    const auto entries = entriesOf("invert");
    for (std::size_t index = 0; index < kLutEntries; ++index) {
        EXPECT_EQ(entries[index], 511 - index);
    }
}

TEST(LutCurve, ContrastIsAQuotientOfPowers)
{
    const auto entries = entriesOf("contrast 2");
    for (std::uint64_t index = 0; index < kLutEntries; ++index) {
        const std::uint64_t up = index * index;
        const std::uint64_t down = (511 - index) * (511 - index);
        EXPECT_EQ(entries[index], divided(511 * up, up + down)) << index;
    }
}

TEST(LutCurve, ContrastIsAsSteepInTheMiddleAsItsStrengthSays)
{
    for (const auto& [text, strength] :
         {std::pair{"contrast 0.5", 0.5}, {"contrast 3", 3.0}, {"contrast 8", 8.0}}) {
        const auto entries = entriesOf(text, 16);
        const double slope = (entries[256] - entries[255]) / (largestLutValue(16) / 511.0);
        EXPECT_NEAR(slope, strength, 0.02 * strength) << text;
    }
}

TEST(LutCurve, GammaIsARootOfTheInput)
{
    const auto darker = entriesOf("gamma 0.5"); // the square
    for (std::uint64_t index = 0; index < kLutEntries; ++index) {
        EXPECT_EQ(darker[index], divided(index * index, 511)) << index;
    }
    const auto lighter = entriesOf("gamma 2"); // the square root
    for (std::uint64_t index = 0; index < kLutEntries; ++index) {
        // |v - sqrt(511 i)| <= 1/2, squared and without fractions.
        const std::uint64_t square = index * 4 * 511;
        const std::uint64_t value = lighter[index];
        EXPECT_LE(square, (2 * value + 1) * (2 * value + 1)) << index;
        EXPECT_TRUE(value == 0 || square >= (2 * value - 1) * (2 * value - 1)) << index;
    }
}

TEST(LutCurve, AParameterOfOneIsTheStraightLine)
{
    EXPECT_EQ(entriesOf("gamma 1"), entriesOf("linear"));
    EXPECT_EQ(entriesOf("contrast 1"), entriesOf("linear"));
}

TEST(LutCurve, FillsTheValuesThatTheCameraCanHoldInAnyWidth)
{
    for (unsigned bits = 1; bits <= 16; ++bits) {
        for (const char* text :
             {"linear", "contrast 20", "contrast 0.1", "gamma 10", "gamma 0.1"}) {
            const auto entries = entriesOf(text, bits);
            ASSERT_EQ(entries.size(), kLutEntries);
            EXPECT_EQ(entries.front(), 0U) << text << bits;
            EXPECT_EQ(entries.back(), largestLutValue(bits)) << text << bits;
            EXPECT_TRUE(std::ranges::is_sorted(entries)) << text << bits;
        }
    }
}

TEST(LutCurve, TheLargestValueDoesNotRoundUpToTheTenthBit)
{
    EXPECT_EQ(largestLutValue(1), 1U);
    EXPECT_EQ(largestLutValue(8), 255U);
    EXPECT_EQ(largestLutValue(9), 511U);
    for (unsigned bits = 10; bits <= 16; ++bits) {
        const auto onCamera = [bits](unsigned value) {
            return (value + (1U << (bits - 10))) >> (bits - 9);
        };
        EXPECT_EQ(onCamera(largestLutValue(bits)), 511U) << bits;
        EXPECT_EQ(onCamera(largestLutValue(bits) + 1), 512U) << bits;
    }
}

TEST(LutCurve, WordsReadBack)
{
    for (const char* text : {"linear", "invert", "contrast 2.5", "gamma 0.45"}) {
        const auto curve = parseCurve(text);
        ASSERT_TRUE(curve) << text;
        EXPECT_EQ(curveText(*curve), text);
    }
    EXPECT_TRUE(parseCurve("contrast  0.1"));
    EXPECT_TRUE(parseCurve("contrast 20"));
    EXPECT_TRUE(parseCurve("gamma 0.1"));
    EXPECT_TRUE(parseCurve("gamma 10"));
}

TEST(LutCurve, RefusesWhatIsNoCurve)
{
    for (const char* text : {"",
                             " ",
                             "Linear",
                             "linear 1",
                             "linear ",
                             "invert 2",
                             "contrast",
                             "contrast ",
                             "contrast x",
                             "contrast 0.09",
                             "contrast 20.1",
                             "contrast nan",
                             "contrast 2 3",
                             "gamma",
                             "gamma 0",
                             "gamma 10.1",
                             "gamma inf",
                             "gamma -1",
                             "gamma2",
                             "cubic 3"}) {
        EXPECT_FALSE(parseCurve(text)) << "\"" << text << "\"";
    }
    EXPECT_EQ(knownCurves(), "one of \"linear\", \"invert\", \"contrast S\" with S from 0.1 to 20, "
                             "\"gamma G\" with G from 0.1 to 10");
}

} // namespace
} // namespace kxhost
