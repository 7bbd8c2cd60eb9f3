// Tests of the histogram of a frame.
#include "picture/histogram.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

using kxhost::ChannelHistogram;
using kxhost::Histogram;

Histogram counted(const char* codec, std::uint32_t width, std::uint32_t height,
                  const std::vector<std::uint8_t>& pixels)
{
    kxhost::Picture scratch;
    return kxhost::histogramOf(*kxhost::findCodec(codec), width, height, pixels.data(), scratch);
}

/// A channel whose pixels are one in each of these bins.
ChannelHistogram inBins(const std::vector<std::size_t>& bins, std::uint64_t darkest,
                        std::uint64_t brightest)
{
    ChannelHistogram channel;
    for (const std::size_t bin : bins) {
        ++channel.bins[bin];
    }
    channel.pixels = bins.size();
    channel.darkest = darkest;
    channel.brightest = brightest;
    return channel;
}

TEST(Histogram, GreyPixelsAreCountedByLevel)
{
    const Histogram grey = counted("MONO8T", 3, 2, {0, 1, 1, 254, 255, 255});
    EXPECT_EQ(grey.channels, 1U);
    EXPECT_EQ(grey.levels, 256U);
    EXPECT_EQ(grey.each[0], inBins({0, 1, 1, 254, 255, 255}, 1, 2));
    EXPECT_EQ(grey.each[1], ChannelHistogram());
}

TEST(Histogram, TwelveBitsShareTheBinsAndClipAtTheirOwnEnds)
{
    // 0x000, 0x001, 0x00F, 0x010, 0xFFE, 0xFFF
    const Histogram packed =
        counted("MONO12PT", 6, 1, {0x00, 0x10, 0x00, 0x00, 0x0F, 0x01, 0xFF, 0xFE, 0xFF});
    EXPECT_EQ(packed.channels, 1U);
    EXPECT_EQ(packed.levels, 4096U);
    EXPECT_EQ(packed.each[0], inBins({0, 0, 0, 1, 255, 255}, 1, 1));
    const Histogram words = counted("MONO12T", 3, 1, {0x00, 0x00, 0xE0, 0xFF, 0xF0, 0xFF});
    EXPECT_EQ(words.levels, 4096U);
    EXPECT_EQ(words.each[0], inBins({0, 255, 255}, 1, 1));
}

TEST(Histogram, EachPixelOfAMosaicCountsForItsOwnColour)
{
    const std::vector<std::uint8_t> tile = {10, 20, 30, 40};
    const struct {
        const char* codec;
        std::vector<std::size_t> red, green, blue;
    } cases[] = {{"BayerRG8T", {10}, {20, 30}, {40}},
                 {"BayerGR8T", {20}, {10, 40}, {30}},
                 {"BayerGB8T", {30}, {10, 40}, {20}},
                 {"BayerBG8T", {40}, {20, 30}, {10}}};
    for (const auto& each : cases) {
        const Histogram colour = counted(each.codec, 2, 2, tile);
        EXPECT_EQ(colour.channels, 3U) << each.codec;
        EXPECT_EQ(colour.each[0], inBins(each.red, 0, 0)) << each.codec;
        EXPECT_EQ(colour.each[1], inBins(each.green, 0, 0)) << each.codec;
        EXPECT_EQ(colour.each[2], inBins(each.blue, 0, 0)) << each.codec;
    }
}

TEST(Histogram, AMosaicOfOddSizeIsCountedWhole)
{
    const Histogram colour = counted("BayerRG8T", 3, 3, {1, 2, 1, 2, 3, 2, 1, 2, 255});
    EXPECT_EQ(colour.each[0], inBins({1, 1, 1, 255}, 0, 1));
    EXPECT_EQ(colour.each[1], inBins({2, 2, 2, 2}, 0, 0));
    EXPECT_EQ(colour.each[2], inBins({3}, 0, 0));
}

TEST(Histogram, YuvIsCountedAsRgb)
{
    // Grey of 128, then red as saturated as it gets.
    const Histogram grey = counted("UYVY", 2, 1, {128, 128, 128, 128});
    EXPECT_EQ(grey.channels, 3U);
    for (const ChannelHistogram& channel : grey.each) {
        EXPECT_EQ(channel, inBins({128, 128}, 0, 0));
    }
    const Histogram red = counted("YUV411T", 4, 1, {128, 255, 255, 255, 255, 255});
    EXPECT_EQ(red.each[0], inBins({255, 255, 255, 255}, 0, 4));
    EXPECT_EQ(red.each[1].brightest, 0U);
    EXPECT_EQ(red.each[2], inBins({255, 255, 255, 255}, 0, 4));
}

TEST(Histogram, EveryPixelIsInOneBin)
{
    std::vector<std::uint8_t> pixels(64 * 5);
    std::iota(pixels.begin(), pixels.end(), std::uint8_t{0});
    const Histogram colour = counted("BayerGB8T", 64, 5, pixels);
    std::uint64_t all = 0;
    for (const ChannelHistogram& channel : colour.each) {
        EXPECT_EQ(std::accumulate(channel.bins.begin(), channel.bins.end(), std::uint64_t{0}),
                  channel.pixels);
        all += channel.pixels;
    }
    EXPECT_EQ(all, pixels.size());
}

} // namespace
