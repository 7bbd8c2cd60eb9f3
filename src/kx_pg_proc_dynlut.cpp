// The dynamic look-up table: calculated from a frame of the running grab, step by step.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_proc.h"

#include <cstddef>
#include <cstdlib>

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::PGRERROR_OK;

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "ProcDynamLut";

/// Where a step leads to, and whether the next one runs on the same frame.
struct Next {
    std::uint32_t state = kDynLutIdle;
    bool sameFrame = false;
};

/// A camera that has no table, or does not tell, is asked again at each frame.
Next start(CCamProc& proc, CExCam& cam)
{
    if (proc.dynLutMode == kDynLutWideAsked) {
        // They are needed for other numbers of bits.
        proc.freeDynLut();
    }
    FlyCapture2::LUTData state = {};
    const FlyCapture2::Error error = cam.GetLUTInfo(&state);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "can't do GetLUTInfo: error - %s\n", error.GetDescription());
        return {kDynLutStart};
    }
    if (!state.supported) {
        return {kDynLutStart};
    }
    if (!state.enabled) {
        KX_LOG_I("triggered dynamic LUT calc/apply right now\n");
        return {kDynLutCalculate, true};
    }
    static_cast<void>(cam.EnableLUT(false));
    KX_LOG_I("LUT is turned off temporary for new 'clear' frames capture\n");
    return {kDynLutCalculate};
}

/// An array of 2^`bits` entries, or nothing when there is no memory. They are 0, for hosts that
/// leave them as they are.
template <typename T>
std::unique_ptr<T, FreeBlock> allocate(unsigned int bits)
{
    return std::unique_ptr<T, FreeBlock>(
        static_cast<T*>(std::calloc(std::size_t{1} << bits, sizeof(T))));
}

/// Makes those arrays that are missing or too small for the pixel format. Returns whether both are
/// there.
bool provideArrays(CCamProc& proc)
{
    if (proc.cdfBits < proc.bitsPerPixel || proc.lutBits < proc.dataBits) {
        proc.freeDynLut();
    }
    if (!proc.cdfArray) {
        proc.cdfArray = allocate<std::uint32_t>(proc.bitsPerPixel);
        proc.cdfBits = proc.bitsPerPixel;
        if (proc.cdfArray) {
            KX_LOG_I("allocated CDF array for %u bits pixel\n",
                     static_cast<unsigned int>(proc.bitsPerPixel));
        }
    }
    if (!proc.lutArray) {
        proc.lutArray = allocate<std::uint16_t>(proc.dataBits);
        proc.lutBits = proc.dataBits;
        if (proc.lutArray) {
            KX_LOG_I("allocated LUT array for %u bits pixel\n",
                     static_cast<unsigned int>(proc.dataBits));
        }
    }
    return proc.cdfArray && proc.lutArray;
}

/// Ends the grab of 12-bit frames: the signal step of this frame goes back to 8 bits.
void leaveWide(CCamProc& proc, CExCam& cam)
{
    proc.dynLutMode = kDynLutWideDone;
    if (!isFinishing(proc.pendingSig)) {
        proc.pendingSig = kSigUser2;
    }
    static_cast<void>(cam.StopCapture());
}

Next calculate(CCamProc& proc, CExCam& cam)
{
    if (!provideArrays(proc)) {
        proc.freeDynLut();
        proc.dynLutMode = kDynLutPlain;
        return {kDynLutIdle};
    }
    const bool plain = proc.dynLutMode == kDynLutPlain;
    KxGi__CalcLutDynam(proc.frameData, proc.roiWidth, proc.roiHeight, proc.roiWidth,
                       proc.bitsPerPixel, proc.cdfArray.get());
    if (proc.dynLutMode == kDynLutWideAsked) {
        leaveWide(proc, cam);
    }
    constexpr std::uint32_t kInputBits = 12;
    KxGi__GetLutDynam(proc.dataBits, proc.cdfArray.get(), kInputBits, proc.lutArray.get());
    proc.lutEntries = 1U << proc.dataBits;
    // The array has a new table at its old address.
    proc.lastLutData = nullptr;
    KX_LOG_I("a new LUT was dynamically calculated...\n");
    return {kDynLutApply, plain};
}

Next apply(CCamProc& proc, CExCam& cam)
{
    if (proc.lutArray) {
        proc.ProcParametrizeCamManLUT(&cam, true);
        KX_LOG_I("continue operation with new LUT (dynamically calculated)...\n");
    }
    return {proc.dynLutMode == kDynLutPlain ? kDynLutIdle : kDynLutFinish};
}

Next finish(CCamProc& proc)
{
    if (proc.dynLutMode == kDynLutWideDone) {
        proc.freeDynLut();
        proc.dynLutMode = kDynLutPlain;
    }
    return {kDynLutIdle};
}

} // namespace

void CCamProc::ProcDynamLut(CExCam* cam)
{
    Next next;
    do {
        switch (dynLutState) {
        case kDynLutStart: // to Calculate, or stays
            next = start(*this, *cam);
            break;
        case kDynLutWaitTwo:
            KX_LOG_I("dynamic LUT is waiting for new clear picture 2 frames yet\n");
            next = {kDynLutWaitOne};
            break;
        case kDynLutWaitOne:
            KX_LOG_I("dynamic LUT is waiting for new clear picture 1 frame yet\n");
            next = {kDynLutCalculate};
            break;
        case kDynLutCalculate: // to Apply, or without memory to Idle
            next = calculate(*this, *cam);
            break;
        case kDynLutApply: // to Idle, of a 12-bit pass to Finish
            next = apply(*this, *cam);
            break;
        case kDynLutFinish: // to Idle
            next = finish(*this);
            break;
        default:
            return;
        }
        dynLutState = next.state;
    } while (next.sameFrame);
}

void CCamProc::freeDynLut()
{
    if (lastLutData == lutArray.get()) {
        // Another table may get the address.
        lastLutData = nullptr;
    }
    lutArray.reset();
    cdfArray.reset();
}

} // namespace KxPGrey
