// One row of samples between decoding and packing, and the ways between its colour spaces.
#include "scene/pixel_row.h"

#include <algorithm>

namespace fcsim {

namespace {

constexpr Level kNoColour = 128 << 8;

Level fromByte(int value)
{
    return static_cast<Level>(std::clamp(value, 0, 255) << 8);
}

/// Fills one plane with what `convert` makes of the three levels of each pixel. One plane at a
/// time, as loops over six planes are too much for compilers to turn into vector code.
template <class Convert>
void fillPlane(const RowView& row, Level* out, const Convert& convert)
{
    const auto [first, second, third] = row.plane;
    for (unsigned x = 0; x < row.width; ++x) {
        out[x] = convert(first[x], second[x], third[x]);
    }
}

void rgbToGrey(const RowView& row, Row& out)
{
    fillPlane(row, out.plane(0), luma);
}

void rgbToYuv(const RowView& row, Row& out)
{
    fillPlane(row, out.plane(0), [](Level red, Level green, Level blue) {
        return fromByte((77 * (red >> 8) + 150 * (green >> 8) + 29 * (blue >> 8)) >> 8);
    });
    fillPlane(row, out.plane(1), [](Level red, Level green, Level blue) {
        const int sum = -43 * (red >> 8) - 85 * (green >> 8) + 128 * (blue >> 8);
        return fromByte(((sum + 128) >> 8) + 128);
    });
    fillPlane(row, out.plane(2), [](Level red, Level green, Level blue) {
        const int sum = 128 * (red >> 8) - 107 * (green >> 8) - 21 * (blue >> 8);
        return fromByte(((sum + 128) >> 8) + 128);
    });
}

void yuvToRgb(const RowView& row, Row& out)
{
    fillPlane(row, out.plane(0), [](Level luminance, Level, Level redness) {
        return fromByte((luminance >> 8) + ((359 * ((redness >> 8) - 128) + 128) >> 8));
    });
    fillPlane(row, out.plane(1), [](Level luminance, Level blueness, Level redness) {
        const int colour = 88 * ((blueness >> 8) - 128) + 183 * ((redness >> 8) - 128);
        return fromByte((luminance >> 8) - ((colour + 128) >> 8));
    });
    fillPlane(row, out.plane(2), [](Level luminance, Level blueness, Level) {
        return fromByte((luminance >> 8) + ((454 * ((blueness >> 8) - 128) + 128) >> 8));
    });
}

} // namespace

void Row::reset(Space space, unsigned width)
{
    space_ = space;
    width_ = width;
    for (unsigned index = 0; index < planeCount(space); ++index) {
        planes_[index].resize(std::max<std::size_t>(planes_[index].size(), width));
    }
}

RowView Row::view() const
{
    RowView row{space_, width_, {}};
    for (unsigned index = 0; index < planeCount(space_); ++index) {
        row.plane[index] = planes_[index].data();
    }
    return row;
}

RowView rowInSpace(const RowView& row, Space space, Row& scratch)
{
    if (row.space == space) {
        return row;
    }
    if (row.space == Space::yuv && space == Space::grey) {
        return {Space::grey, row.width, {row.plane[0]}};
    }
    if (row.space == Space::grey && space == Space::rgb) {
        return {Space::rgb, row.width, {row.plane[0], row.plane[0], row.plane[0]}};
    }
    scratch.reset(space, row.width);
    if (row.space == Space::rgb && space == Space::grey) {
        rgbToGrey(row, scratch);
    } else if (row.space == Space::rgb) {
        rgbToYuv(row, scratch);
    } else if (row.space == Space::yuv) {
        yuvToRgb(row, scratch);
    } else {
        std::fill_n(scratch.plane(1), row.width, kNoColour);
        std::fill_n(scratch.plane(2), row.width, kNoColour);
        return {Space::yuv, row.width, {row.plane[0], scratch.plane(1), scratch.plane(2)}};
    }
    return scratch.view();
}

} // namespace fcsim
