// Empty host services: nothing but the frame memory, a few settings, and marks of time.
#include "bench_host.h"

#include "kx_host.h"

#include <cstdlib>

#include <sys/mman.h>

namespace kxbench {

namespace {

constexpr std::size_t kSlotBytes = std::size_t{8} << 20U;
constexpr std::uint32_t kKeep = 0xFFFFFFFF;
constexpr float kKeepFloat = -1.0F;

} // namespace

Host& host()
{
    static Host theHost;
    return theHost;
}

void prepareHost(std::uint32_t measureFrom, std::uint32_t measureUntil)
{
    const std::uint32_t buffers = host().buffers;
    host() = {};
    host().buffers = buffers;
    // The first frame is not exported.
    host().frames = measureUntil + 1;
    host().measureFrom = measureFrom;
    host().measureUntil = measureUntil;
}

unsigned char* frameMemory()
{
    static void* const memory = mmap(nullptr, kSlotBytes * host().buffers, PROT_READ | PROT_WRITE,
                                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        std::abort();
    }
    return static_cast<unsigned char*>(memory);
}

std::size_t slotBytes()
{
    return kSlotBytes;
}

} // namespace kxbench

using kxbench::host;
using kxbench::kKeep;
using kxbench::kKeepFloat;

extern "C" {

// ---- Configuration: any camera, everything as it is but for `parameters`.

const char* KxGiMainCtx__GetModelStr()
{
    return "";
}
const char* KxGiMainCtx__GetIdStr()
{
    return nullptr;
}
uint32_t KxGiMainCtx__GetActiveCamMask()
{
    return 0;
}
uint32_t KxGiMainCtx__GetDatachunk()
{
    return 0;
}
uint32_t KxGiMainCtx__GetBnum()
{
    return host().buffers;
}
uint32_t KxGiMainCtx__GetFnum()
{
    return host().frames;
}
uint32_t KxGiMainCtx__GetWidth()
{
    return kKeep;
}
uint32_t KxGiMainCtx__GetHeight()
{
    return kKeep;
}
uint32_t KxGiMainCtx__GetOffsetX()
{
    return kKeep;
}
uint32_t KxGiMainCtx__GetOffsetY()
{
    return kKeep;
}
uint8_t KxGiMainCtx__GetFormat()
{
    return 1;
}
void KxGiMainCtx__SetFormat(int /*code*/) {}
uint8_t KxGiMainCtx__GetCformat()
{
    return 0;
}
float KxGiMainCtx__GetFps()
{
    return kKeepFloat;
}
float KxGiMainCtx__GetGainMan()
{
    return host().parameters.gainDb;
}
float KxGiMainCtx__GetExptMan()
{
    return host().parameters.exposureUs;
}
float KxGiMainCtx__GetGamma()
{
    return host().parameters.gamma;
}
int32_t KxGiMainCtx__GetSatur()
{
    return host().parameters.saturation;
}
int32_t KxGiMainCtx__GetWbred()
{
    return host().parameters.whiteBalance;
}
int32_t KxGiMainCtx__GetWbblu()
{
    return host().parameters.whiteBalance;
}
int32_t KxGiMainCtx__GetRotate()
{
    return 0;
}
float KxGiMainCtx__GetAtbright()
{
    return kKeepFloat;
}
float KxGiMainCtx__GetGainlimsLow()
{
    return -100.0F;
}
float KxGiMainCtx__GetGainlimsHigh()
{
    return -100.0F;
}
float KxGiMainCtx__GetEtlimsLow()
{
    return kKeepFloat;
}
float KxGiMainCtx__GetEtlimsHigh()
{
    return kKeepFloat;
}
int32_t KxGiMainCtx__GetSweepProf()
{
    return 0;
}
int32_t KxGiMainCtx__GetSweepGainMod()
{
    return host().parameters.sweepMode;
}
int32_t KxGiMainCtx__GetSweepEtimeMod()
{
    return host().parameters.sweepMode;
}
int32_t KxGiMainCtx__GetSweepLutMod()
{
    return 0;
}
int32_t KxGiMainCtx__GetTsadjns()
{
    return 0;
}
uint16_t KxGiMainCtx__GetLutBitSize()
{
    return 0;
}
const uint16_t* KxGiMainCtx__GetLutDataU16()
{
    return nullptr;
}
uint32_t KxGiMainCtx__GetIoboxNum()
{
    return static_cast<uint32_t>(host().lines.size());
}
int32_t KxGiMainCtx__GetIoboxPin(int set)
{
    return host().lines[static_cast<std::size_t>(set)].pin;
}
int32_t KxGiMainCtx__GetIoboxMod(int set)
{
    return host().lines[static_cast<std::size_t>(set)].mode;
}
int32_t KxGiMainCtx__GetIoboxInv(int /*set*/)
{
    return 0;
}
int32_t KxGiMainCtx__GetIoboxSrc(int set)
{
    return host().lines[static_cast<std::size_t>(set)].source;
}
int32_t KxGiMainCtx__GetIoboxPar(int set, int which)
{
    const kxbench::Line& line = host().lines[static_cast<std::size_t>(set)];
    return which == 0 ? line.parameter0 : line.parameter1;
}

// ---- Host control.

int KxGi__DoReconfig(int* /*restart*/)
{
    return 0;
}
int KxGi__CheckDynConfig()
{
    return 0;
}
void KxGi__SetNewCfgVendor() {}
void KxGi__SetNewCfgPlugin() {}
void KxGi__SetSignalAction(int /*action*/) {}
void KxGi__ResetTermSigProc() {}
void KxGi__SetTermSigProc() {}
void KxGi__SetCurrFpsUs(uint32_t /*periodUs*/) {}
void KxGi__HaltStop(int /*width*/, int /*height*/, float /*temperatureC*/)
{
    if (host().firstFrameUs == 0) {
        host().firstFrameUs = kxbench::usageNow().wallUs;
    }
}
void KxGi__HaltUpdate(int /*width*/, float /*temperatureC*/) {}
void KxGi__CommTriggerAll(uint64_t /*timestampUs*/, uint32_t /*offsetUs*/, int32_t /*exposureUs*/)
{}
void KxGi__CalcLutDynam(const void* /*pixels*/, uint32_t /*width*/, uint32_t /*height*/,
                        uint32_t /*pitch*/, uint32_t /*bitsPerPixel*/, uint32_t* /*cdf*/)
{}
void KxGi__GetLutDynam(uint32_t /*outputBits*/, const uint32_t* /*cdf*/, uint32_t /*inputBits*/,
                       uint16_t* /*lut*/)
{}

// ---- Frame memory.

void KxGiMem__Init(uint32_t /*count*/, int /*zero*/) {}
void KxGiMem__SetActFsize(uint32_t /*bytes*/) {}
void* KxGiMem__GetBufPtr(uint32_t index)
{
    return kxbench::frameMemory() + index * kxbench::slotBytes();
}
int KxGiMem__IsFactoryUsed()
{
    return 1;
}
void KxGiMemInst__Init(int /*instance*/, uint32_t /*count*/, int /*zero*/) {}
void KxGiMemInst__SetActFsize(int /*instance*/, uint32_t /*bytes*/) {}
int KxGiMemInst__Trigger(int /*instance*/, int /*zero*/, uint64_t /*timestampUs*/, void* /*frame*/,
                         int /*store*/)
{
    return 0;
}

// ---- Export.

void KxSc__SetParamVal(int /*id*/, const void* /*value*/) {}
void KxSc__InstSetParamVal(int /*instance*/, int /*id*/, const void* /*value*/) {}
void KxSc__ProcExport(uint64_t /*timestampUs*/)
{
    ++host().exports;
    if (host().exports == host().measureFrom) {
        host().from = kxbench::usageNow();
    } else if (host().exports == host().measureUntil) {
        host().until = kxbench::usageNow();
    }
}

// ---- Utilities.

int KxUtl__CheckSignal()
{
    return 0;
}
struct timeval* KxUtl__TimeValDiff(const struct timeval* later, const struct timeval* earlier)
{
    static thread_local timeval difference;
    timersub(later, earlier, &difference);
    return &difference;
}
void KxUtl__UpdateGrabState(int /*state*/) {}
}
