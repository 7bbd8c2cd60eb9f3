// Tests of the conversions from floating point.
#include "kx_pg_number.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using KxPGrey::roundToU32;
using KxPGrey::truncateToI32;
using KxPGrey::truncateToU32;

constexpr std::int32_t kMostNegative = std::numeric_limits<std::int32_t>::min();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

TEST(TruncateToI32, CutsTowardZero)
{
    EXPECT_EQ(truncateToI32(1.9), 1);
    EXPECT_EQ(truncateToI32(-1.9), -1);
    EXPECT_EQ(truncateToI32(2147483647.9), 2147483647);
    EXPECT_EQ(truncateToI32(-2147483648.9), kMostNegative);
}

TEST(TruncateToI32, WhatDoesNotFitIsTheMostNegativeValue)
{
    EXPECT_EQ(truncateToI32(2147483648.0), kMostNegative);
    EXPECT_EQ(truncateToI32(-1e300), kMostNegative);
    EXPECT_EQ(truncateToI32(kInfinity), kMostNegative);
    EXPECT_EQ(truncateToI32(kNoNumber), kMostNegative);
}

TEST(TruncateToU32, KeepsTheLower32Bits)
{
    EXPECT_EQ(truncateToU32(20000.7), 20000U);
    EXPECT_EQ(truncateToU32(-1000.5), 0xFFFFFC18U);
    EXPECT_EQ(truncateToU32(4294967296.0 + 7.0), 7U);
}

TEST(TruncateToU32, WhatDoesNotFit64BitsIsZero)
{
    EXPECT_EQ(truncateToU32(9223372036854775808.0), 0U);
    EXPECT_EQ(truncateToU32(kInfinity), 0U);
    EXPECT_EQ(truncateToU32(-kInfinity), 0U);
    EXPECT_EQ(truncateToU32(kNoNumber), 0U);
}

TEST(RoundToU32, RoundsHalvesAwayFromZero)
{
    EXPECT_EQ(roundToU32(33333.33F), 33333U);
    EXPECT_EQ(roundToU32(0.5F), 1U);
    EXPECT_EQ(roundToU32(-0.5F), 0xFFFFFFFFU);
    EXPECT_EQ(roundToU32(std::numeric_limits<float>::infinity()), 0U);
}

} // namespace
