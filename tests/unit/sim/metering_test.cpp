// The metering's mean against the mean of the frame that it stands for.
#include "sensor_fixture.h"

#include <gtest/gtest.h>

namespace {

using namespace FlyCapture2;
using fcsim::FrameRequest;
using fcsim::Renderer;
using fcsim::SceneSettings;
using fcsim::SensorSettings;
using fcsim::SensorState;

/// The grid of points sees a mean that is right to this many percent of full scale.
constexpr double kTolerancePercent = 1.5;

double meteredPercent(const SensorSettings& sensor, const FrameRequest& request)
{
    return 100 * Renderer(SceneSettings{}, sensor).exposedMean(request);
}

SensorState exposedFor(float shutterUs, float gainDb = 0)
{
    SensorState state;
    state.shutterUs = shutterUs;
    state.gainDb = gainDb;
    return state;
}

TEST(Metering, AgreesWithTheFrame)
{
    for (const BayerTileFormat tile : {NONE, RGGB, GBRG}) {
        for (const PixelFormat format : {PIXEL_FORMAT_MONO8, PIXEL_FORMAT_RAW8}) {
            for (const float shutter : {500.0F, 4000.0F, 8000.0F, 20000.0F, 200000.0F}) {
                const FrameRequest request = fcsim::wholeFrame(format, 12, exposedFor(shutter, 3));
                const SensorSettings sensor = fcsim::quietSensor(tile);
                EXPECT_NEAR(meteredPercent(sensor, request),
                            fcsim::meanPercent(fcsim::freshFrame(sensor, request)),
                            kTolerancePercent)
                    << "tile " << tile << ", " << fcsim::pixelFormatName(format) << ", " << shutter;
            }
        }
    }
}

TEST(Metering, AgreesInRegionsDownToOneTile)
{
    const SensorSettings sensor = fcsim::quietSensor(GRBG);
    FrameRequest request = fcsim::wholeFrame(PIXEL_FORMAT_MONO8);
    request.offsetX = 60;
    request.offsetY = 90;
    for (const unsigned size : {2U, 8U, 50U, 128U}) {
        request.width = size;
        request.height = size;
        EXPECT_NEAR(meteredPercent(sensor, request),
                    fcsim::meanPercent(fcsim::freshFrame(sensor, request)), 2 * kTolerancePercent)
            << size;
    }
}

TEST(Metering, CountsBlackLevelAndWhiteBalanceIn)
{
    const SensorSettings sensor = fcsim::quietSensor(RGGB);
    SensorState state;
    state.brightnessPercent = 6;
    state.whiteBalanceRed = 900;
    state.whiteBalanceBlue = 700;
    const FrameRequest request = fcsim::wholeFrame(PIXEL_FORMAT_RAW8, 0, state);
    const double mean = meteredPercent(sensor, request);
    EXPECT_NEAR(mean, fcsim::meanPercent(fcsim::freshFrame(sensor, request)), kTolerancePercent);
    EXPECT_GT(mean, meteredPercent(sensor, fcsim::wholeFrame(PIXEL_FORMAT_RAW8)) + 10);
}

TEST(Metering, LeavesOutNoiseGammaAndTable)
{
    SensorState busy;
    busy.gamma = 3;
    busy.lut = fcsim::busyState().lut;
    const double plain =
        meteredPercent(fcsim::quietSensor(), fcsim::wholeFrame(PIXEL_FORMAT_MONO8));
    const FrameRequest request = fcsim::wholeFrame(PIXEL_FORMAT_MONO8, 0, busy);
    EXPECT_EQ(meteredPercent(fcsim::noisySensor(), request), plain);
}

TEST(Metering, RisesWithTheShutterUntilSaturation)
{
    double before = -1;
    for (const float shutter : {10.0F, 100.0F, 1000.0F, 8000.0F, 50000.0F, 1e6F}) {
        const double now = meteredPercent(
            fcsim::quietSensor(), fcsim::wholeFrame(PIXEL_FORMAT_MONO8, 0, exposedFor(shutter)));
        EXPECT_GT(now, before) << shutter;
        before = now;
    }
    EXPECT_GT(before, 80); // the rest of the chart is black
}

TEST(Metering, ChangesNothingInTheFramesAfterIt)
{
    const FrameRequest first = fcsim::wholeFrame(PIXEL_FORMAT_MONO8, 4);
    const FrameRequest second = fcsim::wholeFrame(PIXEL_FORMAT_RAW8, 9, exposedFor(2000));
    for (const SensorSettings& sensor : {fcsim::quietSensor(RGGB), fcsim::noisySensor(RGGB)}) {
        Renderer renderer(SceneSettings{}, sensor);
        fcsim::frameOf(renderer, first);
        EXPECT_EQ(renderer.exposedMean(second), renderer.exposedMean(second));
        EXPECT_EQ(fcsim::frameOf(renderer, first), fcsim::freshFrame(sensor, first));
    }
}

TEST(Metering, SeesNothingWithoutScene)
{
    SceneSettings none;
    none.kind = fcsim::SceneKind::none;
    Renderer renderer(none, fcsim::quietSensor());
    EXPECT_EQ(renderer.exposedMean(fcsim::wholeFrame(PIXEL_FORMAT_MONO8)), 0);
}

} // namespace
