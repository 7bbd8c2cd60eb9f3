// Empty host services: nothing but the frame memory, a few settings, and marks of time.
#include "bench_host.h"

#include "kx_host.h"

#include <cstdlib>

#include <sys/mman.h>

namespace kxbench {

namespace {

constexpr std::size_t kSlotBytes = std::size_t{8} << 20U;

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

extern "C" {

// ---- Configuration; what is not here stays as the camera has it (host_defaults.cpp).

uint32_t KxGiMainCtx__GetBnum()
{
    return host().buffers;
}
uint32_t KxGiMainCtx__GetFnum()
{
    return host().frames;
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
int32_t KxGiMainCtx__GetSweepGainMod()
{
    return host().parameters.sweepMode;
}
int32_t KxGiMainCtx__GetSweepEtimeMod()
{
    return host().parameters.sweepMode;
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

void KxGi__HaltStop(int /*width*/, int /*height*/, float /*temperatureC*/)
{
    if (host().firstFrameUs == 0) {
        host().firstFrameUs = kxbench::usageNow().wallUs;
    }
}

// ---- Frame memory.

void* KxGiMem__GetBufPtr(uint32_t index)
{
    return kxbench::frameMemory() + index * kxbench::slotBytes();
}
int KxGiMem__IsFactoryUsed()
{
    return 1;
}

// ---- Export.

void KxSc__ProcExport(uint64_t /*timestampUs*/)
{
    ++host().exports;
    if (host().exports == host().measureFrom) {
        host().from = kxbench::usageNow();
    } else if (host().exports == host().measureUntil) {
        host().until = kxbench::usageNow();
    }
}
}
