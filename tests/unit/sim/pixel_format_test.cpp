// Names and sizes of the pixel formats.
#include "scene/pixel_format.h"

#include <gtest/gtest.h>

namespace {

using namespace FlyCapture2;

TEST(PixelFormat, SizesOfPackedPictures)
{
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_MONO8, 640, 480), 640U * 480);
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_RAW8, 640, 480), 640U * 480);
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_MONO12, 640, 480), 640U * 480 * 3 / 2);
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_MONO16, 640, 480), 640U * 480 * 2);
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_411YUV8, 640, 480), 640U * 480 * 3 / 2);
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_422YUV8, 640, 480), 640U * 480 * 2);
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_444YUV8, 640, 480), 640U * 480 * 3);
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_BGRU, 640, 480), 640U * 480 * 4);
}

TEST(PixelFormat, LargePicturesDoNotWrap)
{
    EXPECT_EQ(fcsim::packedSize(PIXEL_FORMAT_BGRU, 65536, 65536), std::size_t{1} << 34);
}

TEST(PixelFormat, UnknownFormatsHaveNoSize)
{
    EXPECT_EQ(fcsim::packedSize(UNSPECIFIED_PIXEL_FORMAT, 640, 480), 0U);
    EXPECT_EQ(fcsim::findPixelLayout(UNSPECIFIED_PIXEL_FORMAT), nullptr);
    EXPECT_STREQ(fcsim::pixelFormatName(UNSPECIFIED_PIXEL_FORMAT), "unknown");
}

TEST(PixelFormat, NamesFollowTheSdk)
{
    EXPECT_STREQ(fcsim::pixelFormatName(PIXEL_FORMAT_411YUV8), "411YUV8");
    EXPECT_STREQ(fcsim::pixelFormatName(PIXEL_FORMAT_RGB), "RGB8");
}

TEST(PixelFormat, OnlyRawFormatsSitBehindTheFilter)
{
    EXPECT_TRUE(fcsim::isRawFormat(PIXEL_FORMAT_RAW8));
    EXPECT_TRUE(fcsim::isRawFormat(PIXEL_FORMAT_RAW12));
    EXPECT_TRUE(fcsim::isRawFormat(PIXEL_FORMAT_RAW16));
    EXPECT_FALSE(fcsim::isRawFormat(PIXEL_FORMAT_MONO8));
    EXPECT_FALSE(fcsim::isRawFormat(PIXEL_FORMAT_BGR));
}

} // namespace
