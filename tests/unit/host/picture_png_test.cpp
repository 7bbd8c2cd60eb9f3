// Tests of the PNG encoder, read back with libpng.
#include "base/output_file.h"
#include "picture/picture_encode.h"
#include "read_picture.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using kxhost::Picture;

/// A picture whose samples all differ from their neighbours.
Picture pattern(std::uint32_t width, std::uint32_t height, std::uint32_t channels,
                std::uint32_t bitDepth)
{
    Picture picture{width, height, channels, bitDepth, bitDepth, {}};
    for (std::size_t i = 0; i < picture.lineBytes() * height; ++i) {
        picture.bytes.push_back(static_cast<std::uint8_t>(i * 73 + i / 251));
    }
    return picture;
}

kxtest::ReadPicture writtenAndRead(const Picture& picture, int compression)
{
    const kxtest::TemporaryFolder folder;
    std::vector<std::uint8_t> file;
    EXPECT_EQ(kxhost::encodePng(picture, compression, file), "");
    EXPECT_EQ(kxhost::writeWholeFile(folder.file("a.png"), file), "");
    return kxtest::readPng(folder.file("a.png"));
}

void expectSame(const Picture& picture, const kxtest::ReadPicture& read)
{
    ASSERT_EQ(read.width, picture.width);
    ASSERT_EQ(read.height, picture.height);
    ASSERT_EQ(read.channels, picture.channels);
    ASSERT_EQ(read.bitDepth, picture.bitDepth);
    const std::size_t bytes = picture.bitDepth / 8;
    ASSERT_EQ(read.samples.size() * bytes, picture.bytes.size());
    for (std::size_t i = 0; i < read.samples.size(); ++i) {
        std::uint16_t sample = picture.bytes[i * bytes];
        if (bytes == 2) {
            std::memcpy(&sample, picture.bytes.data() + i * 2, 2);
        }
        ASSERT_EQ(read.samples[i], sample) << i;
    }
}

TEST(PicturePng, EverySampleComesBack)
{
    for (const int compression : {0, 1, 9}) {
        for (const Picture& picture : {pattern(37, 11, 1, 8), pattern(16, 9, 3, 8),
                                       pattern(23, 7, 1, 16), pattern(1, 1, 1, 8)}) {
            expectSame(picture, writtenAndRead(picture, compression));
        }
    }
}

TEST(PicturePng, TwelveBitPicturesSaySo)
{
    Picture picture = pattern(8, 4, 1, 16);
    EXPECT_EQ(writtenAndRead(picture, 1).significantBits, 0U);
    picture.significantBits = 12;
    EXPECT_EQ(writtenAndRead(picture, 1).significantBits, 12U);
}

TEST(PicturePng, TheBufferIsReplacedNotExtended)
{
    std::vector<std::uint8_t> file(1000, 1);
    ASSERT_EQ(kxhost::encodePng(pattern(2, 2, 1, 8), 1, file), "");
    EXPECT_EQ(file[1], 'P');
    EXPECT_LT(file.size(), 1000U);
}

TEST(PicturePng, AnImpossiblePictureIsAnError)
{
    std::vector<std::uint8_t> file;
    EXPECT_NE(kxhost::encodePng(pattern(0, 4, 1, 8), 1, file), "");
}

} // namespace
