// Tests of the way from camera pixels to pictures.
#include "picture/picture_decode.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using kxhost::BayerPicture;
using kxhost::findCodec;
using kxhost::Picture;

Picture decoded(const char* codec, std::uint32_t width, std::uint32_t height,
                const std::vector<std::uint8_t>& pixels, BayerPicture bayer = BayerPicture::kColour)
{
    Picture picture;
    kxhost::decode(*findCodec(codec), width, height, pixels.data(), bayer, picture);
    return picture;
}

std::vector<unsigned> samples16(const Picture& picture)
{
    std::vector<unsigned> values;
    for (std::size_t i = 0; i < picture.bytes.size(); i += 2) {
        std::uint16_t sample = 0;
        std::memcpy(&sample, picture.bytes.data() + i, 2);
        values.push_back(sample);
    }
    return values;
}

TEST(PictureDecode, Mono8IsKeptAsItIs)
{
    const std::vector<std::uint8_t> pixels = {0, 1, 127, 128, 254, 255};
    const Picture picture = decoded("MONO8T", 3, 2, pixels);
    EXPECT_EQ(picture.channels, 1U);
    EXPECT_EQ(picture.bitDepth, 8U);
    EXPECT_EQ(picture.bytes, pixels);
}

TEST(PictureDecode, PackedPixelsKeepAllTwelveBitsAtTheTop)
{
    // 0xABC and 0x123 in three bytes, then 0xFFF and 0x000.
    const Picture picture = decoded("MONO12PT", 2, 2, {0xAB, 0x3C, 0x12, 0xFF, 0x0F, 0x00});
    EXPECT_EQ(picture.bitDepth, 16U);
    EXPECT_EQ(picture.significantBits, 12U);
    EXPECT_EQ(samples16(picture), (std::vector<unsigned>{0xABC0, 0x1230, 0xFFF0, 0x0000}));
}

TEST(PictureDecode, APackedLineOfOddWidthEndsInTwoBytes)
{
    const Picture picture = decoded("MONO12PT", 1, 2, {0xAB, 0x0C, 0x12, 0x03});
    EXPECT_EQ(samples16(picture), (std::vector<unsigned>{0xABC0, 0x1230}));
}

TEST(PictureDecode, SixteenBitWordsAreLittleEndian)
{
    const Picture picture = decoded("MONO12T", 2, 1, {0xC0, 0xAB, 0x30, 0x12});
    EXPECT_EQ(picture.significantBits, 12U);
    EXPECT_EQ(samples16(picture), (std::vector<unsigned>{0xABC0, 0x1230}));
}

TEST(PictureDecode, YuvBecomesColour)
{
    const Picture picture = decoded("UYVY", 2, 1, {128, 10, 128, 20});
    EXPECT_EQ(picture.channels, 3U);
    EXPECT_EQ(picture.bytes, (std::vector<std::uint8_t>{10, 10, 10, 20, 20, 20}));
}

TEST(PictureDecode, ALineOf411SharesItsColourByFours)
{
    const Picture picture = decoded("YUV411T", 4, 1, {128, 1, 2, 128, 3, 4});
    EXPECT_EQ(picture.bytes, (std::vector<std::uint8_t>{1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}));
}

TEST(PictureDecode, AMosaicStaysGreyWhenAskedTo)
{
    const std::vector<std::uint8_t> pixels = {9, 8, 7, 6};
    const Picture picture = decoded("BayerGR8T", 2, 2, pixels, BayerPicture::kMosaic);
    EXPECT_EQ(picture.channels, 1U);
    EXPECT_EQ(picture.bytes, pixels);
}

TEST(PictureDecode, APictureCanBeUsedForTheNextOne)
{
    Picture picture;
    const std::vector<std::uint8_t> large(64, 7);
    kxhost::decode(*findCodec("MONO12T"), 8, 4, large.data(), BayerPicture::kColour, picture);
    kxhost::decode(*findCodec("MONO8T"), 2, 2, large.data(), BayerPicture::kColour, picture);
    EXPECT_EQ(picture.significantBits, 8U);
    EXPECT_EQ(picture.bytes, (std::vector<std::uint8_t>(4, 7)));
}

} // namespace
