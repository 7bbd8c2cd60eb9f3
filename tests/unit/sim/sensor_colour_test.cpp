// White balance, saturation and hue on rows.
#include "scene/sensor_colour.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using fcsim::Level;
using fcsim::Row;
using fcsim::SensorState;
using Levels = std::vector<Level>;

struct Rgb {
    int red;
    int green;
    int blue;
};

SensorState state(float saturationPercent, float hueDegrees)
{
    SensorState set;
    set.saturationPercent = saturationPercent;
    set.hueDegrees = hueDegrees;
    return set;
}

Rgb turned(const Rgb& colour, float saturationPercent, float hueDegrees)
{
    Row row;
    row.reset(fcsim::Space::rgb, 1);
    row.plane(0)[0] = static_cast<Level>(colour.red);
    row.plane(1)[0] = static_cast<Level>(colour.green);
    row.plane(2)[0] = static_cast<Level>(colour.blue);
    fcsim::turnColours(row, 1, fcsim::colourTurnOf(state(saturationPercent, hueDegrees)));
    return {row.plane(0)[0], row.plane(1)[0], row.plane(2)[0]};
}

double lumaOf(const Rgb& colour)
{
    return 0.299 * colour.red + 0.587 * colour.green + 0.114 * colour.blue;
}

void expectNear(const Rgb& colour, const Rgb& expected, double tolerance)
{
    EXPECT_NEAR(colour.red, expected.red, tolerance);
    EXPECT_NEAR(colour.green, expected.green, tolerance);
    EXPECT_NEAR(colour.blue, expected.blue, tolerance);
}

constexpr Rgb kBrick{30000, 20000, 12000};

TEST(SensorColour, WhiteBalanceCountsIn512ths)
{
    SensorState set;
    EXPECT_EQ(fcsim::balanceOf(set), (std::array<float, 3>{1, 1, 1}));
    set.whiteBalanceRed = 768;
    set.whiteBalanceBlue = 0;
    EXPECT_EQ(fcsim::balanceOf(set), (std::array<float, 3>{1.5F, 1, 0}));
    set.whiteBalanceRed = 1023;
    EXPECT_FLOAT_EQ(fcsim::balanceOf(set)[0], 1023 / 512.0F);
}

TEST(SensorColour, BalancesPlacesByTurns)
{
    Levels levels = {1000, 1000, 2000, 2000, 3000};
    fcsim::balanceRow(levels.data(), 5, 2, 0.5F);
    EXPECT_EQ(levels, (Levels{2000, 500, 4000, 1000, 6000}));
}

TEST(SensorColour, BalanceEndsAtFullScale)
{
    Levels levels = {40000, 40000};
    fcsim::balanceRow(levels.data(), 2, 2, 1);
    EXPECT_EQ(levels, (Levels{65535, 40000}));
}

TEST(SensorColour, NeutralBalanceChangesNothing)
{
    Levels levels = {0, 1, 0x1234, 0xFFFF};
    const Levels before = levels;
    fcsim::balanceRow(levels.data(), 4, 1, 1);
    EXPECT_EQ(levels, before);
}

TEST(SensorColour, NoSaturationIsGreyOfTheSameLuma)
{
    const Rgb grey = turned(kBrick, 0, 0);
    EXPECT_EQ(grey.red, grey.green);
    EXPECT_EQ(grey.green, grey.blue);
    EXPECT_NEAR(grey.red, lumaOf(kBrick), 1);
}

TEST(SensorColour, SaturationStretchesFromGrey)
{
    const int luma = static_cast<int>(std::lround(lumaOf(kBrick)));
    const auto stretched = [luma](int level) { return luma + (level - luma) * 3 / 2; };
    expectNear(turned(kBrick, 150, 0),
               {stretched(kBrick.red), stretched(kBrick.green), stretched(kBrick.blue)}, 2);
}

TEST(SensorColour, GreyStaysGreyWhateverIsSet)
{
    for (const int level : {0, 0x0100, 0x8000, 0xFF00, 0xFFFF}) {
        expectNear(turned({level, level, level}, 400, 77), {level, level, level}, 0);
    }
}

TEST(SensorColour, HueTurnsRedOverYellowToGreen)
{
    const Rgb red{40000, 20000, 20000};
    const Rgb yellowish = turned(red, 100, 60);
    EXPECT_GT(std::min(yellowish.red, yellowish.green), yellowish.blue + 8000);
    const Rgb greenish = turned(red, 100, 120);
    EXPECT_GT(greenish.green, std::max(greenish.red, greenish.blue) + 4000);
    EXPECT_NEAR(lumaOf(yellowish), lumaOf(red), 2);
    EXPECT_NEAR(lumaOf(greenish), lumaOf(red), 2);
}

TEST(SensorColour, HueOfHalfATurnGivesTheOppositeColour)
{
    const double luma = lumaOf(kBrick);
    const auto opposite = [luma](int level) { return static_cast<int>(2 * luma) - level; };
    expectNear(turned(kBrick, 100, 180),
               {opposite(kBrick.red), opposite(kBrick.green), opposite(kBrick.blue)}, 2);
    expectNear(turned(kBrick, 100, -180), turned(kBrick, 100, 180), 1);
    expectNear(turned(kBrick, 100, 360), kBrick, 1);
}

TEST(SensorColour, LevelsStayInRange)
{
    const Rgb glaring = turned({65535, 0, 0}, 400, 0);
    expectNear(glaring, {65535, 0, 0}, 0);
}

TEST(SensorColour, KnowsWhenItIsNeutral)
{
    EXPECT_TRUE(fcsim::colourTurnOf(SensorState{}).neutral());
    EXPECT_FALSE(fcsim::colourTurnOf(state(101, 0)).neutral());
    EXPECT_FALSE(fcsim::colourTurnOf(state(100, 1)).neutral());
}

} // namespace
