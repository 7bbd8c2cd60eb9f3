// Measures how far exported time stamps are from the true starts of exposure.
#ifndef KX_TEST_TIMESTAMP_RUN_H
#define KX_TEST_TIMESTAMP_RUN_H

#include "clock/clock_fit.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kxtest {

/// One camera and one way of time stamping.
struct TimestampCase {
    double driftPpm = 0;  ///< how much faster than the host's clock the camera's clock runs
    double wanderPpm = 0; ///< how far its rate swings about that
    double wanderSeconds = 300;
    double latencyUs = 500; ///< from the end of the transfer to the frame being in host memory
    double jitterUs = 0;    ///< up to this much is added to it, evenly distributed
    double spikeShare = 0;  ///< share of frames that are late by `spikeUs` more
    double spikeUs = 0;
    std::int32_t tsadjns = 0; ///< correction in ns per s; 0 = REGULAR, otherwise REFCAMTS
    double frameRate = 30;
    double exposureUs = 5000;
    std::uint32_t frames = 1000; ///< to export
};

/// The correction that matches the case's drift.
std::int32_t matchingCorrection(double driftPpm);

/// Exported time stamp less true start of exposure, in microseconds, of each exported frame. Runs
/// the plug-in in this process, with the simulation's clock driven by hand: no time passes. Throws
/// std::runtime_error when frames are missing.
std::vector<double> timestampErrors(const TimestampCase& what);

/// The same run as kxhost clock sees it: arrival and camera's time of each exported frame.
std::vector<kxhost::ClockSample> clockSamples(const TimestampCase& what);

/// What the errors of a run come to.
struct ErrorSummary {
    double mean = 0;
    double deviation = 0; ///< standard deviation
    double smallest = 0;
    double largest = 0;
    double drift = 0; ///< slope of the error over the run, in microseconds per second
};
ErrorSummary summarize(const std::vector<double>& errors, double frameRate);

} // namespace kxtest

#endif
