// The plug-in's camera: ranges and target of its automatic functions.
#include "kx_log.h"
#include "kx_pg_auto_range.h"
#include "kx_pg_excam.h"

#define KX_LOG_TAG "KX_PG_EXCAM"

using FlyCapture2::AUTO_EXPOSURE;
using FlyCapture2::PGRERROR_OK;
using FlyCapture2::Property;
using FlyCapture2::PropertyInfo;

namespace KxPGrey {

namespace {

// Bounds are asked for as what has to hold, so that what is no number does not pass.

// The SDK's properties do not show these.
constexpr unsigned int kAutoGainRange = 0x10A0;
constexpr unsigned int kAutoShutterRange = 0x1098;

/// A register that cannot be read is one that the camera does not have.
std::uint32_t readOrZero(CExCam& cam, unsigned int address)
{
    unsigned int word = 0;
    static_cast<void>(cam.ReadRegister(address, &word));
    return word;
}

} // namespace

int CExCam::ExPropertySetAutoRangeGain(float minDb, float maxDb)
{
    float lowest = 0;
    float highest = 0;
    static_cast<void>(ExPropertyGetAbsRange(FlyCapture2::GAIN, &lowest, &highest));
    if (!(lowest <= minDb && maxDb <= highest)) {
        KX_LOG_W("AUTO_GAIN_RANGE is out of bounds");
        return kExOutOfBounds;
    }
    const std::uint32_t word = readOrZero(*this, kAutoGainRange);
    if (!hasAutoRange(word)) {
        return kExAbsent;
    }
    const AutoRangeSteps steps = gainSteps(minDb, maxDb);
    KX_LOG_I("### set AUTO_GAIN_RANGE abs (min %f, max %f) rel (min %u, max %u) ###\n",
             static_cast<double>(minDb), static_cast<double>(maxDb), steps.min, steps.max);
    static_cast<void>(WriteRegister(kAutoGainRange, gainRangeWord(word, steps), false));
    return kExOk;
}

int CExCam::ExPropertySetAutoRangeExpo(float minUs, float maxUs)
{
    constexpr double kUsPerMs = 1000.0;
    float lowestMs = 0;
    float highestMs = 0;
    static_cast<void>(ExPropertyGetAbsRange(FlyCapture2::SHUTTER, &lowestMs, &highestMs));
    const double lowest = static_cast<double>(lowestMs) * kUsPerMs;
    const double highest = static_cast<double>(highestMs) * kUsPerMs;
    if (!(lowest <= static_cast<double>(minUs) && static_cast<double>(maxUs) <= highest)) {
        KX_LOG_W("AUTO_SHUTTER_RANGE is out of bounds");
        return kExOutOfBounds;
    }
    const std::uint32_t word = readOrZero(*this, kAutoShutterRange);
    if (!hasAutoRange(word)) {
        return kExAbsent;
    }
    const AutoRangeSteps steps = shutterSteps(minUs, maxUs);
    KX_LOG_I("### set AUTO_SHUTTER_RANGE abs (min %f, max %f ) rel (min %u, max %u) ###\n",
             static_cast<double>(minUs), static_cast<double>(maxUs), steps.min, steps.max);
    static_cast<void>(WriteRegister(kAutoShutterRange, shutterRangeWord(word, steps), false));
    return kExOk;
}

int CExCam::ExSetAutoExpoVal(float level)
{
    constexpr float kDarkest = 0.0F;
    constexpr float kBrightest = 1.0F;
    if (!(kDarkest < level && level < kBrightest)) {
        KX_LOG_W("the value %f is out of bounds (%f;%f)", static_cast<double>(level),
                 static_cast<double>(kDarkest), static_cast<double>(kBrightest));
        return kExOutOfBounds;
    }
    const char* const name = entryOf(AUTO_EXPOSURE).name;
    PropertyInfo info(AUTO_EXPOSURE);
    if (GetPropertyInfo(&info) != PGRERROR_OK) {
        KX_LOG_W("can't get property info (%s)\n", name);
        return kExNoInfo;
    }
    if (!info.present) {
        return kExAbsent;
    }
    // Shows the range once; the target follows the information just read.
    static_cast<void>(ExPropertyGetAbsRange(AUTO_EXPOSURE, nullptr, nullptr));
    Property property(AUTO_EXPOSURE);
    if (GetProperty(&property) != PGRERROR_OK) {
        KX_LOG_W("can't get property (%s)\n", name);
        return kExReadFailed;
    }
    property.absControl = true;
    property.onOff = true;
    property.onePush = false;
    property.autoManualMode = false;
    property.absValue = autoExposureTarget(level, info.absMin, info.absMax);
    if (SetProperty(&property, false) != PGRERROR_OK) {
        KX_LOG_W("can't set property (%s)\n", name);
        return kExWriteFailed;
    }
    KX_LOG_I("### set property (%s) val to %f ###\n", name, static_cast<double>(property.absValue));
    return kExOk;
}

int CExCam::ExSetAutoExpoEna(bool on)
{
    return ExPropertySetEnaAutoPush(AUTO_EXPOSURE, on, false, false);
}

} // namespace KxPGrey
