// Capture on one camera: which frames arrive, which are lost, which one a retrieval gets.
//
// There is no thread behind it. A retrieval works out what has happened since the one before, makes
// the picture that it delivers while the frame is still on its way, and sleeps until it arrives.
#ifndef FCSIM_CAPTURE_H
#define FCSIM_CAPTURE_H

#include "base/newest_ring.h"
#include "capture/frame_schedule.h"
#include "capture/frame_slots.h"
#include "control/sim_control.h"
#include "description/bus_description.h"
#include "scene/renderer.h"

#include <FlyCapture2.h>

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace fcsim {

class Device;

/// Frames that did not reach the program, as CameraStats counts them.
struct LossCounters {
    unsigned dropped = 0;      ///< all losses
    unsigned corrupt = 0;      ///< arrived incomplete
    unsigned transmission = 0; ///< lost on the way
    unsigned driver = 0;       ///< arrived, but nobody fetched them in time
};

/// The capture of a camera. Hold the camera's mutex for every call but `start`, `retrieve` and
/// `catchUp`, which take it.
class Capture {
public:
    explicit Capture(Device& device);

    /// Begins a capture. The first one makes the scene ready, which takes tens of milliseconds.
    FlyCapture2::Error start();
    FlyCapture2::Error stop();
    /// Waits for the next frame and puts it into `image`. One thread at a time; others queue up.
    /// Throws std::runtime_error when the camera is detached and its description says so.
    FlyCapture2::Error retrieve(FlyCapture2::Image& image);
    FlyCapture2::Error setUserBuffers(std::uint8_t* memory, int size, int count);
    const FlyCapture2::FC2Config& configuration() const { return config_; }
    FlyCapture2::Error configure(const FlyCapture2::FC2Config& config);

    /// Ends the capture and forgets configuration and user buffers.
    void disconnect();
    /// What frames are taken with has changed: it concerns the frames that start after now, and
    /// without pacing the next one that is retrieved.
    void settingsChanged();
    /// Works out what has happened until now, unless a retrieval is about it.
    void catchUp();
    /// Ends a wait for a frame when the camera was stopped or detached meanwhile.
    void wake() { changed_.notify_all(); }
    bool running() const { return running_; }

    const LossCounters& losses() const { return losses_; }
    void resetLosses() { losses_ = LossCounters(); }
    std::vector<FrameTruth> takeTruth() { return truth_.take(); }
    std::vector<StrobePulse> takeStrobePulses() { return pulses_.take(); }

private:
    using Lock = std::unique_lock<std::mutex>;

    struct UserMemory {
        std::uint8_t* memory = nullptr;
        std::size_t size = 0;
        unsigned count = 0;
    };
    FlyCapture2::Error startable() const;
    FlyCapture2::Error prepareScene();
    void begin();
    FlyCapture2::Error ready() const;
    void admitArrived(double nowUs);
    // Those that take the lock release it for a while, and return false when the capture ended.
    bool follow(Lock& lock, double nowUs);
    bool meterBefore(Lock& lock, std::uint64_t number);
    bool meter(Lock& lock, std::uint64_t number);
    bool findNext(Lock& lock, double deadlineUs, std::optional<ScheduledFrame>& next);
    double meanLevel(const FrameRequest& request);
    FrameRequest requestFor(std::uint64_t number, const SensorState& state) const;
    bool paced() const;
    bool admit(std::uint64_t number);
    void strobe(std::uint64_t number);
    void hold(std::uint64_t number);
    const FrameFault* faultOf(std::uint64_t number, FrameFaultKind kind) const;
    bool isSpent(const FrameFault& fault) const;
    FlyCapture2::Error timedOut(Lock& lock, double deadlineUs);
    FlyCapture2::Error deliver(Lock& lock, FlyCapture2::Image& image, const ScheduledFrame& frame);
    std::optional<FlyCapture2::Error> failDelivery(std::uint64_t number);
    FrameView makeView(const ScheduledFrame& frame, unsigned slot);
    FlyCapture2::ImageMetadata metadataOf(const ScheduledFrame& frame) const;
    FlyCapture2::Error render(const FrameRequest& request, std::uint8_t* out);
    bool waitUntil(Lock& lock, double hostUs);
    FlyCapture2::Error detached() const;
    double deadline(double nowUs) const;

    Device& device_;
    std::mutex retrieving_; ///< taken before the camera's mutex; guards the renderer
    std::condition_variable changed_;
    std::unique_ptr<Renderer> renderer_;

    FlyCapture2::FC2Config config_;
    UserMemory user_;
    bool running_ = false;
    std::uint64_t run_ = 0; ///< counts starts, so that a wait notices a stop and new start
    std::shared_ptr<FrameSlots> slots_;
    FrameSchedule schedule_;
    std::uint64_t next_ = 0;           ///< first frame that was not admitted yet
    std::uint64_t metered_ = 0;        ///< first frame that the automatic functions have not seen
    std::vector<ScheduledFrame> held_; ///< arrived and not fetched, oldest first
    bool stalled_ = false;
    LossCounters losses_;
    std::map<const FrameFault*, unsigned> detaches_; ///< how often each fault has happened
    NewestRing<FrameTruth, 65536> truth_;
    NewestRing<StrobePulse, 16384> pulses_;
};

} // namespace fcsim

#endif
