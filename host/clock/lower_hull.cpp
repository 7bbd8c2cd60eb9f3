// The lower convex hull of points that come from left to right.
#include "clock/lower_hull.h"

#include <algorithm>

namespace kxhost {
namespace {

/// Whether `middle` lies on or above the straight line from `left` to `right`.
bool isNoCorner(const Point& left, const Point& middle, const Point& right)
{
    return (middle.x - left.x) * (right.y - left.y) <= (middle.y - left.y) * (right.x - left.x);
}

} // namespace

void LowerHull::add(Point point)
{
    if (!corners_.empty() && corners_.back().x == point.x) {
        if (point.y >= corners_.back().y) {
            return;
        }
        corners_.pop_back();
    }
    while (corners_.size() >= 2 && isNoCorner(*(corners_.end() - 2), corners_.back(), point)) {
        corners_.pop_back();
    }
    corners_.push_back(point);
}

Line LowerHull::edge(double x) const
{
    if (corners_.size() == 1) {
        return {corners_.front(), 0};
    }
    const auto right =
        std::lower_bound(corners_.begin() + 1, corners_.end() - 1, x,
                         [](const Point& corner, double at) { return corner.x < at; });
    const Point& left = *(right - 1);
    return {left, (right->y - left.y) / (right->x - left.x)};
}

} // namespace kxhost
