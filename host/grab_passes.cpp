// The passes of a grab: calls the plug-in until the grab is over, and says how it ended.
#include "grab_passes.h"

#include "config_takeover.h"
#include "services.h"

#include <chrono>
#include <utility>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Exit codes of the plug-in (a pass that ended without camera is worth a repetition).
constexpr int kPassFine = 0;
constexpr int kPassReconfigurationRefused = 1;
constexpr int kPassNoCamera = 2;
constexpr int kPassNotOurCamera = 3;
constexpr int kPassSetUpFailed = -1;
constexpr int kPassConfiguration = -2;
constexpr int kPassNoPower = -5;
constexpr int kPassLost = -10;

/// Time between two looks for a camera.
constexpr auto kLookAgain = 500ms;

/// Whether a pass with this result is followed by one with another configuration.
bool goesOnReconfigured(HostServices& host, int code)
{
    const bool startAgain = std::exchange(host.startAgain, false);
    if (host.signals.finishAsked()) {
        return false;
    }
    const bool refused = code == kPassConfiguration || code == kPassSetUpFailed;
    return (startAgain && code == kPassFine) || (refused && fallBack(host));
}

/// How long to wait for a camera, counted from the last pass that had one.
class Patience {
public:
    explicit Patience(double seconds) : seconds_(seconds) {}
    void renew() { start_ = Clock::now(); }
    bool isOver() const
    {
        const std::chrono::duration<double> waited = Clock::now() - start_;
        return seconds_ >= 0 && waited.count() >= seconds_;
    }

private:
    double seconds_; ///< negative = without end
    Clock::time_point start_ = Clock::now();
};

} // namespace

GrabResult runPasses(const Plugin& plugin)
{
    HostServices& host = services();
    Patience patience(host.settings.waitSeconds);
    while (true) {
        host.scenario = {}; // what was published lay in the memory of the session before
        ++host.counts.passes;
        const int code = plugin.run();
        if (goesOnReconfigured(host, code)) {
            patience.renew();
            continue;
        }
        GrabResult result = describePass(code, host.signals.finishAsked());
        if (result.exitCode == kExitNoCamera && !patience.isOver()) {
            host.signals.sleep(kLookAgain);
            if (!host.signals.finishAsked()) {
                continue;
            }
            result = describePass(code, true);
        }
        return result;
    }
}

GrabResult describePass(int code, bool asked)
{
    constexpr const char* kAskedWhileWaiting =
        "Finished as asked by a signal, before a camera came.";
    switch (code) {
    case kPassFine:
        return {kExitFine, asked ? "Finished as asked by a signal." : "Finished."};
    case kPassReconfigurationRefused:
        return {kExitConfiguration, "The new configuration was refused."};
    case kPassNoCamera:
        if (asked) {
            return {kExitFine, kAskedWhileWaiting};
        }
        return {kExitNoCamera, "There is no camera on the buses."};
    case kPassNotOurCamera:
        if (asked) {
            return {kExitFine, kAskedWhileWaiting};
        }
        return {kExitNoCamera,
                "None of the cameras on the buses is the configured one, or it is in use."};
    case kPassSetUpFailed:
        return {kExitCamera, "The camera could not be reached again, or refused the frame buffers.",
                0};
    case kPassConfiguration:
        return {kExitCamera, "The camera refused its configuration."};
    case kPassNoPower:
        return {kExitCamera, "The camera could not be powered up."};
    case kPassLost:
        if (asked) {
            return {kExitFine, "Finished as asked by a signal, while no frame arrived."};
        }
        return {kExitCamera, "The camera was lost or delivered no more frames."};
    default:
        return {kExitCamera, "The plug-in ended with code " + std::to_string(code) + "."};
    }
}

} // namespace kxhost
