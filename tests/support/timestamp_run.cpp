// Measures how far exported time stamps are from the true starts of exposure.
#include "timestamp_run.h"

#include "clock/clock_recorder.h"
#include "control/sim_control.h"
#include "journal.h"
#include "kx_log.h"
#include "kx_plugin.h"
#include "kx_scenario.h"
#include "recording_host.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <string>

namespace kxtest {

namespace {

constexpr unsigned kSerial = 77;
constexpr std::uint64_t kStartUs = 1'700'000'000'000'000;

std::string busOf(const TimestampCase& what)
{
    std::ostringstream bus;
    bus << std::fixed;
    bus << "[[camera]]\nmodel = \"Clock CLK-1\"\nserial = " << kSerial << "\ninterface = \"usb3\"\n"
        << "sensor = { width = 64, height = 48, colour = false, frame_rate = " << what.frameRate
        << " }\n"
        << "scene = { kind = \"none\" }\n"
        << "clock = { offset_us = 1000000.0, drift_ppm = " << what.driftPpm
        << ", wander_ppm = " << what.wanderPpm << ", wander_seconds = " << what.wanderSeconds
        << " }\n"
        << "delivery = { latency_us = " << what.latencyUs << ", jitter_us = " << what.jitterUs
        << ", spike_share = " << what.spikeShare << ", spike_us = " << what.spikeUs
        << ", seed = 7 }\n"
        << "[camera.properties.SHUTTER]\nvalue = " << what.exposureUs / 1000 << "\n";
    return bus.str();
}

void prepare(const TimestampCase& what)
{
    fcsim::reset();
    if (const std::string problem = fcsim::loadBus(busOf(what), "timestamps"); !problem.empty()) {
        throw std::runtime_error(problem);
    }
    fcsim::useManualClock(kStartUs);
    host().reset();
    host().config.activeCamMask = 1;
    host().config.fnum = what.frames + 1; // the first one only starts the timing
    host().config.tsadjns = what.tsadjns;
}

/// Runs the plug-in; what it exported is with the host afterwards. Returns the truth on each frame,
/// first that of the one that is not exported.
std::vector<fcsim::FrameTruth> runPlugin(const TimestampCase& what)
{
    prepare(what);
    const int code = KxLibProc();
    std::vector<fcsim::FrameTruth> truth = fcsim::takeTruth(kSerial);
    const std::size_t exported = host().exports.size();
    journal().clear();
    fcsim::useHostClock();
    if (code != 0 || exported != what.frames || truth.size() != what.frames + 1) {
        throw std::runtime_error("the run ended with " + std::to_string(code) + " after " +
                                 std::to_string(exported) + " exported frames of " +
                                 std::to_string(truth.size()));
    }
    return truth;
}

} // namespace

std::int32_t matchingCorrection(double driftPpm)
{
    return static_cast<std::int32_t>(std::lround(-1000 * driftPpm));
}

std::vector<double> timestampErrors(const TimestampCase& what)
{
    const std::vector<fcsim::FrameTruth> truth = runPlugin(what);
    const std::vector<Export>& exports = host().exports;
    std::vector<double> errors;
    for (std::size_t i = 0; i < exports.size(); ++i) {
        errors.push_back(static_cast<double>(
            static_cast<std::int64_t>(exports[i].timestampUs - truth[i + 1].exposureStartUs)));
    }
    return errors;
}

std::vector<kxhost::ClockSample> clockSamples(const TimestampCase& what)
{
    const std::vector<fcsim::FrameTruth> truth = runPlugin(what);
    kxhost::ClockRecorder recorder(what.frames);
    for (std::size_t i = 0; i < host().exports.size(); ++i) {
        const std::uint64_t arrivalUs = truth[i + 1].arrivalUs;
        recorder.arrived(arrivalUs, arrivalUs);
        recorder.stamped(
            static_cast<std::uint64_t>(host().exports[i].numbers.at(kKxScCameraTimeUs)));
    }
    return {recorder.samples().begin(), recorder.samples().end()};
}

ErrorSummary summarize(const std::vector<double>& errors, double frameRate)
{
    const auto count = static_cast<double>(errors.size());
    ErrorSummary summary;
    for (const double error : errors) {
        summary.mean += error / count;
    }
    double squares = 0;
    double slopeOver = 0;
    double slopeUnder = 0;
    for (std::size_t i = 0; i < errors.size(); ++i) {
        const double seconds = (static_cast<double>(i) - (count - 1) / 2) / frameRate;
        const double off = errors[i] - summary.mean;
        squares += off * off;
        slopeOver += off * seconds;
        slopeUnder += seconds * seconds;
    }
    summary.deviation = std::sqrt(squares / count);
    summary.drift = slopeUnder > 0 ? slopeOver / slopeUnder : 0;
    const auto [smallest, largest] = std::minmax_element(errors.begin(), errors.end());
    summary.smallest = *smallest;
    summary.largest = *largest;
    return summary;
}

} // namespace kxtest
