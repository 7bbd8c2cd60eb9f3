// The parts of the test chart that stand still.
#include "scene/scene_chart_targets.h"

#include "scene/scene_glyphs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace fcsim {

namespace {

constexpr Colour kBlack = grey(0);
constexpr Colour kWhite = colour8(255, 255, 255);

/// Skin, sky, foliage and fruit; primaries; greys: what a camera's colour is judged by.
constexpr int kPatchColumns = 6;
constexpr std::array kPatches = {
    colour8(115, 82, 68),   colour8(194, 150, 130), colour8(98, 122, 157),  colour8(87, 108, 67),
    colour8(133, 128, 177), colour8(103, 189, 170), colour8(214, 126, 44),  colour8(80, 91, 166),
    colour8(193, 90, 99),   colour8(94, 60, 108),   colour8(157, 188, 64),  colour8(224, 163, 46),
    colour8(56, 61, 150),   colour8(70, 148, 73),   colour8(175, 54, 60),   colour8(231, 199, 31),
    colour8(187, 86, 149),  colour8(8, 133, 161),   colour8(243, 243, 242), colour8(200, 200, 200),
    colour8(160, 160, 160), colour8(122, 122, 121), colour8(85, 85, 85),    colour8(52, 52, 52)};

/// Widths of the lines in the gratings, pixels.
constexpr std::array kLineWidths = {1, 2, 3, 4, 6, 8};
constexpr int kStarSpokes = 24;
constexpr int kGreySteps = 11;
constexpr int kDialTicks = 60;

/// Part `index` of `count` equal parts of `area`, side by side.
Rect column(const Rect& area, int index, int count)
{
    const int left = area.width * index / count;
    const int right = area.width * (index + 1) / count;
    return {area.x + left, area.y, right - left, area.height};
}

/// Part `index` of `count` equal parts of `area`, one above the other.
Rect line(const Rect& area, int index, int count)
{
    const int top = area.height * index / count;
    const int bottom = area.height * (index + 1) / count;
    return {area.x, area.y + top, area.width, bottom - top};
}

Rect shrunk(const Rect& area, int margin)
{
    return {area.x + margin, area.y + margin, area.width - 2 * margin, area.height - 2 * margin};
}

/// A rule along the sensor's edge: blocks of 8 pixels, black and white in turn, from each corner.
void paintBorder(Canvas& canvas, const ChartLayout& layout)
{
    constexpr int kBlock = 8;
    const Rect& sensor = layout.sensor;
    for (int x = 0; x < sensor.width; x += kBlock) {
        const Colour& colour = x / kBlock % 2 == 0 ? kWhite : kBlack;
        canvas.fill({x, 0, kBlock, kBlock}, colour);
        canvas.fill({x, sensor.height - kBlock, kBlock, kBlock}, colour);
    }
    for (int y = kBlock; y < sensor.height - kBlock; y += kBlock) {
        const int height = std::min(kBlock, sensor.height - kBlock - y);
        const Colour& colour = y / kBlock % 2 == 0 ? kWhite : kBlack;
        canvas.fill({0, y, kBlock, height}, colour);
        canvas.fill({sensor.width - kBlock, y, kBlock, height}, colour);
    }
}

void paintPatches(Canvas& canvas, const ChartLayout& layout)
{
    canvas.fill(layout.patches, kBlack);
    const int rows = static_cast<int>(kPatches.size()) / kPatchColumns;
    for (std::size_t index = 0; index < kPatches.size(); ++index) {
        const int place = static_cast<int>(index);
        const Rect cell =
            column(line(shrunk(layout.patches, layout.dot), place / kPatchColumns, rows),
                   place % kPatchColumns, kPatchColumns);
        canvas.fill(shrunk(cell, layout.dot), kPatches[index]);
    }
}

/// Black lines of `width` pixels at equal distances on white.
void paintLines(Canvas& canvas, const Rect& area, int width, bool upright)
{
    canvas.fill(area, kWhite);
    const int length = upright ? area.width : area.height;
    for (int at = 0; at < length; at += 2 * width) {
        const Rect bar = upright ? Rect{area.x + at, area.y, width, area.height}
                                 : Rect{area.x, area.y + at, area.width, width};
        canvas.fill(intersection(bar, area), kBlack);
    }
}

void paintGratings(Canvas& canvas, const ChartLayout& layout)
{
    const int count = static_cast<int>(kLineWidths.size());
    const int label = (kGlyphHeight + 2) * layout.dot;
    Rect lines = layout.gratings;
    lines.height -= label;
    for (int index = 0; index < count; ++index) {
        const int width = kLineWidths[static_cast<std::size_t>(index)];
        const Rect cell = column(lines, index, count);
        paintLines(canvas, shrunk(line(cell, 0, 2), layout.dot), width, true);
        paintLines(canvas, shrunk(line(cell, 1, 2), layout.dot), width, false);
        drawText(canvas, cell.x + (cell.width - kGlyphWidth * layout.dot) / 2,
                 lines.bottom() + 2 * layout.dot, std::to_string(width), layout.dot, 0,
                 kChartLettering);
    }
}

/// Spokes that meet in the middle: where they blur into grey, resolution ends.
void paintStar(Canvas& canvas, const ChartLayout& layout)
{
    const Rect& area = layout.star;
    const double radius = area.width / 2.0;
    for (int y = 0; y < area.height; ++y) {
        for (int x = 0; x < area.width; ++x) {
            const double fromX = x + 0.5 - radius;
            const double fromY = y + 0.5 - radius;
            const double distance = std::hypot(fromX, fromY);
            const double wave = std::sin(std::atan2(fromY, fromX) * kStarSpokes);
            const double spoke = std::numbers::pi * distance / kStarSpokes;
            const double white = std::clamp(0.5 + wave * spoke, 0.0, 1.0);
            const double inside = std::clamp(radius - distance, 0.0, 1.0);
            const auto level = static_cast<Level>(white * kWhite.red);
            canvas.blend(area.x + x, area.y + y, grey(level), static_cast<float>(inside));
        }
    }
}

void paintRamp(Canvas& canvas, const ChartLayout& layout)
{
    const Rect& area = layout.ramp;
    const int last = std::max(area.width - 1, 1);
    for (int x = 0; x < area.width; ++x) {
        canvas.fill({area.x + x, area.y, 1, area.height},
                    grey(static_cast<Level>(0xFFF0LL * x / last)));
    }
    for (int index = 0; index < kGreySteps; ++index) {
        canvas.fill(column(layout.steps, index, kGreySteps),
                    grey(static_cast<Level>(0xFFF0 * index / (kGreySteps - 1))));
    }
}

void paintDial(Canvas& canvas, const ChartLayout& layout)
{
    const Rect& area = layout.clock;
    const float radius = static_cast<float>(area.width) / 2;
    const float centreX = static_cast<float>(area.x) + radius;
    const float centreY = static_cast<float>(area.y) + radius;
    canvas.disc(centreX, centreY, radius, kChartLettering);
    canvas.disc(centreX, centreY, radius * 0.96F, kChartInset);
    for (int tick = 0; tick < kDialTicks; ++tick) {
        const bool major = tick % 5 == 0;
        const float angle = static_cast<float>(2 * std::numbers::pi * tick / kDialTicks);
        const float inner = radius * (major ? 0.80F : 0.87F);
        const float outer = radius * 0.91F;
        canvas.line(centreX + inner * std::sin(angle), centreY - inner * std::cos(angle),
                    centreX + outer * std::sin(angle), centreY - outer * std::cos(angle),
                    radius * (major ? 0.035F : 0.015F), kChartLettering);
    }
}

void paintLettering(Canvas& canvas, const ChartLayout& layout, const std::string& title)
{
    drawText(canvas, layout.title.x, layout.title.y, title, layout.dot, 0, kChartLettering);
    const std::string size =
        std::to_string(layout.sensor.width) + " x " + std::to_string(layout.sensor.height);
    drawText(canvas, layout.title.right() - textWidth(size) * layout.dot, layout.title.y, size,
             layout.dot, 0, kChartLettering);
    drawText(canvas, layout.footer.x, layout.footer.y, "SIMULATED CAMERA - TEST CHART", layout.dot,
             0, kChartLettering);
}

} // namespace

void paintChartTargets(Canvas& canvas, const ChartLayout& layout, const std::string& title)
{
    canvas.fill(layout.sensor, kChartBackground);
    paintBorder(canvas, layout);
    paintLettering(canvas, layout, title);
    paintPatches(canvas, layout);
    paintGratings(canvas, layout);
    paintStar(canvas, layout);
    paintRamp(canvas, layout);
    paintDial(canvas, layout);
    canvas.fill(layout.number, kChartInset);
    canvas.fill(layout.track, kChartInset);
}

} // namespace fcsim
