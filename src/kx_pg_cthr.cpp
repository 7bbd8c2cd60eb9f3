// The control thread: started in real time, its loop of 2 ms, and how it is stopped.
#include "kx_pg_cthr.h"

#include "kx_log.h"
#include "kx_pg_shared.h"

#include <exception>
#include <optional>

#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#define KX_LOG_TAG "KX_PG_CTHR"

namespace KxPGrey {

namespace {

constexpr int kPriority = 98;
constexpr useconds_t kLoopUs = 2000;
constexpr unsigned int kLoopsPerCheck = 250; ///< between two looks for the camera
constexpr useconds_t kStopPollUs = 10'000;
constexpr int kStopPolls = 40;

/// How a thread is scheduled.
struct Scheduling {
    int policy = 0;
    int priority = 0;
};

std::optional<Scheduling> schedulingOf(pthread_t thread)
{
    Scheduling scheduling;
    sched_param parameters = {};
    if (pthread_getschedparam(thread, &scheduling.policy, &parameters) != 0) {
        return std::nullopt;
    }
    scheduling.priority = parameters.sched_priority;
    return scheduling;
}

/// Creates a real-time thread; nothing when that is not allowed.
std::optional<pthread_t> createRealTime(void* (*body)(void*), void* argument)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    sched_param parameters = {};
    parameters.sched_priority = kPriority;
    pthread_attr_setschedpolicy(&attributes, SCHED_FIFO);
    pthread_attr_setinheritsched(&attributes, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedparam(&attributes, &parameters);
    pthread_t thread = {};
    const int error = pthread_create(&thread, &attributes, body, argument);
    pthread_attr_destroy(&attributes);
    return error == 0 ? std::optional(thread) : std::nullopt;
}

/// Before the thread is there, so no other thread can look.
void resetState(CExCam& cam)
{
    cam.lineCmdActive = kIoNone;
    cam.rxPinIndex = kIoNone;
    cam.ctrlThreadStarted = false;
    cam.ioDataActive = false;
    cam.ctrlThreadRunning = false;
    cam.lineCmdSent = false;
    cam.ctrlThreadStop = false;
    cam.ioCfgPending = false;
    cam.rxBits = 0;
}

/// Whether any record waits to be applied.
bool anyDirty(CExCam& cam)
{
    for (IoPinState& pin : cam.ioPinState) {
        if (shared::look(pin.cfgDirty) != 0) {
            return true;
        }
    }
    return false;
}

/// Applies what is pending. Records that the grab thread hands over while that is being done would
/// be forgotten with the flag.
void serveConfiguration(CExCam& cam)
{
    if (!shared::look(cam.ioCfgPending) || !CCamCtrlThread::DoGpioCfg(&cam)) {
        return;
    }
    shared::swap(cam.ioCfgPending, false);
    if (anyDirty(cam)) {
        shared::handOver(cam.ioCfgPending, true);
    }
}

void serveData(CExCam& cam)
{
    if (cam.ioDataActive && CCamCtrlThread::DoGpioProc(&cam)) {
        cam.ioDataActive = false;
    }
}

/// Whether the thread was told to stop; being told once ends it once.
bool takeStop(CExCam& cam)
{
    return shared::look(cam.ctrlThreadStop) && shared::swap(cam.ctrlThreadStop, false);
}

void runLoop(CExCam& cam)
{
    constexpr const char* kCaller = "CtrlThreadFunc";
    for (unsigned int loop = 1; !takeStop(cam); ++loop) {
        serveConfiguration(cam);
        serveData(cam);
        if (loop % kLoopsPerCheck == 0) {
            if (!cam.IsConnected()) {
                KX_LOG_I("device detach is detected by ctrl thread...\n");
                return;
            }
            KX_LOG_T_AS(kCaller, "ctrl thread is checking cam\n");
        }
        usleep(kLoopUs);
    }
}

} // namespace

CCamCtrlThread::CCamCtrlThread() = default;

CCamCtrlThread::~CCamCtrlThread()
{
    if (cam_ == nullptr || !cam_->ctrlThreadStarted || !cam_->ctrlThread) {
        return;
    }
    const bool running = shared::look(cam_->ctrlThreadRunning);
    if (running) {
        KX_LOG_I("Stopping grab ctrl thread...\n");
    }
    // Also for a thread that has not come to life yet: it must not start its loop then.
    shared::handOver(cam_->ctrlThreadStop, true);
    if (running) {
        int polls = kStopPolls;
        do {
            usleep(kStopPollUs);
        } while (--polls > 0 && shared::look(cam_->ctrlThreadRunning));
        if (shared::look(cam_->ctrlThreadRunning)) {
            KX_LOG_I("Cancelling grab ctrl thread...\n");
            pthread_cancel(*cam_->ctrlThread);
        }
    }
    pthread_join(*cam_->ctrlThread, nullptr);
    cam_->ctrlThread.reset();
}

void CCamCtrlThread::CtrlThreadStart(CExCam* camera)
{
    cam_ = camera;
    resetState(*camera);
    if (const auto own = schedulingOf(pthread_self())) {
        KX_LOG_I("grab ctrl thread default: policy=%i prio=%i\n", own->policy, own->priority);
    }
    KX_LOG_I("Creating ctrl thread...\n");
    camera->ctrlThread = createRealTime(CtrlThreadFunc, camera);
    camera->ctrlThreadStarted = true;
    if (!camera->ctrlThread) {
        return;
    }
    if (const auto its = schedulingOf(*camera->ctrlThread)) {
        KX_LOG_I("grab ctrl thread new: policy=%i prio=%i\n", its->policy, its->priority);
    }
}

void* CCamCtrlThread::CtrlThreadFunc(void* camera)
{
    auto& cam = *static_cast<CExCam*>(camera);
    shared::handOver(cam.ctrlThreadRunning, true);
    KX_LOG_I("starting device detach ctrl thread (PID %u)...\n",
             static_cast<unsigned int>(getpid()));
    try {
        runLoop(cam);
    } catch (const std::exception&) {
        // As the SDK does when a camera goes; the grab thread learns of it by itself. The unwinding
        // of a cancelled thread is none of these and passes.
    }
    KX_LOG_I("ctrl thread loop is done\n");
    shared::handOver(cam.ctrlThreadRunning, false);
    return nullptr;
}

} // namespace KxPGrey
