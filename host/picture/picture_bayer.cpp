// Colour from a Bayer mosaic by bilinear interpolation.
#include "picture/picture_bayer.h"

#include <cstddef>

namespace kxhost {

namespace {

/// The neighbour of `at` in direction `step` (-1 or 1), mirrored at the edges so that it keeps its
/// colour.
std::uint32_t neighbour(std::uint32_t at, int step, std::uint32_t size)
{
    if (size < 2) {
        return 0;
    }
    if (step < 0) {
        return at == 0 ? 1 : at - 1;
    }
    return at + 1 == size ? size - 2 : at + 1;
}

std::uint8_t mean(unsigned a, unsigned b)
{
    return static_cast<std::uint8_t>((a + b + 1) / 2);
}

std::uint8_t mean(unsigned a, unsigned b, unsigned c, unsigned d)
{
    return static_cast<std::uint8_t>((a + b + c + d + 2) / 4);
}

/// Three lines of the mosaic around the one being made.
struct Lines {
    const std::uint8_t* above;
    const std::uint8_t* here;
    const std::uint8_t* below;
};

/// Writes one pixel. `redLine`: red stands in this line; `own`: the pixel itself is red or blue.
void interpolate(const Lines& lines, std::uint32_t x, std::uint32_t width, bool redLine, bool own,
                 std::uint8_t* rgb)
{
    const std::uint32_t left = neighbour(x, -1, width);
    const std::uint32_t right = neighbour(x, 1, width);
    // Where red and blue change places with the line, "near" is the line's own colour.
    std::uint8_t& near = rgb[redLine ? 0 : 2];
    std::uint8_t& far = rgb[redLine ? 2 : 0];
    if (own) {
        near = lines.here[x];
        rgb[1] = mean(lines.here[left], lines.here[right], lines.above[x], lines.below[x]);
        far = mean(lines.above[left], lines.above[right], lines.below[left], lines.below[right]);
    } else {
        near = mean(lines.here[left], lines.here[right]);
        rgb[1] = lines.here[x];
        far = mean(lines.above[x], lines.below[x]);
    }
}

} // namespace

void bayerToRgb(const std::uint8_t* mosaic, int redX, int redY, Picture& out)
{
    const auto redColumn = static_cast<std::uint32_t>(redX);
    const auto redRow = static_cast<std::uint32_t>(redY);
    const auto lineAt = [&](std::uint32_t y) { return mosaic + std::size_t{y} * out.width; };
    std::uint8_t* rgb = out.bytes.data();
    for (std::uint32_t y = 0; y < out.height; ++y) {
        const Lines lines{lineAt(neighbour(y, -1, out.height)), lineAt(y),
                          lineAt(neighbour(y, 1, out.height))};
        const bool redLine = y % 2 == redRow;
        const std::uint32_t ownColumn = redLine ? redColumn : 1 - redColumn;
        for (std::uint32_t x = 0; x < out.width; ++x, rgb += 3) {
            interpolate(lines, x, out.width, redLine, x % 2 == ownColumn, rgb);
        }
    }
}

} // namespace kxhost
