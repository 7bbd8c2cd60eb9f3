// Reads the properties of a camera's description.
#include "camera/property_bank.h"
#include "description/camera_parser.h"

#include <algorithm>

namespace fcsim {

namespace {

constexpr double kMost = 1e9;

/// What absolute values can mean at all.
struct Limits {
    double min = -kMost;
    double max = kMost;
};

Limits limitsOf(FlyCapture2::PropertyType type)
{
    switch (type) {
    case FlyCapture2::SHUTTER:
        return {1e-4, 1e7};
    case FlyCapture2::FRAME_RATE:
        return {1e-4, 1e6};
    case FlyCapture2::GAIN:
        return {-200, 200};
    case FlyCapture2::GAMMA:
        return {0.01, 100};
    default:
        return {};
    }
}

void readFlags(TableReader& table, PropertyDescription& property)
{
    table.flag("auto", property.autoSupported);
    table.flag("manual", property.manualSupported);
    table.flag("on_off", property.onOffSupported);
    table.flag("one_push", property.onePushSupported);
    table.flag("absolute_values", property.absSupported);
    table.flag("read_out", property.readOutSupported);
    table.flag("switched_on", property.on);
    table.flag("automatic", property.automatic);
}

/// A value that is not given is the one that such a camera usually has, or the nearest to it.
void readValues(TableReader& table, PropertyDescription& property)
{
    property.value = std::clamp(property.value, property.absMin, property.absMax);
    property.rawA = std::clamp(property.rawA, property.rawMin, property.rawMax);
    property.rawB = std::clamp(property.rawB, property.rawMin, property.rawMax);
    table.integer("value_a", property.rawA, property.rawMin, property.rawMax);
    table.integer("value_b", property.rawB, property.rawMin, property.rawMax);
    table.number("value", property.value, double{property.absMin}, double{property.absMax});
}

void readProperty(TableReader& table, FlyCapture2::PropertyType type, PropertyDescription& property)
{
    const Limits limits = limitsOf(type);
    property.present = true;
    table.flag("present", property.present);
    property.automatic = property.automatic && !table.has("value");
    readFlags(table, property);
    table.range("raw", property.rawMin, property.rawMax, 0xFFFFFFFF);
    table.range("absolute", property.absMin, property.absMax, limits.min, limits.max);
    table.number("step", property.step, 0, kMost);
    table.text("units", property.units);
    table.text("abbreviation", property.unitAbbreviation);
    readValues(table, property);
    table.finish();
}

} // namespace

void readProperties(TableReader& table, CameraDescription& camera)
{
    for (unsigned i = 0; i < kPropertyCount; ++i) {
        const auto type = static_cast<FlyCapture2::PropertyType>(i);
        if (std::optional<TableReader> property = table.table(propertyName(type))) {
            readProperty(*property, type, camera.properties[i]);
        }
    }
    table.finish();
}

} // namespace fcsim
