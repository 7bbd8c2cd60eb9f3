// What a camera of some kind has when its description does not say otherwise.
#include "description/camera_defaults.h"

#include <string>

namespace fcsim {

namespace {

using namespace FlyCapture2;

PropertyDescription absoluteProperty(float min, float max, float value, const char* units,
                                     const char* abbreviation)
{
    PropertyDescription property;
    property.present = true;
    property.autoSupported = true;
    property.absMin = min;
    property.absMax = max;
    property.value = value;
    property.units = units;
    property.unitAbbreviation = abbreviation;
    return property;
}

PropertyDescription rawProperty(unsigned max, unsigned a, unsigned b)
{
    PropertyDescription property;
    property.present = true;
    property.absSupported = false;
    property.onOffSupported = true;
    property.rawMax = max;
    property.rawA = a;
    property.rawB = b;
    return property;
}

PropertyDescription switchable(PropertyDescription property, bool on)
{
    property.onOffSupported = true;
    property.on = on;
    return property;
}

void setColourProperties(CameraDescription& camera)
{
    camera.properties[WHITE_BALANCE] = rawProperty(1023, 512, 512);
    camera.properties[HUE] = switchable(absoluteProperty(-180, 180, 0, "degree", "deg"), false);
    camera.properties[HUE].autoSupported = false;
    camera.properties[SATURATION] = switchable(absoluteProperty(0, 400, 100, "%", "%"), true);
}

struct BusKind {
    InterfaceType interface;
    unsigned packetMin;
    unsigned packetMax; ///< recommended, too
    unsigned packetUnit;
    double bandwidth; ///< bytes a second that pictures get
};

constexpr BusKind kBusKinds[] = {
    {INTERFACE_USB2, 128, 4096, 64, 40e6}, {INTERFACE_USB3, 512, 32768, 16, 380e6},
    {INTERFACE_GIGE, 72, 9000, 4, 117e6},  {INTERFACE_IEEE1394, 8, 8192, 4, 78e6},
    {INTERFACE_UNKNOWN, 8, 8192, 4, 78e6},
};

const BusKind& busKind(InterfaceType interface)
{
    for (const BusKind& kind : kBusKinds) {
        if (kind.interface == interface) {
            return kind;
        }
    }
    return kBusKinds[4];
}

void completePackets(Format7Description& format7, const BusKind& bus)
{
    const auto fill = [](unsigned& open, unsigned value) { open = open == 0 ? value : open; };
    fill(format7.packetMin, bus.packetMin);
    fill(format7.packetMax, bus.packetMax);
    fill(format7.packetRecommended, format7.packetMax);
    fill(format7.packetUnit, bus.packetUnit);
}

} // namespace

void setSensorDefaults(CameraDescription& camera)
{
    auto& properties = camera.properties;
    properties[BRIGHTNESS] = absoluteProperty(0, 6.25F, 0, "%", "%");
    properties[BRIGHTNESS].autoSupported = false;
    properties[AUTO_EXPOSURE] = switchable(absoluteProperty(-7.58F, 2.42F, 0, "EV", "EV"), false);
    properties[SHARPNESS] = rawProperty(4095, 1024, 0);
    properties[GAMMA] = switchable(absoluteProperty(0.5F, 4, 1, "", ""), false);
    properties[GAMMA].autoSupported = false;
    properties[SHUTTER] = absoluteProperty(0.01F, 1000, 8, "milliseconds", "ms");
    properties[SHUTTER].rawMin = 1;
    properties[SHUTTER].rawMax = 4095;
    properties[SHUTTER].onePushSupported = true;
    properties[GAIN] = absoluteProperty(0, 24, 0, "decibels", "dB");
    properties[GAIN].onePushSupported = true;
    properties[FRAME_RATE] =
        switchable(absoluteProperty(1, 1000, 1000, "frames per second", "fps"), true);
    properties[FRAME_RATE].rawMin = 1;
    properties[FRAME_RATE].rawMax = 4095;
    properties[FRAME_RATE].automatic = true;
    if (camera.sensor.colour) {
        setColourProperties(camera);
        camera.lut.channels = 3;
        camera.format7.pixelFormats = {
            PIXEL_FORMAT_MONO8,   PIXEL_FORMAT_MONO12, PIXEL_FORMAT_MONO16,  PIXEL_FORMAT_RAW8,
            PIXEL_FORMAT_RAW12,   PIXEL_FORMAT_RAW16,  PIXEL_FORMAT_411YUV8, PIXEL_FORMAT_422YUV8,
            PIXEL_FORMAT_444YUV8, PIXEL_FORMAT_RGB8};
    } else {
        camera.format7.pixelFormats = {PIXEL_FORMAT_MONO8, PIXEL_FORMAT_MONO12,
                                       PIXEL_FORMAT_MONO16};
    }
    camera.embedded.fill(true);
}

void completeDescription(CameraDescription& camera)
{
    const BusKind& bus = busKind(camera.interface);
    completePackets(camera.format7, bus);
    if (camera.delivery.bandwidth == 0) {
        camera.delivery.bandwidth = bus.bandwidth;
    }
    if (camera.format7.maxWidth == 0) {
        camera.format7.maxWidth = camera.sensor.width;
    }
    if (camera.format7.maxHeight == 0) {
        camera.format7.maxHeight = camera.sensor.height;
    }
    if (camera.sensorResolution.empty()) {
        camera.sensorResolution =
            std::to_string(camera.sensor.width) + "x" + std::to_string(camera.sensor.height);
    }
    camera.sensor.title = camera.model + " " + std::to_string(camera.serial);
}

} // namespace fcsim
