// The calls of camera objects: Format7 settings and stream channels.
#include "sdk/call_text.h"
#include "sdk/camera_calls.h"

namespace fcsim {

using FlyCapture2::Error;

Error CameraCalls::getFormat7Info(FlyCapture2::Format7Info* info, bool* supported)
{
    return camera(
        "GetFormat7Info", info != nullptr && supported != nullptr,
        [&] { return "mode=" + std::to_string(info->mode); },
        [&](Device& device) { return device.format7().info(*info, *supported); });
}

Error CameraCalls::validateFormat7Settings(const FlyCapture2::Format7ImageSettings* settings,
                                           bool* valid, FlyCapture2::Format7PacketInfo* packets)
{
    return camera(
        "ValidateFormat7Settings", settings != nullptr && valid != nullptr && packets != nullptr,
        [&] { return format7Text(*settings); },
        [&](Device& device) { return device.format7().validate(*settings, *valid, *packets); });
}

Error CameraCalls::getFormat7Configuration(FlyCapture2::Format7ImageSettings* settings,
                                           unsigned* packetSize, float* percentage)
{
    return camera(
        "GetFormat7Configuration",
        settings != nullptr && packetSize != nullptr && percentage != nullptr, noArguments,
        [&](Device& device) { return device.format7().get(*settings, *packetSize, *percentage); });
}

template <class Size>
Error CameraCalls::setFormat7(const FlyCapture2::Format7ImageSettings* settings, Size size)
{
    const auto text = [&] { return format7Text(*settings) + " packet=" + std::to_string(size); };
    return camera("SetFormat7Configuration", settings != nullptr, text, [&](Device& device) {
        if (device.capture().running()) {
            return makeError(FlyCapture2::PGRERROR_ISOCH_ALREADY_STARTED,
                             "Format7 settings cannot be changed during capture");
        }
        Error error = device.format7().set(*settings, size);
        if (error == FlyCapture2::PGRERROR_OK) {
            device.formatChanged();
        }
        return error;
    });
}

Error CameraCalls::setFormat7Configuration(const FlyCapture2::Format7ImageSettings* settings,
                                           unsigned packetSize)
{
    return setFormat7(settings, packetSize);
}

Error CameraCalls::setFormat7Configuration(const FlyCapture2::Format7ImageSettings* settings,
                                           float percentage)
{
    return setFormat7(settings, percentage);
}

namespace {

Error checkChannel(const Device& device, unsigned channel)
{
    if (channel < device.description().stream.count) {
        return success();
    }
    return makeError(FlyCapture2::PGRERROR_INVALID_PARAMETER,
                     "there is no stream channel " + std::to_string(channel));
}

} // namespace

Error CameraCalls::getNumStreamChannels(unsigned* count)
{
    return camera("GetNumStreamChannels", count != nullptr, noArguments, [&](Device& device) {
        *count = device.description().stream.count;
        return success();
    });
}

Error CameraCalls::getStreamChannel(unsigned channel, FlyCapture2::GigEStreamChannel* info)
{
    const auto text = [&] { return std::to_string(channel); };
    return camera("GetGigEStreamChannelInfo", info != nullptr, text, [&](Device& device) {
        Error error = checkChannel(device, channel);
        if (error == FlyCapture2::PGRERROR_OK) {
            *info = device.streamChannel();
        }
        return error;
    });
}

Error CameraCalls::setStreamChannel(unsigned channel, const FlyCapture2::GigEStreamChannel* info)
{
    const auto text = [&] {
        return std::to_string(channel) + " packetSize=" + std::to_string(info->packetSize) +
               " delay=" + std::to_string(info->interPacketDelay);
    };
    return camera("SetGigEStreamChannelInfo", info != nullptr, text, [&](Device& device) {
        Error error = checkChannel(device, channel);
        if (error == FlyCapture2::PGRERROR_OK) {
            device.streamChannel() = *info;
        }
        return error;
    });
}

} // namespace fcsim
