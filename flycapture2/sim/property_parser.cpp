// Reads the properties of a camera's description.
#include "camera_parser.h"
#include "property_bank.h"

namespace fcsim {

namespace {

constexpr double kMost = 1e9;

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

void readProperty(TableReader& table, PropertyDescription& property)
{
    property.present = true;
    table.flag("present", property.present);
    property.automatic = property.automatic && !table.has("value");
    readFlags(table, property);
    table.range("raw", property.rawMin, property.rawMax, 0xFFFFFFFF);
    table.range("absolute", property.absMin, property.absMax);
    table.number("step", property.step, 0, kMost);
    table.text("units", property.units);
    table.text("abbreviation", property.unitAbbreviation);
    table.integer("value_a", property.rawA, property.rawMin, property.rawMax);
    table.integer("value_b", property.rawB, property.rawMin, property.rawMax);
    table.number("value", property.value, double{property.absMin}, double{property.absMax});
    table.finish();
}

} // namespace

void readProperties(TableReader& table, CameraDescription& camera)
{
    for (unsigned i = 0; i < kPropertyCount; ++i) {
        const char* name = propertyName(static_cast<FlyCapture2::PropertyType>(i));
        if (std::optional<TableReader> property = table.table(name)) {
            readProperty(*property, camera.properties[i]);
        }
    }
    table.finish();
}

} // namespace fcsim
