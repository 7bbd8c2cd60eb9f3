// Appliers of the automatic functions: their target and limits, and who controls gain and exposure.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_proc.h"

#define KX_LOG_TAG "KX_PG_PROC"

namespace KxPGrey {

namespace {

/// Lets the camera or the configuration control a property. The camera is asked only for a change,
/// and never again when it refused.
void switchMode(CExCam& cam, FlyCapture2::PropertyType property, std::uint32_t mode,
                std::uint32_t& applied)
{
    if (mode == applied) {
        return;
    }
    if (mode == kSweepAutomatic) {
        cam.ExPropertySetAutoCont(property);
        applied = mode;
    } else if (mode == kSweepManual) {
        cam.ExPropertySetAutoOff(property);
        applied = mode;
    }
}

} // namespace

void CCamProc::ProcParametrizeCamAutoFuncParams(CExCam* cam)
{
    constexpr float kKeptBrightness = -1.0F;
    constexpr float kKeptGain = -100.0F;
    constexpr float kKeptExposure = -1.0F;
    const float brightness = KxGiMainCtx__GetAtbright();
    const float gainLow = KxGiMainCtx__GetGainlimsLow();
    const float gainHigh = KxGiMainCtx__GetGainlimsHigh();
    const float exposureLow = KxGiMainCtx__GetEtlimsLow();
    const float exposureHigh = KxGiMainCtx__GetEtlimsHigh();
    KX_LOG_I("AutoFunc params handler entry vals: bright %f, glims [%f, %f], etlims [%f, %f]\n",
             static_cast<double>(brightness), static_cast<double>(gainLow),
             static_cast<double>(gainHigh), static_cast<double>(exposureLow),
             static_cast<double>(exposureHigh));
    if (brightness == kKeptBrightness) {
        KX_LOG_I("  skipped for \"Brightness\"\n");
    } else {
        cam->ExSetAutoExpoVal(brightness);
    }
    if (gainLow == kKeptGain) {
        KX_LOG_I("  skipped for \"GainLimits\"\n");
    } else {
        cam->ExPropertySetAutoRangeGain(gainLow, gainHigh);
    }
    if (exposureLow == kKeptExposure) {
        KX_LOG_I("  skipped for \"ExpTimeLimits\"\n");
    } else {
        cam->ExPropertySetAutoRangeExpo(exposureLow, exposureHigh);
    }
}

void CCamProc::ProcParametrizeCamAutoFunc(CExCam* cam, std::uint32_t profile,
                                          std::uint32_t gainMode, std::uint32_t expoMode)
{
    constexpr std::uint32_t kAutoExposureOn = 1;
    KX_LOG_I("AutoFunc settings handler entry vals: prof %u, gainm %u, etimem %u\n", profile,
             gainMode, expoMode);
    if (profile == kSweepKept) {
        KX_LOG_I("  skipped for \"Profile\"\n");
    }
    if (gainMode == kSweepKept) {
        KX_LOG_I("  skipped for \"GainMode\"\n");
    }
    if (expoMode == kSweepKept) {
        KX_LOG_I("  skipped for \"ExpTimeMode\"\n");
    }
    if (profile == kAutoExposureOn) {
        cam->ExSetAutoExpoEna(true);
    }
    switchMode(*cam, FlyCapture2::GAIN, gainMode, gainModeApplied);
    switchMode(*cam, FlyCapture2::SHUTTER, expoMode, expoModeApplied);
}

} // namespace KxPGrey
