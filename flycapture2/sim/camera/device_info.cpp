// The identity of a camera, as the SDK reports it.
#include "camera/device_info.h"

#include <algorithm>
#include <iterator>

namespace fcsim {

using FlyCapture2::CameraInfo;

namespace {

void copyText(char (&target)[512], const std::string& text)
{
    target[text.copy(target, sizeof target - 1)] = '\0';
}

FlyCapture2::DriverType driverOf(FlyCapture2::InterfaceType interface)
{
    switch (interface) {
    case FlyCapture2::INTERFACE_USB2:
        return FlyCapture2::DRIVER_USB_CAM;
    case FlyCapture2::INTERFACE_USB3:
        return FlyCapture2::DRIVER_USB3_PRO;
    case FlyCapture2::INTERFACE_GIGE:
        return FlyCapture2::DRIVER_GIGE_NONE;
    case FlyCapture2::INTERFACE_IEEE1394:
        return FlyCapture2::DRIVER_1394_JUJU;
    default:
        return FlyCapture2::DRIVER_UNKNOWN;
    }
}

FlyCapture2::BusSpeed speedOf(FlyCapture2::InterfaceType interface)
{
    switch (interface) {
    case FlyCapture2::INTERFACE_USB2:
        return FlyCapture2::BUSSPEED_S480;
    case FlyCapture2::INTERFACE_USB3:
        return FlyCapture2::BUSSPEED_S5000;
    case FlyCapture2::INTERFACE_GIGE:
        return FlyCapture2::BUSSPEED_1000BASE_T;
    case FlyCapture2::INTERFACE_IEEE1394:
        return FlyCapture2::BUSSPEED_S800;
    default:
        return FlyCapture2::BUSSPEED_SPEED_UNKNOWN;
    }
}

/// An address of these octets; like all of the SDK's records it takes no list of values.
template <typename Address, typename... Octets>
Address makeAddress(Octets... octets)
{
    const unsigned char values[] = {static_cast<unsigned char>(octets)...};
    Address address;
    static_assert(sizeof values == sizeof address.octets);
    std::copy(std::begin(values), std::end(values), address.octets);
    return address;
}

void setNetwork(CameraInfo& info, unsigned index)
{
    info.gigEMajorVersion = 1;
    info.gigEMinorVersion = 2;
    const auto host = static_cast<unsigned char>(index + 1);
    info.ipAddress = makeAddress<FlyCapture2::IPAddress>(169, 254, 0, host);
    info.subnetMask = makeAddress<FlyCapture2::IPAddress>(255, 255, 0, 0);
    const unsigned serial = info.serialNumber;
    // Locally administered: no maker's address.
    info.macAddress = makeAddress<FlyCapture2::MACAddress>(0x02, 0x00, serial >> 24U & 0xFFU,
                                                           serial >> 16U & 0xFFU,
                                                           serial >> 8U & 0xFFU, serial & 0xFFU);
}

} // namespace

CameraInfo makeCameraInfo(const CameraDescription& description, unsigned index)
{
    CameraInfo info;
    info.serialNumber = description.serial;
    info.interfaceType = description.interface;
    info.driverType = driverOf(description.interface);
    info.isColorCamera = description.sensor.colour;
    copyText(info.modelName, description.model);
    copyText(info.vendorName, description.vendor);
    copyText(info.sensorInfo, description.sensorInfo);
    copyText(info.sensorResolution, description.sensorResolution);
    copyText(info.driverName, "simulated");
    copyText(info.firmwareVersion, description.firmware);
    copyText(info.firmwareBuildTime, "Thu Jan  1 00:00:00 1970");
    info.maximumBusSpeed = speedOf(description.interface);
    info.bayerTileFormat = description.sensor.tile;
    info.nodeNumber = static_cast<unsigned short>(index);
    info.iidcVer = 132;
    if (description.interface == FlyCapture2::INTERFACE_GIGE) {
        setNetwork(info, index);
    }
    return info;
}

FlyCapture2::EmbeddedImageInfo makeEmbeddedInfo(const CameraDescription& description)
{
    FlyCapture2::EmbeddedImageInfo info;
    const auto items = embeddedItems(info);
    for (unsigned i = 0; i < kEmbeddedCount; ++i) {
        items[i]->available = description.embedded[i];
    }
    return info;
}

FlyCapture2::GigEStreamChannel makeStreamChannel(const CameraDescription& description)
{
    FlyCapture2::GigEStreamChannel channel;
    channel.hostPort = 0xC000;
    channel.doNotFragment = description.stream.doNotFragment;
    channel.packetSize = description.stream.packetSize;
    channel.interPacketDelay = description.stream.packetDelay;
    channel.destinationIpAddress = makeAddress<FlyCapture2::IPAddress>(169, 254, 255, 1);
    return channel;
}

} // namespace fcsim
