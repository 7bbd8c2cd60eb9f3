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

/// Sweep mode in which the host's configuration holds the value.
constexpr int kManual = 1;

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
        // Frame rate and rotation join here.
    }
    // The parameters that a running capture takes join here: saturation and white balance (colour
    // only), the automatic functions by the host's sweep modes, manual gain and exposure.
    if (KxGiMainCtx__GetSweepLutMod() == kManual) {
        ProcParametrizeCamManLUT(cam, false);
    }
    // Gamma and the output lines join here.
    if (!dynamic) {
        refreshRate(*this, *cam);
        refreshGeometry(*this, *cam);
        refreshTimestampMode(*this);
    }
    return 0;
}

} // namespace KxPGrey
