// What stands behind one camera object of the SDK: its connection to a camera on the bus.
#include "sdk/camera_session.h"

#include "base/sdk_error.h"
#include "base/sim_clock.h"
#include "camera/bus.h"

#include <string>

namespace fcsim {

using FlyCapture2::Error;

Device* CameraSession::connectedDevice() const
{
    Device* device = device_.load(std::memory_order_acquire);
    return device != nullptr && device->ownedBy(this) ? device : nullptr;
}

unsigned CameraSession::serialNumber() const
{
    const Device* device = connectedDevice();
    return device == nullptr ? 0 : device->description().serial;
}

void CameraSession::passRegisterTime()
{
    const Device* device = connectedDevice();
    if (device != nullptr && device->attached()) {
        passTime(device->registerUs());
    }
}

void CameraSession::detachCamera(std::uint64_t backAfterUs)
{
    if (Device* device = connectedDevice()) {
        const std::lock_guard lock(device->mutex());
        device->unplug({.afterUs = backAfterUs});
    }
}

bool CameraSession::connected() const
{
    const Device* device = connectedDevice();
    return device != nullptr && device->attached();
}

Error CameraSession::notConnected()
{
    return makeError(FlyCapture2::PGRERROR_NOT_CONNECTED, "the camera is not connected");
}

Error CameraSession::connect(const FlyCapture2::PGRGuid* guid)
{
    if (connected()) {
        return makeError(FlyCapture2::PGRERROR_FAILED,
                         "the object is already connected to a camera");
    }
    disconnect();
    Bus& bus = Bus::instance();
    const std::vector<Device*> cameras = bus.attached();
    Device* device = guid != nullptr   ? bus.find(*guid)
                     : cameras.empty() ? nullptr
                                       : cameras.front();
    if (device == nullptr) {
        return makeError(FlyCapture2::PGRERROR_NOT_FOUND, "there is no such camera on the bus");
    }
    if (gigEOnly_ && device->description().interface != FlyCapture2::INTERFACE_GIGE) {
        return makeError(FlyCapture2::PGRERROR_NOT_SUPPORTED, "the camera is no GigE camera");
    }
    if (!device->claim(this)) {
        return makeError(FlyCapture2::PGRERROR_FAILED_BUS_MASTER_CONNECTION,
                         "the camera with serial number " +
                             std::to_string(device->description().serial) +
                             " is already connected");
    }
    device_.store(device, std::memory_order_release);
    return success();
}

Error CameraSession::disconnect()
{
    Device* device = connectedDevice();
    device_.store(nullptr, std::memory_order_release);
    if (device == nullptr) {
        return notConnected();
    }
    const std::lock_guard lock(device->mutex());
    device->release();
    return success();
}

Error CameraSession::start()
{
    Device* device = connectedDevice();
    return device != nullptr && device->attached() ? device->capture().start() : notConnected();
}

void CameraSession::catchUp()
{
    if (Device* device = connectedDevice()) {
        device->capture().catchUp();
    }
}

Error CameraSession::retrieve(FlyCapture2::Image& image)
{
    Device* device = connectedDevice();
    if (device == nullptr) {
        return notConnected();
    }
    return device->capture().retrieve(image);
}

} // namespace fcsim
