// The lower hull: what its corners and edges are, whatever the points.
#include "clock/lower_hull.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <rapidcheck/gtest.h>

namespace {

using kxhost::Line;
using kxhost::LowerHull;
using kxhost::Point;

LowerHull hullOf(const std::vector<Point>& points)
{
    LowerHull hull;
    for (const Point& point : points) {
        hull.add(point);
    }
    return hull;
}

TEST(LowerHull, KeepsTheCornersOnly)
{
    const LowerHull hull = hullOf({{0, 5}, {1, 1}, {2, 4}, {3, 2}, {4, 0}, {5, 7}, {6, 1}});
    ASSERT_EQ(hull.corners().size(), 4U);
    EXPECT_EQ(hull.corners()[1].x, 1);
    EXPECT_EQ(hull.corners()[2].x, 4);
}

TEST(LowerHull, PointsInARowAreNoCorners)
{
    EXPECT_EQ(hullOf({{0, 0}, {1, 2}, {2, 4}, {3, 6}}).corners().size(), 2U);
}

TEST(LowerHull, OfPointsAtOneTimeTheLowestCounts)
{
    const LowerHull hull = hullOf({{0, 3}, {0, 1}, {0, 2}, {4, 5}});
    ASSERT_EQ(hull.corners().size(), 2U);
    EXPECT_EQ(hull.corners()[0].y, 1);
    EXPECT_DOUBLE_EQ(hull.edge(2).slope, 1);
}

TEST(LowerHull, OnePointMakesALevelLine)
{
    const Line line = hullOf({{3, 8}}).edge(10);
    EXPECT_EQ(line.slope, 0);
    EXPECT_EQ(line.at(-5), 8);
}

TEST(LowerHull, TheEdgeIsTheOneThatSpansThePlace)
{
    const LowerHull hull = hullOf({{0, 4}, {2, 0}, {6, 1}, {8, 5}});
    EXPECT_DOUBLE_EQ(hull.edge(1).slope, -2);
    EXPECT_DOUBLE_EQ(hull.edge(2).slope, -2); // a corner belongs to the edge before it
    EXPECT_DOUBLE_EQ(hull.edge(2.1).slope, 0.25);
    EXPECT_DOUBLE_EQ(hull.edge(7).slope, 2);
    EXPECT_DOUBLE_EQ(hull.edge(-9).slope, -2);
    EXPECT_DOUBLE_EQ(hull.edge(99).slope, 2);
    EXPECT_DOUBLE_EQ(hull.edge(4).at(4), 0.5);
}

std::vector<Point> anyPoints()
{
    auto pairs = *rc::gen::nonEmpty(rc::gen::container<std::vector<std::pair<int, int>>>(
        rc::gen::pair(rc::gen::inRange(-50, 50), rc::gen::inRange(-100, 100))));
    std::ranges::sort(pairs, {}, &std::pair<int, int>::first);
    std::vector<Point> points;
    points.reserve(pairs.size());
    for (const auto& [x, y] : pairs) {
        points.push_back({static_cast<double>(x), static_cast<double>(y)});
    }
    return points;
}

RC_GTEST_PROP(LowerHull, NoPointLiesBelowAnEdgeAndTwoLieOnIt, ())
{
    const std::vector<Point> points = anyPoints();
    const Line line = hullOf(points).edge(*rc::gen::inRange(-60, 60));
    int touched = 0;
    for (const Point& point : points) {
        const double above = point.y - line.at(point.x);
        RC_ASSERT(above > -1e-9);
        touched += above < 1e-9 ? 1 : 0;
    }
    RC_ASSERT(touched >= (points.front().x < points.back().x ? 2 : 1));
}

RC_GTEST_PROP(LowerHull, IsTheSameShapeWhereverThePointsAre, ())
{
    std::vector<Point> points = anyPoints();
    const LowerHull hull = hullOf(points);
    const Point shift{1024, -512};
    for (Point& point : points) {
        point = {point.x + shift.x, point.y + shift.y};
    }
    const LowerHull moved = hullOf(points);
    RC_ASSERT(moved.corners().size() == hull.corners().size());
    for (std::size_t i = 0; i < hull.corners().size(); ++i) {
        RC_ASSERT(moved.corners()[i].x == hull.corners()[i].x + shift.x);
        RC_ASSERT(moved.corners()[i].y == hull.corners()[i].y + shift.y);
    }
}

} // namespace
