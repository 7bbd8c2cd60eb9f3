// Host services: frame memory, the hand-over of frames and the export of their parameters.
#include "picture_codec.h"
#include "service_exports.h"
#include "services.h"

#include <cstdio>
#include <utility>

using kxhost::HostServices;
using kxhost::Instance;
using kxhost::services;

namespace {

constexpr int kAccepted = 0;
constexpr int kRefused = 1;

bool isInstance(int instance)
{
    return instance == static_cast<int>(Instance::kRaw) ||
           instance == static_cast<int>(Instance::kConverted);
}

/// Lets the export set memory aside before frames come.
void reserve(Instance instance, uint32_t bytes)
{
    if (services().queue != nullptr) {
        services().queue->reserve(instance, bytes);
    }
}

void layOutPool(uint32_t bytes)
{
    if (!services().pool.setFrameSize(bytes)) {
        std::fprintf(stderr,
                     "kxhost: there is not enough memory for %u frame buffers of %u bytes; "
                     "grab.buffers sets their number\n",
                     services().settings.buffers, bytes);
        return;
    }
    reserve(Instance::kRaw, bytes);
}

/// Counts what the camera's frame counter says was never delivered, beyond failed retrievals.
void countGap(HostServices& host, const kxhost::ScenarioValues& values)
{
    const std::uint64_t missing = host.counts.missing;
    if (values.frameCounter && host.lastCounter) {
        const std::uint64_t between = *values.frameCounter - *host.lastCounter - 1;
        const std::uint64_t failed = missing - host.missingThen;
        host.counts.gaps += between > failed && between < (1U << 31) ? between - failed : 0;
    }
    host.lastCounter = values.frameCounter;
    host.missingThen = missing;
}

void beginHandOver(HostServices& host, uint64_t timestampUs)
{
    if (host.handOverStartUs != 0 && host.handOverFrame == timestampUs) {
        return;
    }
    host.handOverFrame = timestampUs;
    host.handOverStartUs = kxhost::steadyUs();
    countGap(host, host.scenario.read());
}

void endHandOver(HostServices& host)
{
    const std::uint64_t spent = kxhost::steadyUs() - host.handOverStartUs;
    host.handOverStartUs = 0;
    if (spent > host.counts.longestUs) {
        host.counts.longestUs = spent;
    }
    const std::uint64_t period = host.counts.framePeriodUs; // 0 = the camera tells no rate
    if (period != 0 && spent >= period) {
        ++host.counts.overBudget;
    }
}

/// Notes the word that this frame brings, if it does. REQUIRES: the frame counts as exported.
void countWord(HostServices& host, const kxhost::ScenarioValues& values)
{
    if (values.rxBits) {
        ++host.counts.words;
        host.counts.wordData = values.rxData.value_or(0);
        host.counts.wordBits = *values.rxBits;
        host.counts.wordFrame = host.counts.exported.load();
    }
}

/// An export that has failed once refuses everything; there is no use in grabbing on.
int refuse(HostServices& host)
{
    if (!host.queue->firstError().empty()) {
        host.signals.post(kxhost::kFinishTerminate);
    }
    return kRefused;
}

} // namespace

void KxGiMem__Init(uint32_t count, int)
{
    services().pool.init(count);
    services().scenario.forgetInstances();
}

void KxGiMem__SetActFsize(uint32_t bytes)
{
    layOutPool(bytes);
}

void* KxGiMem__GetBufPtr(uint32_t index)
{
    return services().pool.slot(index);
}

int KxGiMem__IsFactoryUsed()
{
    return services().pool.ready() ? 1 : 0;
}

/// Raw frames lie in the plain pool; converted ones in memory of the plug-in's.
void KxGiMemInst__Init(int instance, uint32_t count, int)
{
    if (instance == static_cast<int>(Instance::kRaw)) {
        services().pool.init(count);
    }
}

void KxGiMemInst__SetActFsize(int instance, uint32_t bytes)
{
    if (instance == static_cast<int>(Instance::kRaw)) {
        layOutPool(bytes);
    } else if (instance == static_cast<int>(Instance::kConverted)) {
        reserve(Instance::kConverted, bytes);
    }
}

int KxGiMemInst__Trigger(int instance, int, uint64_t timestampUs, void* frame, int)
{
    HostServices& host = services();
    if (!isInstance(instance) || frame == nullptr) {
        ++host.counts.refused;
        return kRefused;
    }
    beginHandOver(host, timestampUs);
    if (host.queue == nullptr) {
        return kAccepted;
    }
    kxhost::FrameInfo info = host.scenario.frame(static_cast<Instance>(instance));
    info.timestampUs = timestampUs;
    if (info.width == 0 || info.height == 0 || kxhost::findCodec(info.codec) == nullptr) {
        ++host.counts.refused;
        return kRefused;
    }
    return host.queue->stage(info, frame) ? kAccepted : refuse(host);
}

void KxSc__SetParamVal(int id, const void* value)
{
    services().scenario.publish(id, value);
}

void KxSc__InstSetParamVal(int instance, int id, const void* value)
{
    if (isInstance(instance)) {
        services().scenario.publishFor(static_cast<Instance>(instance), id, value);
    }
}

void KxSc__ProcExport(uint64_t timestampUs)
{
    HostServices& host = services();
    kxhost::ScenarioValues values = host.scenario.read();
    if (host.queue != nullptr) {
        values.configuration = host.generation;
        values.awaySeconds = std::exchange(host.absence.secondsBefore, {});
        host.queue->commit(timestampUs, values);
    }
    if (host.clock != nullptr) {
        host.clock->stamped(host.scenario.read().cameraTimeUs);
    }
    ++host.counts.exported;
    countWord(host, values);
    endHandOver(host);
}
