// The passes of a grab: calls the plug-in until the grab is over, and says how it ended.
#include "grab/grab_passes.h"

#include "base/notice.h"
#include "config/quantity.h"
#include "grab/camera_absence.h"
#include "grab/config_takeover.h"
#include "grab/inventory_pass.h"
#include "grab/reconnection.h"
#include "grab/services.h"

#include <chrono>
#include <string>
#include <system_error>
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
/// Ours: an exception came out of the plug-in.
constexpr int kPassThrew = -1000;

/// Time between two looks for a camera.
constexpr auto kLookAgain = 500ms;

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

PassEnd endOf(int code)
{
    switch (code) {
    case kPassFine:
    case kPassReconfigurationRefused:
        return PassEnd::kDone;
    case kPassNoCamera:
    case kPassNotOurCamera:
        return PassEnd::kAbsent;
    case kPassSetUpFailed:
    case kPassConfiguration:
    case kPassThrew:
        return PassEnd::kRefused;
    default:
        return PassEnd::kBroken;
    }
}

/// How it shows that the camera is lost, as the end of a sentence.
std::string signOfLoss(int code, const std::string& found)
{
    switch (code) {
    case kPassNoCamera:
    case kPassNotOurCamera:
        return "it is not on the bus";
    case kPassSetUpFailed:
    case kPassConfiguration:
        return "it could not be set up again";
    case kPassNoPower:
        return "it could not be powered up again";
    default:
        return found.empty() ? "the camera library gave it up" : found;
    }
}

/// All passes of one grab.
class Passes {
public:
    explicit Passes(const Plugin& plugin) : plugin_(plugin) {}

    GrabResult run()
    {
        while (true) {
            const int code = pass();
            if (goesOnReconfigured(code)) {
                patience_.renew();
            } else if (std::optional<GrabResult> end = endOrWait(code)) {
                return *end;
            }
        }
    }

private:
    int pass()
    {
        host_.absence.why.clear();
        ++host_.counts.passes;
        const int code = runPlugin();
        if (host_.choice && host_.choice->model == kNoSuchModel) {
            host_.choice.reset(); // it is the name of none
        }
        endWidePass(host_);
        return code;
    }

    /// Ends what the plug-in may have left open: what is no std::exception passes through its loop
    /// without a word.
    class CaptureEnd {
    public:
        explicit CaptureEnd(HostServices& host) : host_(host) {}
        ~CaptureEnd() { endCapture(host_); }
        CaptureEnd(const CaptureEnd&) = delete;
        CaptureEnd& operator=(const CaptureEnd&) = delete;

    private:
        HostServices& host_;
    };

    /// Outside of its loop the plug-in lets the camera library's exceptions pass. Once frames have
    /// come they mean that the camera is lost, but for those that come when nothing is left to do.
    int runPlugin()
    {
        const CaptureEnd end(host_);
        try {
            if (reconnection_.isOn() && host_.counts.retrieved == 0) {
                identify();
            }
            host_.scenario = {}; // what was published lay in the memory of the session before
            return plugin_.run();
        } catch (const PluginThrew& error) {
            threw_ = error.what();
            host_.absence.why = "the camera library gave it up: " + error.thrown();
        }
        return isDone() ? kPassFine : kPassThrew;
    }

    /// Whether all frames have come that were wanted, or the end is asked for.
    bool isDone() const
    {
        const std::uint64_t wanted = host_.settings.frames;
        const bool isEnough = wanted != 0 && host_.counts.retrieved - host_.counts.timing >= wanted;
        return isEnough || host_.signals.finishAsked();
    }

    /// A camera that is lost is waited for, and no other one is to be taken instead. So it must be
    /// known which one it is: while none tells who it is, none is taken. Until frames have come,
    /// any that is configured will do.
    void identify()
    {
        host_.choice.reset();
        const CameraChoice choice = choiceOf(host_.settings);
        if (isOneCamera(choice)) {
            return;
        }
        try {
            host_.choice = lookFor(choice).value_or(CameraChoice{kNoSuchModel, "", 0});
        } catch (const std::system_error& error) {
            // The grab is worth more than the knowledge, but what is unknown cannot be waited for.
            reconnection_ = Reconnection(0);
            complain(std::string(error.what()) +
                     ": a camera that is lost will not be waited for; camera.serial names one.");
        }
    }

    /// A camera may fail to answer once. Without time to wait there is no later look at it, so this
    /// one is repeated.
    std::optional<CameraChoice> lookFor(const CameraChoice& choice) const
    {
        const auto found = narrowed(choice, takeInventory(plugin_));
        return found || host_.settings.waitSeconds != 0 ? found
                                                        : narrowed(choice, takeInventory(plugin_));
    }

    /// Whether the pass is followed by one with another configuration. Where a camera may be lost,
    /// a refusal is taken for one when the camera repeats it.
    bool goesOnReconfigured(int code)
    {
        const bool startAgain = std::exchange(host_.startAgain, false);
        if (host_.signals.finishAsked()) {
            return false;
        }
        if (startAgain && code == kPassFine) {
            return true;
        }
        const bool isRepeated = std::exchange(isRefused_, endOf(code) == PassEnd::kRefused);
        if (!isRefused_ || host_.before == nullptr) {
            return false;
        }
        return (reconnection_.isOn() && !isRepeated) || fallBack(host_);
    }

    /// How the grab ends; nothing = it goes on, and the time until the next look is over.
    std::optional<GrabResult> endOrWait(int code)
    {
        const bool asked = host_.signals.finishAsked();
        const std::uint64_t lastFrameUs = host_.counts.lastUs;
        const auto verdict = reconnection_.passEnded(endOf(code), lastFrameUs, steadyUs());
        if (asked || verdict == Reconnection::Verdict::kOff) {
            return endOrWaitForFirst(code, asked);
        }
        if (!host_.absence.unfit.empty()) {
            return GrabResult{kExitCamera, host_.absence.unfit};
        }
        cameraLost(host_, signOfLoss(code, host_.absence.why));
        if (verdict == Reconnection::Verdict::kTooLate) {
            return GrabResult{
                kExitCamera,
                nameOfCamera(host_) + " was lost and did not come back within " +
                    formatQuantity(host_.settings.reconnectSeconds, Dimension::kSeconds) + "."};
        }
        if (verdict == Reconnection::Verdict::kRefused) {
            return GrabResult{kExitCamera,
                              nameOfCamera(host_) + " came back, but refused its configuration."};
        }
        host_.signals.sleep(reconnection_.pause(steadyUs()));
        return host_.signals.finishAsked() ? std::optional(askedWhileAway()) : std::nullopt;
    }

    /// The same where a lost camera is not waited for. One that has delivered frames is not waited
    /// for as one that has yet to come, either.
    std::optional<GrabResult> endOrWaitForFirst(int code, bool asked)
    {
        const bool isGone = endOf(code) == PassEnd::kAbsent && host_.counts.retrieved != 0;
        if (asked && (host_.absence.isAway || isGone)) {
            return askedWhileAway();
        }
        if (isGone) {
            return GrabResult{kExitCamera,
                              "The camera was lost: " + signOfLoss(code, host_.absence.why) + "."};
        }
        GrabResult result = describePass(code, asked);
        if (code == kPassThrew && host_.counts.retrieved == 0) {
            result.reason = threw_;
        } else if ((code == kPassLost || code == kPassThrew) && !asked &&
                   !host_.absence.why.empty()) {
            result.reason = "The camera was lost: " + host_.absence.why + ".";
        }
        if (result.exitCode == kExitNoCamera && !patience_.isOver()) {
            host_.signals.sleep(kLookAgain);
            if (!host_.signals.finishAsked()) {
                return std::nullopt;
            }
            result = describePass(code, true);
        }
        return result;
    }

    static GrabResult askedWhileAway()
    {
        return {kExitFine, "Finished as asked by a signal, while the camera was away."};
    }

    const Plugin& plugin_;
    HostServices& host_ = services();
    Patience patience_{host_.settings.waitSeconds};
    Reconnection reconnection_{host_.settings.reconnectSeconds};
    bool isRefused_ = false; ///< the last pass could not set the camera up
    std::string threw_;      ///< the last exception that came out of a pass, as a sentence
};

} // namespace

GrabResult runPasses(const Plugin& plugin)
{
    return Passes(plugin).run();
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
