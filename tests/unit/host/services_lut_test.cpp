// The look-up table that the host computes for the plug-in, called as the plug-in calls it.
#include "grab/services.h"
#include "services/service_exports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace kxhost {
namespace {

class LutServices : public testing::Test {
protected:
    void SetUp() override
    {
        std::destroy_at(&services());
        std::construct_at(&services());
        services().settings.lutClipLimit = 4096;
    }
    void TearDown() override { SetUp(); }

    /// The distribution of pixels in one line.
    static std::vector<std::uint32_t> distribution(const std::vector<std::uint8_t>& pixels,
                                                   std::uint32_t width, std::uint32_t bits)
    {
        std::vector<std::uint32_t> cdf(std::size_t{1} << bits, 99);
        KxGi__CalcLutDynam(pixels.data(), width, 1, width, bits, cdf.data());
        return cdf;
    }

    static std::vector<std::uint16_t> table(const std::vector<std::uint32_t>& cdf,
                                            std::uint32_t bits)
    {
        std::vector<std::uint16_t> lut(std::size_t{1} << bits);
        KxGi__GetLutDynam(bits, cdf.data(), 12, lut.data());
        return lut;
    }
};

TEST_F(LutServices, EightBitsGiveATableOf256Entries)
{
    const auto cdf = distribution({10, 20}, 2, 8);
    EXPECT_EQ(cdf[10], 1U);
    EXPECT_EQ(cdf[255], 2U);
    const auto lut = table(cdf, 8);
    EXPECT_EQ(lut[19], 0U);
    EXPECT_EQ(lut[20], 4091U);
}

TEST_F(LutServices, TwelveBitsGiveATableOf4096Entries)
{
    const auto cdf = distribution({0x12, 0xC3, 0xAB}, 2, 12);
    const auto lut = table(cdf, 12);
    EXPECT_EQ(lut[0xABB], 0U);
    EXPECT_EQ(lut[0xABC], 4091U);
    const auto stored16 = distribution({0x30, 0x12, 0xC0, 0xAB}, 2, 16);
    EXPECT_EQ(table(stored16, 12), lut) << "however they are stored";
}

TEST_F(LutServices, ThePublishedFormatTellsColourFromGrey)
{
    KxSc__SetParamVal(kKxScCodec, "YUV411T");
    EXPECT_EQ(distribution({200, 16, 16, 200, 16, 16}, 4, 12)[17 * 16 - 1], 4U);
    KxSc__SetParamVal(kKxScCodec, "UYVY");
    EXPECT_EQ(distribution({200, 16, 200, 16}, 2, 16)[17 * 256 - 1], 2U);
    KxSc__SetParamVal(kKxScCodec, "BayerRG8T");
    EXPECT_EQ(distribution({16, 16}, 2, 8)[16], 2U);
}

TEST_F(LutServices, APublishedFormatOfOtherBitsIsNotBelieved)
{
    KxSc__SetParamVal(kKxScCodec, "MONO12PT");
    EXPECT_EQ(distribution({16, 16}, 2, 8)[16], 2U);
}

TEST_F(LutServices, BitsOfNoFormatGiveTheStraightLine)
{
    const auto cdf = distribution({1, 2, 3, 4}, 2, 10);
    EXPECT_TRUE(std::ranges::all_of(cdf, [](std::uint32_t count) { return count == 0; }));
    const auto lut = table(cdf, 8);
    EXPECT_EQ(lut[0], 0U);
    EXPECT_EQ(lut[255], 4091U);
    EXPECT_EQ(lut[51], 818U); // 4091 * 51 / 255
}

TEST_F(LutServices, TheLimitIsTheConfiguredOne)
{
    const auto cdf = distribution({100, 101, 102, 103}, 4, 8);
    services().settings.lutClipLimit = 1;
    const auto straight = table(cdf, 8);
    EXPECT_EQ(straight[51], 818U);
    services().settings.lutClipLimit = 4;
    const auto limited = table(cdf, 8);
    EXPECT_NEAR(limited[102] - limited[101], 4 * 16, 2);
}

} // namespace
} // namespace kxhost
