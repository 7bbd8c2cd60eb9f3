// What a run of frames says about the camera's clock: its rate and offset against this computer's,
// steps, and how it wanders.
#ifndef KXHOST_CLOCK_FIT_H
#define KXHOST_CLOCK_FIT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kxhost {

/// The times of one frame, in microseconds.
struct ClockSample {
    std::int64_t cameraUs = 0; ///< start of the exposure on the camera's clock, without its wraps
    std::int64_t hostUs = 0;   ///< arrival on this computer's clock, since 1970
    std::int64_t steadyUs = 0; ///< arrival on one of its clocks that never steps
};

/// A jump of one clock.
struct ClockStep {
    double atSeconds = 0; ///< since the first frame
    double sizeUs = 0;    ///< by how much that clock was put forward
    bool ofHost =
        false; ///< of this computer's clock; otherwise of the camera's, or of the delivery
};

/// A part of the run with a fit of its own.
struct ClockWindow {
    double fromSeconds = 0; ///< since the first frame
    double toSeconds = 0;
    double rateNs = 0;
    double uncertaintyNs = 0;
};

/// How much later frames came than the fit says.
struct ClockResidual {
    double medianUs = 0;
    double p99Us = 0;
    double largestUs = 0;
};

struct ClockFit {
    std::size_t frames = 0;
    double seconds = 0; ///< from the first frame to the last
    /// By how much the camera's clock is fast, in ns per second of this computer's; when it
    /// wanders, the mean over the run.
    double rateNs = 0;
    double uncertaintyNs = 0; ///< half the width of the interval of `rateNs`, at kConfidence
    /// At the last frame: this computer's time of its arrival without delay, less the camera's time
    /// of its start (0 to 128 s). It contains the shortest delay of a frame's delivery, exposure
    /// included, which nothing tells from the clocks' distance.
    std::int64_t offsetUs = 0;
    std::int64_t atCameraUs = 0; ///< camera's time at that frame
    ClockResidual residual;
    std::vector<ClockStep> steps;
    double windowSeconds = 0; ///< length of each window
    /// Windows from one end of the run to the other that overlap by half; none in a short run.
    std::vector<ClockWindow> windows;
    /// Whether the rate changes more than its uncertainty from window to window. The fit then
    /// switches from the line of one window to that of the next.
    bool wanders = false;
    double spreadNs = 0; ///< how much it changes within one window's length (Allan deviation)
};

/// Fits a run. Steps part it; the parts' rates are averaged by their uncertainties. Returns nothing
/// and says why in `problem` when the run does not tell a rate: too few frames, or a clock that
/// does not move. REQUIRES: `steadyUs` never falls.
std::optional<ClockFit> fitClock(std::span<const ClockSample> samples, std::string& problem);

/// The value of timestamps.clock_correction that fits: the opposite of the rate, and never 0, which
/// would mean time stamps from this computer's clock.
std::int64_t clockCorrectionNs(const ClockFit& fit);

} // namespace kxhost

#endif
