// The lower convex hull of points that come from left to right: the tightest line from below.
#ifndef KXHOST_LOWER_HULL_H
#define KXHOST_LOWER_HULL_H

#include <vector>

namespace kxhost {

struct Point {
    double x = 0;
    double y = 0;
};

/// A straight line through a point.
struct Line {
    Point through;
    double slope = 0;

    double at(double x) const { return through.y + slope * (x - through.x); }
};

/// Takes points one by one, each in constant time on average, and keeps the corners only. Of points
/// with the same x the lowest counts. Not thread-safe.
class LowerHull {
public:
    /// REQUIRES: an x that is not below that of the point before.
    void add(Point point);
    /// Corners from left to right.
    const std::vector<Point>& corners() const { return corners_; }
    /// The edge that spans `x`, extended: no point lies below it. With one corner it is level.
    /// REQUIRES: at least one point.
    Line edge(double x) const;

private:
    std::vector<Point> corners_;
};

} // namespace kxhost

#endif
