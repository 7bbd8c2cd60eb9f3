// The rate at which two clocks run apart, from delays that are never too short but often too long.
#ifndef KXHOST_CLOCK_RATE_H
#define KXHOST_CLOCK_RATE_H

#include "clock/lower_hull.h"

#include <cstddef>
#include <optional>
#include <span>

namespace kxhost {

/// Fewer frames say nothing about a rate.
inline constexpr std::size_t kFewestFrames = 16;
/// How often the true rate lies within the uncertainty that is stated.
inline constexpr double kConfidence = 0.95;

/// A line below delays.
struct RateFit {
    Line line;              ///< x in seconds, y in microseconds; its slope is the rate
    double uncertainty = 0; ///< of the slope, us per s, half the width of the interval
};

/// Fits the line that touches the delays (microseconds over seconds) from below and has the least
/// area between itself and them: the edge of their lower hull that spans their mean time. However
/// late some frames are, it does not move.
///
/// The uncertainty assumes nothing of how delays are distributed: the shortest delays of eight
/// equal parts lie about the line, and how they do so gives the interval of their regression line
/// with a confidence of kConfidence; how far that line is from the fitted one is added, and the
/// clocks' resolution. Where delays end abruptly at the shortest, as they do when nothing but
/// waiting makes them longer, the interval holds; where they thin out on both sides, as a normal
/// distribution does, it holds in some 85 of 100 cases.
///
/// REQUIRES: x never falls. None = fewer than kFewestFrames points, or no time between them.
std::optional<RateFit> fitRate(std::span<const Point> delays);

} // namespace kxhost

#endif
