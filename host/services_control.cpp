// Host services: control of the grab, signals, frame presence and small utilities.
#include "service_exports.h"
#include "services.h"

#include <cstddef>
#include <numeric>

using kxhost::services;

namespace {

/// Failed retrievals in a row after which a grab that was asked to finish is not waited for.
constexpr unsigned kMissingUntilThrow = 2;

} // namespace

/// There is nothing to read anew: the configuration of a run is settled before it starts.
int KxGi__DoReconfig(int*)
{
    return 1;
}

int KxGi__CheckDynConfig()
{
    return 0;
}

// No configuration is waiting that could take over from the one in use.
void KxGi__SetNewCfgVendor() {}
void KxGi__SetNewCfgPlugin() {}

void KxGi__SetSignalAction(int)
{
    services().termination.acknowledge();
}

void KxGi__ResetTermSigProc()
{
    kxhost::HostServices& host = services();
    host.signalsKept = true;
    host.firstFrame = true;
    host.missingInRow = 0;
    host.lastCounter.reset();
}

void KxGi__SetTermSigProc()
{
    services().signalsKept = false;
    services().counts.capturing = false;
}

void KxGi__SetCurrFpsUs(uint32_t periodUs)
{
    services().counts.framePeriodUs = periodUs;
}

void KxGi__HaltStop(int, int, float)
{
    kxhost::HostServices& host = services();
    const std::uint64_t now = kxhost::steadyUs();
    if (host.counts.retrieved++ == 0) {
        host.counts.firstUs = now;
    }
    host.counts.lastUs = now;
    if (host.firstFrame) {
        host.firstFrame = false;
        ++host.counts.timing;
    }
    host.missingInRow = 0;
}

/// The loop acts on signals after a frame only. When none comes, an exception ends it instead.
void KxGi__HaltUpdate(int, float)
{
    kxhost::HostServices& host = services();
    ++host.counts.missing;
    if (host.termination.pending() == 0 || ++host.missingInRow < kMissingUntilThrow) {
        return;
    }
    throw kxhost::NoFrameToStopAt();
}

/// This host has no other grabbers to trigger.
void KxGi__CommTriggerAll(uint64_t, uint32_t, int32_t) {}

/// No dynamic look-up table is configured: there is nothing to add up.
void KxGi__CalcLutDynam(const void*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t*) {}

/// No dynamic look-up table is configured: the table that changes nothing.
void KxGi__GetLutDynam(uint32_t outputBits, const uint32_t*, uint32_t, uint16_t* lut)
{
    std::iota(lut, lut + (std::size_t{1} << outputBits), uint16_t{0});
}

/// A code stays until it has been acted on: the loop forgets what it polled before a retrieval
/// that fails.
int KxUtl__CheckSignal()
{
    return services().signalsKept ? services().termination.pending() : 0;
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
