// Automatic shutter and gain as arithmetic: how they converge, in which order, and where they end.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include <camera/auto_exposure.h>

using fcsim::Exposure;
using fcsim::ExposureControl;

namespace {

ExposureControl bothAutomatic()
{
    ExposureControl control;
    control.shutter = true;
    control.gain = true;
    control.shutterUs = {10, 20'000};
    control.gainDb = {0, 24};
    control.target = 0.18;
    return control;
}

/// Mean level of a scene of even light that is white after `whiteUs` at 0 dB.
double levelOf(const Exposure& exposure, double whiteUs)
{
    return std::min(exposure.shutterUs / whiteUs * std::pow(10, exposure.gainDb / 20), 1.0);
}

/// Exposures until nothing moves any more, the first one included.
std::vector<Exposure> settle(const ExposureControl& control, Exposure exposure, double whiteUs)
{
    std::vector<Exposure> way{exposure};
    for (int frame = 0; frame < 100; ++frame) {
        const Exposure next = nextExposure(control, exposure, levelOf(exposure, whiteUs));
        if (next == exposure) {
            break;
        }
        way.push_back(next);
        exposure = next;
    }
    return way;
}

double errorEv(const Exposure& exposure, double whiteUs, double target)
{
    return std::log2(levelOf(exposure, whiteUs) / target);
}

TEST(AutoExposure, TheTargetIs18PercentAtZeroAndDoublesWithEachStep)
{
    EXPECT_DOUBLE_EQ(fcsim::targetLevel(0), 0.18);
    EXPECT_DOUBLE_EQ(fcsim::targetLevel(1), 0.36);
    EXPECT_DOUBLE_EQ(fcsim::targetLevel(-1), 0.09);
    EXPECT_DOUBLE_EQ(fcsim::targetLevel(2.42), 0.9);
}

TEST(AutoExposure, ConvergesFromDarkWithoutOvershoot)
{
    const std::vector<Exposure> way = settle(bothAutomatic(), {10, 0}, 50'000);
    EXPECT_LE(way.size(), 15U);
    EXPECT_GE(way.size(), 5U); // damped
    for (std::size_t k = 1; k < way.size(); ++k) {
        EXPECT_GT(way[k].shutterUs, way[k - 1].shutterUs);
    }
    EXPECT_NEAR(errorEv(way.back(), 50'000, 0.18), 0, 0.05);
    EXPECT_LE(errorEv(way.back(), 50'000, 0.18), 0);
}

TEST(AutoExposure, ConvergesFromWhiteWithoutOvershoot)
{
    const std::vector<Exposure> way = settle(bothAutomatic(), {20'000, 24}, 1000);
    EXPECT_LE(way.size(), 20U);
    EXPECT_GE(way.size(), 5U);
    EXPECT_NEAR(errorEv(way.back(), 1000, 0.18), 0, 0.05);
    EXPECT_GE(errorEv(way.back(), 1000, 0.18), 0);
}

TEST(AutoExposure, NothingMovesWithinTheDeadBand)
{
    const Exposure exposure{5000, 6};
    const double edge = 0.18 * std::exp2(0.05);
    const auto next = [&](double level) { return nextExposure(bothAutomatic(), exposure, level); };
    EXPECT_EQ(next(edge * (1 - 1e-9)), exposure);
    EXPECT_NE(next(edge * (1 + 1e-9)), exposure);
    EXPECT_EQ(next(0.18 * 0.18 / edge * (1 + 1e-9)), exposure);
    EXPECT_NE(next(0.18 * 0.18 / edge * (1 - 1e-9)), exposure);
}

TEST(AutoExposure, AFrameMovesTwoStopsAtMost)
{
    const Exposure next = nextExposure(bothAutomatic(), {100, 0}, 0);
    EXPECT_NEAR(next.shutterUs, 400, 1e-9);
}

TEST(AutoExposure, LightIsGainedByTheShutterFirst)
{
    const std::vector<Exposure> way = settle(bothAutomatic(), {1000, 0}, 1e6);
    for (const Exposure& exposure : way) {
        EXPECT_TRUE(exposure.gainDb == 0 || exposure.shutterUs == 20'000);
    }
    EXPECT_GT(way.back().gainDb, 0);
    EXPECT_NEAR(errorEv(way.back(), 1e6, 0.18), 0, 0.05);
}

TEST(AutoExposure, LightIsGivenUpByTheGainFirst)
{
    const std::vector<Exposure> way = settle(bothAutomatic(), {20'000, 12}, 20'000);
    for (const Exposure& exposure : way) {
        EXPECT_TRUE(exposure.gainDb == 0 || exposure.shutterUs == 20'000);
    }
    EXPECT_EQ(way.back().gainDb, 0);
    EXPECT_LT(way.back().shutterUs, 20'000);
}

TEST(AutoExposure, BothEndAtTheirLimits)
{
    EXPECT_EQ(settle(bothAutomatic(), {1000, 0}, 1e9).back(), (Exposure{20'000, 24}));
    EXPECT_EQ(settle(bothAutomatic(), {1000, 10}, 1).back(), (Exposure{10, 0}));
}

TEST(AutoExposure, WhatLiesOutsideOfTheLimitsIsBroughtInside)
{
    EXPECT_EQ(nextExposure(bothAutomatic(), {40'000, 30}, 0.18), (Exposure{20'000, 24}));
    EXPECT_EQ(nextExposure(bothAutomatic(), {1, -3}, 0.18), (Exposure{10, 0}));
}

TEST(AutoExposure, WhatIsNotAutomaticKeepsItsValue)
{
    ExposureControl gainOnly = bothAutomatic();
    gainOnly.shutter = false;
    const Exposure brighter = settle(gainOnly, {40'000, 0}, 1e6).back();
    EXPECT_EQ(brighter.shutterUs, 40'000);
    EXPECT_NEAR(errorEv(brighter, 1e6, 0.18), 0, 0.05);
    ExposureControl shutterOnly = bothAutomatic();
    shutterOnly.gain = false;
    const Exposure longer = settle(shutterOnly, {100, -3}, 50'000).back();
    EXPECT_EQ(longer.gainDb, -3);
    EXPECT_NEAR(errorEv(longer, 50'000, 0.18), 0, 0.05);
}

} // namespace
