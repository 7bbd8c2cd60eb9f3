// Axes of figures: which range, where the marks stand, in which unit.
#include "report/report_axis.h"

#include "report/report_words.h"

#include <algorithm>
#include <cmath>

namespace kxhost {
namespace {

constexpr int kMostValueParts = 5;
constexpr int kMostTimeParts = 6;

struct Unit {
    const char* name;
    double us;     ///< in microseconds
    double beyond; ///< taken for lengths from here on
};

/// The last unit that the length takes.
template <std::size_t N>
const Unit& unitFor(const Unit (&units)[N], double us)
{
    const Unit* best = &units[0];
    for (const Unit& unit : units) {
        best = us >= unit.beyond ? &unit : best;
    }
    return *best;
}

/// Marks at all multiples of `step` within the axis; both in microseconds.
void mark(Axis& axis, double step, const Unit& unit)
{
    const int digits =
        std::max(0, static_cast<int>(-std::floor(std::log10(step / unit.us) + 1e-9)));
    const double slack = step * 1e-6;
    for (double n = std::ceil((axis.low - slack) / step); n * step <= axis.high + slack; ++n) {
        axis.marks.push_back({n * step, fixedText(n * step / unit.us, digits)});
    }
    axis.unit = unit.name;
}

} // namespace

double Axis::place(double value) const
{
    return std::clamp((value - low) / (high - low), 0.0, 1.0);
}

double niceStep(double range, int most)
{
    const double least = range / most;
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least * (1 - 1e-9)) {
            return factor * power;
        }
    }
    return 10 * power;
}

Axis microsecondAxis(double lowUs, double highUs)
{
    constexpr Unit kUnits[] = {{"µs", 1, 0}, {"ms", 1e3, 2e3}, {"s", 1e6, 2e6}};
    if (highUs - lowUs < 1) { // a line needs room above and below
        lowUs -= 1;
        highUs += 1;
    }
    const double step = std::max(niceStep(highUs - lowUs, kMostValueParts), 1.0);
    Axis axis;
    axis.low = std::floor(lowUs / step + 1e-9) * step;
    axis.high = std::ceil(highUs / step - 1e-9) * step;
    mark(axis, step, unitFor(kUnits, std::max(std::abs(axis.low), std::abs(axis.high))));
    return axis;
}

Axis elapsedAxis(double endUs)
{
    constexpr double kSecond = 1e6;
    constexpr double kMinute = 60 * kSecond;
    constexpr double kHour = 60 * kMinute;
    constexpr double kDay = 24 * kHour;
    constexpr Unit kUnits[] = {{"ms", 1e3, 0},
                               {"s", kSecond, kSecond},
                               {"min", kMinute, 3 * kMinute},
                               {"h", kHour, 3 * kHour},
                               {"d", kDay, 3 * kDay}};
    Axis axis;
    axis.high = std::max(endUs, 1e3);
    const Unit& unit = unitFor(kUnits, axis.high);
    mark(axis, niceStep(axis.high / unit.us, kMostTimeParts) * unit.us, unit);
    return axis;
}

} // namespace kxhost
