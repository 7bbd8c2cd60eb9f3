// Tests of the table of codecs: names, sizes, Bayer tiles.
#include "picture/picture_codec.h"

#include <gtest/gtest.h>

namespace {

using kxhost::findCodec;
using kxhost::lineBytes;
using kxhost::pictureBytes;

TEST(PictureCodec, SizesFollowTheBitsPerPixel)
{
    EXPECT_EQ(pictureBytes(*findCodec("MONO8T"), 640, 480), 640U * 480U);
    EXPECT_EQ(pictureBytes(*findCodec("MONO12PT"), 640, 480), 640U * 480U * 3U / 2U);
    EXPECT_EQ(pictureBytes(*findCodec("MONO12T"), 640, 480), 640U * 480U * 2U);
    EXPECT_EQ(pictureBytes(*findCodec("YUV411T"), 640, 480), 640U * 480U * 3U / 2U);
    EXPECT_EQ(pictureBytes(*findCodec("UYVY"), 640, 480), 640U * 480U * 2U);
    EXPECT_EQ(pictureBytes(*findCodec("BayerGB8T"), 640, 480), 640U * 480U);
}

TEST(PictureCodec, ALineTakesItsLastByteWhole)
{
    EXPECT_EQ(lineBytes(*findCodec("MONO12PT"), 3), 5U);
}

TEST(PictureCodec, TheTileSaysWhereRedStands)
{
    struct Expected {
        const char* name;
        int redX;
        int redY;
    };
    for (const Expected& expected : {Expected{"BayerRG8T", 0, 0}, Expected{"BayerGR8T", 1, 0},
                                     Expected{"BayerGB8T", 0, 1}, Expected{"BayerBG8T", 1, 1}}) {
        const kxhost::Codec* codec = findCodec(expected.name);
        ASSERT_NE(codec, nullptr) << expected.name;
        EXPECT_EQ(codec->redX, expected.redX) << expected.name;
        EXPECT_EQ(codec->redY, expected.redY) << expected.name;
    }
}

TEST(PictureCodec, UnknownNamesAreUnknown)
{
    EXPECT_EQ(findCodec("MONO8"), nullptr);
    EXPECT_EQ(findCodec(""), nullptr);
}

} // namespace
