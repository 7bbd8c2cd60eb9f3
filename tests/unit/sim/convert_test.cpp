// Whole pictures between the pixel formats.
#include "scene/convert.h"
#include "scene/pixel_format.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace FlyCapture2;
using fcsim::PictureShape;
using Bytes = std::vector<std::uint8_t>;

constexpr std::array kFormats = {PIXEL_FORMAT_MONO8,   PIXEL_FORMAT_MONO12,  PIXEL_FORMAT_MONO16,
                                 PIXEL_FORMAT_RAW8,    PIXEL_FORMAT_RAW16,   PIXEL_FORMAT_411YUV8,
                                 PIXEL_FORMAT_422YUV8, PIXEL_FORMAT_444YUV8, PIXEL_FORMAT_RGB8,
                                 PIXEL_FORMAT_BGR,     PIXEL_FORMAT_BGRU};

PictureShape shapeOf(PixelFormat format, unsigned cols, unsigned rows, BayerTileFormat tile = NONE)
{
    return {rows, cols, static_cast<unsigned>(fcsim::packedRowSize(format, cols)), format, tile};
}

Bytes converted(const PictureShape& shape, const Bytes& pixels, PixelFormat target,
                ColorProcessingAlgorithm algorithm = DEFAULT)
{
    EXPECT_EQ(fcsim::conversionObstacle(shape, target), "");
    Bytes out(fcsim::packedSize(target, shape.cols, shape.rows), 0xAA);
    fcsim::convertPicture(shape, pixels.data(), target, algorithm, out.data());
    return out;
}

/// Grey survives any format and comes back: 8-bit formats keep the upper 8 bits.
TEST(Convert, GreyThroughEveryPairOfFormats)
{
    const Bytes grey = {0, 1, 127, 128, 129, 254, 255, 60};
    const PictureShape mono = shapeOf(PIXEL_FORMAT_MONO8, 4, 2);
    for (const PixelFormat first : kFormats) {
        const Bytes there = converted(mono, grey, first);
        for (const PixelFormat second : kFormats) {
            const Bytes further = converted(shapeOf(first, 4, 2), there, second);
            EXPECT_EQ(converted(shapeOf(second, 4, 2), further, PIXEL_FORMAT_MONO8), grey)
                << fcsim::pixelFormatName(first) << " to " << fcsim::pixelFormatName(second);
        }
    }
}

TEST(Convert, TwelveBitsSurviveBetweenDeepFormats)
{
    const Bytes packed = {0x12, 0xC3, 0xAB};
    const Bytes deep = {0x30, 0x12, 0xC0, 0xAB};
    EXPECT_EQ(converted(shapeOf(PIXEL_FORMAT_MONO12, 2, 1), packed, PIXEL_FORMAT_MONO16), deep);
    EXPECT_EQ(converted(shapeOf(PIXEL_FORMAT_MONO16, 2, 1), deep, PIXEL_FORMAT_MONO12), packed);
    EXPECT_EQ(converted(shapeOf(PIXEL_FORMAT_MONO12, 2, 1), packed, PIXEL_FORMAT_MONO8),
              (Bytes{0x12, 0xAB}));
}

TEST(Convert, ColourFormatsAmongThemselves)
{
    const Bytes rgb = {255, 0, 0, 0, 0, 255};
    const PictureShape shape = shapeOf(PIXEL_FORMAT_RGB8, 2, 1);
    EXPECT_EQ(converted(shape, rgb, PIXEL_FORMAT_BGR), (Bytes{0, 0, 255, 255, 0, 0}));
    EXPECT_EQ(converted(shape, rgb, PIXEL_FORMAT_BGRU), (Bytes{0, 0, 255, 255, 255, 0, 0, 255}));
    EXPECT_EQ(converted(shape, rgb, PIXEL_FORMAT_444YUV8), (Bytes{85, 76, 255, 255, 28, 107}));
    EXPECT_EQ(converted(shape, rgb, PIXEL_FORMAT_422YUV8), (Bytes{170, 76, 181, 28}));
    EXPECT_EQ(converted(shape, rgb, PIXEL_FORMAT_MONO8), (Bytes{76, 28}));
}

TEST(Convert, YuvKeepsItsSamplesInAWiderFormat)
{
    EXPECT_EQ(
        converted(shapeOf(PIXEL_FORMAT_422YUV8, 2, 1), {3, 10, 250, 20}, PIXEL_FORMAT_444YUV8),
        (Bytes{3, 10, 250, 3, 20, 250}));
}

TEST(Convert, RawWithTileBecomesColour)
{
    // A uniform colour behind each tile, 4 x 4 pixels.
    for (const BayerTileFormat tile : {RGGB, GRBG, GBRG, BGGR}) {
        const std::string letters[] = {"", "RGGB", "GRBG", "GBRG", "BGGR"};
        Bytes raw;
        for (unsigned at = 0; at < 16; ++at) {
            const char letter = letters[tile][at / 4 % 2 * 2 + at % 2];
            raw.push_back(letter == 'R' ? 200 : letter == 'G' ? 100 : 50);
        }
        Bytes expected;
        for (unsigned at = 0; at < 16; ++at) {
            expected.insert(expected.end(), {200, 100, 50});
        }
        const PictureShape shape = shapeOf(PIXEL_FORMAT_RAW8, 4, 4, tile);
        EXPECT_EQ(converted(shape, raw, PIXEL_FORMAT_RGB8), expected) << letters[tile];
        EXPECT_EQ(converted(shape, raw, PIXEL_FORMAT_RGB8, NEAREST_NEIGHBOR), expected);
    }
}

TEST(Convert, MethodsDifferAtAnEdge)
{
    const Bytes raw = {200, 200, 0, 0, 200, 200, 0, 0};
    const PictureShape shape = shapeOf(PIXEL_FORMAT_RAW8, 4, 2, RGGB);
    const Bytes nearest = converted(shape, raw, PIXEL_FORMAT_RGB8, NEAREST_NEIGHBOR);
    EXPECT_EQ(nearest, (Bytes{200, 200, 200, 200, 200, 200, 0, 0, 0, 0, 0, 0,
                              200, 200, 200, 200, 200, 200, 0, 0, 0, 0, 0, 0}));
    const Bytes bilinear = converted(shape, raw, PIXEL_FORMAT_RGB8, HQ_LINEAR);
    EXPECT_EQ(bilinear[3], 100); // red of pixel 1: between 200 and 0
    EXPECT_NE(nearest, bilinear);
}

TEST(Convert, RawWithoutTileOrProcessingIsGrey)
{
    const Bytes raw = {10, 20, 30, 40};
    const Bytes grey = {10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40};
    EXPECT_EQ(converted(shapeOf(PIXEL_FORMAT_RAW8, 2, 2), raw, PIXEL_FORMAT_RGB8), grey);
    EXPECT_EQ(converted(shapeOf(PIXEL_FORMAT_RAW8, 2, 2, RGGB), raw, PIXEL_FORMAT_RGB8,
                        NO_COLOR_PROCESSING),
              grey);
}

TEST(Convert, RawToRawKeepsTheMosaic)
{
    const PictureShape shape = shapeOf(PIXEL_FORMAT_RAW8, 2, 2, RGGB);
    EXPECT_TRUE(fcsim::keepsMosaic(shape, PIXEL_FORMAT_RAW16));
    EXPECT_EQ(converted(shape, {1, 2, 3, 4}, PIXEL_FORMAT_RAW16), (Bytes{0, 1, 0, 2, 0, 3, 0, 4}));
    EXPECT_FALSE(fcsim::keepsMosaic(shape, PIXEL_FORMAT_MONO16));
}

TEST(Convert, PaddingBetweenRowsIsSkipped)
{
    const PictureShape shape{2, 2, 3, PIXEL_FORMAT_MONO8, NONE};
    EXPECT_EQ(converted(shape, {1, 2, 99, 3, 4}, PIXEL_FORMAT_MONO8), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(converted(shape, {1, 2, 99, 3, 4}, PIXEL_FORMAT_RAW8), (Bytes{1, 2, 3, 4}));
}

TEST(Convert, OddWidthsWhereTheFormatAllows)
{
    EXPECT_EQ(converted(shapeOf(PIXEL_FORMAT_MONO8, 3, 1), {1, 2, 3}, PIXEL_FORMAT_BGR),
              (Bytes{1, 1, 1, 2, 2, 2, 3, 3, 3}));
    EXPECT_EQ(fcsim::conversionObstacle(shapeOf(PIXEL_FORMAT_MONO8, 3, 1), PIXEL_FORMAT_422YUV8),
              "Cannot convert MONO8 to 422YUV8: a width of 3 is not a multiple of 2 pixels");
    EXPECT_EQ(fcsim::conversionObstacle(shapeOf(PIXEL_FORMAT_411YUV8, 6, 1), PIXEL_FORMAT_MONO8),
              "Cannot convert 411YUV8 to MONO8: a width of 6 is not a multiple of 4 pixels");
}

TEST(Convert, RefusalsNameBothFormats)
{
    EXPECT_EQ(fcsim::conversionObstacle(shapeOf(PIXEL_FORMAT_MONO8, 4, 4), PIXEL_FORMAT_RGB16),
              "Cannot convert MONO8 to RGB16: this pair of pixel formats is not supported");
    EXPECT_EQ(
        fcsim::conversionObstacle(shapeOf(UNSPECIFIED_PIXEL_FORMAT, 4, 4), PIXEL_FORMAT_MONO8),
        "Cannot convert unknown to MONO8: this pair of pixel formats is not supported");
    EXPECT_EQ(fcsim::conversionObstacle(shapeOf(PIXEL_FORMAT_MONO8, 0, 0), PIXEL_FORMAT_RGB8),
              "Cannot convert MONO8 to RGB8: the image is empty");
}

} // namespace
