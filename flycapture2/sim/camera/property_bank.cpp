// The properties of one camera: their ranges and what they are set to.
#include "camera/property_bank.h"

#include "base/sdk_error.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace fcsim {

using FlyCapture2::Error;
using FlyCapture2::Property;
using FlyCapture2::PropertyInfo;
using FlyCapture2::PropertyType;

namespace {

constexpr std::array<const char*, kPropertyCount> kNames{
    "BRIGHTNESS", "AUTO_EXPOSURE", "SHARPNESS",    "WHITE_BALANCE", "HUE",        "SATURATION",
    "GAMMA",      "IRIS",          "FOCUS",        "ZOOM",          "PAN",        "TILT",
    "SHUTTER",    "GAIN",          "TRIGGER_MODE", "TRIGGER_DELAY", "FRAME_RATE", "TEMPERATURE"};

void copyText(char (&target)[512], const std::string& text)
{
    target[text.copy(target, sizeof target - 1)] = '\0';
}

/// Absolute value that belongs to a raw one.
float toAbsolute(const PropertyDescription& property, unsigned raw)
{
    if (property.rawMax == property.rawMin) {
        return property.absMin;
    }
    const double part = static_cast<double>(raw - property.rawMin) /
                        static_cast<double>(property.rawMax - property.rawMin);
    return static_cast<float>(property.absMin +
                              part * (static_cast<double>(property.absMax) - property.absMin));
}

unsigned toRaw(const PropertyDescription& property, float absolute)
{
    const double width = static_cast<double>(property.absMax) - property.absMin;
    const double part = width > 0 ? (absolute - property.absMin) / width : 0.0;
    const double raw = property.rawMin + part * (property.rawMax - property.rawMin);
    return static_cast<unsigned>(std::lround(std::clamp(raw, static_cast<double>(property.rawMin),
                                                        static_cast<double>(property.rawMax))));
}

float quantise(const PropertyDescription& property, float absolute)
{
    if (property.step <= 0) {
        return absolute;
    }
    const float steps = std::round((absolute - property.absMin) / property.step);
    return property.absMin + steps * property.step;
}

/// Rounding on the way through raw values and float text must not make a limit unreachable.
bool inRange(float value, float min, float max)
{
    const float slack = 1e-5F * std::max(std::abs(min), std::abs(max));
    return value >= min - slack && value <= max + slack;
}

Error outOfRange(const PropertyInfo& info, const std::string& value, const std::string& min,
                 const std::string& max)
{
    return makeError(FlyCapture2::PGRERROR_INVALID_PARAMETER, std::string(propertyName(info.type)) +
                                                                  " " + value + " is outside " +
                                                                  min + " to " + max);
}

PropertyInfo makeInfo(PropertyType type, const PropertyDescription& description)
{
    PropertyInfo info(type);
    info.present = description.present;
    if (!description.present) {
        return info;
    }
    info.autoSupported = description.autoSupported;
    info.manualSupported = description.manualSupported;
    info.onOffSupported = description.onOffSupported;
    info.onePushSupported = description.onePushSupported;
    info.absValSupported = description.absSupported;
    info.readOutSupported = description.readOutSupported;
    info.min = description.rawMin;
    info.max = description.rawMax;
    info.absMin = description.absMin;
    info.absMax = description.absMax;
    copyText(info.pUnits, description.units);
    copyText(info.pUnitAbbr, description.unitAbbreviation);
    return info;
}

} // namespace

const char* propertyName(PropertyType type)
{
    const auto index = static_cast<unsigned>(type);
    return index < kPropertyCount ? kNames[index] : "unknown property";
}

PropertyBank::Entry PropertyBank::makeEntry(PropertyType type,
                                            const PropertyDescription& description)
{
    Entry entry;
    entry.description = description;
    entry.info = makeInfo(type, description);
    Property& value = entry.value;
    value.type = type;
    value.present = description.present;
    value.onOff = description.on;
    value.autoManualMode = description.automatic;
    if (description.absSupported) {
        value.absControl = true;
        value.absValue = quantise(description, description.value);
        value.valueA = toRaw(description, value.absValue);
    } else {
        value.valueA = description.rawA;
        value.valueB = description.rawB;
    }
    entry.asked = value.absValue;
    return entry;
}

PropertyBank::PropertyBank(const std::array<PropertyDescription, kPropertyCount>& descriptions)
{
    for (unsigned i = 0; i < kPropertyCount; ++i) {
        entries_[i] = makeEntry(static_cast<PropertyType>(i), descriptions[i]);
    }
}

Error PropertyBank::info(PropertyInfo& info) const
{
    const auto index = static_cast<unsigned>(info.type);
    if (index >= kPropertyCount) {
        return makeError(FlyCapture2::PGRERROR_INVALID_PARAMETER,
                         "there is no property " + std::to_string(index));
    }
    info = entries_[index].info;
    return success();
}

Error PropertyBank::get(Property& property) const
{
    const auto index = static_cast<unsigned>(property.type);
    if (index >= kPropertyCount || !entries_[index].value.present) {
        return makeError(FlyCapture2::PGRERROR_PROPERTY_NOT_PRESENT,
                         std::string("the camera has no ") + propertyName(property.type));
    }
    property = entries_[index].value;
    return success();
}

Error PropertyBank::set(const Property& property)
{
    const auto index = static_cast<unsigned>(property.type);
    if (index >= kPropertyCount || !entries_[index].value.present) {
        return makeError(FlyCapture2::PGRERROR_PROPERTY_NOT_PRESENT,
                         std::string("the camera has no ") + propertyName(property.type));
    }
    Entry& entry = entries_[index];
    Error error = property.absControl && entry.description.absSupported
                      ? setAbsolute(entry, property)
                      : setRaw(entry, property);
    if (error != FlyCapture2::PGRERROR_OK) {
        return error;
    }
    entry.value.absControl = property.absControl && entry.description.absSupported;
    entry.value.onOff = property.onOff || !entry.description.onOffSupported;
    entry.value.autoManualMode = property.autoManualMode && entry.description.autoSupported;
    entry.value.onePush = property.onePush && entry.description.onePushSupported;
    return error;
}

Error PropertyBank::setAbsolute(Entry& entry, const Property& property)
{
    const PropertyInfo& info = entry.info;
    if (!inRange(property.absValue, info.absMin, info.absMax)) {
        return outOfRange(info, std::to_string(property.absValue), std::to_string(info.absMin),
                          std::to_string(info.absMax));
    }
    takeAbsolute(entry, std::clamp(property.absValue, info.absMin, info.absMax));
    return success();
}

void PropertyBank::takeAbsolute(Entry& entry, float wanted)
{
    const PropertyInfo& info = entry.info;
    entry.value.absValue =
        std::clamp(quantise(entry.description, wanted), info.absMin, info.absMax);
    entry.value.valueA = toRaw(entry.description, entry.value.absValue);
    entry.asked = entry.value.absValue;
}

Error PropertyBank::setRaw(Entry& entry, const Property& property)
{
    const PropertyInfo& info = entry.info;
    const bool usesB = !entry.description.absSupported;
    const unsigned lowest = usesB ? std::min(property.valueA, property.valueB) : property.valueA;
    const unsigned highest = usesB ? std::max(property.valueA, property.valueB) : property.valueA;
    if (lowest < info.min || highest > info.max) {
        return outOfRange(info, std::to_string(lowest < info.min ? lowest : highest),
                          std::to_string(info.min), std::to_string(info.max));
    }
    entry.value.valueA = property.valueA;
    entry.value.valueB = property.valueB;
    if (entry.description.absSupported) {
        entry.asked = toAbsolute(entry.description, property.valueA);
        entry.value.absValue = std::min(entry.asked, info.absMax);
    }
    return success();
}

const Property& PropertyBank::value(PropertyType type) const
{
    return entries_[static_cast<unsigned>(type)].value;
}

const PropertyInfo& PropertyBank::range(PropertyType type) const
{
    return entries_[static_cast<unsigned>(type)].info;
}

float PropertyBank::step(PropertyType type) const
{
    return entries_[static_cast<unsigned>(type)].description.step;
}

bool PropertyBank::switchedOn(PropertyType type) const
{
    return value(type).present && value(type).onOff;
}

bool PropertyBank::automatic(PropertyType type) const
{
    return switchedOn(type) && (value(type).autoManualMode || value(type).onePush);
}

bool PropertyBank::manual(PropertyType type) const
{
    return switchedOn(type) && !automatic(type);
}

void PropertyBank::limit(PropertyType type, float absMax)
{
    Entry& entry = entries_[static_cast<unsigned>(type)];
    const float most =
        std::max(entry.description.absMin, std::min(absMax, entry.description.absMax));
    entry.info.absMax = most;
    entry.info.max = toRaw(entry.description, most);
    entry.value.absValue = std::min(entry.asked, most);
    entry.value.valueA = toRaw(entry.description, entry.value.absValue);
}

void PropertyBank::steer(PropertyType type, float absolute)
{
    Entry& entry = entries_[static_cast<unsigned>(type)];
    takeAbsolute(entry, std::clamp(absolute, entry.info.absMin, entry.info.absMax));
}

void PropertyBank::steerRaw(PropertyType type, unsigned valueA, unsigned valueB)
{
    Entry& entry = entries_[static_cast<unsigned>(type)];
    entry.value.valueA = std::clamp(valueA, entry.info.min, entry.info.max);
    entry.value.valueB = std::clamp(valueB, entry.info.min, entry.info.max);
}

void PropertyBank::endPush(PropertyType type)
{
    entries_[static_cast<unsigned>(type)].value.onePush = false;
}

} // namespace fcsim
