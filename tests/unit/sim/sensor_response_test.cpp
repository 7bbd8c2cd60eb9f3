// The steps from light to levels together: which formats they concern, their order, the noise.
#include "scene/pixel_bayer.h"
#include "scene/sensor_response.h"
#include "sensor_fixture.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>

namespace {

using namespace FlyCapture2;
using fcsim::Canvas;
using fcsim::Colour;
using fcsim::Level;
using fcsim::RowView;
using fcsim::SensorResponse;
using fcsim::SensorSettings;
using fcsim::SensorState;
using fcsim::Space;

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr Colour kBrick{30000, 20000, 12000};

Canvas flat(const Colour& colour, Space space)
{
    Canvas canvas(kWidth, kHeight, space);
    canvas.fill(canvas.bounds(), colour);
    return canvas;
}

/// What becomes of one pixel of an evenly lit colour sensor, in 16 steps of a level: 12 bits.
std::array<int, 3> pixelOf(PixelFormat format, const SensorState& state, int x = 0, int y = 0)
{
    const Canvas light = flat(kBrick, Space::rgb);
    SensorResponse response({}, fcsim::quietSensor(RGGB));
    response.begin(fcsim::wholeFrame(format, 0, state));
    const RowView row = response.develop(light, 0, y, kWidth);
    std::array<int, 3> levels{};
    for (unsigned plane = 0; plane < fcsim::planeCount(row.space); ++plane) {
        levels[plane] = row.plane[plane][x] & 0xFFF0;
    }
    return levels;
}

SensorState balanced(unsigned red, unsigned blue)
{
    SensorState state;
    state.whiteBalanceRed = red;
    state.whiteBalanceBlue = blue;
    return state;
}

SensorState coloured(float saturationPercent, float hueDegrees)
{
    SensorState state;
    state.saturationPercent = saturationPercent;
    state.hueDegrees = hueDegrees;
    return state;
}

SensorState sharp(unsigned sharpness)
{
    SensorState state;
    state.sharpness = sharpness;
    return state;
}

TEST(SensorResponse, WhiteBalanceScalesRedAndBlue)
{
    const auto [red, green, blue] = pixelOf(PIXEL_FORMAT_RGB8, balanced(768, 256));
    EXPECT_NEAR(red, 45000, 24);
    EXPECT_NEAR(green, 20000, 16);
    EXPECT_NEAR(blue, 6000, 16);
}

TEST(SensorResponse, WhiteBalanceReachesTheMosaicPixelByPixel)
{
    const std::array<int, 3> expected = {45000, 20000, 6000};
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            const unsigned plane =
                fcsim::bayerPlane(RGGB, static_cast<unsigned>(x), static_cast<unsigned>(y));
            EXPECT_NEAR(pixelOf(PIXEL_FORMAT_RAW16, balanced(768, 256), x, y)[0], expected[plane],
                        24)
                << x << ", " << y;
        }
    }
}

TEST(SensorResponse, WhiteBalanceLeavesMonochromeSensorsAlone)
{
    const Canvas light = flat(fcsim::grey(0x5000), Space::grey);
    SensorResponse response({}, fcsim::quietSensor());
    for (const PixelFormat format : {PIXEL_FORMAT_MONO16, PIXEL_FORMAT_RAW16}) {
        response.begin(fcsim::wholeFrame(format, 0, balanced(1023, 1023)));
        EXPECT_EQ(response.develop(light, 0, 0, kWidth).plane[0][7], 0x5000);
    }
}

TEST(SensorResponse, MonoFormatsShowTheLumaOfABalancedSensor)
{
    const Level expected = fcsim::luma(45000 & 0xFFF0, 20000, 12000 & 0xFFF0);
    EXPECT_NEAR(pixelOf(PIXEL_FORMAT_MONO16, balanced(768, 512))[0], expected, 16);
}

TEST(SensorResponse, NoSaturationIsGreyAfterWhiteBalance)
{
    SensorState state = coloured(0, 0);
    state.whiteBalanceRed = 1023;
    const auto [red, green, blue] = pixelOf(PIXEL_FORMAT_444YUV8, state);
    EXPECT_EQ(red, green);
    EXPECT_EQ(green, blue);
    EXPECT_NEAR(red, 0.299 * 59941 + 0.587 * 20000 + 0.114 * 12000, 32);
}

TEST(SensorResponse, SaturationAndHueConcernProcessedColourOnly)
{
    const SensorState state = coloured(50, 120);
    for (const PixelFormat format : {PIXEL_FORMAT_MONO16, PIXEL_FORMAT_RAW16}) {
        EXPECT_EQ(pixelOf(format, state), pixelOf(format, {}));
    }
    for (const PixelFormat format :
         {PIXEL_FORMAT_RGB8, PIXEL_FORMAT_411YUV8, PIXEL_FORMAT_422YUV8, PIXEL_FORMAT_444YUV8}) {
        EXPECT_NE(pixelOf(format, state), pixelOf(format, {}));
    }
}

TEST(SensorResponse, GammaAndTableConcernAllFormats)
{
    SensorState state;
    state.gamma = 2;
    state.lut = fcsim::busyState().lut;
    for (const PixelFormat format : {PIXEL_FORMAT_MONO16, PIXEL_FORMAT_RAW16, PIXEL_FORMAT_RGB8}) {
        const auto before = pixelOf(format, {});
        const auto after = pixelOf(format, state);
        for (unsigned plane = 0; plane < (format == PIXEL_FORMAT_RGB8 ? 3U : 1U); ++plane) {
            const double bent = std::sqrt(before[plane] / 65520.0) * 512;
            const auto& table = state.lut->channels[plane];
            EXPECT_EQ(after[plane], table[static_cast<std::size_t>(bent)] << 7U) << plane;
        }
    }
}

/// The row of a light that steps from dark to bright in the middle.
std::vector<Level> edgeThrough(PixelFormat format, const SensorState& state, int from, int width)
{
    Canvas light = flat(fcsim::grey(0x4000), Space::grey);
    light.fill({kWidth / 2, 0, kWidth / 2, kHeight}, fcsim::grey(0x8000));
    SensorResponse response({}, fcsim::quietSensor());
    response.begin(fcsim::wholeFrame(format, 0, state));
    const RowView row = response.develop(light, from, 3, width);
    return {row.plane[0], row.plane[0] + row.width};
}

TEST(SensorResponse, SharpnessSteepensAnEdge)
{
    const auto crisp = edgeThrough(PIXEL_FORMAT_MONO16, sharp(2048), 0, kWidth);
    EXPECT_EQ(crisp[kWidth / 2 - 2], 0x4000);
    EXPECT_EQ(crisp[kWidth / 2 - 1], 0x3000);
    EXPECT_EQ(crisp[kWidth / 2], 0x9000);
    EXPECT_EQ(crisp[kWidth / 2 + 1], 0x8000);
    const auto soft = edgeThrough(PIXEL_FORMAT_MONO16, sharp(0), 0, kWidth);
    EXPECT_EQ(soft[kWidth / 2 - 1], 0x5000);
    EXPECT_EQ(soft[kWidth / 2], 0x7000);
}

TEST(SensorResponse, SharpnessLeavesRawFormatsAlone)
{
    EXPECT_EQ(edgeThrough(PIXEL_FORMAT_RAW16, sharp(4000), 0, kWidth),
              edgeThrough(PIXEL_FORMAT_RAW16, {}, 0, kWidth));
}

/// A region that ends at the edge still looks at the pixel beyond.
TEST(SensorResponse, SharpnessSeesPixelsOutsideOfTheRegion)
{
    const auto left = edgeThrough(PIXEL_FORMAT_MONO16, sharp(2048), 0, kWidth / 2);
    EXPECT_EQ(left.back(), 0x3000);
    const auto right = edgeThrough(PIXEL_FORMAT_MONO16, sharp(2048), kWidth / 2, kWidth / 2);
    EXPECT_EQ(right.front(), 0x9000);
}

/// Mean and variance of the levels that noise makes of flat light, in electrons.
struct Statistics {
    double mean = 0;
    double variance = 0;
};

Statistics noiseOf(Level light, SensorSettings sensor, const SensorState& state = {})
{
    sensor.noise = true;
    const Canvas canvas = flat(fcsim::grey(light), Space::grey);
    SensorResponse response({}, sensor);
    response.begin(fcsim::wholeFrame(PIXEL_FORMAT_MONO16, 3, state));
    double sum = 0;
    double squares = 0;
    for (int y = 0; y < kHeight; ++y) {
        const RowView row = response.develop(canvas, 0, y, kWidth);
        for (int x = 0; x < kWidth; ++x) {
            const double electrons = row.plane[0][x] * sensor.fullWell / 65535;
            sum += electrons;
            squares += electrons * electrons;
        }
    }
    const double count = kWidth * kHeight;
    return {sum / count, squares / count - sum / count * (sum / count)};
}

TEST(SensorResponse, ShotNoiseHasTheVarianceOfItsElectrons)
{
    SensorSettings sensor = fcsim::quietSensor();
    sensor.readNoise = 0;
    for (const unsigned light : {0x2000U, 0x4000U, 0x8000U}) {
        const Statistics found = noiseOf(static_cast<Level>(light), sensor);
        EXPECT_NEAR(found.mean, light / 65535.0 * sensor.fullWell, 3);
        EXPECT_NEAR(found.variance / found.mean, 1, 0.04);
    }
}

TEST(SensorResponse, ReadNoiseAddsItsOwn)
{
    SensorSettings sensor = fcsim::quietSensor();
    sensor.readNoise = 50;
    const Statistics found = noiseOf(0x4000, sensor);
    EXPECT_NEAR(found.variance, found.mean + 2500, 0.04 * (found.mean + 2500));
}

TEST(SensorResponse, MoreLightIsBetterThanMoreGain)
{
    SensorState lit;
    lit.shutterUs = 64000;
    SensorState amplified;
    amplified.gainDb = 18.0618F; // eight times
    const Statistics light = noiseOf(0x1000, fcsim::quietSensor(), lit);
    const Statistics gain = noiseOf(0x1000, fcsim::quietSensor(), amplified);
    EXPECT_NEAR(light.mean, gain.mean, 10);
    EXPECT_GT(gain.variance, 6 * light.variance);
}

TEST(SensorResponse, ColoursHaveNoiseOfTheirOwn)
{
    const Canvas light = flat(fcsim::grey(0x8000), Space::rgb);
    SensorResponse response({}, fcsim::noisySensor(RGGB));
    response.begin(fcsim::wholeFrame(PIXEL_FORMAT_RGB8));
    const RowView row = response.develop(light, 0, 0, kWidth);
    int same = 0;
    for (int x = 0; x < kWidth; ++x) {
        same += row.plane[0][x] == row.plane[1][x] || row.plane[1][x] == row.plane[2][x] ? 1 : 0;
    }
    EXPECT_LT(same, kWidth / 10);
}

TEST(SensorResponse, MeteringLeavesOutNoiseGammaAndTable)
{
    const Canvas light = flat(fcsim::grey(0x2000), Space::grey);
    SensorResponse response({}, fcsim::noisySensor());
    SensorState state = fcsim::busyState();
    state.shutterUs = 16000;
    state.gainDb = 0;
    state.brightnessPercent = 6.25F;
    response.begin(fcsim::wholeFrame(PIXEL_FORMAT_MONO8, 0, state));
    const RowView seen = response.meter(light.row(0, 0, kWidth), 0, 0);
    ASSERT_EQ(seen.width, static_cast<unsigned>(kWidth));
    const std::set<Level> levels(seen.plane[0], seen.plane[0] + kWidth);
    EXPECT_EQ(levels, std::set<Level>{0x4FF0});
}

TEST(SensorResponse, KnowsWhenPixelsStandAlone)
{
    SensorResponse quiet({}, fcsim::quietSensor());
    quiet.begin(fcsim::wholeFrame(PIXEL_FORMAT_MONO8));
    EXPECT_TRUE(quiet.pointwise());
    quiet.begin(fcsim::wholeFrame(PIXEL_FORMAT_MONO8, 0, sharp(1025)));
    EXPECT_FALSE(quiet.pointwise());
    quiet.begin(fcsim::wholeFrame(PIXEL_FORMAT_RAW8, 0, sharp(1025)));
    EXPECT_TRUE(quiet.pointwise());
    SensorResponse noisy({}, fcsim::noisySensor());
    noisy.begin(fcsim::wholeFrame(PIXEL_FORMAT_MONO8));
    EXPECT_FALSE(noisy.pointwise());
}

} // namespace
