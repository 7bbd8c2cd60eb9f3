// Tests of the TIFF encoder, read back with libtiff.
#include "base/output_file.h"
#include "picture/picture_encode.h"
#include "read_picture.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

namespace {

kxtest::ReadPicture writtenAndRead(const kxhost::Picture& picture)
{
    const kxtest::TemporaryFolder folder;
    std::vector<std::uint8_t> file(5000, 1);
    EXPECT_EQ(kxhost::encodeTiff(picture, file), "");
    EXPECT_EQ(kxhost::writeWholeFile(folder.file("a.tiff"), file), "");
    return kxtest::readTiff(folder.file("a.tiff"));
}

TEST(PictureTiff, SixteenBitGreyComesBack)
{
    const std::vector<std::uint16_t> samples = {0x0010, 0x1230, 0xABC0, 0xFFF0, 0x8000, 0x7FF0};
    kxhost::Picture picture{3, 2, 1, 16, 12, {}};
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(samples.data());
    picture.bytes.assign(bytes, bytes + samples.size() * 2);
    const kxtest::ReadPicture read = writtenAndRead(picture);
    EXPECT_EQ(read.width, 3U);
    EXPECT_EQ(read.height, 2U);
    EXPECT_EQ(read.bitDepth, 16U);
    EXPECT_EQ(read.samples, samples);
}

TEST(PictureTiff, ColourComesBack)
{
    const kxhost::Picture picture{2, 1, 3, 8, 8, {1, 2, 3, 253, 254, 255}};
    const kxtest::ReadPicture read = writtenAndRead(picture);
    EXPECT_EQ(read.channels, 3U);
    EXPECT_EQ(read.bitDepth, 8U);
    EXPECT_EQ(read.samples, (std::vector<std::uint16_t>{1, 2, 3, 253, 254, 255}));
}

} // namespace
