// Frames of the simulated sensor: packing, region, tile, movement, response.
#include "scene/convert.h"
#include "scene/pixel_bayer.h"
#include "scene/renderer.h"
#include "sensor_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using namespace FlyCapture2;
using fcsim::Bytes;
using fcsim::frameOf;
using fcsim::FrameRequest;
using fcsim::freshFrame;
using fcsim::noisySensor;
using fcsim::quietSensor;
using fcsim::Renderer;
using fcsim::SceneSettings;
using fcsim::SensorSettings;
using fcsim::SensorState;
using fcsim::wholeFrame;

constexpr unsigned kWidth = 320;
constexpr unsigned kHeight = 240;
constexpr std::array kFormats = {PIXEL_FORMAT_MONO8,   PIXEL_FORMAT_MONO12,  PIXEL_FORMAT_MONO16,
                                 PIXEL_FORMAT_RAW8,    PIXEL_FORMAT_RAW12,   PIXEL_FORMAT_RAW16,
                                 PIXEL_FORMAT_411YUV8, PIXEL_FORMAT_422YUV8, PIXEL_FORMAT_444YUV8,
                                 PIXEL_FORMAT_RGB8,    PIXEL_FORMAT_BGR,     PIXEL_FORMAT_BGRU};

/// A renderer that has made other frames before makes the same as a new one, with and without
/// noise, and also when what the camera has set changes on the way.
TEST(Renderer, FramesDependOnTheirRequestAlone)
{
    SensorState darker;
    darker.shutterUs = 3000;
    SensorState sharper;
    sharper.sharpness = 1800;
    const std::array states = {SensorState{}, fcsim::busyState(), darker, sharper, SensorState{}};
    for (const SensorSettings& sensor : {quietSensor(RGGB), noisySensor(RGGB)}) {
        for (const PixelFormat format : {PIXEL_FORMAT_MONO8, PIXEL_FORMAT_MONO12, PIXEL_FORMAT_RAW8,
                                         PIXEL_FORMAT_422YUV8, PIXEL_FORMAT_BGRU}) {
            Renderer renderer(SceneSettings{}, sensor);
            std::uint64_t number = 40;
            for (const SensorState& state : states) {
                for (const std::uint64_t step : {1U, 20U}) {
                    number = (number + step) % 47;
                    const FrameRequest request = wholeFrame(format, number, state);
                    ASSERT_EQ(frameOf(renderer, request), freshFrame(sensor, request))
                        << fcsim::pixelFormatName(format) << " frame " << number;
                }
            }
        }
    }
}

/// The chart tells exposure and gain, so that one frame number has many looks.
TEST(Renderer, TheSameFrameIsPaintedAnewForOtherSettings)
{
    Renderer renderer(SceneSettings{}, quietSensor());
    FrameRequest request = wholeFrame(PIXEL_FORMAT_MONO8, 5);
    frameOf(renderer, request);
    request.state.shutterUs = 7999;
    EXPECT_EQ(frameOf(renderer, request), freshFrame(quietSensor(), request));
    request.state.gainDb = 0.01F;
    EXPECT_EQ(frameOf(renderer, request), freshFrame(quietSensor(), request));
}

TEST(Renderer, NeighbouringFramesDiffer)
{
    Renderer renderer(SceneSettings{}, quietSensor(NONE));
    Bytes before = frameOf(renderer, wholeFrame(PIXEL_FORMAT_MONO8, 0));
    for (std::uint64_t number = 1; number < 200; ++number) {
        Bytes now = frameOf(renderer, wholeFrame(PIXEL_FORMAT_MONO8, number));
        ASSERT_NE(now, before) << number;
        before = std::move(now);
    }
}

TEST(Renderer, MovesWithoutTheNumberPanelToo)
{
    FrameRequest request = wholeFrame(PIXEL_FORMAT_MONO8, 0);
    request.offsetY = kHeight / 2; // below the number and the dial: the track only
    request.height = kHeight / 2;
    Renderer renderer(SceneSettings{}, quietSensor(NONE));
    const Bytes first = frameOf(renderer, request);
    request.number = 1;
    EXPECT_NE(frameOf(renderer, request), first);
}

/// Frames of the region are what the whole frame shows there. Bytes that several pixels share are
/// compared where the region starts at a group's edge.
TEST(Renderer, RegionIsACrop)
{
    for (const PixelFormat format : kFormats) {
        Renderer renderer(SceneSettings{}, noisySensor(GRBG));
        FrameRequest request = wholeFrame(format, 5, fcsim::busyState());
        const Bytes whole = frameOf(renderer, request);
        request.offsetX = 36;
        request.offsetY = 14;
        request.width = 200;
        request.height = 202;
        const Bytes part = frameOf(renderer, request);
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
        Renderer renderer(SceneSettings{}, noisySensor(RGGB));
        for (unsigned offset = 0; offset < 40; offset += 2) {
            FrameRequest request = wholeFrame(format, 3);
            request.offsetX = offset;
            request.width = 240;
            ASSERT_EQ(frameOf(renderer, request), freshFrame(noisySensor(RGGB), request)) << offset;
        }
    }
}

TEST(Renderer, RawShowsTheColourBehindEachPixelOfTheTile)
{
    for (const BayerTileFormat tile : {RGGB, GRBG, GBRG, BGGR}) {
        Renderer renderer(SceneSettings{}, quietSensor(tile));
        const Bytes colour = frameOf(renderer, wholeFrame(PIXEL_FORMAT_RGB8, 9));
        const Bytes raw = frameOf(renderer, wholeFrame(PIXEL_FORMAT_RAW8, 9));
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
    Renderer renderer(SceneSettings{}, quietSensor(RGGB));
    const Bytes colour = frameOf(renderer, wholeFrame(PIXEL_FORMAT_RGB8, 2));
    const fcsim::PictureShape shape{kHeight, kWidth, kWidth * 3, PIXEL_FORMAT_RGB8, NONE};
    for (const PixelFormat format : {PIXEL_FORMAT_BGR, PIXEL_FORMAT_BGRU, PIXEL_FORMAT_411YUV8,
                                     PIXEL_FORMAT_422YUV8, PIXEL_FORMAT_444YUV8}) {
        Bytes expected(fcsim::packedSize(format, kWidth, kHeight));
        fcsim::convertPicture(shape, colour.data(), format, DEFAULT, expected.data());
        EXPECT_EQ(frameOf(renderer, wholeFrame(format, 2)), expected)
            << fcsim::pixelFormatName(format);
    }
}

/// The 8-bit picture is the upper part of the deep one, whose low bits are true content.
TEST(Renderer, DeepFormatsShowFinerSteps)
{
    for (const SensorSettings& sensor : {quietSensor(), noisySensor()}) {
        Renderer renderer(SceneSettings{}, sensor);
        const Bytes coarse = frameOf(renderer, wholeFrame(PIXEL_FORMAT_MONO8));
        const Bytes deep = frameOf(renderer, wholeFrame(PIXEL_FORMAT_MONO16));
        std::array<std::size_t, 16> nibbles{};
        for (std::size_t pixel = 0; pixel < coarse.size(); ++pixel) {
            ASSERT_EQ(deep[2 * pixel + 1], coarse[pixel]);
            ASSERT_EQ(deep[2 * pixel] & 0x0F, 0);
            ++nibbles[deep[2 * pixel] >> 4];
        }
        const std::size_t enough = coarse.size() / (sensor.noise ? 50 : 1000);
        EXPECT_GT(*std::min_element(nibbles.begin(), nibbles.end()), enough);
    }
}

TEST(Renderer, LookUpTableLeavesNineBits)
{
    SensorState state;
    auto lut = std::make_shared<fcsim::SensorLut>();
    lut->channels.emplace_back(512);
    std::iota(lut->channels[0].begin(), lut->channels[0].end(), std::uint16_t{0});
    state.lut = lut;
    const Bytes through = freshFrame(noisySensor(), wholeFrame(PIXEL_FORMAT_MONO16, 0, state));
    const Bytes deep = freshFrame(noisySensor(), wholeFrame(PIXEL_FORMAT_MONO16));
    for (std::size_t i = 0; i < deep.size(); i += 2) {
        ASSERT_EQ(through[i], deep[i] & 0x80);
        ASSERT_EQ(through[i + 1], deep[i + 1]);
    }
}

TEST(Renderer, InverseTableGivesTheNegative)
{
    SensorState state;
    auto lut = std::make_shared<fcsim::SensorLut>();
    for (unsigned entry = 0; entry < 512; ++entry) {
        lut->channels.resize(1);
        lut->channels[0].push_back(static_cast<std::uint16_t>(511 - entry));
    }
    state.lut = lut;
    const Bytes negative = freshFrame(noisySensor(), wholeFrame(PIXEL_FORMAT_MONO8, 0, state));
    const Bytes positive = freshFrame(noisySensor(), wholeFrame(PIXEL_FORMAT_MONO8));
    for (std::size_t i = 0; i < positive.size(); ++i) {
        ASSERT_EQ(negative[i], 255 - positive[i]);
    }
}

TEST(Renderer, ShutterAndGainScaleTheMeanUntilSaturation)
{
    const auto mean = [](float shutterUs, float gainDb) {
        SensorState state;
        state.shutterUs = shutterUs;
        state.gainDb = gainDb;
        return fcsim::meanPercent(
            freshFrame(noisySensor(), wholeFrame(PIXEL_FORMAT_MONO8, 0, state)));
    };
    const double reference = mean(1000, 0);
    EXPECT_NEAR(mean(2000, 0) / reference, 2, 0.1);
    EXPECT_NEAR(mean(4000, 0) / mean(2000, 0), 2, 0.05);
    EXPECT_NEAR(mean(2000, 6.0206F) / mean(2000, 0), 2, 0.05);
    EXPECT_NEAR(mean(1000, 12.0412F) / mean(2000, 6.0206F), 1, 0.05);
    EXPECT_LT(mean(160000, 0) / mean(80000, 0), 1.2);
    EXPECT_GT(mean(1e6F, 24), 80); // the rest of the chart is black
}

TEST(Renderer, NoiseComesAgainWithItsSeed)
{
    SensorSettings other = noisySensor();
    other.noiseSeed = 2;
    const FrameRequest request = wholeFrame(PIXEL_FORMAT_MONO8, 7);
    EXPECT_EQ(freshFrame(noisySensor(), request), freshFrame(noisySensor(), request));
    EXPECT_NE(freshFrame(noisySensor(), request), freshFrame(other, request));
}

TEST(Renderer, NoiseMovesFromFrameToFrameEverywhere)
{
    Renderer renderer(SceneSettings{}, noisySensor());
    const Bytes first = frameOf(renderer, wholeFrame(PIXEL_FORMAT_MONO16, 0));
    const Bytes second = frameOf(renderer, wholeFrame(PIXEL_FORMAT_MONO16, 1));
    std::size_t changed = 0;
    for (std::size_t i = 0; i < first.size(); i += 2) {
        changed += first[i] != second[i] || first[i + 1] != second[i + 1] ? 1U : 0U;
    }
    EXPECT_GT(changed, first.size() / 2 / 2);
}

TEST(Renderer, BitDepthLimitsTheSteps)
{
    SensorSettings settings = quietSensor(NONE);
    settings.bitDepth = 10;
    Renderer renderer(SceneSettings{}, settings);
    const Bytes deep = frameOf(renderer, wholeFrame(PIXEL_FORMAT_MONO16, 0));
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
    Renderer normal(SceneSettings{}, quietSensor(NONE));
    Renderer half(dim, quietSensor(NONE));
    Renderer full(glaring, quietSensor(NONE));
    const FrameRequest request = wholeFrame(PIXEL_FORMAT_MONO8, 0);
    const Bytes reference = frameOf(normal, request);
    const Bytes halved = frameOf(half, request);
    const Bytes burnt = frameOf(full, request);
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
    Renderer renderer(none, quietSensor(RGGB));
    const Bytes out = frameOf(renderer, wholeFrame(PIXEL_FORMAT_MONO8, 0));
    EXPECT_EQ(out, Bytes(out.size(), 0xAA));
}

TEST(Renderer, TinySensorsWork)
{
    for (const unsigned size : {2U, 8U, 16U, 64U}) {
        SensorSettings settings = quietSensor(RGGB);
        settings.width = size;
        settings.height = size;
        Renderer renderer(SceneSettings{}, settings);
        FrameRequest request = wholeFrame(PIXEL_FORMAT_RAW8, 1);
        request.width = size;
        request.height = size;
        EXPECT_NE(frameOf(renderer, request), Bytes(std::size_t{size} * size, 0xAA));
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
