// Gamma and look-up table.
#include "scene/sensor_tone.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

using fcsim::Level;
using fcsim::SensorLut;
using fcsim::SensorState;
using fcsim::ToneCurve;
using Curve = std::function<unsigned(unsigned)>;

Level through(const ToneCurve& curve, Level level, unsigned plane = 0)
{
    curve.apply(plane, &level, 1);
    return level;
}

SensorState withGamma(float gamma)
{
    SensorState state;
    state.gamma = gamma;
    return state;
}

/// A table of 9 to 9 bits with one channel for each curve.
SensorState withLut(const std::vector<Curve>& curves)
{
    auto lut = std::make_shared<SensorLut>();
    for (const Curve& curve : curves) {
        auto& channel = lut->channels.emplace_back();
        for (unsigned entry = 0; entry < 512; ++entry) {
            channel.push_back(static_cast<std::uint16_t>(curve(entry)));
        }
    }
    SensorState state;
    state.lut = lut;
    return state;
}

unsigned same(unsigned entry)
{
    return entry;
}

unsigned inverse(unsigned entry)
{
    return 511 - entry;
}

ToneCurve curveOf(const SensorState& state)
{
    ToneCurve curve;
    curve.set(state);
    return curve;
}

TEST(SensorTone, StraightCurveKeepsFullDepth)
{
    const ToneCurve curve = curveOf({});
    EXPECT_TRUE(curve.straight());
    EXPECT_EQ(through(curve, 0x1234), 0x1234);
    EXPECT_EQ(through(curve, 0xFFFF), 0xFFFF);
}

TEST(SensorTone, GammaIsThePowerOfItsReciprocal)
{
    for (const float gamma : {0.5F, 1.25F, 2.2F, 4.0F}) {
        const ToneCurve curve = curveOf(withGamma(gamma));
        EXPECT_FALSE(curve.straight());
        for (unsigned step = 0; step < 4096; step += 91) {
            const double expected = std::pow(step / 4095.0, 1 / static_cast<double>(gamma)) * 65535;
            ASSERT_NEAR(through(curve, static_cast<Level>(step << 4U)), expected, 1) << gamma;
        }
        EXPECT_EQ(through(curve, 0), 0);
        EXPECT_EQ(through(curve, 0xFFF0), 0xFFFF);
    }
}

TEST(SensorTone, GammaAboveOneLiftsTheShadows)
{
    EXPECT_GT(through(curveOf(withGamma(2)), 0x2000), 0x5000);
    EXPECT_LT(through(curveOf(withGamma(0.5F)), 0x8000), 0x4100);
}

TEST(SensorTone, IdentityKeepsNineBits)
{
    const ToneCurve curve = curveOf(withLut({same}));
    EXPECT_FALSE(curve.straight());
    for (unsigned level = 0; level < 0x10000; level += 16) {
        ASSERT_EQ(through(curve, static_cast<Level>(level)), level & 0xFF80U);
    }
}

TEST(SensorTone, InverseTableInverts)
{
    const ToneCurve curve = curveOf(withLut({inverse}));
    for (unsigned level = 0; level < 0x10000; level += 16) {
        ASSERT_EQ(through(curve, static_cast<Level>(level)), (511 - (level >> 7)) << 7);
    }
}

TEST(SensorTone, ChannelsHaveTheirOwnTables)
{
    const Curve constant = [](unsigned) { return 100U; };
    const ToneCurve curve = curveOf(withLut({same, inverse, constant}));
    EXPECT_EQ(through(curve, 0x4000, 0), 0x4000);
    EXPECT_EQ(through(curve, 0x4000, 1), 0xBF80);
    EXPECT_EQ(through(curve, 0x4000, 2), 100 << 7);
}

TEST(SensorTone, FirstChannelServesColoursWithoutATable)
{
    const ToneCurve one = curveOf(withLut({inverse}));
    EXPECT_EQ(through(one, 0x4000, 1), 0xBF80);
    EXPECT_EQ(through(one, 0x4000, 2), 0xBF80);
    const ToneCurve two = curveOf(withLut({same, inverse}));
    EXPECT_EQ(through(two, 0x4000, 1), 0xBF80);
    EXPECT_EQ(through(two, 0x4000, 2), 0x4000);
}

TEST(SensorTone, GammaComesBeforeTheTable)
{
    SensorState state = withLut({inverse});
    state.gamma = 2;
    const ToneCurve curve = curveOf(state);
    const auto bent = static_cast<unsigned>(std::sqrt(0x4000 / 65520.0) * 512);
    EXPECT_EQ(through(curve, 0x4000), (511 - bent) << 7);
}

TEST(SensorTone, BitsOfTheTableChooseInputAndOutput)
{
    auto lut = std::make_shared<SensorLut>();
    lut->inputBits = 2;
    lut->outputBits = 4;
    lut->channels = {{1, 2, 15, 8}};
    SensorState state;
    state.lut = lut;
    const ToneCurve curve = curveOf(state);
    EXPECT_EQ(through(curve, 0x0000), 0x1000);
    EXPECT_EQ(through(curve, 0x3FF0), 0x1000);
    EXPECT_EQ(through(curve, 0x4000), 0x2000);
    EXPECT_EQ(through(curve, 0xBFF0), 0xF000);
    EXPECT_EQ(through(curve, 0xC000), 0x8000);
}

TEST(SensorTone, LevelsBeyondAShortTableTakeItsLastEntry)
{
    auto lut = std::make_shared<SensorLut>();
    lut->channels = {{0, 7}};
    SensorState state;
    state.lut = lut;
    const ToneCurve curve = curveOf(state);
    EXPECT_EQ(through(curve, 0x0000), 0);
    EXPECT_EQ(through(curve, 0x0080), 7 << 7);
    EXPECT_EQ(through(curve, 0xFFF0), 7 << 7);
}

TEST(SensorTone, FollowsEachChange)
{
    ToneCurve curve = curveOf(withLut({inverse}));
    curve.set(withLut({same}));
    EXPECT_EQ(through(curve, 0x4000), 0x4000);
    curve.set(withGamma(2));
    EXPECT_NEAR(through(curve, 0x4000), std::sqrt(0x4000 / 65520.0) * 65535, 1);
    curve.set({});
    EXPECT_EQ(through(curve, 0x4321), 0x4321);
}

TEST(SensorTone, KeepsTheTableThatItUses)
{
    SensorState state = withLut({inverse});
    ToneCurve curve;
    curve.set(state);
    const std::weak_ptr<const SensorLut> watched = state.lut;
    state.lut.reset();
    EXPECT_FALSE(watched.expired());
    curve.set({});
    EXPECT_TRUE(watched.expired());
}

} // namespace
