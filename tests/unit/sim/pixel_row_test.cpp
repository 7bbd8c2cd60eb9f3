// The ways between grey, RGB and YUV.
#include "scene/pixel_row.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using fcsim::Level;
using fcsim::Row;
using fcsim::RowView;
using fcsim::Space;
using Pixel = std::array<unsigned, 3>; ///< 8-bit values

Pixel converted(Space from, const Pixel& pixel, Space to)
{
    std::array<Level, 3> levels{};
    RowView row{from, 1, {}};
    for (std::size_t plane = 0; plane < fcsim::planeCount(from); ++plane) {
        levels[plane] = static_cast<Level>(pixel[plane] << 8);
        row.plane[plane] = &levels[plane];
    }
    Row scratch;
    const RowView out = fcsim::rowInSpace(row, to, scratch);
    Pixel result{};
    for (std::size_t plane = 0; plane < fcsim::planeCount(to); ++plane) {
        result[plane] = out.plane[plane][0] >> 8U;
    }
    return result;
}

TEST(PixelRow, PrimariesInYuv)
{
    EXPECT_EQ(converted(Space::rgb, {255, 255, 255}, Space::yuv), (Pixel{255, 128, 128}));
    EXPECT_EQ(converted(Space::rgb, {0, 0, 0}, Space::yuv), (Pixel{0, 128, 128}));
    EXPECT_EQ(converted(Space::rgb, {255, 0, 0}, Space::yuv), (Pixel{76, 85, 255}));
    EXPECT_EQ(converted(Space::rgb, {0, 255, 0}, Space::yuv), (Pixel{149, 43, 21}));
    EXPECT_EQ(converted(Space::rgb, {0, 0, 255}, Space::yuv), (Pixel{28, 255, 107}));
}

TEST(PixelRow, YuvAndBackIsCloseForEveryColour)
{
    for (unsigned red = 0; red < 256; red += 15) {
        for (unsigned green = 0; green < 256; green += 15) {
            for (unsigned blue = 0; blue < 256; blue += 15) {
                const Pixel pixel = {red, green, blue};
                const Pixel back =
                    converted(Space::yuv, converted(Space::rgb, pixel, Space::yuv), Space::rgb);
                for (std::size_t plane = 0; plane < 3; ++plane) {
                    ASSERT_LE(
                        std::abs(static_cast<int>(back[plane]) - static_cast<int>(pixel[plane])), 3)
                        << red << ' ' << green << ' ' << blue;
                }
            }
        }
    }
}

TEST(PixelRow, GreyHasNoColour)
{
    for (unsigned level = 0; level < 256; ++level) {
        EXPECT_EQ(converted(Space::grey, {level, 0, 0}, Space::rgb), (Pixel{level, level, level}));
        EXPECT_EQ(converted(Space::grey, {level, 0, 0}, Space::yuv), (Pixel{level, 128, 128}));
        EXPECT_EQ(converted(Space::yuv, {level, 128, 128}, Space::rgb),
                  (Pixel{level, level, level}));
        EXPECT_EQ(converted(Space::rgb, {level, level, level}, Space::grey)[0], level);
    }
}

TEST(PixelRow, GreyOfYuvIsItsLuma)
{
    EXPECT_EQ(converted(Space::yuv, {77, 3, 250}, Space::grey)[0], 77U);
}

TEST(PixelRow, LumaKeepsFineSteps)
{
    EXPECT_EQ(fcsim::luma(0xFFF0, 0xFFF0, 0xFFF0), 0xFFF0);
    EXPECT_EQ(fcsim::luma(0x1230, 0x1230, 0x1230), 0x1230);
}

} // namespace
