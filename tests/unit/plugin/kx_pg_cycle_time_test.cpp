// Tests of the 1394 cycle time.
#include "kx_pg_cycle_time.h"

#include <gtest/gtest.h>

namespace {

using KxPGrey::cycleTimeUs;

constexpr std::uint32_t pack(std::uint32_t seconds, std::uint32_t count, std::uint32_t offset)
{
    return (seconds << 25U) | (count << 12U) | offset;
}

TEST(CycleTime, DecodesTheRegister)
{
    EXPECT_EQ(cycleTimeUs(pack(5, 4000, 0x800)), 5'500'062U);
    EXPECT_EQ(cycleTimeUs(0), 0U);
    EXPECT_EQ(cycleTimeUs(pack(127, 7999, 3071)), 127'999'968U);
}

TEST(CycleTime, DecodesTheFieldsOfAnImage)
{
    EXPECT_EQ(cycleTimeUs(127, 7999, 3071), 127'000'000U + 999'875U + 93U);
}

TEST(CycleTime, BothFormsAgree)
{
    for (const std::uint32_t offset : {0U, 1U, 15U, 16U, 1000U, 3071U, 4095U}) {
        EXPECT_EQ(cycleTimeUs(pack(99, 1234, offset)), cycleTimeUs(99, 1234, offset)) << offset;
    }
}

TEST(CycleTime, TheLowestFourBitsOfTheOffsetDoNotCount)
{
    EXPECT_EQ(cycleTimeUs(1, 1, 0x7F0), cycleTimeUs(1, 1, 0x7FF));
}

TEST(CycleTime, OffsetsAreTruncatedAsInSinglePrecision)
{
    for (std::uint32_t part = 0; part < 256; ++part) {
        const float exact = static_cast<float>(part) * 0.00390625F * 125.0F;
        EXPECT_EQ(cycleTimeUs(0, 0, part << 4U), static_cast<std::uint32_t>(exact)) << part;
    }
}

TEST(CycleTime, FieldsBeyondTheirRangeWrapIn32Bits)
{
    EXPECT_EQ(cycleTimeUs(4295, 0, 0), static_cast<std::uint32_t>(4'295'000'000ULL));
    EXPECT_EQ(cycleTimeUs(4296, 0, 0), static_cast<std::uint32_t>(4'296'000'000ULL));
    // Bits above the offset's twelve are not part of it.
    EXPECT_EQ(cycleTimeUs(0, 0, 0x1000), 0U);
}

} // namespace
