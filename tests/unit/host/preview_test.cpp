// Tests of small pictures of frames.
#include "picture/preview.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using kxhost::Picture;
using kxhost::PreviewMaker;
using Bytes = std::vector<std::uint8_t>;

Picture preview(const char* codec, std::uint32_t width, std::uint32_t height, const Bytes& pixels,
                std::uint32_t longest)
{
    Picture out;
    PreviewMaker().make(*kxhost::findCodec(codec), width, height, pixels.data(), longest, out);
    EXPECT_EQ(out.bitDepth, 8U);
    EXPECT_EQ(out.significantBits, 8U);
    EXPECT_EQ(out.bytes.size(), out.lineBytes() * out.height);
    return out;
}

TEST(Preview, EachPixelIsTheRoundedMeanOfThoseItCovers)
{
    const Picture half = preview("MONO8T", 4, 2, {0, 2, 10, 10, 1, 3, 10, 13}, 2);
    EXPECT_EQ(half.width, 2U);
    EXPECT_EQ(half.height, 1U);
    EXPECT_EQ(half.channels, 1U);
    EXPECT_EQ(half.bytes, (Bytes{2, 11})); // 1.5 and 10.75
}

TEST(Preview, AFrameThatIsSmallStaysAsItIs)
{
    const Bytes pixels = {1, 2, 3, 4, 5, 6};
    const Picture same = preview("MONO8T", 3, 2, pixels, 160);
    EXPECT_EQ(same.width, 3U);
    EXPECT_EQ(same.height, 2U);
    EXPECT_EQ(same.bytes, pixels);
}

TEST(Preview, TheLongerSideCountsAndTheOtherIsInProportion)
{
    const Picture wide = preview("MONO8T", 640, 480, Bytes(640 * 480, 7), 160);
    EXPECT_EQ(wide.width, 160U);
    EXPECT_EQ(wide.height, 120U);
    const Picture tall = preview("MONO8T", 30, 301, Bytes(30 * 301, 7), 100);
    EXPECT_EQ(tall.width, 10U);
    EXPECT_EQ(tall.height, 100U);
    const Picture line = preview("MONO8T", 1000, 1, Bytes(1000, 7), 10);
    EXPECT_EQ(line.width, 10U);
    EXPECT_EQ(line.height, 1U);
}

TEST(Preview, TwelveBitsBecomeEight)
{
    // 0x100 and 0x1FF, whose mean is 0x17F.
    const Picture packed = preview("MONO12PT", 2, 1, {0x10, 0xF0, 0x1F}, 1);
    EXPECT_EQ(packed.bytes, (Bytes{0x17}));
    const Picture words = preview("MONO12T", 2, 1, {0x00, 0x10, 0xF0, 0x1F}, 1);
    EXPECT_EQ(words.bytes, (Bytes{0x17}));
}

TEST(Preview, ColoursStayColours)
{
    // A red mosaic: 200 where red stands, 0 elsewhere.
    Bytes mosaic(16 * 16, 0);
    for (std::size_t y = 0; y < 16; y += 2) {
        for (std::size_t x = 1; x < 16; x += 2) {
            mosaic[y * 16 + x] = 200;
        }
    }
    const Picture red = preview("BayerGR8T", 16, 16, mosaic, 2);
    EXPECT_EQ(red.channels, 3U);
    EXPECT_EQ(red.bytes, (Bytes{200, 0, 0, 200, 0, 0, 200, 0, 0, 200, 0, 0}));
    const Picture grey = preview("UYVY", 4, 2, Bytes(16, 128), 2);
    EXPECT_EQ(grey.bytes, (Bytes{128, 128, 128, 128, 128, 128}));
    const Picture four = preview("YUV411T", 4, 2, Bytes(12, 128), 4);
    EXPECT_EQ(four.bytes, Bytes(24, 128));
}

TEST(Preview, AnOddLastLineCountsToo)
{
    const Picture odd = preview("MONO8T", 1, 3, {10, 20, 90}, 3);
    EXPECT_EQ(odd.bytes, (Bytes{10, 20, 90}));
}

TEST(Preview, ALargeFrameLosesLinesButNoPlace)
{
    // 4096 lines, each as bright as its place; 8 lines of the preview, of 512 each.
    constexpr std::uint32_t kLines = 4096;
    Bytes pixels(kLines);
    for (std::uint32_t y = 0; y < kLines; ++y) {
        pixels[y] = static_cast<std::uint8_t>(y / 16);
    }
    const Picture out = preview("MONO8T", 1, kLines, pixels, 8);
    ASSERT_EQ(out.height, 8U);
    for (std::size_t y = 0; y < 8; ++y) {
        const int middle = static_cast<int>(y) * 32 + 16;
        EXPECT_NEAR(out.bytes[y], middle, 8) << y; // few lines stand for all of them
    }
}

TEST(Preview, AMakerServesFramesOfAnySizeAndKind)
{
    PreviewMaker maker;
    Picture out;
    const Bytes grey(100 * 100, 9);
    maker.make(*kxhost::findCodec("MONO8T"), 100, 100, grey.data(), 50, out);
    const Bytes tile = {200, 100, 100, 50};
    maker.make(*kxhost::findCodec("BayerRG8T"), 2, 2, tile.data(), 50, out);
    EXPECT_EQ(out.width, 2U);
    EXPECT_EQ(out.bytes, (Bytes{200, 100, 50, 200, 100, 50, 200, 100, 50, 200, 100, 50}));
}

} // namespace
