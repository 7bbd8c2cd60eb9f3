// A surface to paint scenes on, and its primitives.
#include "scene/scene_canvas.h"

#include <algorithm>
#include <cmath>

namespace fcsim {

namespace {

/// How much of a pixel lies inside an edge that is `distance` pixels further out.
float edgeCoverage(float distance)
{
    return std::clamp(distance + 0.5F, 0.0F, 1.0F);
}

/// The pixels that a shape between two points, `reach` around them, can touch.
Rect touched(float fromX, float fromY, float toX, float toY, float reach)
{
    const int left = static_cast<int>(std::floor(std::min(fromX, toX) - reach - 1));
    const int top = static_cast<int>(std::floor(std::min(fromY, toY) - reach - 1));
    const int right = static_cast<int>(std::ceil(std::max(fromX, toX) + reach + 1));
    const int bottom = static_cast<int>(std::ceil(std::max(fromY, toY) + reach + 1));
    return {left, top, right - left, bottom - top};
}

void copyArea(const Canvas& from, const Rect& area, Canvas& to, int toX, int toY)
{
    for (int y = 0; y < area.height; ++y) {
        const RowView row = from.row(area.x, area.y + y, area.width);
        for (unsigned index = 0; index < planeCount(row.space); ++index) {
            std::copy_n(row.plane[index], row.width, to.plane(index, toY + y) + toX);
        }
    }
}

} // namespace

Rect intersection(const Rect& first, const Rect& second)
{
    const int x = std::max(first.x, second.x);
    const int y = std::max(first.y, second.y);
    const Rect shared = {x, y, std::min(first.right(), second.right()) - x,
                         std::min(first.bottom(), second.bottom()) - y};
    return shared.empty() ? Rect{} : shared;
}

Canvas::Canvas(int width, int height, Space space)
    : width_(std::max(width, 0)), height_(std::max(height, 0)), space_(space)
{
    for (unsigned plane = 0; plane < planeCount(space); ++plane) {
        planes_[plane].resize(index(0, height_));
    }
}

RowView Canvas::row(int x, int y, int width) const
{
    RowView view{space_, static_cast<unsigned>(width), {}};
    for (unsigned plane = 0; plane < planeCount(space_); ++plane) {
        view.plane[plane] = planes_[plane].data() + index(x, y);
    }
    return view;
}

Level* Canvas::plane(unsigned plane, int y)
{
    return planes_[plane].data() + index(0, y);
}

void Canvas::fill(const Rect& area, const Colour& colour)
{
    const Rect inside = intersection(area, bounds());
    if (inside.empty()) {
        return;
    }
    const std::array<Level, 3> level = levels(colour);
    for (unsigned plane = 0; plane < planeCount(space_); ++plane) {
        for (int y = inside.y; y < inside.bottom(); ++y) {
            std::fill_n(planes_[plane].data() + index(inside.x, y), inside.width, level[plane]);
        }
    }
}

void Canvas::blend(int x, int y, const Colour& colour, float coverage)
{
    if (x < 0 || y < 0 || x >= width_ || y >= height_ || coverage <= 0) {
        return;
    }
    const std::array<Level, 3> level = levels(colour);
    for (unsigned plane = 0; plane < planeCount(space_); ++plane) {
        Level& pixel = planes_[plane][index(x, y)];
        const auto below = static_cast<float>(pixel);
        pixel = static_cast<Level>(below + (static_cast<float>(level[plane]) - below) * coverage);
    }
}

void Canvas::disc(float centreX, float centreY, float radius, const Colour& colour)
{
    line(centreX, centreY, centreX, centreY, 2 * radius, colour);
}

void Canvas::line(float fromX, float fromY, float toX, float toY, float thickness,
                  const Colour& colour)
{
    const float radius = thickness / 2;
    const Rect area = intersection(touched(fromX, fromY, toX, toY, radius), bounds());
    const float alongX = toX - fromX;
    const float alongY = toY - fromY;
    const float length2 = std::max(alongX * alongX + alongY * alongY, 1e-6F);
    for (int y = area.y; y < area.bottom(); ++y) {
        const float fromRow = static_cast<float>(y) + 0.5F - fromY;
        for (int x = area.x; x < area.right(); ++x) {
            const float fromColumn = static_cast<float>(x) + 0.5F - fromX;
            const float part =
                std::clamp((fromColumn * alongX + fromRow * alongY) / length2, 0.0F, 1.0F);
            const float awayX = fromColumn - part * alongX;
            const float awayY = fromRow - part * alongY;
            const float distance = std::sqrt(awayX * awayX + awayY * awayY);
            blend(x, y, colour, edgeCoverage(radius - distance));
        }
    }
}

std::array<Level, 3> Canvas::levels(const Colour& colour) const
{
    if (space_ == Space::grey) {
        return {luma(colour.red, colour.green, colour.blue), 0, 0};
    }
    return {colour.red, colour.green, colour.blue};
}

std::size_t Canvas::index(int x, int y) const
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x);
}

SavedArea::SavedArea(const Canvas& canvas, const Rect& area)
    : area_(intersection(area, canvas.bounds())), copy_(area_.width, area_.height, canvas.space())
{
    copyArea(canvas, area_, copy_, 0, 0);
}

void SavedArea::restore(Canvas& canvas) const
{
    copyArea(copy_, copy_.bounds(), canvas, area_.x, area_.y);
}

} // namespace fcsim
