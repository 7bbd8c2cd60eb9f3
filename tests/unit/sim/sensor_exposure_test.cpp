// Levels of the converter from light: exposure, full well, gain, black level, size of the noise.
#include "scene/sensor_exposure.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using fcsim::Level;
using fcsim::SceneSettings;
using fcsim::SensorSettings;
using fcsim::SensorState;

constexpr float kDoubled = 6.0206F; ///< decibels that double

/// The level that `light` gives, with noise of `deviate` standard deviations.
Level exposed(Level light, const SensorState& state, const SceneSettings& scene = {},
              float deviate = 0, const SensorSettings& sensor = {})
{
    Level level = 0;
    fcsim::exposeRow(&light, 1, fcsim::makeExposureChain(scene, sensor, state), &deviate, &level);
    return level;
}

SensorState withShutter(float shutterUs)
{
    SensorState state;
    state.shutterUs = shutterUs;
    return state;
}

SensorState withGain(float gainDb, float shutterUs = 8000)
{
    SensorState state = withShutter(shutterUs);
    state.gainDb = gainDb;
    return state;
}

SensorState withBlack(float percent)
{
    SensorState state;
    state.brightnessPercent = percent;
    return state;
}

TEST(SensorExposure, NeutralStateShowsTheLightAsItIs)
{
    for (unsigned light = 0; light < 0x10000; light += 7) {
        const auto level = static_cast<Level>(light);
        ASSERT_EQ(exposed(level, {}), level & 0xFFF0U);
    }
}

TEST(SensorExposure, ShutterScalesUntilFullScale)
{
    EXPECT_EQ(exposed(0x1000, withShutter(16000)), 0x2000);
    EXPECT_EQ(exposed(0x1000, withShutter(4000)), 0x0800);
    EXPECT_EQ(exposed(0x1000, withShutter(0)), 0);
    EXPECT_EQ(exposed(0x1000, withShutter(15 * 8000)), 0xF000);
    EXPECT_EQ(exposed(0x1000, withShutter(16 * 8000)), 0xFFF0);
    EXPECT_EQ(exposed(0x1000, withShutter(1e6)), 0xFFF0);
}

TEST(SensorExposure, SceneLightAndReferenceScaleAlike)
{
    SceneSettings scene;
    scene.brightness = 3;
    EXPECT_EQ(exposed(0x1000, {}, scene), 0x3000);
    scene.brightness = 1;
    scene.referenceExposureUs = 4000;
    EXPECT_EQ(exposed(0x1000, {}, scene), 0x2000);
}

TEST(SensorExposure, GainScalesByItsDecibels)
{
    EXPECT_NEAR(exposed(0x1000, withGain(kDoubled)), 0x2000, 0x10);
    EXPECT_NEAR(exposed(0x1000, withGain(2 * kDoubled)), 0x4000, 0x10);
    EXPECT_NEAR(exposed(0x1000, withGain(20)), 0xA000, 0x10);
    EXPECT_NEAR(exposed(0x1000, withGain(-kDoubled)), 0x0800, 0x10);
    EXPECT_NEAR(exposed(0x1000, withGain(1)), 4096 * std::pow(10, 0.05), 0x10);
}

/// A pixel that is full stays so however low the gain; the converter ends at full scale.
TEST(SensorExposure, FullWellComesBeforeTheGainAndFullScaleAfter)
{
    EXPECT_NEAR(exposed(0x8000, withGain(-kDoubled, 8000)), 0x4000, 0x10);
    EXPECT_NEAR(exposed(0x8000, withGain(-kDoubled, 16000)), 0x8000, 0x10);
    EXPECT_NEAR(exposed(0x8000, withGain(-kDoubled, 64000)), 0x8000, 0x10);
    EXPECT_EQ(exposed(0x8000, withGain(2 * kDoubled)), 0xFFF0);
}

TEST(SensorExposure, BlackLevelLifts)
{
    EXPECT_EQ(exposed(0, withBlack(6.25F)), 0x0FF0);
    EXPECT_EQ(exposed(0x2000, withBlack(6.25F)), 0x2FF0);
    EXPECT_EQ(exposed(0xFFFF, withBlack(6.25F)), 0xFFF0);
    SensorState dim = withGain(-kDoubled, 64000); // full wells, below full scale
    dim.brightnessPercent = 6.25F;
    EXPECT_NEAR(exposed(0x8000, dim), 0x9000, 0x10);
}

TEST(SensorExposure, BlackLevelIsNotAmplified)
{
    SensorState state = withBlack(6.25F);
    state.gainDb = 24;
    EXPECT_EQ(exposed(0, state), 0x0FF0);
}

TEST(SensorExposure, ConverterCutsFinerSteps)
{
    SensorSettings sensor;
    sensor.bitDepth = 10;
    EXPECT_EQ(exposed(0x12FF, {}, {}, 0, sensor), 0x12C0);
    sensor.bitDepth = 8;
    EXPECT_EQ(exposed(0x12FF, {}, {}, 0, sensor), 0x1200);
}

TEST(SensorExposure, NoiseIsThatOfElectronsAndReadOut)
{
    const double levelsPerElectron = 65535.0 / 10000;
    for (const unsigned light : {0x1000U, 0x4000U, 0x8000U, 0xC000U}) {
        const double electrons = light / levelsPerElectron;
        const double deviation = std::sqrt(electrons + 8 * 8) * levelsPerElectron;
        EXPECT_NEAR(exposed(static_cast<Level>(light), {}, {}, 1), light + deviation, 0x10);
        EXPECT_NEAR(exposed(static_cast<Level>(light), {}, {}, -1), light - deviation, 0x10);
    }
}

TEST(SensorExposure, GainAmplifiesTheNoiseToo)
{
    const double plain = exposed(0x2000, {}, {}, 1) - exposed(0x2000, {}, {}, -1);
    const SensorState state = withGain(kDoubled);
    const double amplified = exposed(0x2000, state, {}, 1) - exposed(0x2000, state, {}, -1);
    EXPECT_NEAR(amplified, 2 * plain, 0x20);
}

TEST(SensorExposure, SmallerWellsAreNoisier)
{
    SensorSettings small;
    small.fullWell = 2500;
    small.readNoise = 0;
    SensorSettings large;
    large.readNoise = 0;
    const double coarse = exposed(0x8000, {}, {}, 1, small) - 0x8000;
    const double fine = exposed(0x8000, {}, {}, 1, large) - 0x8000;
    EXPECT_NEAR(coarse, 2 * fine, 0x20);
}

TEST(SensorExposure, ReadNoiseNeedsNoLightAndBlackLevelShowsBothItsSides)
{
    const double deviation = 8 * 65535.0 / 10000;
    EXPECT_NEAR(exposed(0, {}, {}, 2), 2 * deviation, 0x10);
    EXPECT_EQ(exposed(0, {}, {}, -2), 0);
    EXPECT_NEAR(exposed(0, withBlack(6.25F), {}, -2), 4096 - 2 * deviation, 0x10);
}

TEST(SensorExposure, SaturationIsWithoutNoise)
{
    EXPECT_EQ(exposed(0xFFFF, withShutter(32000), {}, 3), 0xFFF0);
    EXPECT_EQ(exposed(0xFFFF, withShutter(32000), {}, -3), 0xFFF0);
}

TEST(SensorExposure, WithoutDeviatesThereIsNoNoise)
{
    const std::array<Level, 3> light = {0x1000, 0x2000, 0x3000};
    std::array<Level, 3> levels{};
    fcsim::exposeRow(light.data(), 3, fcsim::makeExposureChain({}, {}, {}), nullptr, levels.data());
    EXPECT_EQ(levels, light);
}

} // namespace
