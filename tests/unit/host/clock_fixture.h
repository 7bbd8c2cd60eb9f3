// Frames of a made-up camera whose clock and delivery are known, for the tests of what is told from
// their times.
#ifndef KX_TESTS_CLOCK_FIXTURE_H
#define KX_TESTS_CLOCK_FIXTURE_H

#include "clock/clock_fit.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace kxtest {

/// A camera, a host and what lies between them.
struct ClockRun {
    double frameRate = 100;
    double seconds = 60;
    double driftPpm = 0;  ///< how much faster than the host's clock the camera's runs
    double wanderPpm = 0; ///< how far its rate swings about that
    double wanderPeriodS = 60;
    double latencyUs = 8000; ///< shortest delay
    double jitterUs = 300;   ///< up to this much is added, evenly distributed
    double spikeShare = 0.01;
    double spikeUs = 3000; ///< up to this much more for so many frames, at least half of it
    double lostShare = 0;  ///< of frames that never come
    std::uint64_t seed = 1;
    /// Microseconds to add to the camera's clock and to this computer's from some second on.
    std::function<double(double)> cameraStepUs = [](double) { return 0.0; };
    std::function<double(double)> hostStepUs = [](double) { return 0.0; };

    std::vector<kxhost::ClockSample> samples() const;
    /// How fast the camera's clock is on average over the run, in ns per s.
    double meanRateNs() const { return (driftPpm + swungUs(seconds) / seconds) * 1e3; }

private:
    double swungUs(double hostS) const
    {
        const double turn = 2 * 3.14159265358979 / wanderPeriodS;
        return wanderPpm / turn * (1 - std::cos(turn * hostS));
    }
};

inline std::vector<kxhost::ClockSample> ClockRun::samples() const
{
    constexpr double kHostStartUs = 1.7e15;
    constexpr double kSteadyStartUs = 5e9;
    constexpr double kCameraStartUs = 1e6;
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> share(0, 1);
    std::vector<kxhost::ClockSample> all;
    const auto frames = static_cast<std::size_t>(seconds * frameRate);
    for (std::size_t i = 0; i < frames; ++i) {
        const double startS = static_cast<double>(i) / frameRate;
        double delayUs = latencyUs + jitterUs * share(random);
        if (share(random) < spikeShare) {
            delayUs += spikeUs * (1 + share(random)) / 2;
        }
        if (share(random) < lostShare) {
            continue;
        }
        const double cameraUs =
            kCameraStartUs + startS * (1e6 + driftPpm) + swungUs(startS) + cameraStepUs(startS);
        const double arrivalUs = startS * 1e6 + delayUs;
        all.push_back({std::llround(cameraUs),
                       std::llround(kHostStartUs + arrivalUs + hostStepUs(startS)),
                       std::llround(kSteadyStartUs + arrivalUs)});
    }
    return all;
}

/// The fit of such a run, which must be possible.
inline kxhost::ClockFit fitOf(const ClockRun& run)
{
    std::string problem;
    const std::optional<kxhost::ClockFit> fit = kxhost::fitClock(run.samples(), problem);
    if (!fit) {
        throw std::runtime_error(problem);
    }
    return *fit;
}

} // namespace kxtest

#endif
