// Steps of clocks: where delays jump to another level and stay there.
#ifndef KXHOST_CLOCK_STEPS_H
#define KXHOST_CLOCK_STEPS_H

#include "clock/lower_hull.h"

#include <cstddef>
#include <span>
#include <vector>

namespace kxhost {

/// A jump of the delays.
struct DelayStep {
    std::size_t frame = 0; ///< the first frame behind it, to a frame or two
    double sizeUs = 0;     ///< by how much frames seem later since then
};

/// Finds where the shortest delays (microseconds over seconds) change at once, by more than forty
/// times what they usually change by and more than 20 us. Frames that are late for less than a
/// second, or fewer than 50 of them, are no step. Frames that are early are one at once, even a
/// single one, as nothing makes a frame early; the step back follows it. In a short run an eighth
/// of it stands for the second. REQUIRES: x never falls.
std::vector<DelayStep> findSteps(std::span<const Point> delays);

} // namespace kxhost

#endif
