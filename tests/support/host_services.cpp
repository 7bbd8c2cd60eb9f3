// The recording host's services: control, frame memory, export, utilities.
#include "host_overrides.h"
#include "journal.h"
#include "kx_host.h"
#include "recording_host.h"

using kxtest::format;
using kxtest::host;
using kxtest::Kind;

namespace {

void record(Kind kind, const char* name, std::string arguments = "")
{
    kxtest::journal().add({kind, name, std::move(arguments), 0});
    if (host().onCall) {
        host().onCall(name);
    }
}

void record(const char* name, std::string arguments = "")
{
    record(Kind::host, name, std::move(arguments));
}

unsigned long long wide(std::uint64_t value)
{
    return value;
}

} // namespace

extern "C" {

int KxGi__DoReconfig(int* restart)
{
    record("KxGi__DoReconfig");
    return host().doReconfig ? host().doReconfig(restart) : 0;
}

int KxGi__CheckDynConfig(void)
{
    record("KxGi__CheckDynConfig");
    return host().checkDynConfig ? host().checkDynConfig() : 0;
}

void KxGi__SetNewCfgVendor(void)
{
    record("KxGi__SetNewCfgVendor");
}
void KxGi__SetNewCfgPlugin(void)
{
    record("KxGi__SetNewCfgPlugin");
}

void KxGi__SetSignalAction(int action)
{
    record("KxGi__SetSignalAction", std::to_string(action));
}

void KxGi__ResetTermSigProc(void)
{
    record("KxGi__ResetTermSigProc");
}
void KxGi__SetTermSigProc(void)
{
    record("KxGi__SetTermSigProc");
}

void KxGi__SetCurrFpsUs(uint32_t periodUs)
{
    record("KxGi__SetCurrFpsUs", std::to_string(periodUs));
}

void KxGi__HaltStop(int width, int height, float temperatureC)
{
    record("KxGi__HaltStop",
           format("%i, %i, %.2f", width, height, static_cast<double>(temperatureC)));
}

void KxGi__HaltUpdate(int width, float temperatureC)
{
    record("KxGi__HaltUpdate", format("%i, %.2f", width, static_cast<double>(temperatureC)));
}

void KxGi__CommTriggerAll(uint64_t timestampUs, uint32_t offsetUs, int32_t exposureUs)
{
    record("KxGi__CommTriggerAll", format("%llu, %u, %i", wide(timestampUs), offsetUs, exposureUs));
}

void KxGi__CalcLutDynam(const void* pixels, uint32_t width, uint32_t height, uint32_t pitch,
                        uint32_t bitsPerPixel, uint32_t* cdf)
{
    record("KxGi__CalcLutDynam", format("%u, %u, %u, %u", width, height, pitch, bitsPerPixel));
    if (host().calcLut) {
        host().calcLut(pixels, bitsPerPixel, cdf);
    }
}

void KxGi__GetLutDynam(uint32_t outputBits, const uint32_t* cdf, uint32_t inputBits, uint16_t* lut)
{
    record("KxGi__GetLutDynam", format("%u, %u", outputBits, inputBits));
    if (host().getLut) {
        host().getLut(outputBits, cdf, lut);
    }
}

void KxGiMem__Init(uint32_t count, int zero)
{
    record("KxGiMem__Init", format("%u, %i", count, zero));
    host().initPool(count);
}

void KxGiMem__SetActFsize(uint32_t bytes)
{
    record("KxGiMem__SetActFsize", std::to_string(bytes));
    host().setPoolFrameSize(bytes);
}

void* KxGiMem__GetBufPtr(uint32_t index)
{
    record("KxGiMem__GetBufPtr", std::to_string(index));
    return host().slot(index);
}

int KxGiMem__IsFactoryUsed(void)
{
    record("KxGiMem__IsFactoryUsed");
    return kxtest::overrideOf<int>("KxGiMem__IsFactoryUsed").value_or(host().factoryUsed ? 1 : 0);
}

void KxGiMemInst__Init(int instance, uint32_t count, int zero)
{
    record("KxGiMemInst__Init", format("%i, %u, %i", instance, count, zero));
}

void KxGiMemInst__SetActFsize(int instance, uint32_t bytes)
{
    record("KxGiMemInst__SetActFsize", format("%i, %u", instance, bytes));
}

int KxGiMemInst__Trigger(int instance, int zero, uint64_t timestampUs, void* frame, int store)
{
    record("KxGiMemInst__Trigger",
           format("%i, %i, %llu, %i", instance, zero, wide(timestampUs), store));
    host().frames.push_back({instance, timestampUs, frame, store});
    return host().trigger ? host().trigger(instance) : 0;
}

void KxSc__SetParamVal(int id, const void* value)
{
    record("KxSc__SetParamVal", std::to_string(id));
    host().published[id] = value;
}

void KxSc__InstSetParamVal(int instance, int id, const void* value)
{
    record("KxSc__InstSetParamVal", format("%i, %i", instance, id));
    host().publishedInst[100 * instance + id] = value;
}

void KxSc__ProcExport(uint64_t timestampUs)
{
    record("KxSc__ProcExport", format("%llu", wide(timestampUs)));
    host().exportValues(timestampUs);
}

int KxUtl__CheckSignal(void)
{
    record("KxUtl__CheckSignal");
    return host().checkSignal ? host().checkSignal() : 0;
}

struct timeval* KxUtl__TimeValDiff(const struct timeval* later, const struct timeval* earlier)
{
    record(Kind::utility, "KxUtl__TimeValDiff");
    thread_local struct timeval difference = {};
    timersub(later, earlier, &difference);
    return kxtest::overrideOf<struct timeval*>("KxUtl__TimeValDiff").value_or(&difference);
}

void KxUtl__UpdateGrabState(int state)
{
    record("KxUtl__UpdateGrabState", std::to_string(state));
}
}
