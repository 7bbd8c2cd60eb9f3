// The report on a camera's clock.
#include "clock/clock_report.h"

#include "clock/clock_rate.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <vector>

namespace kxhost {
namespace {

using Json = nlohmann::ordered_json;

/// With so many digits behind the point.
std::string number(double value, int digits = 0)
{
    std::array<char, 400> text{};
    const double shown = value == 0 ? 0 : value; // no "-0"
    const auto end = std::to_chars(text.data(), text.data() + text.size(), shown,
                                   std::chars_format::fixed, digits)
                         .ptr;
    return {text.data(), end};
}

std::string rightAligned(const std::string& text, std::size_t width)
{
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

/// A rate with a digit behind the point where the uncertainty leaves it one.
std::string rateText(const ClockFit& fit)
{
    const int digits = fit.uncertaintyNs < 10 ? 1 : 0;
    const double rateNs = std::abs(fit.rateNs);
    return std::string("rate      the camera's clock is ") + (fit.rateNs < 0 ? "slow" : "fast") +
           " by " + number(rateNs, digits) + " ns/s, +- " + number(fit.uncertaintyNs, digits) +
           " (" + number(rateNs / 1e3, 3) + " ppm)\n";
}

std::string offsetText(const ClockFit& fit)
{
    return "offset    " + std::to_string(fit.offsetUs) +
           " us from the camera's time to this computer's, delivery included,\n"
           "          when the camera showed " +
           number(static_cast<double>(fit.atCameraUs) / 1e6, 6) + " s\n";
}

std::string residualText(const ClockResidual& residual)
{
    return "residual  median " + number(residual.medianUs) + " us, 99 of 100 within " +
           number(residual.p99Us) + " us, largest " + number(residual.largestUs) + " us\n";
}

std::string stepsText(const std::vector<ClockStep>& steps)
{
    std::string text;
    for (const ClockStep& step : steps) {
        text += "step      at " + number(step.atSeconds, 2) + " s " +
                (step.ofHost ? "this computer's clock"
                             : "the camera's clock, or else the delivery of frames,") +
                " jumped by " + (step.sizeUs > 0 ? "+" : "") + number(step.sizeUs) + " us\n";
    }
    return text.empty() ? "step      none\n" : text;
}

std::string windowText(const ClockWindow& window)
{
    return rightAligned(number(window.fromSeconds, 1), 18) +
           rightAligned(number(window.toSeconds, 1), 10) + rightAligned(number(window.rateNs), 12) +
           rightAligned(number(window.uncertaintyNs), 8) + "\n";
}

std::string wanderText(const ClockFit& fit)
{
    if (fit.windows.empty()) {
        return "wander    not looked for, the run is too short\n";
    }
    const std::string length = number(fit.windowSeconds) + " s";
    if (!fit.wanders) {
        return "wander    none beyond the uncertainty, in " + std::to_string(fit.windows.size()) +
               " windows of " + length + "\n";
    }
    std::string text = "wander    the rate changes by " + number(fit.spreadNs) + " ns/s within " +
                       length + ":\n            from s      to s   rate ns/s      +-\n";
    for (const ClockWindow& window : fit.windows) {
        text += windowText(window);
    }
    return text;
}

/// Whether a correction would serve better than none: the uncertainty is no more than the rate
/// itself, or than a millionth, which few clocks keep anyway.
bool isWorthCorrecting(const ClockFit& fit)
{
    constexpr double kMillionthNs = 1000; // per second
    return fit.uncertaintyNs <= std::max(std::abs(fit.rateNs), kMillionthNs);
}

std::string advice(const ClockFit& fit)
{
    constexpr double kUsAMinute = 60 / 1e3; // of one ns/s
    if (!isWorthCorrecting(fit)) {
        return "\nThe rate is less certain than it is large: look longer for a clock_correction.\n";
    }
    return std::string("\nFor time stamps from the camera's clock, good to ") +
           number(fit.uncertaintyNs * kUsAMinute, 1) + " us a minute" +
           (fit.wanders ? " on average while it wanders" : "") +
           ":\n\n[timestamps]\nclock_correction = \"" + std::to_string(clockCorrectionNs(fit)) +
           " ns/s\"\n";
}

Json stepJson(const ClockStep& step)
{
    return {{"at_s", step.atSeconds},
            {"clock", step.ofHost ? "host" : "camera"},
            {"size_us", step.sizeUs}};
}

Json windowJson(const ClockWindow& window)
{
    return {{"from_s", window.fromSeconds},
            {"to_s", window.toSeconds},
            {"rate_ns_per_s", window.rateNs},
            {"uncertainty_ns_per_s", window.uncertaintyNs}};
}

template <typename Values, typename Convert>
Json listJson(const Values& values, const Convert& convert)
{
    Json list = Json::array();
    for (const auto& value : values) {
        list.push_back(convert(value));
    }
    return list;
}

void addFit(Json& object, const ClockFit& fit)
{
    object["frames"] = fit.frames;
    object["seconds"] = fit.seconds;
    object["rate_ns_per_s"] = fit.rateNs;
    object["uncertainty_ns_per_s"] = fit.uncertaintyNs;
    object["confidence"] = kConfidence;
    object["clock_correction"] =
        isWorthCorrecting(fit) ? Json(clockCorrectionNs(fit)) : Json(nullptr);
    object["offset_us"] = fit.offsetUs;
    object["at_camera_us"] = fit.atCameraUs;
    object["residual_us"] = {{"median", fit.residual.medianUs},
                             {"p99", fit.residual.p99Us},
                             {"largest", fit.residual.largestUs}};
    object["steps"] = listJson(fit.steps, stepJson);
    object["wanders"] = fit.wanders;
    object["spread_ns_per_s"] = fit.spreadNs;
    object["window_s"] = fit.windowSeconds;
    object["windows"] = listJson(fit.windows, windowJson);
}

} // namespace

std::string clockText(const ClockFit& fit)
{
    const double rate = static_cast<double>(fit.frames - 1) / fit.seconds;
    return "frames    " + std::to_string(fit.frames) + " in " + number(fit.seconds, 1) + " s, " +
           number(rate, 1) + " a second\n" + rateText(fit) + offsetText(fit) +
           residualText(fit.residual) + stepsText(fit.steps) + wanderText(fit) + advice(fit);
}

std::string clockJson(const std::optional<ClockFit>& fit, int exitCode, const std::string& reason)
{
    Json object;
    object["exit_code"] = exitCode;
    object["reason"] = reason;
    if (fit) {
        addFit(object, *fit);
    }
    return object.dump(2) + "\n";
}

} // namespace kxhost
