// Signals between two frames: what the host has for us, and what is done about it.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_proc.h"
#include "kx_pg_time_difference.h"

#include <utility>

#include <sys/time.h>

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::PGRERROR_OK;

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "ProcSignal";

/// Format codes of the host's.
constexpr int kMono8 = 1;
constexpr int kMono12Packed = 2;

/// What becomes of the grab.
struct Outcome {
    bool stop = false;
    int exitCode = 0;
};

/// Measures how long something took, in microseconds; whole seconds do not count.
class Stopwatch {
public:
    Stopwatch() { gettimeofday(&begin_, nullptr); }
    unsigned int spentUs() const
    {
        timeval now = {};
        gettimeofday(&now, nullptr);
        return differenceUs(now, begin_);
    }

private:
    timeval begin_ = {};
};

Outcome finish(CCamProc& proc, CExCam& cam, std::uint32_t code, unsigned int captured)
{
    KX_LOG_I("Grabbed %u images, finishing with signal...\n", captured);
    static_cast<void>(cam.StopCapture());
    KxGi__SetNewCfgVendor();
    KxGi__SetNewCfgPlugin();
    KxGi__SetSignalAction(static_cast<int>(code));
    // A 12-bit pass that is under way, or stuck, would start the loop again.
    proc.dynLutState = kDynLutIdle;
    proc.dynLutMode = kDynLutPlain;
    return {true};
}

Outcome reconfigure(CCamProc& proc, CExCam& cam, unsigned int captured)
{
    KX_LOG_I("Grabbed %u images, reconfiguration...\n", captured);
    const Stopwatch watch;
    int restartNeeded = 0;
    const int refused = KxGi__DoReconfig(&restartNeeded);
    if (refused == 0 && restartNeeded == 0) {
        restartNeeded = proc.ProcParametrizeCam(&cam, false);
    }
    const unsigned int spentUs = watch.spentUs();
    KX_LOG_I("done, spent %uus\n", spentUs);
    if (restartNeeded != 0) {
        KX_LOG_I("can't continue grabbing with new configuration, exiting...\n");
        static_cast<void>(cam.StopCapture());
        KxGi__SetSignalAction(kSigReconfigure);
        return {true, refused < 0 ? 1 : 0};
    }
    if (refused == 0) {
        KxGi__SetNewCfgVendor();
        KxGi__SetNewCfgPlugin();
        KX_LOG_I("continue grabbing with new configuration...\n");
    }
    return {};
}

void reconfigureLive(CCamProc& proc, CExCam& cam, unsigned int captured)
{
    KX_LOG_I("Grabbed %u images, dynamic reconfiguration...\n", captured);
    const Stopwatch watch;
    static_cast<void>(proc.ProcParametrizeCam(&cam, true));
    const unsigned int spentUs = watch.spentUs();
    KX_LOG_I("...done, spent %uus\n", spentUs);
}

/// The frames of the 12-bit pass have to come as the sensor sees them.
void switchLutOff(CExCam& cam)
{
    FlyCapture2::LUTData state = {};
    const FlyCapture2::Error error = cam.GetLUTInfo(&state);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "can't do GetLUTInfo: error - %s\n", error.GetDescription());
    } else if (state.supported && state.enabled) {
        static_cast<void>(cam.EnableLUT(false));
    }
}

/// Ends the loop, so that the next one grabs 12-bit frames.
Outcome enterWide(CCamProc& proc, CExCam& cam)
{
    static_cast<void>(cam.StopCapture());
    switchLutOff(cam);
    KxGiMainCtx__SetFormat(kMono12Packed);
    proc.dynLutState = kDynLutStart;
    proc.dynLutMode = kDynLutWideAsked;
    KX_LOG_I("...Switching to 12-bit mode for dynamic LUT calculation/applying...\n");
    return {true};
}

/// Ends the loop, so that the next one grabs 8-bit frames again.
Outcome leaveWide(CExCam& cam)
{
    KxGiMainCtx__SetFormat(kMono8);
    static_cast<void>(cam.StopCapture());
    KX_LOG_I("...Switching back to 8-bit mode...\n");
    return {true};
}

Outcome calculateWide(CCamProc& proc, CExCam& cam, unsigned int captured)
{
    constexpr unsigned char kByte = 8;
    KX_LOG_I("Grabbed %u images, processing SIGUSR2...\n", captured);
    switch (proc.dynLutMode) {
    case kDynLutWideDone:
        return leaveWide(cam);
    case kDynLutPlain:
        if (proc.dataBits == kByte) {
            return enterWide(proc, cam);
        }
        // Wide as they are.
        proc.dynLutState = kDynLutStart;
        return {};
    default:
        return {};
    }
}

} // namespace

bool isFinishing(std::uint32_t code)
{
    return code == kSigFinish || code == kSigFinishToo;
}

void CCamProc::ProcLookSignal()
{
    pendingSig = static_cast<std::uint32_t>(KxUtl__CheckSignal());
}

int CCamProc::ProcSignalUsr(unsigned int captured)
{
    if (pendingSig == kSigUser1) {
        pendingSig = 0;
        KX_LOG_I("Grabbed %u images, processing SIGUSR1...\n", captured);
        dynLutState = kDynLutStart;
    }
    return 0;
}

int CCamProc::ProcSignal(CExCam* cam, unsigned int captured, bool* stop)
{
    if (pendingSig == 0) {
        if (dynLutState == kDynLutIdle && dynLutMode == kDynLutPlain &&
            KxGi__CheckDynConfig() != 0) {
            reconfigureLive(*this, *cam, captured);
        }
        return 0;
    }
    const std::uint32_t code = std::exchange(pendingSig, 0);
    Outcome outcome;
    switch (code) {
    case kSigFinish:
    case kSigFinishToo:
        outcome = finish(*this, *cam, code, captured);
        break;
    case kSigReconfigure:
        outcome = reconfigure(*this, *cam, captured);
        break;
    case kSigUser2:
        outcome = calculateWide(*this, *cam, captured);
        break;
    default:
        // It means nothing here and stays until the next look replaces it.
        pendingSig = code;
        break;
    }
    if (stop != nullptr) {
        *stop = outcome.stop;
    }
    return outcome.exitCode;
}

} // namespace KxPGrey
