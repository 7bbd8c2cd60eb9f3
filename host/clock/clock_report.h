// The report on a camera's clock, for people and for programs.
#ifndef KXHOST_CLOCK_REPORT_H
#define KXHOST_CLOCK_REPORT_H

#include "clock/clock_fit.h"

#include <optional>
#include <string>

namespace kxhost {

/// Several lines for people, the last ones for the configuration.
std::string clockText(const ClockFit& fit);

/// One JSON object and a newline: how the run ended, and the fit when there is one. docs/clock.md
/// lists the keys.
std::string clockJson(const std::optional<ClockFit>& fit, int exitCode, const std::string& reason);

} // namespace kxhost

#endif
