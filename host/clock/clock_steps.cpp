// Steps of clocks.
#include "clock/clock_steps.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace kxhost {
namespace {

/// A change of the shortest delay is a step when it is larger than this.
constexpr double kLeastStepUs = 20;
constexpr double kUsualChanges = 40;

double median(std::vector<double>& values)
{
    if (values.empty()) {
        return 0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// How many frames stand for the level before or behind a place.
std::size_t spanOfLevel(std::span<const Point> delays)
{
    constexpr double kSeconds = 1;
    constexpr std::size_t kFrames = 50;
    const double seconds = delays.back().x - delays.front().x;
    const double aSecond =
        seconds > 0 ? kSeconds * static_cast<double>(delays.size()) / seconds : 0;
    return std::min(std::max(kFrames, static_cast<std::size_t>(aSecond)), delays.size() / 8);
}

Point lowest(std::span<const Point> delays)
{
    return *std::ranges::min_element(delays, {}, &Point::y);
}

/// The usual slope from one stretch of `span` frames to the next, which few steps do not change.
double usualSlope(std::span<const Point> delays, std::size_t span)
{
    std::vector<double> slopes;
    for (std::size_t i = span; i + span <= delays.size(); i += span) {
        const Point before = lowest(delays.subspan(i - span, span));
        const Point behind = lowest(delays.subspan(i, span));
        if (behind.x > before.x) {
            slopes.push_back((behind.y - before.y) / (behind.x - before.x));
        }
    }
    return median(slopes);
}

/// Delays without their slope.
std::vector<double> levelled(std::span<const Point> delays, double slope)
{
    std::vector<double> levels;
    levels.reserve(delays.size());
    for (const Point& delay : delays) {
        levels.push_back(delay.y - slope * (delay.x - delays.front().x));
    }
    return levels;
}

/// For each place the lowest of the up to `span` values that end with it.
std::vector<double> lowestUpTo(const std::vector<double>& values, std::size_t span)
{
    std::vector<double> result;
    result.reserve(values.size());
    std::deque<std::size_t> candidates; // rising values; the first is the lowest
    for (std::size_t i = 0; i < values.size(); ++i) {
        while (!candidates.empty() && values[candidates.back()] >= values[i]) {
            candidates.pop_back();
        }
        candidates.push_back(i);
        if (candidates.front() + span <= i) {
            candidates.pop_front();
        }
        result.push_back(values[candidates.front()]);
    }
    return result;
}

/// For each frame but the first how much higher the lowest level from it on is than that before.
std::vector<double> changes(const std::vector<double>& levels, std::size_t span)
{
    const std::vector<double> before = lowestUpTo(levels, span);
    std::vector<double> behind = lowestUpTo({levels.rbegin(), levels.rend()}, span);
    std::ranges::reverse(behind);
    std::vector<double> result(levels.size(), 0);
    for (std::size_t i = 1; i < levels.size(); ++i) {
        result[i] = behind[i] - before[i - 1];
    }
    return result;
}

/// Changes between whole spans, without their sign.
double usualChange(const std::vector<double>& change, std::size_t span)
{
    std::vector<double> sizes;
    for (std::size_t i = span; i + span <= change.size(); ++i) {
        sizes.push_back(std::abs(change[i]));
    }
    return median(sizes);
}

/// The place of the step in a run of changes with one sign. Towards the step's near end single
/// frames, which may be late, stand for a level; so only large changes count.
std::size_t placeInRun(std::span<const double> run)
{
    const bool isLater = run.front() > 0;
    const auto size = [](double change) { return std::abs(change); };
    const double half = size(*std::ranges::max_element(run, {}, size)) / 2;
    const auto isLarge = [&](double change) { return size(change) >= half; };
    if (isLater) { // seen until no frame before it is left among those that stand for the level
        return static_cast<std::size_t>(std::ranges::find_if(run, isLarge) - run.begin());
    }
    const auto last = std::find_if(run.rbegin(), run.rend(), isLarge); // seen beforehand
    return static_cast<std::size_t>(run.rend() - last) - 1;
}

} // namespace

std::vector<DelayStep> findSteps(std::span<const Point> delays)
{
    std::vector<DelayStep> steps;
    const std::size_t span = delays.empty() ? 0 : spanOfLevel(delays);
    if (span == 0) {
        return steps;
    }
    const std::vector<double> change = changes(levelled(delays, usualSlope(delays, span)), span);
    const double least = std::max(kLeastStepUs, kUsualChanges * usualChange(change, span));
    const auto isLater = [&](double each) { return each > least; };
    const auto isEarlier = [&](double each) { return each < -least; };
    auto at = change.begin();
    while (at != change.end()) {
        const auto end = isLater(*at)     ? std::find_if_not(at, change.end(), isLater)
                         : isEarlier(*at) ? std::find_if_not(at, change.end(), isEarlier)
                                          : at + 1;
        const std::size_t frame =
            static_cast<std::size_t>(at - change.begin()) + placeInRun({at, end});
        // The high side has to be long: a few frames may be late without a step.
        const std::size_t high = change[frame] > 0 ? change.size() - frame : frame;
        if (std::abs(change[frame]) > least && high >= span) {
            steps.push_back({frame, change[frame]});
        }
        at = end;
    }
    return steps;
}

} // namespace kxhost
