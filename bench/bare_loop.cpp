// The loop to compare the plug-in's with: the same SDK and host calls, and nothing else.
#include "bare_loop.h"

#include "bench_host.h"
#include "kx_host.h"
#include "kx_pg_proc.h"
#include "kx_scenario.h"

namespace kxbench {

namespace {

/// What the calls are made with. Made once: filling these records is the plug-in's own work.
struct Scratch {
    FlyCapture2::CameraStats stats;
    FlyCapture2::PropertyInfo info;
    FlyCapture2::Property property;
    timeval time = {};
    unsigned int clockValue = 0;
    std::uint64_t value = 0;
};

void askProperty(OpenCamera& open, Scratch& scratch, FlyCapture2::PropertyType type)
{
    scratch.info.type = type;
    static_cast<void>(open.camera.GetPropertyInfo(&scratch.info));
    scratch.property.type = type;
    static_cast<void>(open.camera.GetProperty(&scratch.property));
}

/// The calls that every frame takes.
void takeFrame(OpenCamera& open, Scratch& scratch, bool first)
{
    FlyCapture2::Image image;
    const FlyCapture2::Error error = open.camera.RetrieveBuffer(&image);
    if (error != FlyCapture2::PGRERROR_OK) {
        return;
    }
    static_cast<void>(open.camera.ReadRegister(0x1EA8, &scratch.clockValue));
    KxUtl__TimeValDiff(&scratch.time, &scratch.time);
    KxUtl__CheckSignal();
    static_cast<void>(open.camera.GetStats(&scratch.stats));
    KxGi__HaltStop(1, 1, 1.0F);
    unsigned char* const pixels = image.GetData();
    const FlyCapture2::ImageMetadata metadata = image.GetMetadata();
    scratch.value = metadata.embeddedFrameCounter;
    askProperty(open, scratch, FlyCapture2::GAIN);
    KxSc__SetParamVal(kKxScGainDb, &scratch.value);
    askProperty(open, scratch, FlyCapture2::SHUTTER);
    KxSc__SetParamVal(kKxScExposureUs, &scratch.value);
    scratch.value = image.GetTimeStamp().cycleCount;
    KxSc__SetParamVal(kKxScCameraTimeUs, &scratch.value);
    KxSc__SetParamVal(kKxScFrameCounter, &scratch.value);
    if (!first) {
        KxGiMemInst__Trigger(0, 0, 0, pixels, 0);
        KxUtl__TimeValDiff(&scratch.time, &scratch.time);
        KxSc__SetParamVal(kKxScTimestampUs, &scratch.value);
        KxSc__ProcExport(0);
        KxUtl__TimeValDiff(&scratch.time, &scratch.time);
    }
    KxGi__CommTriggerAll(0, 0, 0);
    static_cast<void>(KxGi__CheckDynConfig());
    KxUtl__TimeValDiff(&scratch.time, &scratch.time);
}

} // namespace

int runWholeLoop(OpenCamera& open)
{
    KxPGrey::CCamProc proc;
    return proc.ProcLoop(&open.camera, &open.info, &kxBufFactory);
}

void runBareLoop(OpenCamera& open)
{
    FlyCapture2::EmbeddedImageInfo embedded;
    static_cast<void>(open.camera.GetEmbeddedImageInfo(&embedded));
    embedded.gain.onOff = embedded.gain.available;
    embedded.shutter.onOff = embedded.shutter.available;
    embedded.timestamp.onOff = embedded.timestamp.available;
    embedded.frameCounter.onOff = embedded.frameCounter.available;
    static_cast<void>(open.camera.SetEmbeddedImageInfo(&embedded));
    static_cast<void>(open.camera.SetUserBuffers(frameMemory(), static_cast<int>(slotBytes()),
                                                 static_cast<int>(host().buffers)));
    static_cast<void>(open.camera.StartCapture());
    Scratch scratch;
    for (std::uint32_t frame = 0; frame < host().frames; ++frame) {
        takeFrame(open, scratch, frame == 0);
    }
    static_cast<void>(open.camera.StopCapture());
}

} // namespace kxbench
