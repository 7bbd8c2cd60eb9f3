// The table that spreads grey levels, on distributions of which the answer is known.
#include "config/lut_curve.h"
#include "grab/equalisation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <random>
#include <vector>

namespace kxhost {
namespace {

using Cdf = std::vector<std::uint32_t>;
using Table = std::vector<std::uint16_t>;

constexpr unsigned kValueBits = 12;
constexpr double kTop = 4091; // rounded to 9 bits this is 511
constexpr double kNoLimit = 4096;

Cdf cumulated(const std::vector<std::uint32_t>& histogram)
{
    Cdf cdf(histogram.size());
    std::partial_sum(histogram.begin(), histogram.end(), cdf.begin());
    return cdf;
}

Table tableOf(const std::vector<std::uint32_t>& histogram, double clipLimit,
              std::size_t entries = 256)
{
    Table table(entries);
    equalise(cumulated(histogram), clipLimit, kValueBits, table);
    return table;
}

Table straightLine(std::size_t entries)
{
    Table table(entries);
    for (std::size_t entry = 0; entry < entries; ++entry) {
        table[entry] = static_cast<std::uint16_t>(
            std::lround(static_cast<double>(entry) * kTop / static_cast<double>(entries - 1)));
    }
    return table;
}

/// Frequencies like those of a picture that is dark and low in contrast.
std::vector<std::uint32_t> darkHistogram()
{
    std::vector<std::uint32_t> histogram(256);
    for (std::size_t level = 20; level < 60; ++level) {
        histogram[level] = 1000 + 37 * static_cast<std::uint32_t>(level % 7);
    }
    return histogram;
}

TEST(Equalisation, TheTopBecomesTheCamerasLargestValue)
{
    EXPECT_EQ((largestLutValue(kValueBits) + 4) >> 3U, 511U);
    EXPECT_EQ(largestLutValue(kValueBits), kTop);
}

TEST(Equalisation, EqualFrequenciesGiveTheStraightLine)
{
    EXPECT_EQ(tableOf(std::vector<std::uint32_t>(256, 10), kNoLimit), straightLine(256));
    EXPECT_EQ(tableOf(std::vector<std::uint32_t>(4096, 3), 2, 4096), straightLine(4096));
}

TEST(Equalisation, TwoPeaksGoToTheEnds)
{
    std::vector<std::uint32_t> histogram(256);
    histogram[100] = 500;
    histogram[140] = 500;
    const Table table = tableOf(histogram, kNoLimit);
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[139], 0);
    EXPECT_EQ(table[140], kTop);
    EXPECT_EQ(table[255], kTop);
}

TEST(Equalisation, ThreePeaksKeepTheirShares)
{
    std::vector<std::uint32_t> histogram(256);
    histogram[10] = 200;
    histogram[20] = 300;
    histogram[30] = 100;
    const Table table = tableOf(histogram, kNoLimit);
    EXPECT_EQ(table[10], 0);
    EXPECT_EQ(table[20], std::lround(kTop * 300 / 400));
    EXPECT_EQ(table[30], kTop);
}

TEST(Equalisation, OneLevelOrNoneGivesTheStraightLine)
{
    std::vector<std::uint32_t> histogram(256);
    EXPECT_EQ(tableOf(histogram, 4), straightLine(256));
    histogram[77] = 1000;
    EXPECT_EQ(tableOf(histogram, kNoLimit), straightLine(256));
}

TEST(Equalisation, ALimitOfOneGivesTheStraightLine)
{
    EXPECT_EQ(tableOf(darkHistogram(), 1), straightLine(256));
    std::vector<std::uint32_t> single(256);
    single[200] = 12345;
    EXPECT_EQ(tableOf(single, 1), straightLine(256));
}

/// The steepest step of the table, in steps of the straight line.
double steepest(const Table& table)
{
    int most = 0;
    for (std::size_t entry = 1; entry < table.size(); ++entry) {
        most = std::max(most, table[entry] - table[entry - 1]);
    }
    return most * static_cast<double>(table.size() - 1) / kTop;
}

TEST(Equalisation, TheLimitIsTheSteepestPart)
{
    const double rounding = 255 / kTop;
    EXPECT_GT(steepest(tableOf(darkHistogram(), kNoLimit)), 6.0);
    for (const double limit : {1.5, 2.0, 4.0}) {
        const double found = steepest(tableOf(darkHistogram(), limit));
        EXPECT_LE(found, limit + 0.02 * limit + rounding) << limit;
        EXPECT_GE(found, limit - rounding) << limit;
    }
}

TEST(Equalisation, ADarkPictureIsSpreadOut)
{
    const Table plain = straightLine(256);
    const auto span = [](const Table& table) { return table[59] - table[20]; };
    EXPECT_GT(span(tableOf(darkHistogram(), 4)), 3.5 * span(plain));
    EXPECT_EQ(span(tableOf(darkHistogram(), kNoLimit)), kTop);
}

TEST(Equalisation, NeverFallsAndNeverLeavesItsRange)
{
    std::mt19937 random(20); // NOLINT(cert-msc51-cpp): the same numbers each time
    for (int run = 0; run < 50; ++run) {
        std::vector<std::uint32_t> histogram(4096);
        for (int pixel = 0; pixel < 3000; ++pixel) {
            histogram[random() % (1U << (1 + random() % 12))] +=
                static_cast<std::uint32_t>(random() % 50);
        }
        const double limit = 1 + static_cast<double>(random() % 100) / 10;
        for (const std::size_t entries : {256U, 4096U}) {
            const Table table = tableOf(histogram, limit, entries);
            EXPECT_TRUE(std::is_sorted(table.begin(), table.end()));
            EXPECT_EQ(table.front(), 0);
            EXPECT_EQ(table.back(), kTop);
        }
    }
}

TEST(Equalisation, ATableMayBeFinerOrCoarserThanTheDistribution)
{
    std::vector<std::uint32_t> fine(4096);
    std::vector<std::uint32_t> coarse(256);
    for (std::size_t level = 0; level < fine.size(); ++level) {
        fine[level] = static_cast<std::uint32_t>(level % 256 + level / 64);
        coarse[level / 16] += fine[level];
    }
    EXPECT_EQ(tableOf(fine, kNoLimit, 256), tableOf(coarse, kNoLimit, 256));
    EXPECT_EQ(tableOf(std::vector<std::uint32_t>(256, 16), kNoLimit, 4096), straightLine(4096));
}

// ---- Counting of pixels.

Cdf cumulatedPixels(std::string_view codec, const std::vector<std::uint8_t>& pixels,
                    std::uint32_t width, std::uint32_t height, std::uint32_t pitch)
{
    const Codec& found = *findCodec(codec);
    Cdf cdf(std::size_t{1} << found.bitsPerPixel, 0xDEAD);
    cumulate(found, pixels.data(), width, height, pitch, cdf);
    return cdf;
}

/// How many pixels are of this level exactly.
std::uint32_t countOf(const Cdf& cdf, std::size_t level)
{
    return cdf[level] - (level == 0 ? 0 : cdf[level - 1]);
}

TEST(Cumulation, CountsBytesWithinTheLinesOnly)
{
    // The last column of the pitch is no picture.
    const Cdf cdf = cumulatedPixels("MONO8T", {1, 1, 99, 255, 0, 99}, 2, 2, 3);
    EXPECT_EQ(cdf[0], 1U);
    EXPECT_EQ(cdf[1], 3U);
    EXPECT_EQ(cdf[254], 3U);
    EXPECT_EQ(cdf[255], 4U);
}

TEST(Cumulation, CountsEachPixelOfAMosaic)
{
    EXPECT_EQ(cumulatedPixels("BayerGR8T", {7, 8, 8, 9}, 2, 2, 2)[8], 3U);
}

TEST(Cumulation, UnpacksTwelveBits)
{
    // 0x123 and 0xABC: high bits outside, low bits in the middle.
    const Cdf cdf = cumulatedPixels("MONO12PT", {0x12, 0xC3, 0xAB, 0xFF, 0x0F, 0x00}, 2, 2, 2);
    EXPECT_EQ(cdf.size(), 4096U);
    for (const std::size_t level : {0x123U, 0xABCU, 0xFFFU, 0x000U}) {
        EXPECT_EQ(countOf(cdf, level), 1U) << level;
    }
    EXPECT_EQ(cdf.back(), 4U);
}

TEST(Cumulation, TakesTheLastPixelOfAnOddLine)
{
    // Three pixels are 36 bits; the line takes its fifth byte whole.
    const Cdf cdf = cumulatedPixels(
        "MONO12PT", {0x12, 0xC3, 0xAB, 0x45, 0x06, 0x12, 0xC3, 0xAB, 0x45, 0x07}, 3, 2, 3);
    EXPECT_EQ(countOf(cdf, 0x123), 2U);
    EXPECT_EQ(countOf(cdf, 0xABC), 2U);
    EXPECT_EQ(countOf(cdf, 0x456), 1U);
    EXPECT_EQ(countOf(cdf, 0x457), 1U);
}

TEST(Cumulation, TakesTwelveBitsFromTheTopOfSixteen)
{
    const Cdf cdf = cumulatedPixels("MONO12T", {0x30, 0x12, 0xF0, 0xFF}, 2, 1, 2);
    EXPECT_EQ(cdf.size(), 65536U);
    EXPECT_EQ(cdf[0x122F], 0U);
    EXPECT_EQ(cdf[0x123F], 1U);
    EXPECT_EQ(cdf[0xFFEF], 1U);
    EXPECT_EQ(cdf[0xFFFF], 2U);
}

TEST(Cumulation, TakesTheLuminanceOfColour)
{
    // Y = 16, 32, 48, 64; the colours would be counted as 200.
    const Cdf yuv411 = cumulatedPixels("YUV411T", {200, 16, 32, 200, 48, 64}, 4, 1, 4);
    EXPECT_EQ(yuv411.size(), 4096U);
    EXPECT_EQ(yuv411[16 * 16 - 1], 0U);
    EXPECT_EQ(yuv411[17 * 16 - 1], 1U);
    EXPECT_EQ(yuv411[65 * 16 - 1], 4U);
    const Cdf yuv422 = cumulatedPixels("UYVY", {200, 16, 200, 32, 200, 48, 200, 64}, 4, 1, 4);
    EXPECT_EQ(yuv422.size(), 65536U);
    EXPECT_EQ(yuv422[16 * 256 - 1], 0U);
    EXPECT_EQ(yuv422[17 * 256 - 1], 1U);
    EXPECT_EQ(yuv422[65 * 256 - 1], 4U);
}

TEST(Cumulation, FillsBetweenTheLevelsWithAStraightLine)
{
    const Cdf cdf = cumulatedPixels("YUV411T", std::vector<std::uint8_t>(96, 10), 64, 1, 64);
    EXPECT_EQ(cdf[10 * 16 - 1], 0U);
    EXPECT_EQ(cdf[10 * 16 + 3], 64U * 4 / 16);
    EXPECT_EQ(cdf[10 * 16 + 15], 64U);
}

} // namespace
} // namespace kxhost
