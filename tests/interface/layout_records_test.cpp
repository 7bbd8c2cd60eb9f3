// Pins size, alignment and field offsets of the records that cross the camera library's interface.
#include <FlyCapture2.h>

#include <cstddef>
#include <type_traits>

namespace FlyCapture2 {

/// Plain data, passed in registers where it is small, so neither copy nor end may have code.
template <typename Record>
constexpr bool hasShape(std::size_t size, std::size_t alignment)
{
    return sizeof(Record) == size && alignof(Record) == alignment &&
           std::is_trivially_copyable_v<Record> && std::is_standard_layout_v<Record>;
}

/// Offset of a field, by name.
#define KX_AT(record, field, offset) static_assert(offsetof(record, field) == (offset))

static_assert(hasShape<PGRGuid>(16, 4));
KX_AT(PGRGuid, value, 0);

static_assert(hasShape<IPAddress>(4, 1));
KX_AT(IPAddress, octets, 0);

static_assert(hasShape<MACAddress>(6, 1));
KX_AT(MACAddress, octets, 0);

static_assert(hasShape<ConfigROM>(616, 4));
KX_AT(ConfigROM, nodeVendorId, 0);
KX_AT(ConfigROM, chipIdHi, 4);
KX_AT(ConfigROM, chipIdLo, 8);
KX_AT(ConfigROM, unitSpecId, 12);
KX_AT(ConfigROM, unitSWVer, 16);
KX_AT(ConfigROM, unitSubSWVer, 20);
KX_AT(ConfigROM, vendorUniqueInfo_0, 24);
KX_AT(ConfigROM, vendorUniqueInfo_1, 28);
KX_AT(ConfigROM, vendorUniqueInfo_2, 32);
KX_AT(ConfigROM, vendorUniqueInfo_3, 36);
KX_AT(ConfigROM, pszKeyword, 40);
KX_AT(ConfigROM, reserved, 552);

static_assert(hasShape<TimeStamp>(56, 8));
KX_AT(TimeStamp, seconds, 0);
KX_AT(TimeStamp, microSeconds, 8);
KX_AT(TimeStamp, cycleSeconds, 12);
KX_AT(TimeStamp, cycleCount, 16);
KX_AT(TimeStamp, cycleOffset, 20);
KX_AT(TimeStamp, reserved, 24);

static_assert(hasShape<GigEProperty>(20, 4));
KX_AT(GigEProperty, propType, 0);
KX_AT(GigEProperty, isReadable, 4);
KX_AT(GigEProperty, isWritable, 5);
KX_AT(GigEProperty, min, 8);
KX_AT(GigEProperty, max, 12);
KX_AT(GigEProperty, value, 16);

static_assert(hasShape<GigEStreamChannel>(28, 4));
KX_AT(GigEStreamChannel, networkInterfaceIndex, 0);
KX_AT(GigEStreamChannel, hostPort, 4);
KX_AT(GigEStreamChannel, doNotFragment, 8);
KX_AT(GigEStreamChannel, packetSize, 12);
KX_AT(GigEStreamChannel, interPacketDelay, 16);
KX_AT(GigEStreamChannel, destinationIpAddress, 20);
KX_AT(GigEStreamChannel, sourcePort, 24);

static_assert(hasShape<EventOptions>(32, 8));
KX_AT(EventOptions, EventCallbackFcn, 0);
KX_AT(EventOptions, EventName, 8);
KX_AT(EventOptions, EventUserData, 16);
KX_AT(EventOptions, EventUserDataSize, 24);

static_assert(hasShape<EventCallbackData>(56, 8));
KX_AT(EventCallbackData, EventUserData, 0);
KX_AT(EventCallbackData, EventUserDataSize, 8);
KX_AT(EventCallbackData, EventName, 16);
KX_AT(EventCallbackData, EventID, 24);
KX_AT(EventCallbackData, EventTimestamp, 32);
KX_AT(EventCallbackData, EventData, 40);
KX_AT(EventCallbackData, EventDataSize, 48);

static_assert(hasShape<GigEConfig>(12, 4));
KX_AT(GigEConfig, enablePacketResend, 0);
KX_AT(GigEConfig, registerTimeoutRetries, 4);
KX_AT(GigEConfig, registerTimeout, 8);

static_assert(hasShape<GigEImageSettingsInfo>(96, 4));
KX_AT(GigEImageSettingsInfo, maxWidth, 0);
KX_AT(GigEImageSettingsInfo, maxHeight, 4);
KX_AT(GigEImageSettingsInfo, offsetHStepSize, 8);
KX_AT(GigEImageSettingsInfo, offsetVStepSize, 12);
KX_AT(GigEImageSettingsInfo, imageHStepSize, 16);
KX_AT(GigEImageSettingsInfo, imageVStepSize, 20);
KX_AT(GigEImageSettingsInfo, pixelFormatBitField, 24);
KX_AT(GigEImageSettingsInfo, vendorPixelFormatBitField, 28);
KX_AT(GigEImageSettingsInfo, reserved, 32);

static_assert(hasShape<GigEImageSettings>(52, 4));
KX_AT(GigEImageSettings, offsetX, 0);
KX_AT(GigEImageSettings, offsetY, 4);
KX_AT(GigEImageSettings, width, 8);
KX_AT(GigEImageSettings, height, 12);
KX_AT(GigEImageSettings, pixelFormat, 16);
KX_AT(GigEImageSettings, reserved, 20);

static_assert(hasShape<Format7ImageSettings>(56, 4));
KX_AT(Format7ImageSettings, mode, 0);
KX_AT(Format7ImageSettings, offsetX, 4);
KX_AT(Format7ImageSettings, offsetY, 8);
KX_AT(Format7ImageSettings, width, 12);
KX_AT(Format7ImageSettings, height, 16);
KX_AT(Format7ImageSettings, pixelFormat, 20);
KX_AT(Format7ImageSettings, reserved, 24);

static_assert(hasShape<Format7Info>(116, 4));
KX_AT(Format7Info, mode, 0);
KX_AT(Format7Info, maxWidth, 4);
KX_AT(Format7Info, maxHeight, 8);
KX_AT(Format7Info, offsetHStepSize, 12);
KX_AT(Format7Info, offsetVStepSize, 16);
KX_AT(Format7Info, imageHStepSize, 20);
KX_AT(Format7Info, imageVStepSize, 24);
KX_AT(Format7Info, pixelFormatBitField, 28);
KX_AT(Format7Info, vendorPixelFormatBitField, 32);
KX_AT(Format7Info, packetSize, 36);
KX_AT(Format7Info, minPacketSize, 40);
KX_AT(Format7Info, maxPacketSize, 44);
KX_AT(Format7Info, percentage, 48);
KX_AT(Format7Info, reserved, 52);

static_assert(hasShape<Format7PacketInfo>(44, 4));
KX_AT(Format7PacketInfo, recommendedBytesPerPacket, 0);
KX_AT(Format7PacketInfo, maxBytesPerPacket, 4);
KX_AT(Format7PacketInfo, unitBytesPerPacket, 8);
KX_AT(Format7PacketInfo, reserved, 12);

static_assert(hasShape<FC2Config>(108, 4));
KX_AT(FC2Config, numBuffers, 0);
KX_AT(FC2Config, numImageNotifications, 4);
KX_AT(FC2Config, minNumImageNotifications, 8);
KX_AT(FC2Config, grabTimeout, 12);
KX_AT(FC2Config, grabMode, 16);
KX_AT(FC2Config, highPerformanceRetrieveBuffer, 20);
KX_AT(FC2Config, isochBusSpeed, 24);
KX_AT(FC2Config, asyncBusSpeed, 28);
KX_AT(FC2Config, bandwidthAllocation, 32);
KX_AT(FC2Config, registerTimeoutRetries, 36);
KX_AT(FC2Config, registerTimeout, 40);
KX_AT(FC2Config, reserved, 44);

static_assert(hasShape<PropertyInfo>(1084, 4));
KX_AT(PropertyInfo, type, 0);
KX_AT(PropertyInfo, present, 4);
KX_AT(PropertyInfo, autoSupported, 5);
KX_AT(PropertyInfo, manualSupported, 6);
KX_AT(PropertyInfo, onOffSupported, 7);
KX_AT(PropertyInfo, onePushSupported, 8);
KX_AT(PropertyInfo, absValSupported, 9);
KX_AT(PropertyInfo, readOutSupported, 10);
KX_AT(PropertyInfo, min, 12);
KX_AT(PropertyInfo, max, 16);
KX_AT(PropertyInfo, absMin, 20);
KX_AT(PropertyInfo, absMax, 24);
KX_AT(PropertyInfo, pUnits, 28);
KX_AT(PropertyInfo, pUnitAbbr, 540);
KX_AT(PropertyInfo, reserved, 1052);

static_assert(hasShape<Property>(56, 4));
KX_AT(Property, type, 0);
KX_AT(Property, present, 4);
KX_AT(Property, absControl, 5);
KX_AT(Property, onePush, 6);
KX_AT(Property, onOff, 7);
KX_AT(Property, autoManualMode, 8);
KX_AT(Property, valueA, 12);
KX_AT(Property, valueB, 16);
KX_AT(Property, absValue, 20);
KX_AT(Property, reserved, 24);

static_assert(hasShape<TriggerModeInfo>(52, 4));
KX_AT(TriggerModeInfo, present, 0);
KX_AT(TriggerModeInfo, readOutSupported, 1);
KX_AT(TriggerModeInfo, onOffSupported, 2);
KX_AT(TriggerModeInfo, polaritySupported, 3);
KX_AT(TriggerModeInfo, valueReadable, 4);
KX_AT(TriggerModeInfo, sourceMask, 8);
KX_AT(TriggerModeInfo, softwareTriggerSupported, 12);
KX_AT(TriggerModeInfo, modeMask, 16);
KX_AT(TriggerModeInfo, reserved, 20);

static_assert(hasShape<TriggerMode>(52, 4));
KX_AT(TriggerMode, onOff, 0);
KX_AT(TriggerMode, polarity, 4);
KX_AT(TriggerMode, source, 8);
KX_AT(TriggerMode, mode, 12);
KX_AT(TriggerMode, parameter, 16);
KX_AT(TriggerMode, reserved, 20);

static_assert(hasShape<StrobeInfo>(48, 4));
KX_AT(StrobeInfo, source, 0);
KX_AT(StrobeInfo, present, 4);
KX_AT(StrobeInfo, readOutSupported, 5);
KX_AT(StrobeInfo, onOffSupported, 6);
KX_AT(StrobeInfo, polaritySupported, 7);
KX_AT(StrobeInfo, minValue, 8);
KX_AT(StrobeInfo, maxValue, 12);
KX_AT(StrobeInfo, reserved, 16);

static_assert(hasShape<StrobeControl>(52, 4));
KX_AT(StrobeControl, source, 0);
KX_AT(StrobeControl, onOff, 4);
KX_AT(StrobeControl, polarity, 8);
KX_AT(StrobeControl, delay, 12);
KX_AT(StrobeControl, duration, 16);
KX_AT(StrobeControl, reserved, 20);

static_assert(hasShape<CameraInfo>(5876, 4));
KX_AT(CameraInfo, serialNumber, 0);
KX_AT(CameraInfo, interfaceType, 4);
KX_AT(CameraInfo, driverType, 8);
KX_AT(CameraInfo, isColorCamera, 12);
KX_AT(CameraInfo, modelName, 13);
KX_AT(CameraInfo, vendorName, 525);
KX_AT(CameraInfo, sensorInfo, 1037);
KX_AT(CameraInfo, sensorResolution, 1549);
KX_AT(CameraInfo, driverName, 2061);
KX_AT(CameraInfo, firmwareVersion, 2573);
KX_AT(CameraInfo, firmwareBuildTime, 3085);
KX_AT(CameraInfo, maximumBusSpeed, 3600);
KX_AT(CameraInfo, bayerTileFormat, 3604);
KX_AT(CameraInfo, busNumber, 3608);
KX_AT(CameraInfo, nodeNumber, 3610);
KX_AT(CameraInfo, pcieBusSpeed, 3612);
KX_AT(CameraInfo, iidcVer, 3616);
KX_AT(CameraInfo, configROM, 3620);
KX_AT(CameraInfo, gigEMajorVersion, 4236);
KX_AT(CameraInfo, gigEMinorVersion, 4240);
KX_AT(CameraInfo, userDefinedName, 4244);
KX_AT(CameraInfo, xmlURL1, 4756);
KX_AT(CameraInfo, xmlURL2, 5268);
KX_AT(CameraInfo, macAddress, 5780);
KX_AT(CameraInfo, ipAddress, 5786);
KX_AT(CameraInfo, subnetMask, 5790);
KX_AT(CameraInfo, defaultGateway, 5794);
KX_AT(CameraInfo, ccpStatus, 5800);
KX_AT(CameraInfo, applicationIPAddress, 5804);
KX_AT(CameraInfo, applicationPort, 5808);
KX_AT(CameraInfo, reserved, 5812);

static_assert(hasShape<EmbeddedImageInfoProperty>(2, 1));
KX_AT(EmbeddedImageInfoProperty, available, 0);
KX_AT(EmbeddedImageInfoProperty, onOff, 1);

static_assert(hasShape<EmbeddedImageInfo>(20, 1));
KX_AT(EmbeddedImageInfo, timestamp, 0);
KX_AT(EmbeddedImageInfo, gain, 2);
KX_AT(EmbeddedImageInfo, shutter, 4);
KX_AT(EmbeddedImageInfo, brightness, 6);
KX_AT(EmbeddedImageInfo, exposure, 8);
KX_AT(EmbeddedImageInfo, whiteBalance, 10);
KX_AT(EmbeddedImageInfo, frameCounter, 12);
KX_AT(EmbeddedImageInfo, strobePattern, 14);
KX_AT(EmbeddedImageInfo, GPIOPinState, 16);
KX_AT(EmbeddedImageInfo, ROIPosition, 18);

static_assert(hasShape<ImageMetadata>(164, 4));
KX_AT(ImageMetadata, embeddedTimeStamp, 0);
KX_AT(ImageMetadata, embeddedGain, 4);
KX_AT(ImageMetadata, embeddedShutter, 8);
KX_AT(ImageMetadata, embeddedBrightness, 12);
KX_AT(ImageMetadata, embeddedExposure, 16);
KX_AT(ImageMetadata, embeddedWhiteBalance, 20);
KX_AT(ImageMetadata, embeddedFrameCounter, 24);
KX_AT(ImageMetadata, embeddedStrobePattern, 28);
KX_AT(ImageMetadata, embeddedGPIOPinState, 32);
KX_AT(ImageMetadata, embeddedROIPosition, 36);
KX_AT(ImageMetadata, reserved, 40);

static_assert(hasShape<LUTData>(56, 4));
KX_AT(LUTData, supported, 0);
KX_AT(LUTData, enabled, 1);
KX_AT(LUTData, numBanks, 4);
KX_AT(LUTData, numChannels, 8);
KX_AT(LUTData, inputBitDepth, 12);
KX_AT(LUTData, outputBitDepth, 16);
KX_AT(LUTData, numEntries, 20);
KX_AT(LUTData, reserved, 24);

static_assert(hasShape<CameraStats>(248, 8));
KX_AT(CameraStats, imageDropped, 0);
KX_AT(CameraStats, imageCorrupt, 4);
KX_AT(CameraStats, imageXmitFailed, 8);
KX_AT(CameraStats, imageDriverDropped, 12);
KX_AT(CameraStats, regReadFailed, 16);
KX_AT(CameraStats, regWriteFailed, 20);
KX_AT(CameraStats, portErrors, 24);
KX_AT(CameraStats, cameraPowerUp, 28);
KX_AT(CameraStats, cameraVoltages, 32);
KX_AT(CameraStats, numVoltages, 64);
KX_AT(CameraStats, cameraCurrents, 68);
KX_AT(CameraStats, numCurrents, 100);
KX_AT(CameraStats, temperature, 104);
KX_AT(CameraStats, timeSinceInitialization, 108);
KX_AT(CameraStats, timeSinceBusReset, 112);
KX_AT(CameraStats, timeStamp, 120);
KX_AT(CameraStats, numResendPacketsRequested, 176);
KX_AT(CameraStats, numResendPacketsReceived, 180);
KX_AT(CameraStats, reserved, 184);

static_assert(sizeof(Error) == 24);
static_assert(sizeof(BusManager) == 16);
static_assert(sizeof(CameraBase) == 16);
static_assert(sizeof(Camera) == 16);
static_assert(sizeof(GigECamera) == 16);
static_assert(sizeof(Image) == 16);

} // namespace FlyCapture2
