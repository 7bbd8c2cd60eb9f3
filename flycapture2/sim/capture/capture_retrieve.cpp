// Capture on one camera: what one retrieval does.
#include "base/sdk_error.h"
#include "base/sim_clock.h"
#include "camera/device.h"
#include "capture/capture.h"
#include "capture/write_alias.h"
#include "control/sim_control.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace fcsim {

using FlyCapture2::Error;

Error Capture::ready() const
{
    if (!running_) {
        return makeError(FlyCapture2::PGRERROR_ISOCH_NOT_STARTED, "capture is not started");
    }
    return device_.attached() ? success() : detached();
}

Error Capture::detached() const
{
    const std::string& exception = device_.description().detachException;
    if (!exception.empty()) {
        throw std::runtime_error(exception);
    }
    return makeError(FlyCapture2::PGRERROR_NOT_CONNECTED, "the camera has left the bus");
}

Error Capture::retrieve(FlyCapture2::Image& image)
{
    const std::lock_guard turn(retrieving_);
    Lock lock(device_.mutex());
    Error error = ready();
    if (error != FlyCapture2::PGRERROR_OK) {
        return error;
    }
    device_.gpio().catchUp(nowUs()); // so that a box's text log follows soon
    const double now = Device::hostTime();
    const double deadlineUs = deadline(now);
    std::optional<ScheduledFrame> frame;
    if (!follow(lock, now) || !findNext(lock, deadlineUs, frame)) {
        return ready();
    }
    return frame ? deliver(lock, image, *frame) : timedOut(lock, deadlineUs);
}

double Capture::deadline(double nowUs) const
{
    return config_.grabTimeout == FlyCapture2::TIMEOUT_INFINITE
               ? std::numeric_limits<double>::infinity()
               : nowUs + 1000.0 * config_.grabTimeout;
}

Error Capture::timedOut(Lock& lock, double deadlineUs)
{
    if (!waitUntil(lock, deadlineUs)) {
        return ready();
    }
    return makeError(FlyCapture2::PGRERROR_TIMEOUT, "no frame within the grab time-out of " +
                                                        std::to_string(config_.grabTimeout) +
                                                        " ms");
}

Error Capture::deliver(Lock& lock, FlyCapture2::Image& image, const ScheduledFrame& frame)
{
    std::optional<unsigned> slot = slots_->take();
    if (!slot) {
        attachFrame(image, FrameView()); // the image may hold the one that is needed
        slot = slots_->take();
    }
    if (!slot) {
        ++losses_.dropped;
        ++losses_.driver;
        return makeError(FlyCapture2::PGRERROR_ISOCH_RETRIEVE_BUFFER_FAILED,
                         "all " + std::to_string(slots_->count()) + " buffers are held by images");
    }
    const FrameView view = makeView(frame, *slot);
    const FrameRequest request = requestFor(frame.number, frame.settings.state);
    lock.unlock();
    const Error rendered = render(request, writableAddress(view.data));
    lock.lock();
    std::optional<Error> failure;
    if (rendered != FlyCapture2::PGRERROR_OK) {
        failure = rendered;
    } else if (paced() && !waitUntil(lock, frame.times.arrivalUs)) {
        failure = ready();
    } else {
        failure = failDelivery(frame.number);
    }
    if (failure) {
        view.owner->releaseSlot(*slot);
        return *failure;
    }
    truth_.add({frame.number, wallTime(frame.times.startUs), wallTime(frame.times.arrivalUs),
                static_cast<std::uint32_t>(std::lround(frame.settings.exposureUs)),
                frame.settings.state.gainDb});
    lock.unlock();
    attachFrame(image, view);
    return success();
}

std::optional<Error> Capture::failDelivery(std::uint64_t number)
{
    if (const FrameFault* fault = faultOf(number, FrameFaultKind::detach)) {
        ++detaches_[fault];
        device_.unplug(fault->comesBack);
        return detached();
    }
    if (const FrameFault* fault = faultOf(number, FrameFaultKind::error)) {
        ++losses_.dropped;
        return makeError(FlyCapture2::PGRERROR_ISOCH_RETRIEVE_BUFFER_FAILED,
                         fault->text.empty() ? "simulated retrieval error" : fault->text);
    }
    if (faultOf(number, FrameFaultKind::corrupt) != nullptr) {
        ++losses_.dropped;
        ++losses_.corrupt;
        return makeError(FlyCapture2::PGRERROR_IMAGE_CONSISTENCY_ERROR,
                         "simulated consistency error: part of the frame is missing");
    }
    return std::nullopt;
}

FrameView Capture::makeView(const ScheduledFrame& frame, unsigned slot)
{
    const FlyCapture2::Format7ImageSettings& format = device_.format7().settings();
    FrameView view;
    view.rows = format.height;
    view.cols = format.width;
    view.stride = static_cast<unsigned>(packedRowSize(format.pixelFormat, format.width));
    view.format = format.pixelFormat;
    view.tile = isRawFormat(format.pixelFormat) ? device_.tile() : FlyCapture2::NONE;
    view.data = slots_->address(slot);
    view.dataSize = static_cast<unsigned>(device_.format7().frameSize());
    view.receivedDataSize = view.dataSize;
    if (device_.embedded().timestamp.available) {
        view.timeStamp = timeStampOf(device_.cycleTime(frame.times.startUs));
    }
    view.metadata = metadataOf(frame);
    view.blockId = static_cast<unsigned>(frame.number);
    view.owner = slots_;
    view.slot = slot;
    return view;
}

FlyCapture2::ImageMetadata Capture::metadataOf(const ScheduledFrame& frame) const
{
    const FlyCapture2::EmbeddedImageInfo& embedded = device_.embedded();
    FlyCapture2::ImageMetadata metadata;
    if (embedded.timestamp.onOff) {
        metadata.embeddedTimeStamp = packCycleTime(device_.cycleTime(frame.times.startUs));
    }
    if (embedded.gain.onOff) {
        metadata.embeddedGain = frame.settings.gainRaw;
    }
    if (embedded.shutter.onOff) {
        metadata.embeddedShutter = frame.settings.shutterRaw;
    }
    if (embedded.frameCounter.onOff) {
        const FrameFault* fault = faultOf(frame.number, FrameFaultKind::counter);
        const std::int64_t error = fault == nullptr ? 0 : std::llround(fault->amount);
        metadata.embeddedFrameCounter =
            static_cast<unsigned>(frame.number) + static_cast<unsigned>(error);
    }
    if (embedded.ROIPosition.onOff) {
        const FlyCapture2::Format7ImageSettings& format = device_.format7().settings();
        metadata.embeddedROIPosition = format.offsetX << 16U | format.offsetY;
    }
    return metadata;
}

Error Capture::prepareScene()
{
    const CameraDescription& camera = device_.description();
    if (renderer_ || camera.scene.kind == SceneKind::none) {
        return success();
    }
    renderer_ = std::make_unique<Renderer>(camera.scene, camera.sensor);
    std::vector<std::uint8_t> trial(device_.format7().frameSize());
    return render(requestFor(0, device_.frameSettings().state), trial.data());
}

FrameRequest Capture::requestFor(std::uint64_t number, const SensorState& state) const
{
    const FlyCapture2::Format7ImageSettings& region = device_.format7().settings();
    FrameRequest request;
    request.format = region.pixelFormat;
    request.offsetX = region.offsetX & ~1U; // whole tiles of the colour filter
    request.offsetY = region.offsetY & ~1U;
    request.width = region.width;
    request.height = region.height;
    request.number = number;
    request.state = state;
    return request;
}

Error Capture::render(const FrameRequest& request, std::uint8_t* out)
{
    if (!renderer_) {
        return success();
    }
    try {
        renderer_->render(request, out);
    } catch (const SceneError& error) {
        return makeError(FlyCapture2::PGRERROR_FAILED, error.what());
    }
    return success();
}

double Capture::meanLevel(const FrameRequest& request)
{
    if (!renderer_) {
        return 0; // no scene, no light
    }
    try {
        return renderer_->exposedMean(request);
    } catch (const SceneError&) {
        return 0; // the retrieval of the frame tells what is wrong
    }
}

bool Capture::waitUntil(Lock& lock, double hostUs)
{
    const std::uint64_t run = run_;
    const auto undisturbed = [&] { return running_ && run_ == run && device_.attached(); };
    if (std::isinf(hostUs)) {
        // Nothing will ever arrive, and by hand there is no time to wait for.
        changed_.wait(lock, [&] { return !undisturbed() || clockIsManual(); });
        return undisturbed();
    }
    const auto whole = static_cast<std::uint64_t>(std::llround(std::ceil(hostUs)));
    const std::uint64_t wakeUp = clockEpochUs() + whole;
    if (clockIsManual()) {
        moveClockTo(wakeUp);
        return undisturbed();
    }
    const std::chrono::system_clock::time_point at{std::chrono::microseconds(wakeUp)};
    changed_.wait_until(lock, at, [&] { return !undisturbed(); });
    return undisturbed();
}

} // namespace fcsim
