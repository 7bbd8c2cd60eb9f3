// The plug-in's camera: property access with names, ranges and one warning per failure.
#include "kx_pg_excam.h"

#include "kx_log.h"

#include <limits>

#define KX_LOG_TAG "KX_PG_EXCAM"

using FlyCapture2::PGRERROR_OK;
using FlyCapture2::Property;
using FlyCapture2::PropertyInfo;
using FlyCapture2::PropertyType;

namespace KxPGrey {

namespace {

constexpr unsigned int kBayerTileRegister = 0x1040;

/// In the order of the SDK's property types.
constexpr std::array<PropertyEntry, kPropertyCount> _S_PropertyEntries = {{
    {"BRIGHTNESS"},
    {"AUTO_EXPOSURE"},
    {"SHARPNESS"},
    {"WHITE_BALANCE"},
    {"HUE"},
    {"SATURATION"},
    {"GAMMA"},
    {"IRIS"},
    {"FOCUS"},
    {"ZOOM"},
    {"PAN"},
    {"TILT"},
    {"SHUTTER"},
    {"GAIN"},
    {"TRIGGER_MODE"},
    {"TRIGGER_DELAY"},
    {"FRAME_RATE"},
    {"TEMPERATURE"},
    {"UNSPECIFIED_PROPERTY_TYPE"},
}};

constexpr unsigned int numberOf(PropertyType type)
{
    return static_cast<unsigned int>(type);
}

template <typename T>
void writeIfAsked(T* output, T value)
{
    if (output != nullptr) {
        *output = value;
    }
}

} // namespace

CExCam::CExCam() : propNames(_S_PropertyEntries)
{
    gpioCtrlShadow.fill(0xFFFFFFFF);
    for (unsigned int pin = 0; pin < kPgPinCount; ++pin) {
        ioPinState[pin].pinIndex = static_cast<std::uint8_t>(pin);
        ioPinSaved[pin].pinIndex = static_cast<std::uint8_t>(pin);
    }
}

CExCam::~CExCam() = default;

PropertyEntry& CExCam::entryOf(PropertyType type)
{
    return propNames[numberOf(type) % kPropertyCount];
}

// ---- The steps that the operations share; `caller` is the operation that they speak for.

int CExCam::readProperty(const char* caller, PropertyType type, PropertyInfo& info,
                         Property& property)
{
    info.type = type;
    if (GetPropertyInfo(&info) != PGRERROR_OK) {
        KX_LOG_W_AS(caller, "can't get property info %u (%s)\n", numberOf(type),
                    entryOf(type).name);
        return kExNoInfo;
    }
    if (!info.present) {
        return kExAbsent;
    }
    property.type = type;
    if (GetProperty(&property) != PGRERROR_OK) {
        KX_LOG_W_AS(caller, "can't get property %u (%s)\n", numberOf(type), entryOf(type).name);
        return kExReadFailed;
    }
    return kExOk;
}

int CExCam::writeProperty(const char* caller, PropertyType type, const Property& property)
{
    if (SetProperty(&property, false) != PGRERROR_OK) {
        KX_LOG_W_AS(caller, "can't set property %u (%s)\n", numberOf(type) % kPropertyCount,
                    entryOf(type).name);
        return kExWriteFailed;
    }
    return kExOk;
}

// ---- Reading.

float CExCam::ExPropertyGetAbs(PropertyType type)
{
    PropertyInfo info;
    Property property;
    switch (readProperty(__func__, type, info, property)) {
    case kExOk:
        return property.absValue;
    case kExAbsent:
        return std::numeric_limits<float>::max();
    default:
        return -1.0F;
    }
}

int CExCam::ExPropertyGetAbsRange(PropertyType type, float* min, float* max)
{
    PropertyEntry& entry = entryOf(type);
    if (!entry.absRangeValid) {
        PropertyInfo info;
        Property property;
        if (const int status = readProperty(__func__, type, info, property); status != kExOk) {
            return status;
        }
        entry.absMin = info.absMin;
        entry.absMax = info.absMax;
        entry.absRangeValid = true;
        KX_LOG_I("### get property %u (%s) range: units=%s(%s) min=%f max=%f ###\n", numberOf(type),
                 entry.name, info.pUnitAbbr, info.pUnits, static_cast<double>(entry.absMin),
                 static_cast<double>(entry.absMax));
    }
    writeIfAsked(min, entry.absMin);
    writeIfAsked(max, entry.absMax);
    return kExOk;
}

int CExCam::ExPropertyGetRelRange(PropertyType type, unsigned int* min, unsigned int* max)
{
    PropertyEntry& entry = entryOf(type);
    if (!entry.relRangeValid) {
        PropertyInfo info;
        Property property;
        if (const int status = readProperty(__func__, type, info, property); status != kExOk) {
            return status;
        }
        entry.relMin = info.min;
        entry.relMax = info.max;
        entry.relRangeValid = true;
        KX_LOG_I("### get property %u (%s) range: units=%s(%s) min=%u max=%u ###\n", numberOf(type),
                 entry.name, info.pUnitAbbr, info.pUnits, entry.relMin, entry.relMax);
    }
    writeIfAsked(min, entry.relMin);
    writeIfAsked(max, entry.relMax);
    return kExOk;
}

int CExCam::ExPropertyGetRel(PropertyType type, unsigned int* valA, unsigned int* valB)
{
    PropertyInfo info;
    Property property;
    const int status = readProperty(__func__, type, info, property);
    if (status == kExOk) {
        writeIfAsked(valA, property.valueA);
        writeIfAsked(valB, property.valueB);
    }
    return status;
}

// ---- Writing.

int CExCam::ExPropertySetAbs(PropertyType type, float value)
{
    PropertyInfo info;
    Property property;
    if (const int status = readProperty(__func__, type, info, property); status != kExOk) {
        return status;
    }
    property.absControl = true;
    property.onOff = true;
    property.onePush = false;
    property.autoManualMode = false;
    if (info.absMin <= value && value <= info.absMax) {
        property.absValue = value;
    }
    const int status = writeProperty(__func__, type, property);
    if (status == kExOk) {
        KX_LOG_I("### set property %u (%s) to %f ###\n", numberOf(type), entryOf(type).name,
                 static_cast<double>(property.absValue));
    }
    return status;
}

int CExCam::ExPropertySetRel(PropertyType type, unsigned int valA, unsigned int valB)
{
    PropertyInfo info;
    Property property;
    if (const int status = readProperty(__func__, type, info, property); status != kExOk) {
        return status;
    }
    property.absControl = false;
    property.onOff = true;
    property.onePush = false;
    property.autoManualMode = false;
    // Both values are held against the same bounds; the SDK has one pair of them.
    const auto inRange = [&info](unsigned int value) {
        return info.min <= value && value <= info.max;
    };
    property.valueA = inRange(valA) ? valA : property.valueA;
    property.valueB = inRange(valB) ? valB : property.valueB;
    const int status = writeProperty(__func__, type, property);
    if (status == kExOk) {
        KX_LOG_I("### new property %u (%s) values: valA=%u valB=%u ###\n", numberOf(type),
                 entryOf(type).name, property.valueA, property.valueB);
    }
    return status;
}

int CExCam::ExPropertySetEna(PropertyType type, bool on)
{
    PropertyInfo info;
    Property property;
    if (const int status = readProperty(__func__, type, info, property); status != kExOk) {
        return status;
    }
    property.onOff = on;
    if (const int status = writeProperty(__func__, type, property); status != kExOk) {
        return status;
    }
    KX_LOG_I("### set property %u (%s) on/off to %u ###\n", numberOf(type), entryOf(type).name,
             static_cast<unsigned int>(on));
    // Callers have always been answered so, on success too.
    return kExAbsent;
}

int CExCam::ExPropertySetEnaAutoPush(PropertyType type, bool onOff, bool autoMode, bool onePush)
{
    PropertyInfo info;
    Property property;
    if (const int status = readProperty(__func__, type, info, property); status != kExOk) {
        return status;
    }
    property.onOff = onOff;
    property.autoManualMode = autoMode;
    property.onePush = onePush;
    const int status = writeProperty(__func__, type, property);
    if (status == kExOk) {
        KX_LOG_I("### set property %u (%s) to OnOff=%i Auto=%i OnePush=%i ###\n", numberOf(type),
                 entryOf(type).name, static_cast<int>(onOff), static_cast<int>(autoMode),
                 static_cast<int>(onePush));
    }
    return status;
}

int CExCam::ExPropertySetAutoOff(PropertyType type)
{
    return ExPropertySetEnaAutoPush(type, true, false, false);
}

int CExCam::ExPropertySetAutoOnce(PropertyType type)
{
    return ExPropertySetEnaAutoPush(type, true, false, true);
}

int CExCam::ExPropertySetAutoCont(PropertyType type)
{
    return ExPropertySetEnaAutoPush(type, true, true, false);
}

// ---- Registers.

unsigned int CExCam::ExGetBayerFormat()
{
    unsigned int letters = 0;
    static_cast<void>(ReadRegister(kBayerTileRegister, &letters));
    return letters;
}

} // namespace KxPGrey
