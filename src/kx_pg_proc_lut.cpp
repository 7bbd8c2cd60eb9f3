// The camera's look-up table: loaded from the configuration or from what was calculated.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_lut.h"
#include "kx_pg_proc.h"
#include "kx_pg_time_difference.h"

#include <sys/time.h>

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::Error;
using FlyCapture2::LUTData;
using FlyCapture2::PGRERROR_OK;

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "ProcParametrizeCamManLUT";

/// Whether the camera has a table; `state` says which.
bool readState(CExCam& cam, LUTData& state)
{
    const Error error = cam.GetLUTInfo(&state);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "can't do GetLUTInfo: error - %s\n", error.GetDescription());
        return false;
    }
    if (!state.supported) {
        KX_LOG_W_AS(kCaller, "LUT is not supported for this device\n");
        return false;
    }
    KX_LOG_I("  current LUT state: ena %u, banks %u, chans %u, entries %u\n",
             static_cast<unsigned int>(state.enabled), state.numBanks, state.numChannels,
             state.numEntries);
    return true;
}

void switchOff(CExCam& cam)
{
    const Error error = cam.EnableLUT(false);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "can't disable LUT follow configuration: error - %s\n",
                    error.GetDescription());
    }
    KX_LOG_I("  LUT is disabled due to configuration\n");
}

/// Switches the table on and tells which bank is active; the other one is free to be written.
unsigned int switchOn(CExCam& cam)
{
    const Error error = cam.EnableLUT(true);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "can't enable LUT: error - %s\n", error.GetDescription());
    }
    unsigned int bank = 0;
    static_cast<void>(cam.GetActiveLUTBank(&bank));
    KX_LOG_I("  LUT active bank is %u\n", bank);
    return bank;
}

/// Loads `values` into the bank that is not active, and then makes it the active one: no frame sees
/// a half-written table. Returns whether all of it worked.
bool load(CExCam& cam, const LutValues& values, unsigned int channels)
{
    const unsigned int bank = switchOn(cam) ^ 1U;
    for (unsigned int channel = 0; channel < channels; ++channel) {
        const Error error =
            cam.SetLUTChannel(bank, channel, static_cast<unsigned int>(kLutEntries), values.data());
        if (error != PGRERROR_OK) {
            KX_LOG_W_AS(kCaller, "can't do SetLUTChannel: error - %s\n", error.GetDescription());
            return false;
        }
    }
    const Error error = cam.SetActiveLUTBank(bank);
    if (error != PGRERROR_OK) {
        // The text says bank 0 whichever it was; hosts look for it.
        KX_LOG_W_AS(kCaller, "can't do SetActiveLUTBank(0): error - %s\n", error.GetDescription());
        return false;
    }
    return true;
}

/// What the camera gets of `source`: resampled when it was calculated, else scaled.
void convert(const CCamProc& proc, const std::uint16_t* source, bool dynamic, LutValues& values)
{
    if (dynamic) {
        resampleLut({source, proc.lutEntries}, values);
    } else {
        scaleLut(std::span<const std::uint16_t, kLutEntries>(source, kLutEntries),
                 KxGiMainCtx__GetLutBitSize(), values);
    }
}

/// Converts and loads a table that is there; `state` is the camera's.
void apply(CCamProc& proc, CExCam& cam, const std::uint16_t* source, bool dynamic,
           const LUTData& state)
{
    constexpr unsigned char kTwelveBits = 12;
    if (proc.dataBits == kTwelveBits && !proc.isColor) {
        KX_LOG_W_AS(kCaller, "LUT is not supported for 12 bit pixel format\n");
        return;
    }
    timeval begin = {};
    gettimeofday(&begin, nullptr);
    constexpr unsigned int kShown = 10;
    KX_LOG_I("  check LUT value[%u] = %u\n", kShown, static_cast<unsigned int>(source[kShown]));
    constexpr unsigned int kCount = kLutEntries;
    if (state.numEntries != kCount) {
        KX_LOG_W_AS(kCaller, "  LUT type is not supported by this handler\n");
        return;
    }
    LutValues values;
    convert(proc, source, dynamic, values);
    // Even if the camera refuses it: the same table is not offered again.
    proc.lastLutData = source;
    if (load(cam, values, proc.isColor ? 3 : 1)) {
        timeval end = {};
        gettimeofday(&end, nullptr);
        const unsigned int spentUs = differenceUs(end, begin);
        KX_LOG_I("LUT handler exit (nValues = %u, nCfgVals = %u, time = %uus)\n", kCount, kCount,
                 spentUs);
    }
}

} // namespace

void CCamProc::ProcParametrizeCamManLUT(CExCam* cam, bool dynamic)
{
    const std::uint16_t* const source = dynamic ? lutArray.get() : KxGiMainCtx__GetLutDataU16();
    KX_LOG_I("LUT settings handler entry LUT arr %p\n", static_cast<const void*>(source));
    if (!dynamic && dynLutState != 0) {
        KX_LOG_I("  LUT configuration from file is skipped (dynamic mode is active)\n");
        return;
    }
    // The host hands over another buffer when its table changes, so the address tells.
    if (source == nullptr) {
        lastLutData = nullptr;
    } else if (source == lastLutData) {
        KX_LOG_I("  LUT configuration is skipped: no data change is detected\n");
        return;
    }
    LUTData state = {};
    if (!readState(*cam, state)) {
        return;
    }
    if (source != nullptr) {
        apply(*this, *cam, source, dynamic, state);
    } else if (state.enabled) {
        switchOff(*cam);
    }
}

} // namespace KxPGrey
