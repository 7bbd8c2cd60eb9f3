// Configured parameters: applied before grabbing and again at each reconfiguration.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_format7.h"
#include "kx_pg_proc.h"
#include "kx_pg_proc_print.h"
#include "kx_pg_sizes.h"
#include "kx_scenario.h"

#define KX_LOG_TAG "KX_PG_PROC"

namespace KxPGrey {

namespace {

/// Who sets what, as the host has it at this pass.
struct Sweep {
    std::uint32_t profile;
    std::uint32_t gainMode;
    std::uint32_t expoMode;
    std::uint32_t lutMode;
};

Sweep readSweep()
{
    return {static_cast<std::uint32_t>(KxGiMainCtx__GetSweepProf()),
            static_cast<std::uint32_t>(KxGiMainCtx__GetSweepGainMod()),
            static_cast<std::uint32_t>(KxGiMainCtx__GetSweepEtimeMod()),
            static_cast<std::uint32_t>(KxGiMainCtx__GetSweepLutMod())};
}

/// What a running capture takes, too. The automatic functions let go before a manual value is set.
void applyLive(CCamProc& proc, CExCam& cam, bool dynamic)
{
    if (proc.isColor) {
        proc.ProcParametrizeCamSatur(&cam);
        proc.ProcParametrizeCamWB(&cam);
    }
    const Sweep sweep = readSweep();
    if (!dynamic && (sweep.gainMode == kSweepAutomatic || sweep.expoMode == kSweepAutomatic)) {
        proc.ProcParametrizeCamAutoFuncParams(&cam);
    }
    proc.ProcParametrizeCamAutoFunc(&cam, sweep.profile, sweep.gainMode, sweep.expoMode);
    if (sweep.gainMode == kSweepManual) {
        proc.ProcParametrizeCamManGain(&cam);
    }
    if (sweep.expoMode == kSweepManual) {
        proc.ProcParametrizeCamManExpo(&cam);
    }
    if (sweep.lutMode == kSweepManual) {
        proc.ProcParametrizeCamManLUT(&cam, false);
    }
    proc.ProcParametrizeCamGamma(&cam);
    proc.ProcParametrizeCamOutLines(&cam);
}

/// The camera's rate, as it is after all parameters are applied.
void refreshRate(CCamProc& proc, CExCam& cam)
{
    proc.resultingFps = cam.ExPropertyGetAbs(FlyCapture2::FRAME_RATE);
    proc.framePeriodUs = framePeriod(proc.resultingFps);
    KxGi__SetCurrFpsUs(proc.framePeriodUs);
}

void showNewSettings(const CCamProc& proc, CExCam& cam,
                     const FlyCapture2::Format7ImageSettings& settings)
{
    KX_LOG_I("~~ Camera Device New Settings ~~\n");
    KX_LOG_I("~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    printRegion(settings);
    printPicture(cam, proc.resultingFps, settings);
    KX_LOG_I("Stride              : %u\n", proc.stride);
    KX_LOG_I("Full frame size     : %u\n", proc.activeFrameSize);
    KX_LOG_I("~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

/// The geometry that the camera runs with, and what follows from it for the host.
void refreshGeometry(CCamProc& proc, CExCam& cam)
{
    const FlyCapture2::Format7ImageSettings settings = readFormat7State(cam).settings;
    proc.roiWidth = settings.width;
    proc.roiHeight = settings.height;
    proc.stride = lineStride(proc.bitsPerPixel, settings.width);
    proc.activeFrameSize = proc.stride * settings.height;
    showNewSettings(proc, cam, settings);
    KxSc__SetParamVal(kKxScWidth, &proc.roiWidth);
    KxSc__SetParamVal(kKxScHeight, &proc.roiHeight);
    KxGiMemInst__SetActFsize(0, proc.activeFrameSize);
}

void refreshTimestampMode(CCamProc& proc)
{
    proc.tsAdjNs = KxGiMainCtx__GetTsadjns();
    if (proc.tsAdjNs != 0) {
        KX_LOG_I("REFCAMTS mode - TS is obtained from cam (sync accuracy %g)\n",
                 proc.tsAdjNs * 1e-9);
    } else {
        KX_LOG_I("REGULAR mode - TS is obtained using box gettimeofday\n");
    }
}

} // namespace

int CCamProc::ProcParametrizeCam(CExCam* cam, bool dynamic)
{
    if (!cam->IsConnected()) {
        static_cast<void>(cam->Connect(nullptr));
        KX_LOG_I("Camera is connected\n");
    }
    if (!dynamic) {
        if (const int result = ProcCheckCfgCamAoi(cam); result != 0) {
            return result;
        }
        ProcParametrizeCamFps(cam);
        ProcParametrizeCamRotate(cam);
    }
    applyLive(*this, *cam, dynamic);
    if (!dynamic) {
        refreshRate(*this, *cam);
        refreshGeometry(*this, *cam);
        refreshTimestampMode(*this);
    }
    return 0;
}

} // namespace KxPGrey
