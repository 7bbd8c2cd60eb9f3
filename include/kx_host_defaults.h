// Host services that leave everything as it is, for hosts that need only a few of their own.
//
// A host has to export every function of kx_host.h. One that includes this file, in exactly one
// source file of its own which holds nothing else, has them all, and defines in other source files
// those in which it differs:
//
//     // host_defaults.cpp
//     #include <kx_host_defaults.h>
//
// The definitions are weak: the linker takes the host's own wherever there is one. Both have to be
// among the objects of the program and not in an archive, from which nobody would fetch them, and
// to be visible to the plug-in (CMake: ENABLE_EXPORTS, and no hidden visibility).
//
// As they stand: the first camera on the bus, each setting as the camera has it, 8-bit monochrome
// pictures without conversion, eight frame buffers in the memory of the camera's library, no limit
// to the number of frames, each frame taken and forgotten, no signals.
#ifndef KX_HOST_DEFAULTS_H
#define KX_HOST_DEFAULTS_H

#include "kx_host.h"

#define KX_WEAK __attribute__((weak, visibility("default")))

extern "C" {

// NOLINTBEGIN(misc-definitions-in-headers): the file is for one source file of a program

// ---- Configuration.

/// Every model name begins with nothing.
KX_WEAK const char* KxGiMainCtx__GetModelStr()
{
    return "";
}
KX_WEAK const char* KxGiMainCtx__GetIdStr()
{
    return nullptr;
}
KX_WEAK uint32_t KxGiMainCtx__GetActiveCamMask()
{
    return 0;
}
KX_WEAK uint32_t KxGiMainCtx__GetDatachunk()
{
    return 0;
}
KX_WEAK uint32_t KxGiMainCtx__GetBnum()
{
    return 8;
}
KX_WEAK uint32_t KxGiMainCtx__GetFnum()
{
    return 0;
}
KX_WEAK uint32_t KxGiMainCtx__GetWidth()
{
    return UINT32_MAX;
}
KX_WEAK uint32_t KxGiMainCtx__GetHeight()
{
    return UINT32_MAX;
}
KX_WEAK uint32_t KxGiMainCtx__GetOffsetX()
{
    return UINT32_MAX;
}
KX_WEAK uint32_t KxGiMainCtx__GetOffsetY()
{
    return UINT32_MAX;
}
/// MONO8T.
KX_WEAK uint8_t KxGiMainCtx__GetFormat()
{
    return 1;
}
KX_WEAK void KxGiMainCtx__SetFormat(int /*code*/) {}
KX_WEAK uint8_t KxGiMainCtx__GetCformat()
{
    return 0;
}
KX_WEAK float KxGiMainCtx__GetFps()
{
    return -1;
}
KX_WEAK float KxGiMainCtx__GetGainMan()
{
    return -100;
}
KX_WEAK float KxGiMainCtx__GetExptMan()
{
    return -1;
}
KX_WEAK float KxGiMainCtx__GetGamma()
{
    return -1;
}
KX_WEAK int32_t KxGiMainCtx__GetSatur()
{
    return -1;
}
KX_WEAK int32_t KxGiMainCtx__GetWbred()
{
    return -1;
}
KX_WEAK int32_t KxGiMainCtx__GetWbblu()
{
    return -1;
}
KX_WEAK int32_t KxGiMainCtx__GetRotate()
{
    return 0;
}
KX_WEAK float KxGiMainCtx__GetAtbright()
{
    return -1;
}
KX_WEAK float KxGiMainCtx__GetGainlimsLow()
{
    return -100;
}
KX_WEAK float KxGiMainCtx__GetGainlimsHigh()
{
    return -100;
}
KX_WEAK float KxGiMainCtx__GetEtlimsLow()
{
    return -1;
}
KX_WEAK float KxGiMainCtx__GetEtlimsHigh()
{
    return -1;
}
KX_WEAK int32_t KxGiMainCtx__GetSweepProf()
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetSweepGainMod()
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetSweepEtimeMod()
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetSweepLutMod()
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetTsadjns()
{
    return 0;
}
KX_WEAK uint16_t KxGiMainCtx__GetLutBitSize()
{
    return 9;
}
KX_WEAK const uint16_t* KxGiMainCtx__GetLutDataU16()
{
    return nullptr;
}
KX_WEAK uint32_t KxGiMainCtx__GetIoboxNum()
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetIoboxPin(int /*set*/)
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetIoboxMod(int /*set*/)
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetIoboxInv(int /*set*/)
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetIoboxSrc(int /*set*/)
{
    return 0;
}
KX_WEAK int32_t KxGiMainCtx__GetIoboxPar(int /*set*/, int /*which*/)
{
    return 0;
}

// ---- Host control.

/// There is no other configuration to put in force.
KX_WEAK int KxGi__DoReconfig(int* /*restart*/)
{
    return 1;
}
KX_WEAK int KxGi__CheckDynConfig()
{
    return 0;
}
KX_WEAK void KxGi__SetNewCfgVendor() {}
KX_WEAK void KxGi__SetNewCfgPlugin() {}
KX_WEAK void KxGi__SetSignalAction(int /*action*/) {}
KX_WEAK void KxGi__ResetTermSigProc() {}
KX_WEAK void KxGi__SetTermSigProc() {}
KX_WEAK void KxGi__SetCurrFpsUs(uint32_t /*periodUs*/) {}
KX_WEAK void KxGi__HaltStop(int /*width*/, int /*height*/, float /*temperatureC*/) {}
KX_WEAK void KxGi__HaltUpdate(int /*width*/, float /*temperatureC*/) {}
KX_WEAK void KxGi__CommTriggerAll(uint64_t /*timestampUs*/, uint32_t /*offsetUs*/,
                                  int32_t /*exposureUs*/)
{}
KX_WEAK void KxGi__CalcLutDynam(const void* /*pixels*/, uint32_t /*width*/, uint32_t /*height*/,
                                uint32_t /*pitch*/, uint32_t /*bitsPerPixel*/, uint32_t* /*cdf*/)
{}
/// A table that changes nothing, whatever the distribution.
KX_WEAK void KxGi__GetLutDynam(uint32_t outputBits, const uint32_t* /*cdf*/, uint32_t /*inputBits*/,
                               uint16_t* lut)
{
    for (uint32_t entry = 0; entry < (1U << outputBits); ++entry) {
        lut[entry] = static_cast<uint16_t>(entry);
    }
}

// ---- Frame memory: none of its own, the frames stay in that of the camera's library.

KX_WEAK void KxGiMem__Init(uint32_t /*count*/, int /*zero*/) {}
KX_WEAK void KxGiMem__SetActFsize(uint32_t /*bytes*/) {}
KX_WEAK void* KxGiMem__GetBufPtr(uint32_t /*index*/)
{
    return nullptr;
}
KX_WEAK int KxGiMem__IsFactoryUsed()
{
    return 0;
}
KX_WEAK void KxGiMemInst__Init(int /*instance*/, uint32_t /*count*/, int /*zero*/) {}
KX_WEAK void KxGiMemInst__SetActFsize(int /*instance*/, uint32_t /*bytes*/) {}
KX_WEAK int KxGiMemInst__Trigger(int /*instance*/, int /*zero*/, uint64_t /*timestampUs*/,
                                 void* /*frame*/, int /*store*/)
{
    return 0;
}

// ---- Export.

KX_WEAK void KxSc__SetParamVal(int /*id*/, const void* /*value*/) {}
KX_WEAK void KxSc__InstSetParamVal(int /*instance*/, int /*id*/, const void* /*value*/) {}
KX_WEAK void KxSc__ProcExport(uint64_t /*timestampUs*/) {}

// ---- Utilities.

KX_WEAK int KxUtl__CheckSignal()
{
    return 0;
}
KX_WEAK struct timeval* KxUtl__TimeValDiff(const struct timeval* later,
                                           const struct timeval* earlier)
{
    static thread_local struct timeval difference;
    timersub(later, earlier, &difference);
    return &difference;
}
KX_WEAK void KxUtl__UpdateGrabState(int /*state*/) {}

// NOLINTEND(misc-definitions-in-headers)
}

#undef KX_WEAK

#endif
