// Frames of the simulated sensor: packing, region, tile, movement, response.
#include "convert.h"
#include "pixel_bayer.h"
#include "renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using namespace FlyCapture2;
using fcsim::FrameRequest;
using fcsim::Renderer;
using fcsim::SceneSettings;
using fcsim::SensorSettings;
using Bytes = std::vector<std::uint8_t>;

constexpr unsigned kWidth = 320;
constexpr unsigned kHeight = 240;
constexpr std::array kFormats = {PIXEL_FORMAT_MONO8,   PIXEL_FORMAT_MONO12,  PIXEL_FORMAT_MONO16,
                                 PIXEL_FORMAT_RAW8,    PIXEL_FORMAT_RAW12,   PIXEL_FORMAT_RAW16,
                                 PIXEL_FORMAT_411YUV8, PIXEL_FORMAT_422YUV8, PIXEL_FORMAT_444YUV8,
                                 PIXEL_FORMAT_RGB8,    PIXEL_FORMAT_BGR,     PIXEL_FORMAT_BGRU};

SensorSettings sensor(BayerTileFormat tile)
{
    SensorSettings settings;
    settings.colour = tile != NONE;
    settings.tile = tile;
    settings.width = kWidth;
    settings.height = kHeight;
    settings.title = "TEST";
    return settings;
}

FrameRequest wholeFrame(PixelFormat format, std::uint64_t number)
{
    FrameRequest request;
    request.format = format;
    request.width = kWidth;
    request.height = kHeight;
    request.number = number;
    return request;
}

Bytes frame(Renderer& renderer, const FrameRequest& request)
{
    Bytes out(fcsim::packedSize(request.format, request.width, request.height), 0xAA);
    renderer.render(request, out.data());
    return out;
}

Bytes freshFrame(BayerTileFormat tile, const FrameRequest& request)
{
    Renderer renderer(SceneSettings{}, sensor(tile));
    return frame(renderer, request);
}

TEST(Renderer, FramesDependOnTheirNumberAlone)
{
    for (const PixelFormat format : kFormats) {
        Renderer renderer(SceneSettings{}, sensor(RGGB));
        for (const std::uint64_t number : {0U, 1U, 41U, 7U}) {
            const FrameRequest request = wholeFrame(format, number);
            ASSERT_EQ(frame(renderer, request), freshFrame(RGGB, request))
                << fcsim::pixelFormatName(format) << " frame " << number;
        }
    }
}

TEST(Renderer, NeighbouringFramesDiffer)
{
    Renderer renderer(SceneSettings{}, sensor(NONE));
    Bytes before = frame(renderer, wholeFrame(PIXEL_FORMAT_MONO8, 0));
    for (std::uint64_t number = 1; number < 200; ++number) {
        Bytes now = frame(renderer, wholeFrame(PIXEL_FORMAT_MONO8, number));
        ASSERT_NE(now, before) << number;
        before = std::move(now);
    }
}

TEST(Renderer, MovesWithoutTheNumberPanelToo)
{
    FrameRequest request = wholeFrame(PIXEL_FORMAT_MONO8, 0);
    request.offsetY = kHeight / 2; // below the number and the dial: the track only
    request.height = kHeight / 2;
    Renderer renderer(SceneSettings{}, sensor(NONE));
    const Bytes first = frame(renderer, request);
    request.number = 1;
    EXPECT_NE(frame(renderer, request), first);
}

/// Frames of the region are what the whole frame shows there. Bytes that several pixels share are
/// compared where the region starts at a group's edge.
TEST(Renderer, RegionIsACrop)
{
    for (const PixelFormat format : kFormats) {
        Renderer renderer(SceneSettings{}, sensor(GRBG));
        FrameRequest request = wholeFrame(format, 5);
        const Bytes whole = frame(renderer, request);
        request.offsetX = 36;
        request.offsetY = 14;
        request.width = 200;
        request.height = 202;
        const Bytes part = frame(renderer, request);
        const std::size_t wholeRow = fcsim::packedRowSize(format, kWidth);
        const std::size_t partRow = fcsim::packedRowSize(format, request.width);
        for (std::size_t y = 0; y < request.height; ++y) {
            const auto* expected = whole.data() + (y + request.offsetY) * wholeRow +
                                   fcsim::packedRowSize(format, request.offsetX);
            ASSERT_TRUE(std::equal(expected, expected + partRow, part.data() + y * partRow))
                << fcsim::pixelFormatName(format) << " row " << y;
        }
    }
}

/// A region that starts within a group of the whole frame packs its own groups.
TEST(Renderer, RegionAtAnyEvenOffset)
{
    for (const PixelFormat format : {PIXEL_FORMAT_411YUV8, PIXEL_FORMAT_MONO12}) {
        Renderer renderer(SceneSettings{}, sensor(RGGB));
        for (unsigned offset = 0; offset < 40; offset += 2) {
            FrameRequest request = wholeFrame(format, 3);
            request.offsetX = offset;
            request.width = 240;
            ASSERT_EQ(frame(renderer, request), freshFrame(RGGB, request)) << offset;
        }
    }
}

TEST(Renderer, RawShowsTheColourBehindEachPixelOfTheTile)
{
    for (const BayerTileFormat tile : {RGGB, GRBG, GBRG, BGGR}) {
        Renderer renderer(SceneSettings{}, sensor(tile));
        const Bytes colour = frame(renderer, wholeFrame(PIXEL_FORMAT_RGB8, 9));
        const Bytes raw = frame(renderer, wholeFrame(PIXEL_FORMAT_RAW8, 9));
        for (unsigned y = 0; y < kHeight; ++y) {
            for (unsigned x = 0; x < kWidth; ++x) {
                const std::size_t pixel = std::size_t{y} * kWidth + x;
                ASSERT_EQ(raw[pixel], colour[pixel * 3 + fcsim::bayerPlane(tile, x, y)])
                    << "tile " << tile << " at " << x << ", " << y;
            }
        }
    }
}

TEST(Renderer, FormatsShowTheSamePicture)
{
    Renderer renderer(SceneSettings{}, sensor(RGGB));
    const Bytes colour = frame(renderer, wholeFrame(PIXEL_FORMAT_RGB8, 2));
    const fcsim::PictureShape shape{kHeight, kWidth, kWidth * 3, PIXEL_FORMAT_RGB8, NONE};
    for (const PixelFormat format : {PIXEL_FORMAT_BGR, PIXEL_FORMAT_BGRU, PIXEL_FORMAT_411YUV8,
                                     PIXEL_FORMAT_422YUV8, PIXEL_FORMAT_444YUV8}) {
        Bytes expected(fcsim::packedSize(format, kWidth, kHeight));
        fcsim::convertPicture(shape, colour.data(), format, DEFAULT, expected.data());
        EXPECT_EQ(frame(renderer, wholeFrame(format, 2)), expected)
            << fcsim::pixelFormatName(format);
    }
}

TEST(Renderer, DeepFormatsShowFinerSteps)
{
    Renderer renderer(SceneSettings{}, sensor(NONE));
    const Bytes coarse = frame(renderer, wholeFrame(PIXEL_FORMAT_MONO8, 0));
    const Bytes deep = frame(renderer, wholeFrame(PIXEL_FORMAT_MONO16, 0));
    bool finer = false;
    for (std::size_t pixel = 0; pixel < coarse.size(); ++pixel) {
        ASSERT_EQ(deep[2 * pixel + 1], coarse[pixel]);
        ASSERT_EQ(deep[2 * pixel] & 0x0F, 0);
        finer = finer || deep[2 * pixel] != 0;
    }
    EXPECT_TRUE(finer);
}

TEST(Renderer, BitDepthLimitsTheSteps)
{
    SensorSettings settings = sensor(NONE);
    settings.bitDepth = 10;
    Renderer renderer(SceneSettings{}, settings);
    const Bytes deep = frame(renderer, wholeFrame(PIXEL_FORMAT_MONO16, 0));
    for (std::size_t pixel = 0; pixel < deep.size() / 2; ++pixel) {
        ASSERT_EQ(deep[2 * pixel] & 0x3F, 0);
    }
}

TEST(Renderer, BrightnessScalesAndSaturates)
{
    SceneSettings dim;
    dim.brightness = 0.5;
    SceneSettings glaring;
    glaring.brightness = 100;
    Renderer normal(SceneSettings{}, sensor(NONE));
    Renderer half(dim, sensor(NONE));
    Renderer full(glaring, sensor(NONE));
    const FrameRequest request = wholeFrame(PIXEL_FORMAT_MONO8, 0);
    const Bytes reference = frame(normal, request);
    const Bytes halved = frame(half, request);
    const Bytes burnt = frame(full, request);
    for (std::size_t pixel = 0; pixel < reference.size(); ++pixel) {
        ASSERT_NEAR(halved[pixel], reference[pixel] / 2.0, 1);
        if (reference[pixel] >= 3) {
            ASSERT_EQ(burnt[pixel], 0xFF);
        }
    }
}

TEST(Renderer, NothingIsDrawnWithoutScene)
{
    SceneSettings none;
    none.kind = fcsim::SceneKind::none;
    Renderer renderer(none, sensor(RGGB));
    const Bytes out = frame(renderer, wholeFrame(PIXEL_FORMAT_MONO8, 0));
    EXPECT_EQ(out, Bytes(out.size(), 0xAA));
}

TEST(Renderer, TinySensorsWork)
{
    for (const unsigned size : {2U, 8U, 16U, 64U}) {
        SensorSettings settings = sensor(RGGB);
        settings.width = size;
        settings.height = size;
        Renderer renderer(SceneSettings{}, settings);
        FrameRequest request = wholeFrame(PIXEL_FORMAT_RAW8, 1);
        request.width = size;
        request.height = size;
        EXPECT_NE(frame(renderer, request), Bytes(std::size_t{size} * size, 0xAA));
    }
}

TEST(Renderer, KnowsWhatItCanMake)
{
    for (const PixelFormat format : kFormats) {
        EXPECT_TRUE(fcsim::canRender(format)) << fcsim::pixelFormatName(format);
    }
    EXPECT_FALSE(fcsim::canRender(PIXEL_FORMAT_RGB16));
    EXPECT_FALSE(fcsim::canRender(UNSPECIFIED_PIXEL_FORMAT));
}

} // namespace
