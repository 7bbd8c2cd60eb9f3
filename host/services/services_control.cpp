// Host services: control of the grab, signals, frame presence and small utilities.
#include "base/notice.h"
#include "config/config_change.h"
#include "grab/config_takeover.h"
#include "grab/plugin_log.h"
#include "grab/services.h"
#include "services/service_exports.h"

#include <sys/time.h>

using kxhost::services;

namespace {

/// Failed retrievals in a row after which a grab that was asked to finish is not waited for.
constexpr unsigned kMissingUntilThrow = 2;

/// A camera that did not tell its temperature has one below this.
bool isTemperature(float celsius)
{
    constexpr float kAbsoluteZero = -273.15F;
    return celsius >= kAbsoluteZero;
}

/// Results of a reconfiguration.
constexpr int kInForce = 0;
constexpr int kRefused = 1;

} // namespace

/// What the signal made the main thread read is taken over here. Without it (the file had an error,
/// of which the user was told) the old configuration stays.
int KxGi__DoReconfig(int* restart)
{
    kxhost::HostServices& host = services();
    // First: a signal that comes from now on has seen a newer file.
    host.signals.acted(kxhost::kReload);
    bool startAgain = false;
    if (!kxhost::takeReload(host, startAgain)) {
        return kRefused;
    }
    if (startAgain) {
        *restart = 1;
    }
    return kInForce;
}

/// A reload that waits is older than what is offered live, so it comes first.
int KxGi__CheckDynConfig()
{
    kxhost::HostServices& host = services();
    return host.signals.pollOutside() == kxhost::kNoSignal && kxhost::takeLive(host) ? 1 : 0;
}

// No configuration is waiting that could take over from the one in use.
void KxGi__SetNewCfgVendor() {}
void KxGi__SetNewCfgPlugin() {}

void KxGi__SetSignalAction(int action)
{
    kxhost::HostServices& host = services();
    if (action != kxhost::kReload) {
        host.signals.acted(action);
        return;
    }
    host.startAgain = true;
    if (host.before != nullptr && !kxhost::needsRestart(*host.before, host.settings)) {
        kxhost::complain("The camera cannot go on with it: the grab ends and starts again.");
    }
}

void KxGi__ResetTermSigProc()
{
    kxhost::HostServices& host = services();
    kxhost::settleReload(host);
    host.startAgain = false;
    host.signalsKept = true;
    host.firstFrame = true;
    host.missingInRow = 0;
    if (host.fates.cameraWasLost()) {
        host.history.taken(kxhost::ChangeKind::kAgain, {}, kxhost::wallUs());
    }
    host.history.captureStarted();
    host.fates.captureStarted();
    host.watch.start(kxhost::steadyUs());
}

void KxGi__SetTermSigProc()
{
    kxhost::endCapture(services());
}

void KxGi__SetCurrFpsUs(uint32_t periodUs)
{
    services().counts.framePeriodUs = periodUs;
}

void KxGi__HaltStop(int width, int height, float celsius)
{
    kxhost::HostServices& host = services();
    const std::uint64_t now = host.arrivedSteadyUs = kxhost::steadyUs();
    host.arrivedUs = kxhost::wallUs();
    host.watch.frameArrived(now, isTemperature(celsius));
    if (host.firstFrame) {
        kxhost::captureDelivers(host, static_cast<uint32_t>(width), static_cast<uint32_t>(height));
    }
    if (host.counts.retrieved++ == 0) {
        host.counts.firstUs = now;
    }
    host.counts.lastUs = now;
    if (host.clock != nullptr) {
        host.clock->arrived(host.arrivedUs, now);
    }
    if (host.firstFrame) {
        host.firstFrame = false;
        ++host.counts.timing;
    }
    host.missingInRow = 0;
    host.fates.frameArrived();
    host.history.retrievalEnded(kxhost::wallUs());
    host.signals.frameArrived();
}

/// The loop acts on signals after a frame only. When none comes, an exception ends it instead, as
/// it does when the camera has to be taken for lost.
void KxGi__HaltUpdate(int, float celsius)
{
    kxhost::HostServices& host = services();
    ++host.counts.missing;
    host.fates.retrievalFailed();
    host.history.retrievalEnded(kxhost::wallUs());
    host.signals.frameMissing();
    if (host.signals.finishPending() && ++host.missingInRow >= kMissingUntilThrow) {
        kxhost::logErrorsOnly(host);
        throw kxhost::NoFrameToStopAt();
    }
    host.absence.why = kxhost::whyLost(host, isTemperature(celsius));
    if (!host.absence.why.empty()) {
        kxhost::logErrorsOnly(host);
        throw kxhost::CameraLost(host.absence.why);
    }
}

/// This host has no other grabbers to trigger.
void KxGi__CommTriggerAll(uint64_t, uint32_t, int32_t) {}

/// pending_signals.h says how long a code stays. The loop's next look after a reconfiguration shows
/// that it goes on with it.
int KxUtl__CheckSignal()
{
    kxhost::HostServices& host = services();
    if (!host.signalsKept) {
        return host.signals.pollOutside();
    }
    kxhost::settleReload(host);
    return host.signals.pollInLoop();
}

struct timeval* KxUtl__TimeValDiff(const struct timeval* later, const struct timeval* earlier)
{
    thread_local timeval difference;
    timersub(later, earlier, &difference);
    return &difference;
}

void KxUtl__UpdateGrabState(int state)
{
    constexpr int kCapturing = 4;
    services().counts.capturing = state == kCapturing;
}
