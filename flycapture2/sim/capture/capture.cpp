// Capture on one camera: start, stop and buffers.
#include "capture/capture.h"

#include "base/sdk_error.h"
#include "camera/device.h"

#include <string>

namespace fcsim {

using FlyCapture2::Error;

namespace {

constexpr unsigned kDefaultBuffers = 10;

FlyCapture2::FC2Config defaultConfig()
{
    FlyCapture2::FC2Config config;
    config.numBuffers = kDefaultBuffers;
    config.numImageNotifications = 1;
    config.grabTimeout = FlyCapture2::TIMEOUT_INFINITE;
    config.grabMode = FlyCapture2::DROP_FRAMES;
    return config;
}

Error tooSmall(std::size_t size, std::size_t frameSize)
{
    return makeError(FlyCapture2::PGRERROR_BUFFER_TOO_SMALL,
                     "user buffers of " + std::to_string(size) +
                         " bytes are too small for frames of " + std::to_string(frameSize));
}

} // namespace

Capture::Capture(Device& device)
    : device_(device), config_(defaultConfig()), schedule_(device.description().delivery)
{}

Error Capture::start()
{
    {
        const std::lock_guard lock(device_.mutex());
        Error error = startable();
        if (error != FlyCapture2::PGRERROR_OK) {
            return error;
        }
    }
    const std::lock_guard turn(retrieving_);
    const std::lock_guard lock(device_.mutex());
    Error error = startable();
    if (error != FlyCapture2::PGRERROR_OK) {
        return error;
    }
    error = prepareScene();
    if (error == FlyCapture2::PGRERROR_OK) {
        begin();
    }
    return error;
}

Error Capture::startable() const
{
    if (running_) {
        return makeError(FlyCapture2::PGRERROR_ISOCH_ALREADY_STARTED, "capture is already started");
    }
    if (!device_.powered()) {
        return makeError(FlyCapture2::PGRERROR_ISOCH_START_FAILED, "the camera is powered down");
    }
    const std::size_t frameSize = device_.format7().frameSize();
    if (user_.memory != nullptr && user_.size < frameSize) {
        return tooSmall(user_.size, frameSize);
    }
    return success();
}

void Capture::begin()
{
    slots_ = user_.memory != nullptr
                 ? std::make_shared<FrameSlots>(user_.memory, user_.size, user_.count)
                 : std::make_shared<FrameSlots>(device_.format7().frameSize(), config_.numBuffers);
    truth_.prepare();
    pulses_.prepare();
    held_.clear();
    held_.reserve(slots_->count());
    next_ = 0;
    metered_ = 0;
    stalled_ = false;
    running_ = true;
    ++run_;
    schedule_.begin(Device::hostTime(), device_.frameSettings());
}

Error Capture::stop()
{
    if (!running_) {
        return makeError(FlyCapture2::PGRERROR_ISOCH_NOT_STARTED, "capture is not started");
    }
    running_ = false;
    slots_.reset();
    wake();
    return success();
}

Error Capture::setUserBuffers(std::uint8_t* memory, int size, int count)
{
    if (running_) {
        return makeError(FlyCapture2::PGRERROR_ISOCH_ALREADY_STARTED,
                         "user buffers cannot be set during capture");
    }
    if (memory == nullptr || size <= 0 || count <= 0) {
        return makeError(FlyCapture2::PGRERROR_INVALID_PARAMETER,
                         "user buffers: " + std::to_string(count) + " of " + std::to_string(size) +
                             " bytes" + (memory == nullptr ? " at a null address" : ""));
    }
    const std::size_t frameSize = device_.format7().frameSize();
    if (static_cast<std::size_t>(size) < frameSize) {
        return tooSmall(static_cast<std::size_t>(size), frameSize);
    }
    user_ = {memory, static_cast<std::size_t>(size), static_cast<unsigned>(count)};
    return success();
}

Error Capture::configure(const FlyCapture2::FC2Config& config)
{
    if (running_) {
        return makeError(FlyCapture2::PGRERROR_ISOCH_ALREADY_STARTED,
                         "the configuration cannot be set during capture");
    }
    if (config.grabTimeout < FlyCapture2::TIMEOUT_UNSPECIFIED || config.numBuffers > 10000) {
        return makeError(FlyCapture2::PGRERROR_INVALID_PARAMETER,
                         "configuration: grab time-out " + std::to_string(config.grabTimeout) +
                             ", " + std::to_string(config.numBuffers) + " buffers");
    }
    const FlyCapture2::FC2Config before = config_;
    config_ = config;
    if (config.numBuffers == 0) {
        config_.numBuffers = before.numBuffers;
    }
    if (config.grabTimeout == FlyCapture2::TIMEOUT_UNSPECIFIED) {
        config_.grabTimeout = before.grabTimeout;
    }
    if (config.grabMode == FlyCapture2::UNSPECIFIED_GRAB_MODE) {
        config_.grabMode = before.grabMode;
    }
    return success();
}

void Capture::disconnect()
{
    running_ = false;
    slots_.reset();
    user_ = UserMemory();
    config_ = defaultConfig();
    wake();
}

} // namespace fcsim
