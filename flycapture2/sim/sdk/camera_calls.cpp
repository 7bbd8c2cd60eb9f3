// The calls of camera objects: connection, identity, capture.
#include "sdk/camera_calls.h"

#include "sdk/call_text.h"

namespace fcsim {

using FlyCapture2::Error;

Error CameraCalls::nullArgument(const char* operation)
{
    return makeError(FlyCapture2::PGRERROR_INVALID_PARAMETER,
                     std::string(operation) + ": null argument");
}

Error CameraCalls::leftOut(const char* operation)
{
    return call(operation, Reach::library, true, noArguments, notImplemented);
}

Error CameraCalls::connectTo(const FlyCapture2::PGRGuid* guid)
{
    return call("Connect", Reach::library, true, noArguments, [&] { return connect(guid); });
}

Error CameraCalls::disconnectFrom()
{
    return call("Disconnect", Reach::library, true, noArguments, [&] { return disconnect(); });
}

bool CameraCalls::isConnected()
{
    const auto ask = [&] {
        return connected() ? success()
                           : makeError(FlyCapture2::PGRERROR_NOT_CONNECTED, "not connected");
    };
    return call("IsConnected", Reach::library, true, noArguments, ask) == FlyCapture2::PGRERROR_OK;
}

Error CameraCalls::getCameraInfo(FlyCapture2::CameraInfo* info)
{
    return camera("GetCameraInfo", info != nullptr, noArguments, [&](Device& device) {
        *info = device.cameraInfo();
        return success();
    });
}

Error CameraCalls::getStats(FlyCapture2::CameraStats* stats)
{
    return camera("GetStats", stats != nullptr, noArguments,
                  [&](Device& device) { return device.stats(*stats); });
}

Error CameraCalls::resetStats()
{
    return camera("ResetStats", true, noArguments, [](Device& device) {
        device.capture().resetLosses();
        return success();
    });
}

Error CameraCalls::startCapture(FlyCapture2::ImageEventCallback callback)
{
    if (callback != nullptr) {
        return leftOut("StartCapture"); // there is no thread that could call it
    }
    return call("StartCapture", Reach::camera, true, noArguments, [&] { return start(); });
}

Error CameraCalls::retrieveBuffer(FlyCapture2::Image* image)
{
    return call("RetrieveBuffer", Reach::library, image != nullptr, noArguments,
                [&] { return retrieve(*image); });
}

Error CameraCalls::stopCapture()
{
    return camera("StopCapture", true, noArguments,
                  [](Device& device) { return device.capture().stop(); });
}

Error CameraCalls::setUserBuffers(unsigned char* memory, int size, int count)
{
    const auto text = [&] {
        return "size=" + std::to_string(size) + " count=" + std::to_string(count);
    };
    return call("SetUserBuffers", Reach::library, true, text, [&] {
        return onDevice(
            [&](Device& device) { return device.capture().setUserBuffers(memory, size, count); });
    });
}

Error CameraCalls::getConfiguration(FlyCapture2::FC2Config* config)
{
    return camera("GetConfiguration", config != nullptr, noArguments, [&](Device& device) {
        *config = device.capture().configuration();
        return success();
    });
}

Error CameraCalls::setConfiguration(const FlyCapture2::FC2Config* config)
{
    return camera(
        "SetConfiguration", config != nullptr, [&] { return configText(*config); },
        [&](Device& device) { return device.capture().configure(*config); });
}

Error CameraCalls::getEmbeddedImageInfo(FlyCapture2::EmbeddedImageInfo* info)
{
    return camera("GetEmbeddedImageInfo", info != nullptr, noArguments, [&](Device& device) {
        *info = device.embedded();
        return success();
    });
}

Error CameraCalls::setEmbeddedImageInfo(const FlyCapture2::EmbeddedImageInfo* info)
{
    return camera(
        "SetEmbeddedImageInfo", info != nullptr, [&] { return embeddedText(*info); },
        [&](Device& device) {
            device.setEmbedded(*info);
            return success();
        });
}

} // namespace fcsim
