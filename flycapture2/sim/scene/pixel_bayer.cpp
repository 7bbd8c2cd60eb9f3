// The colour filter on the sensor: which colour a pixel sees, and colour back from a mosaic.
#include "scene/pixel_bayer.h"

#include <algorithm>

namespace fcsim {

namespace {

/// Column and row parity of the red pixel in a tile; blue sits diagonally across.
struct RedCorner {
    unsigned x;
    unsigned y;
};

RedCorner redCorner(FlyCapture2::BayerTileFormat tile)
{
    switch (tile) {
    case FlyCapture2::GRBG:
        return {1, 0};
    case FlyCapture2::GBRG:
        return {0, 1};
    case FlyCapture2::BGGR:
        return {1, 1};
    default:
        return {0, 0};
    }
}

Level mean(unsigned first, unsigned second)
{
    return static_cast<Level>((first + second + 1) / 2);
}

Level mean(unsigned first, unsigned second, unsigned third, unsigned fourth)
{
    return static_cast<Level>((first + second + third + fourth + 2) / 4);
}

/// Colour planes of a row: the one that shares it with green, and the other.
struct RowColours {
    Level* own;
    Level* green;
    Level* other;
};

void bilinearPixel(const std::array<const Level*, 3>& rows, unsigned left, unsigned x,
                   unsigned right, bool onGreen, const RowColours& out)
{
    const auto [above, here, below] = rows;
    if (onGreen) {
        out.green[x] = here[x];
        out.own[x] = mean(here[left], here[right]);
        out.other[x] = mean(above[x], below[x]);
    } else {
        out.own[x] = here[x];
        out.green[x] = mean(here[left], here[right], above[x], below[x]);
        out.other[x] = mean(above[left], above[right], below[left], below[right]);
    }
}

void bilinearRow(const std::array<const Level*, 3>& rows, unsigned width, unsigned firstOwn,
                 const RowColours& out)
{
    bilinearPixel(rows, 1, 0, 1, firstOwn != 0, out);
    for (unsigned x = 1; x + 1 < width; ++x) {
        bilinearPixel(rows, x - 1, x, x + 1, x % 2 != firstOwn, out);
    }
    bilinearPixel(rows, width - 2, width - 1, width - 2, (width - 1) % 2 != firstOwn, out);
}

void nearestRow(const Level* here, const Level* partner, unsigned width, unsigned firstOwn,
                const RowColours& out)
{
    for (unsigned x = 0; x < width; ++x) {
        const unsigned pair = std::min(x & ~1U, width - 2);
        const unsigned own = pair + ((pair ^ firstOwn) & 1U);
        const unsigned green = pair + 1 - ((pair ^ firstOwn) & 1U);
        out.own[x] = here[own];
        out.green[x] = here[green];
        out.other[x] = partner[green];
    }
}

} // namespace

unsigned bayerPlane(FlyCapture2::BayerTileFormat tile, unsigned x, unsigned y)
{
    const RedCorner red = redCorner(tile);
    const bool redColumn = x % 2 == red.x;
    const bool redRow = y % 2 == red.y;
    if (redColumn != redRow) {
        return 1;
    }
    return redRow ? 0 : 2;
}

void mosaicRow(const RowView& rgb, FlyCapture2::BayerTileFormat tile, unsigned x0, unsigned y,
               Row& out)
{
    out.reset(Space::grey, rgb.width);
    const Level* even = rgb.plane[bayerPlane(tile, x0, y)];
    const Level* odd = rgb.plane[bayerPlane(tile, x0 + 1, y)];
    Level* level = out.plane(0);
    for (unsigned x = 0; x < rgb.width; ++x) {
        level[x] = x % 2 == 0 ? even[x] : odd[x];
    }
}

void demosaicRow(const std::array<const Level*, 3>& rows, unsigned width,
                 FlyCapture2::BayerTileFormat tile, unsigned y, Demosaic method, Row& out)
{
    out.reset(Space::rgb, width);
    const RedCorner red = redCorner(tile);
    const bool redRow = y % 2 == red.y;
    const RowColours colours = redRow ? RowColours{out.plane(0), out.plane(1), out.plane(2)}
                                      : RowColours{out.plane(2), out.plane(1), out.plane(0)};
    const unsigned firstOwn = redRow ? red.x : 1 - red.x;
    if (method == Demosaic::bilinear) {
        bilinearRow(rows, width, firstOwn, colours);
    } else {
        nearestRow(rows[1], y % 2 == 0 ? rows[2] : rows[0], width, firstOwn, colours);
    }
}

} // namespace fcsim
