// The rate at which two clocks run apart.
#include "clock/clock_rate.h"

#include <array>
#include <cmath>

namespace kxhost {
namespace {

constexpr std::size_t kBlocks = 8;
/// Student's t for a two-sided 95 % and the six degrees of freedom that a line leaves to eight
/// points.
constexpr double kStudent = 2.447;
/// Both clocks are read in whole microseconds.
constexpr double kResolutionUs = 1;

using Blocks = std::array<Point, kBlocks>;

double meanTime(std::span<const Point> delays)
{
    double sum = 0;
    for (const Point& delay : delays) {
        sum += delay.x - delays.front().x;
    }
    return delays.front().x + sum / static_cast<double>(delays.size());
}

/// The point of each part that is lowest above the line, by its height above the line.
Blocks lowestOfParts(std::span<const Point> delays, const Line& line)
{
    Blocks lowest;
    for (std::size_t block = 0; block < kBlocks; ++block) {
        const std::size_t begin = block * delays.size() / kBlocks;
        const std::size_t end = (block + 1) * delays.size() / kBlocks;
        for (std::size_t i = begin; i < end; ++i) {
            const double above = delays[i].y - line.at(delays[i].x);
            if (i == begin || above < lowest[block].y) {
                lowest[block] = {delays[i].x, above};
            }
        }
    }
    return lowest;
}

/// A slope by least squares and its standard error.
struct Regression {
    double slope = 0;
    double error = 0;
};

Regression regress(const Blocks& points)
{
    Point mean;
    for (const Point& point : points) {
        mean.x += point.x / kBlocks;
        mean.y += point.y / kBlocks;
    }
    double width = 0;
    double product = 0;
    for (const Point& point : points) {
        width += (point.x - mean.x) * (point.x - mean.x);
        product += (point.x - mean.x) * (point.y - mean.y);
    }
    if (width == 0) {
        return {};
    }
    Regression regression{product / width, 0};
    double squares = 0;
    for (const Point& point : points) {
        const double off = point.y - mean.y - regression.slope * (point.x - mean.x);
        squares += off * off;
    }
    regression.error = std::sqrt(squares / (kBlocks - 2) / width);
    return regression;
}

} // namespace

std::optional<RateFit> fitRate(std::span<const Point> delays)
{
    if (delays.size() < kFewestFrames || !(delays.back().x > delays.front().x)) {
        return std::nullopt;
    }
    LowerHull hull;
    for (const Point& delay : delays) {
        hull.add(delay);
    }
    RateFit fit;
    fit.line = hull.edge(meanTime(delays));
    const Regression scatter = regress(lowestOfParts(delays, fit.line));
    const double resolution = kResolutionUs / (delays.back().x - delays.front().x);
    fit.uncertainty = std::hypot(kStudent * scatter.error, scatter.slope, resolution);
    return fit;
}

} // namespace kxhost
