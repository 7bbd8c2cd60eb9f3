// Axes of figures: which range, where the marks stand, in which unit.
#ifndef KXHOST_REPORT_AXIS_H
#define KXHOST_REPORT_AXIS_H

#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

/// A mark of an axis.
struct AxisMark {
    double at = 0;    ///< in the axis' own measure
    std::string text; ///< without unit
};

struct Axis {
    double low = 0; ///< less than `high`
    double high = 1;
    std::string unit; ///< of the marks' texts
    std::vector<AxisMark> marks;

    /// Where a value stands: 0 at `low`, 1 at `high`. Values outside stand at the ends.
    double place(double value) const;
};

/// The step of 1, 2 or 5 times a power of ten that parts `range` into no more than `most` parts.
/// REQUIRES: a range above 0, `most` of at least 1.
double niceStep(double range, int most);

/// Of microseconds from `lowUs` to `highUs`: widened to marks, in µs, ms or s.
Axis microsecondAxis(double lowUs, double highUs);

/// Of the time since the begin of a run, from 0 to `endUs` exactly, but at least to a millisecond,
/// in ms, s, min, h or d.
Axis elapsedAxis(double endUs);

} // namespace kxhost

#endif
