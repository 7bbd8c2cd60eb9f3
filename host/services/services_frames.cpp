// Host services: frame memory, the hand-over of frames and the export of their parameters.
#include "base/notice.h"
#include "grab/services.h"
#include "picture/picture_codec.h"
#include "services/service_exports.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <utility>

using kxhost::FrameCause;
using kxhost::HostServices;
using kxhost::Instance;
using kxhost::services;
using kxhost::Staging;

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
    if (services().queue == nullptr) {
        return;
    }
    const std::size_t wanted = services().settings.outputQueue;
    const std::size_t places = services().queue->reserve(instance, bytes);
    if (places < wanted) {
        kxhost::complain("There is memory for " + std::to_string(places) + " of " +
                         std::to_string(wanted) + " frames of " + std::to_string(bytes) +
                         " bytes that may wait to be written; output.queue sets their number.");
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

void beginHandOver(HostServices& host, uint64_t timestampUs)
{
    if (host.handOverStartUs != 0 && host.handOverFrame == timestampUs) {
        return;
    }
    host.handOverFrame = timestampUs;
    host.handOverStartUs = kxhost::steadyUs();
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

int refuse(HostServices& host, FrameCause cause)
{
    host.counts.refused += cause == FrameCause::kUnusable ? 1U : 0U;
    host.fates.refused(cause);
    return kRefused;
}

FrameCause causeOf(Staging staging)
{
    switch (staging) {
    case Staging::kFull:
        return FrameCause::kQueueFull;
    case Staging::kNoMemory:
        return FrameCause::kNoBuffer;
    default:
        return FrameCause::kExportFailed;
    }
}

int stage(HostServices& host, const kxhost::FrameInfo& info, const void* frame)
{
    const kxhost::Staged staged = host.queue->stage(info, frame);
    host.fates.waited(staged.waitedUs);
    if (staged.result == Staging::kAccepted) {
        host.fates.accepted();
        return kAccepted;
    }
    if (staged.result == Staging::kFailed) {
        // It refuses everything from now on; there is no use in grabbing on.
        host.signals.post(kxhost::kFinishTerminate);
    }
    return refuse(host, causeOf(staged.result));
}

/// The frame that arrived last is the one that is handed over.
kxhost::FrameTimes timesOf(const HostServices& host)
{
    return {host.arrivedUs, host.arrivedSteadyUs, host.handOverStartUs - host.arrivedSteadyUs,
            kxhost::steadyUs() - host.handOverStartUs};
}

/// The configuration that made the frame, and when it came.
void annotate(HostServices& host, uint64_t timestampUs, kxhost::ScenarioValues& values)
{
    const float exposureUs = std::max(values.exposureUs.value_or(0), 0.0F);
    const kxhost::ConfigurationMark mark = host.history.mark(
        {timestampUs, static_cast<uint64_t>(exposureUs), host.counts.framePeriodUs});
    values.configuration = mark.number;
    if (mark.newest != mark.number) {
        values.configurationNext = mark.newest;
    }
    values.changes = host.history.takeNews();
    values.times = timesOf(host);
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
        return refuse(host, FrameCause::kUnusable);
    }
    beginHandOver(host, timestampUs);
    if (host.queue == nullptr) {
        host.fates.accepted();
        return kAccepted;
    }
    kxhost::FrameInfo info = host.scenario.frame(static_cast<Instance>(instance));
    info.timestampUs = timestampUs;
    if (info.width == 0 || info.height == 0 || kxhost::findCodec(info.codec) == nullptr) {
        return refuse(host, FrameCause::kUnusable);
    }
    return stage(host, info, frame);
}

void KxSc__SetParamVal(int id, const void* value)
{
    services().scenario.publish(id, value);
    if (id == kKxScFrameCounter) {
        services().fates.numberPublished();
    }
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
    if (host.fates.lacksPixels()) {
        refuse(host, FrameCause::kUnusable);
    }
    if (const std::optional<kxhost::LedgerMark> mark = host.fates.exported()) {
        ++host.counts.exported;
        kxhost::ScenarioValues values = host.scenario.read();
        countWord(host, values);
        if (host.queue != nullptr) {
            values.ledger = *mark;
            values.awaySeconds = std::exchange(host.absence.secondsBefore, {});
            annotate(host, timestampUs, values);
            host.queue->commit(timestampUs, values);
        }
    }
    if (host.clock != nullptr) {
        host.clock->stamped(host.scenario.read().cameraTimeUs);
    }
    endHandOver(host);
}
