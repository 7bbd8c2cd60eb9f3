// Tests of the colours interpolated from a Bayer mosaic.
#include "picture/picture_bayer.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

using kxhost::Picture;

constexpr std::array<std::array<int, 2>, 4> kRedPlaces = {{{0, 0}, {1, 0}, {0, 1}, {1, 1}}};

/// 0 red, 1 green, 2 blue.
unsigned colourAt(std::uint32_t x, std::uint32_t y, int redX, int redY)
{
    const bool redColumn = x % 2 == static_cast<std::uint32_t>(redX);
    const bool redLine = y % 2 == static_cast<std::uint32_t>(redY);
    if (redColumn == redLine) {
        return redLine ? 0 : 2;
    }
    return 1;
}

Picture rgbOf(const std::vector<std::uint8_t>& mosaic, std::uint32_t width, std::uint32_t height,
              int redX, int redY)
{
    Picture picture{width, height, 3, 8, 8, {}};
    picture.bytes.resize(picture.lineBytes() * height);
    kxhost::bayerToRgb(mosaic.data(), redX, redY, picture);
    return picture;
}

TEST(PictureBayer, AnEvenColourComesOutEvenForEveryTile)
{
    const std::array<std::uint8_t, 3> colour = {200, 100, 50};
    for (const auto& [redX, redY] : kRedPlaces) {
        std::vector<std::uint8_t> mosaic;
        for (std::uint32_t y = 0; y < 6; ++y) {
            for (std::uint32_t x = 0; x < 8; ++x) {
                mosaic.push_back(colour[colourAt(x, y, redX, redY)]);
            }
        }
        const Picture picture = rgbOf(mosaic, 8, 6, redX, redY);
        for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
            ASSERT_EQ(picture.bytes[i], colour[i % 3]) << "red at " << redX << "," << redY;
        }
    }
}

TEST(PictureBayer, APixelKeepsItsOwnColour)
{
    std::vector<std::uint8_t> mosaic;
    for (unsigned i = 0; i < 24; ++i) {
        mosaic.push_back(static_cast<std::uint8_t>(i * 37));
    }
    for (const auto& [redX, redY] : kRedPlaces) {
        const Picture picture = rgbOf(mosaic, 6, 4, redX, redY);
        for (std::uint32_t i = 0; i < 24; ++i) {
            ASSERT_EQ(picture.bytes[i * 3 + colourAt(i % 6, i / 6, redX, redY)], mosaic[i]);
        }
    }
}

TEST(PictureBayer, MissingColoursAreMeansOfTheNeighbours)
{
    // R G R G
    // G B G B
    // R G R G
    // G B G B, counted from 10 by tens.
    const std::vector<std::uint8_t> mosaic = {10, 20,  30,  40,  50,  60,  70,  80,
                                              90, 100, 110, 120, 130, 140, 150, 160};
    const Picture picture = rgbOf(mosaic, 4, 4, 0, 0);
    const auto at = [&](std::uint32_t x, std::uint32_t y) {
        const std::size_t i = (std::size_t{y} * 4 + x) * 3;
        return std::array<int, 3>{picture.bytes[i], picture.bytes[i + 1], picture.bytes[i + 2]};
    };
    EXPECT_EQ(at(2, 2), (std::array{110, 110, 110})); // red: green beside it, blue at the corners
    EXPECT_EQ(at(1, 1), (std::array{60, 60, 60}));    // blue: (20+50+70+100)/4, (10+30+90+110)/4
    EXPECT_EQ(at(2, 1), (std::array{70, 70, 70}));    // green in a blue line
    EXPECT_EQ(at(0, 0), (std::array{10, 35, 60}));    // a corner, mirrored: (20+20+50+50)/4, 60
}

} // namespace
