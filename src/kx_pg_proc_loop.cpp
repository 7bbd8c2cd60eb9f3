// The grab loop: from the retrieved frame to its export, frame by frame.
//
// On the way of a frame there is no allocation, no copy of pixels and no lock.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_proc.h"
#include "kx_pg_profile_ring.h"
#include "kx_pg_shared.h"
#include "kx_pg_sizes.h"
#include "kx_pg_temperature.h"
#include "kx_pg_time_difference.h"
#include "kx_scenario.h"

#include <ctime>
#include <exception>
#include <optional>

#include <sys/time.h>
#include <unistd.h>

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::Error;
using FlyCapture2::Image;
using FlyCapture2::PGRERROR_OK;

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "ProcLoop";

/// Results of the loop beside those of the signal step.
constexpr int kBuffersRefused = -1;
constexpr int kNotConfigured = -2;
constexpr int kGrabFailed = -10;

// The profile outlives the loop: it shows the last frames also after a short grab.
ProfileRing _S_arProfResult; // retrievals
ProfileRing _S_arProfWrite;  // stores

timeval _S_gtv3;  // start of the grab
timeval _S_gtvr1; // before the retrieval
timeval _S_gtvr2; // after it: the frame's arrival
timeval _S_gtv1;  // before the store
timeval _S_gtv2;  // after the store, the export, the signal step, and at the end
timeval _S_gtvd;  // the last difference

void takeTime(timeval& time)
{
    gettimeofday(&time, nullptr);
}

std::uint64_t microseconds(const timeval& time)
{
    return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000U +
           static_cast<std::uint64_t>(time.tv_usec);
}

/// The microseconds of a difference; its whole seconds do not count.
std::uint32_t difference(const timeval& later, const timeval& earlier)
{
    _S_gtvd = timeDifference(later, earlier);
    return static_cast<std::uint32_t>(_S_gtvd.tv_usec);
}

/// Once a minute, how many iterations there were in a second, failed ones included.
void countFps()
{
    static std::time_t start_timeretres = 0;
    static std::time_t curnt_timeretres = 0;
    static std::int32_t frame_countretres = 0;
    constexpr std::time_t kReportSeconds = 60;
    if (start_timeretres == 0) {
        start_timeretres = std::time(nullptr);
    }
    curnt_timeretres = std::time(nullptr);
    const std::time_t seconds = curnt_timeretres - start_timeretres;
    if (seconds < kReportSeconds) {
        ++frame_countretres;
        return;
    }
    KX_LOG_D_AS(kCaller, "%s FPS: %d\n", "retres", static_cast<int>(frame_countretres / seconds));
    frame_countretres = 1;
    start_timeretres = curnt_timeretres;
}

void printRing(const ProfileRing& ring)
{
    unsigned int index = 0;
    for (const std::uint32_t durationUs : ring.values) {
        KX_LOG_I("%u. %06u us\n", index, durationUs);
        ++index;
    }
    KX_LOG_I("\n");
}

/// One run of the loop: its counters and its steps.
class GrabLoop {
public:
    GrabLoop(CCamProc& proc, CExCam& cam, std::uint32_t fNum)
        : proc_(proc), cam_(cam), clock_(proc.frameClock), fNum_(fNum),
          statusEvery_(statusInterval(proc.resultingFps))
    {}

    /// From the start of capture to the exit code; REQUIRES a configured camera.
    int run();

private:
    /// Nothing = go on.
    using Exit = std::optional<int>;

    int grabGuarded();
    int finish(int exitCode);
    Exit iterate();
    Exit dropped(const Error& error);
    bool isStalled(const Error& error);
    Exit delivered(Image& image, std::uint32_t clockValue);
    void initTiming(const FrameTiming& timing, const FrameTimes& frame, std::uint32_t clockValue);
    void exportFrame(Image& image, const FrameTiming& timing, const FrameTimes& frame);
    void reportNewTiming(const FrameClock::Arrival& arrival, const FrameTimes& frame) const;
    int store(Image& image);
    void publish(int stored);
    bool takeReceived();
    void clearReceived();
    void watchPace(const FrameTiming& timing, const FrameTimes& frame);
    void predict(const FrameTiming& timing, const FrameTimes& frame);
    void announceNext(const FrameTiming& timing) const;
    float temperature();
    FrameTiming timing() const;
    /// What the messages show of the count.
    std::uint32_t captured() const { return static_cast<std::uint32_t>(captured_); }

    CCamProc& proc_;
    CExCam& cam_;
    FrameClock& clock_;
    const std::uint32_t fNum_; ///< frames to retrieve, 0 = no limit
    const std::uint32_t statusEvery_;
    std::uint32_t grabStartUs_ = 0; ///< lower 32 bits
    std::uint32_t loops_ = 0;
    std::uint64_t captured_ = 0; ///< in a year more than 32 bits count, and the first is special
    std::uint32_t dropCntr_ = 0;
};

int GrabLoop::run()
{
    clock_ = FrameClock(proc_.framePeriodUs);
    takeTime(_S_gtv3);
    grabStartUs_ = static_cast<std::uint32_t>(microseconds(_S_gtv3));
    // A failure shows as failed retrievals.
    static_cast<void>(cam_.StartCapture());
    KxGi__ResetTermSigProc();
    return finish(grabGuarded());
}

/// Whether the camera is still there. Of one that is gone the library may throw even when asked.
bool isThere(CExCam& cam)
{
    try {
        return cam.IsConnected();
    } catch (const std::exception&) {
        return false;
    }
}

int GrabLoop::grabGuarded()
{
    try {
        Exit exitCode;
        while (!exitCode) {
            exitCode = iterate();
        }
        return *exitCode;
    } catch (const std::exception& exception) {
        if (isThere(cam_)) {
            KX_LOG_W_AS(kCaller, "An unhandled exception occured (%i): %s\n", kGrabFailed,
                        exception.what());
        } else {
            KX_LOG_W_AS(kCaller, "The device detach triggered an exception (%i): %s\n", kGrabFailed,
                        exception.what());
        }
        KX_LOG_I("grabbing is stopped\n");
    }
    return kGrabFailed;
}

int GrabLoop::finish(int exitCode)
{
    takeTime(_S_gtv2);
    KxGi__SetTermSigProc();
    if (fNum_ != 0 && exitCode == 0) {
        KxGi__SetNewCfgVendor();
        KxGi__SetNewCfgPlugin();
    }
    KX_LOG_I("...GRABBING IS DONE (captured %u frames of %u loops)\n", captured(), loops_);
    if (exitCode == 0) {
        proc_.ProcSetCamConfigEnd(&cam_);
    }
    KX_LOG_I("Profiling info for RetrieveResult() (sleeping is accounted), currPos=%u\n",
             _S_arProfResult.position);
    printRing(_S_arProfResult);
    KX_LOG_I("Profiling info for file writing (buffered), currPos=%u\n", _S_arProfWrite.position);
    printRing(_S_arProfWrite);
    difference(_S_gtv2, _S_gtv3);
    KX_LOG_I("Actual grabbing loop took: %llus %uus\n",
             static_cast<unsigned long long>(_S_gtvd.tv_sec),
             static_cast<unsigned int>(_S_gtvd.tv_usec));
    KX_LOG_I("grabbing loop is completed with exitCode =%u\n", static_cast<unsigned int>(exitCode));
    return exitCode;
}

GrabLoop::Exit GrabLoop::iterate()
{
    Image image;
    takeTime(_S_gtvr1);
    const Error error = cam_.RetrieveBuffer(&image);
    takeTime(_S_gtvr2);
    // At once: the first frame's latency is the distance of this clock to the frame's.
    unsigned int clockValue = 0;
    static_cast<void>(cam_.ReadRegister(proc_.clockRegister, &clockValue));
    ++loops_;
    _S_arProfResult.add(difference(_S_gtvr2, _S_gtvr1));
    countFps();
    proc_.ProcLookSignal();
    return error == PGRERROR_OK ? delivered(image, clockValue) : dropped(error);
}

// ---- A retrieval that failed.

GrabLoop::Exit GrabLoop::dropped(const Error& error)
{
    constexpr std::uint32_t kReportEvery = 1000;
    KxGi__HaltUpdate(static_cast<int>(proc_.roiWidth), temperature());
    ++dropCntr_;
    if (dropCntr_ % kReportEvery == 0 && isStalled(error)) {
        static_cast<void>(cam_.StopCapture());
        return kGrabFailed;
    }
    return {};
}

/// At every 1000th drop. Judges at every 5000th whether any frame came since the one before.
bool GrabLoop::isStalled(const Error& error)
{
    static std::uint32_t _s_loopsLast = 0;
    static std::uint32_t _s_dropCntrLast = 0;
    constexpr std::uint32_t kJudgeEvery = 5000;
    KX_LOG_W_AS(kCaller, "Frames Drop trigger: Loop_%u(ok_%u dropCntr_%u)\n", loops_, captured(),
                dropCntr_);
    if (dropCntr_ % kJudgeEvery == 0) {
        KX_LOG_W_AS(kCaller, "error description: %s\n", error.GetDescription());
        if (loops_ - _s_loopsLast <= dropCntr_ - _s_dropCntrLast) {
            return true;
        }
    }
    _s_loopsLast = loops_;
    _s_dropCntrLast = dropCntr_;
    return false;
}

float GrabLoop::temperature()
{
    constexpr float kUnknown = -321.0F;
    FlyCapture2::CameraStats stats;
    if (cam_.GetStats(&stats) != PGRERROR_OK) {
        return kUnknown;
    }
    return static_cast<float>(celsius(stats.temperature));
}

// ---- A frame that arrived.

GrabLoop::Exit GrabLoop::delivered(Image& image, std::uint32_t clockValue)
{
    constexpr int kCapturing = 4;
    KxGi__HaltStop(static_cast<int>(proc_.roiWidth), static_cast<int>(proc_.roiHeight),
                   temperature());
    if (captured_ % statusEvery_ == 0) {
        KxUtl__UpdateGrabState(kCapturing);
    }
    ++captured_;
    proc_.frameData = image.GetData();
    static_cast<void>(proc_.ProcSignalUsr(captured()));
    proc_.ProcDynamLut(&cam_);
    FrameTimes frame;
    frame.nowUs = microseconds(_S_gtvr2);
    frame.btsFStartUs = proc_.ProcFrameChunks(&cam_, &image);
    if (captured_ == 1) {
        initTiming(timing(), frame, clockValue);
    } else {
        exportFrame(image, timing(), frame);
    }

    bool stop = false;
    const int result = proc_.ProcSignal(&cam_, captured(), &stop);
    takeTime(_S_gtv2);
    const std::uint32_t totalUs = difference(_S_gtv2, _S_gtvr2);
    if (totalUs >= proc_.framePeriodUs) {
        KX_LOG_I("total time budget is over (%uus >= %uus), frame %llu\n", totalUs,
                 proc_.framePeriodUs, static_cast<unsigned long long>(clock_.frameTs));
    }
    clock_.finish(frame);
    if (stop) {
        return result;
    }
    if (fNum_ != 0 && captured_ >= fNum_) {
        static_cast<void>(cam_.StopCapture());
        return result;
    }
    return {};
}

/// What the configuration says about time, with this frame's exposure.
FrameTiming GrabLoop::timing() const
{
    return {proc_.framePeriodUs, proc_.resultingFps, proc_.tsOffsetUs, proc_.tsAdjNs,
            proc_.exposureUs};
}

/// The first frame only starts the clock; it is not exported.
void GrabLoop::initTiming(const FrameTiming& timing, const FrameTimes& frame,
                          std::uint32_t clockValue)
{
    const FrameClock::Start start = clock_.start(timing, frame, clockValue, grabStartUs_, loops_);
    KX_LOG_I("Init timings: latencyUs=%i, tsDiffAdjUs=%llu, diffCheck=%llu (btsFGotUs=%llu, "
             "btsFStartUs=%llu)\n",
             clock_.latencyUs, static_cast<unsigned long long>(clock_.tsDiffAdjUs),
             static_cast<unsigned long long>(clock_.diffCheck),
             static_cast<unsigned long long>(start.btsFGotUs),
             static_cast<unsigned long long>(frame.btsFStartUs));
    if (start.predicted) {
        announceNext(timing);
    }
}

void GrabLoop::exportFrame(Image& image, const FrameTiming& timing, const FrameTimes& frame)
{
    reportNewTiming(clock_.arrive(timing, frame, captured_), frame);
    publish(store(image));
    takeTime(_S_gtv2);
    const std::uint32_t sceneUs = difference(_S_gtv2, _S_gtvr2);
    if (sceneUs >= proc_.framePeriodUs) {
        KX_LOG_I("Loop_%u(%u): Scene %llu export time budget is over (%uus >= %uus)\n", captured(),
                 loops_, static_cast<unsigned long long>(clock_.frameTs), sceneUs,
                 proc_.framePeriodUs);
    }
    watchPace(timing, frame);
    predict(timing, frame);
}

void GrabLoop::reportNewTiming(const FrameClock::Arrival& arrival, const FrameTimes& frame) const
{
    if (arrival.wrapped) {
        KX_LOG_I("Loop_%u(%u): bTS wrap is detected: old %lluus, new %lluus\n", captured(), loops_,
                 static_cast<unsigned long long>(arrival.oldBtsUs),
                 static_cast<unsigned long long>(frame.btsFStartUs));
    }
    if (arrival.anchored) {
        KX_LOG_I("Loop_%u(%u): init TS trigger oldD=%llu, newD=%llu, oldFTS=%llu, newFTS=%llu\n",
                 captured(), loops_, static_cast<unsigned long long>(arrival.oldDiffUs),
                 static_cast<unsigned long long>(clock_.tsDiffAdjUs),
                 static_cast<unsigned long long>(arrival.oldFrameTs),
                 static_cast<unsigned long long>(clock_.frameTs));
    }
}

/// Converts the frame and hands it to the host. Returns the host's answer.
int GrabLoop::store(Image& image)
{
    proc_.pendingFrame[0] = proc_.frameData;
    proc_.ProcLoopConv(&image);
    takeTime(_S_gtv1);
    const int stored = proc_.ProcLoopMem(clock_.frameTs, static_cast<int>(proc_.storeMode));
    takeTime(_S_gtv2);
    const std::uint32_t storeUs = difference(_S_gtv2, _S_gtv1);
    _S_arProfWrite.add(storeUs);
    if (storeUs >= proc_.framePeriodUs) {
        KX_LOG_W_AS(kCaller, "Loop_%u(%u): Frame %llu export time budget is over (%uus >= %uus)\n",
                    captured(), loops_, static_cast<unsigned long long>(clock_.frameTs), storeUs,
                    proc_.framePeriodUs);
    }
    return stored;
}

/// Exports the frame's values, unless the host refused the frame.
void GrabLoop::publish(int stored)
{
    KxSc__SetParamVal(kKxScTimestampUs, &clock_.frameTs);
    if (stored != 0) {
        return;
    }
    const bool received = takeReceived();
    if (received) {
        KxSc__SetParamVal(kKxScRxData, &proc_.rxData);
        KxSc__SetParamVal(kKxScRxBits, &proc_.rxBits);
    }
    KxSc__ProcExport(clock_.frameTs);
    if (received) {
        clearReceived();
        KxSc__SetParamVal(kKxScRxBits, &proc_.rxBits);
    }
}

/// Copies the word that the control thread received, since a published value must not change under
/// the host. Returns whether there is one.
bool GrabLoop::takeReceived()
{
    const std::uint32_t bits = shared::look(cam_.rxBits);
    if (bits == 0) {
        return false;
    }
    proc_.rxBits = bits;
    proc_.rxData = shared::get(cam_.rxData);
    return true;
}

void GrabLoop::clearReceived()
{
    shared::set(cam_.rxData, 0);
    shared::handOver(cam_.rxBits, 0);
    proc_.rxData = 0;
    proc_.rxBits = 0;
}

void GrabLoop::watchPace(const FrameTiming& timing, const FrameTimes& frame)
{
    const FrameClock::Pace pace = clock_.watchPace(timing, frame);
    if (pace.fast.fired) {
        KX_LOG_I("Loop_%u(%u): cam is Fast (%uus < %uus), TS readjusting...\n", captured(), loops_,
                 static_cast<unsigned int>(pace.fast.delayUs),
                 static_cast<unsigned int>(pace.fast.limitUs));
    }
    if (pace.slow.fired) {
        KX_LOG_I("Loop_%u(%u): cam is Slow or frames delaying (%u >= %u), TS readjusting...\n",
                 captured(), loops_, static_cast<unsigned int>(pace.slow.delayUs),
                 static_cast<unsigned int>(pace.slow.limitUs));
    }
    if (pace.extraSlow.fired) {
        KX_LOG_W_AS(kCaller,
                    "Loop_%u(%u): cam is extra-Slow or frames delay (%u >= %u), "
                    "TS readjusting...\n",
                    captured(), loops_, static_cast<unsigned int>(pace.extraSlow.delayUs),
                    static_cast<unsigned int>(pace.extraSlow.limitUs));
    }
}

void GrabLoop::predict(const FrameTiming& timing, const FrameTimes& frame)
{
    const FrameClock::Prediction prediction = clock_.predict(timing, frame);
    if (prediction.overflow) {
        KX_LOG_I("Loop_%u(%u): sync adjust us value %i overflow protection trigger\n", captured(),
                 loops_, prediction.adjUs);
    }
    announceNext(timing);
}

/// Lets the host trigger its other grabbers in step.
void GrabLoop::announceNext(const FrameTiming& timing) const
{
    KxGi__CommTriggerAll(clock_.frameTs, timing.tsOffsetUs, timing.exposureUs);
}

/// Gives the host's frame memory to the camera. `bufferSize` becomes the distance of its slots.
bool attachBuffers(CExCam& cam, CBufferFactory& factory, unsigned int& bufferSize,
                   unsigned int bNum)
{
    auto* const buffers = static_cast<unsigned char*>(factory.GetBuffer(&bufferSize, bNum));
    const Error error =
        cam.SetUserBuffers(buffers, static_cast<int>(bufferSize), static_cast<int>(bNum));
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "SetUserBuffers error: %s (bufferFrameSize %u, bNum %u)\n",
                    error.GetDescription(), bufferSize, bNum);
        return false;
    }
    return true;
}

} // namespace

int CCamProc::ProcLoop(CExCam* cam, FlyCapture2::CameraInfo* info, CBufferFactory* factory)
{
    const std::uint32_t fNum = KxGiMainCtx__GetFnum();
    const std::uint32_t bNum = KxGiMainCtx__GetBnum();
    if (ProcSetCamConfig(cam, info, bNum) < 0) {
        KX_LOG_E("Device configuration error, finish loop\n");
        return kNotConfigured;
    }
    unsigned int bufferSize = gBufferFrameSize;
    ProcInitMem(cam, numBuffers);
    if (KxGiMem__IsFactoryUsed() != 0 && !attachBuffers(*cam, *factory, bufferSize, bNum)) {
        return kBuffersRefused;
    }
    GrabLoop loop(*this, *cam, fNum);
    KX_LOG_I("START GRABBING (bufferFrameSize %u, bNum %u, fNum %u, PID %u) ...\n", bufferSize,
             bNum, fNum, static_cast<unsigned int>(getpid()));
    return loop.run();
}

} // namespace KxPGrey
