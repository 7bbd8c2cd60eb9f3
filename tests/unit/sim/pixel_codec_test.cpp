// Exact bytes of every pixel format, packed and unpacked.
#include "scene/pixel_codec.h"
#include "scene/pixel_format.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace {

using namespace FlyCapture2;
using fcsim::Level;
using fcsim::Row;
using fcsim::RowView;
using fcsim::Space;
using Bytes = std::vector<std::uint8_t>;
using Levels = std::vector<Level>;

Bytes encode(PixelFormat format, Space space, const std::vector<Levels>& planes)
{
    const auto width = static_cast<unsigned>(planes[0].size());
    RowView row{space, width, {}};
    for (std::size_t index = 0; index < planes.size(); ++index) {
        row.plane[index] = planes[index].data();
    }
    Bytes packed(fcsim::packedRowSize(format, width), 0xAA);
    fcsim::findPixelCodec(format)->encode(row, packed.data());
    return packed;
}

Levels decodedPlane(PixelFormat format, const Bytes& packed, unsigned width, unsigned plane = 0)
{
    const fcsim::PixelCodec& codec = *fcsim::findPixelCodec(format);
    Row row;
    row.reset(codec.space, width);
    codec.decode(packed.data(), width, row);
    return {row.plane(plane), row.plane(plane) + width};
}

TEST(PixelCodec, Mono8KeepsTheHighByte)
{
    EXPECT_EQ(encode(PIXEL_FORMAT_MONO8, Space::grey, {{0x1234, 0xFFF0, 0x0080}}),
              (Bytes{0x12, 0xFF, 0x00}));
    EXPECT_EQ(decodedPlane(PIXEL_FORMAT_RAW8, {0x12, 0xFF}, 2), (Levels{0x1200, 0xFF00}));
}

TEST(PixelCodec, Mono12SharesTheMiddleByte)
{
    EXPECT_EQ(encode(PIXEL_FORMAT_MONO12, Space::grey, {{0x1230, 0xABC0, 0xFFF0, 0x0010}}),
              (Bytes{0x12, 0xC3, 0xAB, 0xFF, 0x1F, 0x00}));
    EXPECT_EQ(decodedPlane(PIXEL_FORMAT_MONO12, {0x12, 0xC3, 0xAB, 0xFF, 0x1F, 0x00}, 4),
              (Levels{0x1230, 0xABC0, 0xFFF0, 0x0010}));
    EXPECT_EQ(encode(PIXEL_FORMAT_RAW12, Space::grey, {{0x1230, 0xABC0}}),
              (Bytes{0x12, 0xC3, 0xAB}));
}

TEST(PixelCodec, Mono16HasTheLowByteFirstAndTwelveBits)
{
    EXPECT_EQ(encode(PIXEL_FORMAT_MONO16, Space::grey, {{0x1234, 0xFFF0}}),
              (Bytes{0x30, 0x12, 0xF0, 0xFF}));
    EXPECT_EQ(decodedPlane(PIXEL_FORMAT_RAW16, {0x34, 0x12}, 1), (Levels{0x1234}));
}

TEST(PixelCodec, Yuv411SharesColourOfFourPixels)
{
    const std::vector<Levels> planes = {{0x0100, 0x0200, 0x0300, 0x0400},
                                        {0x1000, 0x1000, 0x1000, 0x2000},
                                        {0x5000, 0x5100, 0x5000, 0x5100}};
    EXPECT_EQ(encode(PIXEL_FORMAT_411YUV8, Space::yuv, planes),
              (Bytes{0x14, 0x01, 0x02, 0x51, 0x03, 0x04}));
    const Bytes packed{0x14, 0x01, 0x02, 0x51, 0x03, 0x04};
    EXPECT_EQ(decodedPlane(PIXEL_FORMAT_411YUV8, packed, 4, 0), planes[0]);
    EXPECT_EQ(decodedPlane(PIXEL_FORMAT_411YUV8, packed, 4, 1), Levels(4, 0x1400));
    EXPECT_EQ(decodedPlane(PIXEL_FORMAT_411YUV8, packed, 4, 2), Levels(4, 0x5100));
}

TEST(PixelCodec, Yuv422SharesColourOfTwoPixels)
{
    const std::vector<Levels> planes = {{0x0100, 0x0200}, {0x1000, 0x1200}, {0x5000, 0x5100}};
    EXPECT_EQ(encode(PIXEL_FORMAT_422YUV8, Space::yuv, planes), (Bytes{0x11, 0x01, 0x51, 0x02}));
    EXPECT_EQ(decodedPlane(PIXEL_FORMAT_422YUV8, {0x11, 0x01, 0x51, 0x02}, 2, 1),
              Levels(2, 0x1100));
}

TEST(PixelCodec, Yuv444HasItsOwnColourPerPixel)
{
    EXPECT_EQ(encode(PIXEL_FORMAT_444YUV8, Space::yuv,
                     {{0x0100, 0x0200}, {0x1000, 0x1200}, {0x5000, 0x5100}}),
              (Bytes{0x10, 0x01, 0x50, 0x12, 0x02, 0x51}));
}

TEST(PixelCodec, OrdersOfRedGreenAndBlue)
{
    const std::vector<Levels> planes = {{0x1100}, {0x2200}, {0x3300}};
    EXPECT_EQ(encode(PIXEL_FORMAT_RGB8, Space::rgb, planes), (Bytes{0x11, 0x22, 0x33}));
    EXPECT_EQ(encode(PIXEL_FORMAT_BGR, Space::rgb, planes), (Bytes{0x33, 0x22, 0x11}));
    EXPECT_EQ(encode(PIXEL_FORMAT_BGRU, Space::rgb, planes), (Bytes{0x33, 0x22, 0x11, 0xFF}));
    EXPECT_EQ(decodedPlane(PIXEL_FORMAT_BGRU, {0x33, 0x22, 0x11, 0x00}, 1, 0), Levels{0x1100});
}

TEST(PixelCodec, ReadsBackWhatItPacked)
{
    for (const PixelFormat format :
         {PIXEL_FORMAT_MONO12, PIXEL_FORMAT_MONO16, PIXEL_FORMAT_RAW12, PIXEL_FORMAT_RAW16}) {
        for (unsigned level = 0; level < 4096; ++level) {
            const Levels levels = {static_cast<Level>(level << 4),
                                   static_cast<Level>((4095 - level) << 4)};
            const Bytes packed = encode(format, Space::grey, {levels});
            ASSERT_EQ(decodedPlane(format, packed, 2), levels) << fcsim::pixelFormatName(format);
        }
    }
}

TEST(PixelCodec, FormatsWithoutCodecAreNull)
{
    EXPECT_EQ(fcsim::findPixelCodec(PIXEL_FORMAT_RGB16), nullptr);
    EXPECT_EQ(fcsim::findPixelCodec(PIXEL_FORMAT_422YUV8_JPEG), nullptr);
    EXPECT_EQ(fcsim::findPixelCodec(UNSPECIFIED_PIXEL_FORMAT), nullptr);
}

} // namespace
