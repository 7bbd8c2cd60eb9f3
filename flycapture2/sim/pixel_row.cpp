// One row of samples between decoding and packing, and the ways between its colour spaces.
#include "pixel_row.h"

#include <algorithm>

namespace fcsim {

namespace {

constexpr Level kNoColour = 128 << 8;

Level fromByte(int value)
{
    return static_cast<Level>(std::clamp(value, 0, 255) << 8);
}

void rgbToGrey(const RowView& row, Row& out)
{
    const auto [red, green, blue] = row.plane;
    Level* grey = out.plane(0);
    for (unsigned x = 0; x < row.width; ++x) {
        grey[x] = luma(red[x], green[x], blue[x]);
    }
}

void rgbToYuv(const RowView& row, Row& out)
{
    Level* luminance = out.plane(0);
    Level* blueness = out.plane(1);
    Level* redness = out.plane(2);
    for (unsigned x = 0; x < row.width; ++x) {
        const int red = row.plane[0][x] >> 8;
        const int green = row.plane[1][x] >> 8;
        const int blue = row.plane[2][x] >> 8;
        luminance[x] = fromByte((77 * red + 150 * green + 29 * blue) >> 8);
        blueness[x] = fromByte(((-43 * red - 85 * green + 128 * blue + 128) >> 8) + 128);
        redness[x] = fromByte(((128 * red - 107 * green - 21 * blue + 128) >> 8) + 128);
    }
}

void yuvToRgb(const RowView& row, Row& out)
{
    Level* red = out.plane(0);
    Level* green = out.plane(1);
    Level* blue = out.plane(2);
    for (unsigned x = 0; x < row.width; ++x) {
        const int luminance = row.plane[0][x] >> 8;
        const int blueness = (row.plane[1][x] >> 8) - 128;
        const int redness = (row.plane[2][x] >> 8) - 128;
        red[x] = fromByte(luminance + ((359 * redness + 128) >> 8));
        green[x] = fromByte(luminance - ((88 * blueness + 183 * redness + 128) >> 8));
        blue[x] = fromByte(luminance + ((454 * blueness + 128) >> 8));
    }
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
