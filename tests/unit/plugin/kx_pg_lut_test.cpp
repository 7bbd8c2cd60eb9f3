// Tests of the look-up table conversions: known values, and any table against a plain reference.
#include "kx_pg_lut.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

#include <rapidcheck/gtest.h>

namespace {

using KxPGrey::kLutEntries;
using KxPGrey::LutValues;

using Table = std::vector<std::uint16_t>;

LutValues scaled(const Table& table, unsigned bits)
{
    LutValues values;
    values.fill(0xDEAD);
    KxPGrey::scaleLut(std::span<const std::uint16_t, kLutEntries>(table), bits, values);
    return values;
}

LutValues resampled(const Table& table)
{
    LutValues values;
    values.fill(0xDEAD);
    KxPGrey::resampleLut(table, values);
    return values;
}

/// `value` divided by `divisor`, rounded half up, by long division.
unsigned divided(unsigned value, unsigned divisor)
{
    const unsigned whole = value / divisor;
    const unsigned remainder = value % divisor;
    return whole + (remainder * 2 >= divisor ? 1 : 0);
}

Table anyTable(std::size_t entries, unsigned bits)
{
    const auto values =
        *rc::gen::container<std::vector<unsigned>>(entries, rc::gen::inRange(0U, 1U << bits));
    return {values.begin(), values.end()};
}

// ---- Tables of the host's.

TEST(ScaleLut, DoublesEightBits)
{
    Table table(kLutEntries, 0);
    table[0] = 255;
    table[511] = 1;
    const LutValues values = scaled(table, 8);
    EXPECT_EQ(values[0], 510U);
    EXPECT_EQ(values[1], 0U);
    EXPECT_EQ(values[511], 2U);
}

TEST(ScaleLut, LeavesNineBitsAsTheyAre)
{
    Table table(kLutEntries);
    std::iota(table.begin(), table.end(), std::uint16_t{0});
    const LutValues values = scaled(table, 9);
    EXPECT_TRUE(std::equal(values.begin(), values.end(), table.begin()));
}

TEST(ScaleLut, RoundsTwelveBitsHalfUp)
{
    Table table(kLutEntries, 0);
    table[0] = 4095;
    table[1] = 4;
    table[2] = 3;
    table[3] = 4091;
    table[511] = 12;
    const LutValues values = scaled(table, 12);
    EXPECT_EQ(values[0], 512U); // one more than 9 bits hold
    EXPECT_EQ(values[1], 1U);
    EXPECT_EQ(values[2], 0U);
    EXPECT_EQ(values[3], 511U);
    EXPECT_EQ(values[511], 2U);
}

TEST(ScaleLut, RoundsTenBitsHalfUp)
{
    Table table(kLutEntries, 1);
    table[1] = 2;
    table[2] = 1023;
    const LutValues values = scaled(table, 10);
    EXPECT_EQ(values[0], 1U);
    EXPECT_EQ(values[1], 1U);
    EXPECT_EQ(values[2], 512U);
}

TEST(ScaleLut, KeepsAllOfSixteenBits)
{
    Table table(kLutEntries, 65535);
    table[1] = 64;
    table[2] = 63;
    const LutValues values = scaled(table, 16);
    EXPECT_EQ(values[0], 512U);
    EXPECT_EQ(values[1], 1U);
    EXPECT_EQ(values[2], 0U);
}

TEST(ScaleLut, IsDefinedForWidthsThatNoTableHas)
{
    const Table table(kLutEntries, 3);
    EXPECT_EQ(scaled(table, 0)[0], 3U << 9U);
    for (const unsigned bits : {40U, 41U, 255U, 65535U}) {
        EXPECT_EQ(scaled(Table(kLutEntries, 65535), bits)[0], 0U);
    }
}

RC_GTEST_PROP(ScaleLut, IsTheScaledValueForAnyTable, ())
{
    const unsigned bits = *rc::gen::inRange(1U, 17U);
    const Table table = anyTable(kLutEntries, bits);
    const LutValues values = scaled(table, bits);
    for (std::size_t entry = 0; entry < kLutEntries; ++entry) {
        unsigned expected = table[entry];
        for (unsigned bit = bits; bit < 9; ++bit) {
            expected *= 2;
        }
        if (bits > 9) {
            unsigned divisor = 1;
            for (unsigned bit = 9; bit < bits; ++bit) {
                divisor *= 2;
            }
            expected = divided(expected, divisor);
        }
        RC_ASSERT(values[entry] == expected);
    }
}

RC_GTEST_PROP(ScaleLut, KeepsTheOrderOfValues, ())
{
    const unsigned bits = *rc::gen::inRange(1U, 17U);
    Table table = anyTable(kLutEntries, bits);
    std::sort(table.begin(), table.end());
    const LutValues values = scaled(table, bits);
    RC_ASSERT(std::is_sorted(values.begin(), values.end()));
}

// ---- Calculated tables.

TEST(ResampleLut, TakesEveryEighthOf4096)
{
    Table table(4096, 4095);
    table[0] = 0;
    table[7] = 1111;
    table[8] = 100;
    table[9] = 2222;
    table[4088] = 3;
    const LutValues values = resampled(table);
    EXPECT_EQ(values[0], 0U);
    EXPECT_EQ(values[1], 13U);
    EXPECT_EQ(values[2], 512U);
    EXPECT_EQ(values[511], 0U);
}

TEST(ResampleLut, Takes65536ByTheSameRule)
{
    Table table(65536, 4095);
    table[128] = 100;
    table[129] = 0;
    table[65408] = 12;
    const LutValues values = resampled(table);
    EXPECT_EQ(values[0], 512U);
    EXPECT_EQ(values[1], 13U);
    EXPECT_EQ(values[511], 2U);
}

TEST(ResampleLut, InterpolatesBetween256)
{
    Table table(256, 0);
    table[1] = 16;
    table[254] = 800;
    table[255] = 4000;
    const LutValues values = resampled(table);
    EXPECT_EQ(values[0], 0U);
    EXPECT_EQ(values[1], 1U);
    EXPECT_EQ(values[2], 2U);
    EXPECT_EQ(values[508], 100U);
    EXPECT_EQ(values[509], 300U);
    EXPECT_EQ(values[510], 500U);
    EXPECT_EQ(values[511], 500U);
}

TEST(ResampleLut, HalvesTheSumBeforeItRounds)
{
    // (3 + 4) / 2 = 3, which rounds down; 3.5 would round up as 4 does.
    Table table(256, 0);
    table[0] = 3;
    table[1] = 4;
    const LutValues values = resampled(table);
    EXPECT_EQ(values[0], 0U);
    EXPECT_EQ(values[1], 0U);
    EXPECT_EQ(values[2], 1U);
}

TEST(ResampleLut, InterpolatesTheLargestValuesWithoutOverflow)
{
    const LutValues values = resampled(Table(256, 65535));
    for (const unsigned value : values) {
        EXPECT_EQ(value, 8192U);
    }
}

RC_GTEST_PROP(ResampleLut, TakesTheEntriesOfAnyLargeTable, ())
{
    const unsigned every = *rc::gen::element(1U, 2U, 8U, 16U, 128U);
    const Table table = anyTable(kLutEntries * every, 16);
    const LutValues values = resampled(table);
    for (std::size_t entry = 0; entry < kLutEntries; ++entry) {
        RC_ASSERT(values[entry] == divided(table[entry * every], 8));
    }
}

RC_GTEST_PROP(ResampleLut, InterpolatesAnySmallTable, ())
{
    const Table table = anyTable(256, 16);
    const LutValues values = resampled(table);
    for (std::size_t entry = 0; entry < kLutEntries - 1; ++entry) {
        const unsigned here = table[entry / 2];
        const unsigned middle = entry % 2 == 0 ? here : (here + table[entry / 2 + 1]) / 2;
        RC_ASSERT(values[entry] == divided(middle, 8));
    }
    RC_ASSERT(values[511] == values[510]);
}

} // namespace
