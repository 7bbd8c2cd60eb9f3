// The colour filter, for each tile, and colour back from it.
#include "scene/pixel_bayer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace FlyCapture2;
using fcsim::Demosaic;
using fcsim::Level;
using fcsim::Row;
using fcsim::RowView;
using fcsim::Space;
using Levels = std::vector<Level>;

std::string letters(BayerTileFormat tile)
{
    std::string text;
    for (const unsigned y : {0U, 1U}) {
        for (const unsigned x : {0U, 1U}) {
            text += "RGB"[fcsim::bayerPlane(tile, x, y)];
        }
    }
    return text;
}

TEST(PixelBayer, TilesReadAsTheyAreCalled)
{
    EXPECT_EQ(letters(RGGB), "RGGB");
    EXPECT_EQ(letters(GRBG), "GRBG");
    EXPECT_EQ(letters(GBRG), "GBRG");
    EXPECT_EQ(letters(BGGR), "BGGR");
    EXPECT_EQ(fcsim::bayerPlane(RGGB, 1280, 1024), fcsim::bayerPlane(RGGB, 0, 0));
}

TEST(PixelBayer, MosaicTakesThePlaneBehindTheFilter)
{
    const Levels red(4, 10);
    const Levels green(4, 20);
    const Levels blue(4, 30);
    const RowView rgb{Space::rgb, 4, {red.data(), green.data(), blue.data()}};
    Row out;
    fcsim::mosaicRow(rgb, GRBG, 0, 0, out);
    EXPECT_EQ(Levels(out.plane(0), out.plane(0) + 4), (Levels{20, 10, 20, 10}));
    fcsim::mosaicRow(rgb, GRBG, 0, 1, out);
    EXPECT_EQ(Levels(out.plane(0), out.plane(0) + 4), (Levels{30, 20, 30, 20}));
    fcsim::mosaicRow(rgb, GRBG, 3, 1, out);
    EXPECT_EQ(Levels(out.plane(0), out.plane(0) + 4), (Levels{20, 30, 20, 30}));
}

/// A uniform colour survives mosaic and demosaic exactly, whatever the tile, row and method.
TEST(PixelBayer, UniformColourComesBack)
{
    constexpr unsigned kWidth = 7;
    const std::array<Levels, 3> planes = {Levels(kWidth, 1000), Levels(kWidth, 2000),
                                          Levels(kWidth, 3000)};
    const RowView rgb{Space::rgb, kWidth, {planes[0].data(), planes[1].data(), planes[2].data()}};
    for (const BayerTileFormat tile : {RGGB, GRBG, GBRG, BGGR}) {
        std::array<Row, 2> rows;
        fcsim::mosaicRow(rgb, tile, 0, 0, rows[0]);
        fcsim::mosaicRow(rgb, tile, 0, 1, rows[1]);
        for (const unsigned y : {0U, 1U}) {
            const Level* here = rows[y].plane(0);
            const Level* other = rows[1 - y].plane(0);
            for (const Demosaic method : {Demosaic::nearest, Demosaic::bilinear}) {
                Row out;
                fcsim::demosaicRow({other, here, other}, kWidth, tile, y, method, out);
                for (unsigned plane = 0; plane < 3; ++plane) {
                    EXPECT_EQ(Levels(out.plane(plane), out.plane(plane) + kWidth), planes[plane])
                        << letters(tile) << " row " << y << " plane " << plane;
                }
            }
        }
    }
}

TEST(PixelBayer, BilinearMeansTheNeighbours)
{
    const Levels above = {1, 2, 3, 4};
    const Levels here = {10, 20, 31, 40};
    const Levels below = {5, 6, 7, 9};
    Row out;
    fcsim::demosaicRow({above.data(), here.data(), below.data()}, 4, BGGR, 1, Demosaic::bilinear,
                       out);
    // Row 1 of BGGR: green, red, green, red.
    EXPECT_EQ(Levels(out.plane(0), out.plane(0) + 4), (Levels{20, 20, 30, 40}));
    EXPECT_EQ(Levels(out.plane(1), out.plane(1) + 4), (Levels{10, 12, 31, 19}));
    EXPECT_EQ(Levels(out.plane(2), out.plane(2) + 4), (Levels{3, 4, 5, 5}));
}

TEST(PixelBayer, NearestTakesTheTile)
{
    const Levels even = {1, 2, 3, 4};
    const Levels odd = {10, 20, 30, 40};
    Row out;
    fcsim::demosaicRow({odd.data(), even.data(), odd.data()}, 4, RGGB, 0, Demosaic::nearest, out);
    EXPECT_EQ(Levels(out.plane(0), out.plane(0) + 4), (Levels{1, 1, 3, 3}));
    EXPECT_EQ(Levels(out.plane(1), out.plane(1) + 4), (Levels{2, 2, 4, 4}));
    EXPECT_EQ(Levels(out.plane(2), out.plane(2) + 4), (Levels{20, 20, 40, 40}));
}

} // namespace
