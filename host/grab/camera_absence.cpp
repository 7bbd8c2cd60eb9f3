// What happens when the camera is lost, and when it is back.
#include "grab/camera_absence.h"

#include "base/notice.h"
#include "grab/plugin_log.h"
#include "grab/services.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

namespace kxhost {
namespace {

constexpr double kUsPerSecond = 1e6;

/// Time of day for people, "2024-05-01 13:59:07".
std::string timeOfDay()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
    return text.data();
}

/// "3.2 s"
std::string seconds(double value)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f s", value);
    return text.data();
}

std::string text(const FrameShape& shape)
{
    return std::to_string(shape.width) + " x " + std::to_string(shape.height) + " " + shape.codec;
}

/// How long there may be no frame, in microseconds: never less than a few slow frames take.
std::uint64_t silenceUs(const HostServices& host)
{
    constexpr double kFrames = 3;
    const Settings& settings = host.settings;
    if (settings.silenceSeconds < 0) {
        return 0;
    }
    const double exposureUs = settings.exposureMode == kSweepManual ? settings.exposureUs : 0;
    const double frameUs = std::max<double>(host.counts.framePeriodUs, exposureUs);
    return static_cast<std::uint64_t>(
        std::max(settings.silenceSeconds * kUsPerSecond, kFrames * frameUs));
}

/// A computed table is no part of the configuration. It is computed again from the first picture,
/// unless the configuration has a table of its own.
void askForTable(HostServices& host)
{
    if (host.computedTable != kNoSignal && host.settings.lutMode == kSweepKeep) {
        host.signals.post(host.computedTable);
    }
}

void isBack(HostServices& host, const FrameShape& shape, double secondsAway)
{
    const std::optional<FrameShape>& before = host.absence.shape;
    if (before && *before != shape) {
        host.absence.unfit = nameOfCamera(host) + " came back with frames of " + text(shape) +
                             " instead of " + text(*before) + ".";
        logErrorsOnly(host);
        throw CameraLost(host.absence.unfit);
    }
    host.absence.isAway = false;
    host.counts.away = false;
    // A camera that went again before its first exported frame has been away for all of the time.
    host.absence.secondsBefore =
        host.absence.secondsBefore.value_or(0) + static_cast<float>(secondsAway);
    complain(timeOfDay() + " " + nameOfCamera(host) + " is back after " + seconds(secondsAway) +
             ": the grab goes on with frame " + std::to_string(host.counts.exported + 1) + ".");
    askForTable(host);
}

} // namespace

std::string nameOfCamera(const HostServices& host)
{
    return cameraName(host.choice.value_or(choiceOf(host.settings)));
}

void cameraLost(HostServices& host, const std::string& why)
{
    if (host.absence.isAway) {
        return;
    }
    host.absence.isAway = true;
    host.counts.away = true;
    host.fates.cameraLost();
    complain(timeOfDay() + " " + nameOfCamera(host) + " is lost: " + why +
             ". The grab waits until it is back.");
}

void captureDelivers(HostServices& host, std::uint32_t width, std::uint32_t height)
{
    const FrameShape shape{width, height, host.scenario.read().codec.value_or("")};
    if (host.absence.isAway) {
        const std::uint64_t awayUs = steadyUs() - host.counts.lastUs;
        isBack(host, shape, static_cast<double>(awayUs) / kUsPerSecond);
    }
    if (!host.formatBeforePass) {
        host.absence.shape = shape;
    }
}

std::string whyLost(HostServices& host, bool answers)
{
    const std::uint64_t now = steadyUs();
    switch (host.watch.frameMissing(now, answers, silenceUs(host))) {
    case CameraWatch::Finding::kGone:
        return "it does not answer any more";
    case CameraWatch::Finding::kSilent:
        return "it has delivered no frame for " +
               seconds(static_cast<double>(host.watch.silentUs(now)) / kUsPerSecond);
    default:
        return {};
    }
}

void endWidePass(HostServices& host)
{
    if (host.formatBeforePass) {
        host.settings.pixelFormat = *host.formatBeforePass;
        host.formatBeforePass.reset();
        host.computedTable = kLut12;
    }
}

} // namespace kxhost
