// Tests of the conversion from YUV to RGB (BT.601, full range).
#include "picture/picture_yuv.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

std::array<std::uint8_t, 6> rgbOf(std::uint8_t y, std::uint8_t u, std::uint8_t v)
{
    const std::array<std::uint8_t, 4> in = {u, y, v, y};
    std::array<std::uint8_t, 6> out{};
    kxhost::yuv422ToRgb(in.data(), 2, out.data());
    return out;
}

std::uint8_t rounded(double value)
{
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

TEST(PictureYuv, EveryColourIsTheStandardsWithinOne)
{
    for (int y = 0; y < 256; y += 15) {
        for (int u = 0; u < 256; u += 15) {
            for (int v = 0; v < 256; v += 15) {
                const auto rgb = rgbOf(static_cast<std::uint8_t>(y), static_cast<std::uint8_t>(u),
                                       static_cast<std::uint8_t>(v));
                ASSERT_NEAR(rgb[0], rounded(y + 1.402 * (v - 128)), 1);
                ASSERT_NEAR(rgb[1], rounded(y - 0.344136 * (u - 128) - 0.714136 * (v - 128)), 1);
                ASSERT_NEAR(rgb[2], rounded(y + 1.772 * (u - 128)), 1);
            }
        }
    }
}

TEST(PictureYuv, GreyIsExact)
{
    for (int y = 0; y < 256; ++y) {
        const auto grey = static_cast<std::uint8_t>(y);
        EXPECT_EQ(rgbOf(grey, 128, 128), (std::array{grey, grey, grey, grey, grey, grey}));
    }
}

TEST(PictureYuv, BytesStandAsTheCameraSendsThem)
{
    // U Y Y V Y Y: a strong red (V) shows in all four pixels, in the order of their Y.
    const std::array<std::uint8_t, 6> in = {128, 10, 20, 228, 30, 40};
    std::array<std::uint8_t, 12> out{};
    kxhost::yuv411ToRgb(in.data(), 4, out.data());
    for (unsigned i = 0; i < 4; ++i) {
        const int y = 10 * static_cast<int>(i + 1);
        EXPECT_EQ(out[std::size_t{i} * 3], y + 140) << i;
        EXPECT_EQ(out[std::size_t{i} * 3 + 2], y) << i;
    }
}

TEST(PictureYuv, ALineThatEndsInsideAGroupWritesNoMore)
{
    const std::array<std::uint8_t, 6> in = {128, 1, 2, 128, 3, 4};
    std::array<std::uint8_t, 12> out{};
    out.fill(99);
    kxhost::yuv411ToRgb(in.data(), 3, out.data());
    EXPECT_EQ(out[8], 3);
    EXPECT_EQ(out[9], 99);
}

} // namespace
