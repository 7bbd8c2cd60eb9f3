// Tests of the words of the automatic functions' registers, and of the target level.
#include "kx_pg_auto_range.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <rapidcheck/gtest.h>

namespace {

using KxPGrey::autoExposureTarget;
using KxPGrey::AutoRangeSteps;
using KxPGrey::gainRangeWord;
using KxPGrey::gainSteps;
using KxPGrey::hasAutoRange;
using KxPGrey::shutterRangeWord;
using KxPGrey::shutterSteps;

TEST(GainSteps, AreTenthsOfADecibel)
{
    const AutoRangeSteps steps = gainSteps(0.0F, 12.0F);
    EXPECT_EQ(steps.min, 0U);
    EXPECT_EQ(steps.max, 120U);
}

TEST(GainSteps, AreTruncatedInDoublePrecision)
{
    EXPECT_EQ(gainSteps(0.0F, 23.97F).max, 239U);
    EXPECT_EQ(gainSteps(0.0F, 24.0F).max, 240U);
    EXPECT_EQ(gainSteps(0.0F, std::nextafter(24.0F, 0.0F)).max, 239U);
    // As single precision numbers the one lies under its step and the other over it.
    EXPECT_EQ(gainSteps(0.7F, 0.3F).min, 6U);
    EXPECT_EQ(gainSteps(0.7F, 0.3F).max, 3U);
    // Divided in single precision these would be 7 and 19.
    EXPECT_EQ(gainSteps(0.7F, 1.9F).max, 18U);
}

TEST(GainSteps, AreTruncatedTowardZeroBelowIt)
{
    EXPECT_EQ(gainSteps(-2.55F, 1.0F).min, static_cast<std::uint32_t>(-25));
    EXPECT_EQ(gainSteps(-0.05F, 1.0F).min, 0U);
}

TEST(ShutterSteps, AreTensOfMicroseconds)
{
    const AutoRangeSteps steps = shutterSteps(100.0F, 20'000.0F);
    EXPECT_EQ(steps.min, 10U);
    EXPECT_EQ(steps.max, 2'000U);
    EXPECT_EQ(shutterSteps(9.999F, 19.5F).min, 0U);
    EXPECT_EQ(shutterSteps(9.999F, 19.5F).max, 1U);
}

TEST(ShutterSteps, AreTruncated)
{
    // Every step that the register can hold, and a hair under it.
    for (std::uint32_t step = 1; step <= 4'095; ++step) {
        const float us = static_cast<float>(step) * 10.0F;
        EXPECT_EQ(shutterSteps(0.0F, us).max, step);
        EXPECT_EQ(shutterSteps(std::nextafter(us, 0.0F), us).min, step - 1);
    }
}

TEST(AutoRange, IsThereWhenTheTopBitSaysSo)
{
    EXPECT_TRUE(hasAutoRange(0x80000000));
    EXPECT_FALSE(hasAutoRange(0x7FFFFFFF));
    EXPECT_FALSE(hasAutoRange(0));
}

TEST(RangeWord, HoldsBothLimitsUnderTheFlagsThatWereRead)
{
    EXPECT_EQ(gainRangeWord(0x80000000, {0, 120}), 0x82000078U);
    EXPECT_EQ(gainRangeWord(0xC1ABCDEF, {1, 2}), 0xC3001002U);
    EXPECT_EQ(gainRangeWord(0x82FFFFFF, {0, 0}), 0x82000000U);
    EXPECT_EQ(shutterRangeWord(0x80FFFFFF, {10, 2'000}), 0x8000A7D0U);
    EXPECT_EQ(shutterRangeWord(0xD5000000, {0xFFF, 0xFFF}), 0xD5FFFFFFU);
}

TEST(RangeWord, KeepsTwelveBitsOfALimit)
{
    EXPECT_EQ(gainRangeWord(0x80000000, {4'095, 4'096}), 0x82FFF000U);
    EXPECT_EQ(shutterRangeWord(0x80000000, {4'097, 4'095}), 0x80001FFFU);
    EXPECT_EQ(gainRangeWord(0x80000000, gainSteps(-2.5F, 409.65F)), 0x82FE7000U);
}

RC_GTEST_PROP(RangeWord, GivesBackFlagsAndBothLimits,
              (std::uint32_t current, std::uint32_t min, std::uint32_t max))
{
    const std::uint32_t shutter = shutterRangeWord(current, {min, max});
    RC_ASSERT((shutter >> 24U) == (current >> 24U));
    RC_ASSERT(shutter / 4'096 % 4'096 == min % 4'096);
    RC_ASSERT(shutter % 4'096 == max % 4'096);
    RC_ASSERT(gainRangeWord(current, {min, max}) == (shutter | (1U << 25U)));
}

/// Whole numbers of hundredths stay clear of the steps' ends, so that integers tell the result.
RC_GTEST_PROP(GainSteps, AreTheDecibelsTimesTenTruncated, ())
{
    const int tenths = *rc::gen::inRange(-1'000, 5'000);
    const int hundredths = *rc::gen::inRange(1, 10) * (tenths < 0 ? -1 : 1);
    const auto decibels = static_cast<float>(tenths * 10 + hundredths) / 100.0F;
    RC_ASSERT(gainSteps(decibels, 0.0F).min == static_cast<std::uint32_t>(tenths));
}

RC_GTEST_PROP(AutoExposureTarget, GrowsWithTheLevelBetweenTheEndsOfTheRange, ())
{
    const auto min = static_cast<float>(*rc::gen::inRange(-1'000, 0)) / 100.0F;
    const auto max = static_cast<float>(*rc::gen::inRange(1, 1'000)) / 100.0F;
    const int step = *rc::gen::inRange(1, 999);
    const float here = autoExposureTarget(static_cast<float>(step) / 1'000.0F, min, max);
    const float next = autoExposureTarget(static_cast<float>(step + 1) / 1'000.0F, min, max);
    RC_ASSERT(min <= here);
    RC_ASSERT(here <= next);
    RC_ASSERT(next <= max);
}

TEST(AutoExposureTarget, RunsThroughZeroInTheMiddle)
{
    constexpr float kMin = -7.5F;
    constexpr float kMax = 2.5F;
    EXPECT_EQ(autoExposureTarget(0.5F, kMin, kMax), 0.0F);
    EXPECT_EQ(autoExposureTarget(0.25F, kMin, kMax), -3.75F);
    EXPECT_EQ(autoExposureTarget(0.75F, kMin, kMax), 1.25F);
    EXPECT_EQ(autoExposureTarget(std::numeric_limits<float>::min(), kMin, kMax), kMin);
    EXPECT_FLOAT_EQ(autoExposureTarget(std::nextafter(1.0F, 0.0F), kMin, kMax), kMax);
    // Just below the middle the minimum rules still.
    const float below = autoExposureTarget(std::nextafter(0.5F, 0.0F), kMin, kMax);
    EXPECT_LT(below, 0.0F);
    EXPECT_NEAR(below, 0.0F, 1e-6F);
}

} // namespace
