// Where the parts of the test chart sit on a sensor of any size.
#include "scene/scene_chart_layout.h"

#include "scene/scene_glyphs.h"

#include <algorithm>

namespace fcsim {

namespace {

constexpr int kBoardWidth = 320;
constexpr int kBoardHeight = 256;

Rect place(const Rect& sensor, const Rect& board)
{
    const int left = board.x * sensor.width / kBoardWidth;
    const int top = board.y * sensor.height / kBoardHeight;
    const int right = board.right() * sensor.width / kBoardWidth;
    const int bottom = board.bottom() * sensor.height / kBoardHeight;
    return {left, top, right - left, bottom - top};
}

/// The largest square in the middle of `area`.
Rect squareIn(const Rect& area)
{
    const int side = std::min(area.width, area.height);
    return {area.x + (area.width - side) / 2, area.y + (area.height - side) / 2, side, side};
}

int dotsFor(const Rect& area, int columns, int rows)
{
    return std::max(1, std::min(area.width / columns, area.height / rows));
}

/// Dots that the frame number needs with a margin of one dot.
constexpr int kNumberColumns = kNumberDigits * kGlyphAdvance + 1;
constexpr int kNumberRows = kGlyphHeight + 4;

} // namespace

ChartLayout::ChartLayout(int width, int height)
    : sensor{0, 0, width, height}, dot(dotsFor(sensor, 426, 341)),
      title(place(sensor, {8, 9, 304, 8})), number(place(sensor, {8, 21, 160, 34})),
      exposure(place(sensor, {8, 60, 160, 10})), star(squareIn(place(sensor, {176, 20, 60, 54}))),
      clock(squareIn(place(sensor, {252, 20, 60, 54}))), patches(place(sensor, {8, 80, 144, 92})),
      gratings(place(sensor, {160, 80, 152, 92})), ramp(place(sensor, {8, 179, 304, 14})),
      steps(place(sensor, {8, 193, 304, 12})), track(place(sensor, {8, 212, 304, 13})),
      footer(place(sensor, {8, 234, 304, 8}))
{
    numberDot = dotsFor(number, kNumberColumns, kNumberRows);
    number.width = kNumberColumns * numberDot;
    number.height = kNumberRows * numberDot;
    exposure.width = std::min(exposure.width, textWidth(kExposureSample) * dot);
    exposure.height = kGlyphHeight * dot;
    const int square = std::max(1, (number.width - 2 * numberDot) / kCodeBits);
    code = {number.x + numberDot, number.y + (kGlyphHeight + 2) * numberDot, square * kCodeBits,
            std::max(1, numberDot * 3 / 2)};
}

} // namespace fcsim
