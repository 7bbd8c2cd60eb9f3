// What the values of a configuration mean for the camera.
#include "config/config_meaning.h"

#include "config/config_iobox.h"
#include "config/quantity.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kxhost {
namespace {

bool has(const Configuration& configuration, std::string_view section, std::string_view name)
{
    return findGiven(configuration, section, name) != nullptr;
}

// ---- Which camera, and how many frames.

std::string ofBusMask(const Configuration& configuration)
{
    std::string places;
    for (unsigned bit = 0; bit < 32; ++bit) {
        if ((configuration.settings.busMask >> bit & 1U) != 0) {
            places += (places.empty() ? "" : ", ") + std::to_string(bit);
        }
    }
    return places.empty() ? "no place is set apart" : "places on the bus: " + places;
}

std::string ofFrames(const Configuration& configuration)
{
    return configuration.settings.frames == 0 ? "until a signal or an error" : "";
}

// ---- Pixels.

std::string ofPixelFormat(const Configuration& configuration)
{
    constexpr std::array<std::string_view, 10> kWords = {
        "",
        "8 bits a pixel, grey",
        "12 bits a pixel, grey, two pixels in three bytes",
        "12 bits a pixel, grey, in two bytes",
        "12 bits a pixel, colour computed by the camera",
        "16 bits a pixel, colour computed by the camera",
        "",
        "",
        "",
        "8 bits a pixel, raw colour mosaic"};
    return std::string(kWords.at(static_cast<std::size_t>(configuration.settings.pixelFormat)));
}

std::string ofRotation(const Configuration& configuration)
{
    constexpr std::array<std::string_view, 3> kWords = {
        "left as it is", "software rotation is switched off", "software rotation is switched on"};
    return std::string(kWords.at(static_cast<std::size_t>(configuration.settings.rotation)));
}

// ---- Light.

std::string ofFrameRate(const Configuration& configuration)
{
    return "a frame every " + readableTime(1e6 / double{configuration.settings.frameRate});
}

std::string ofExposure(const Configuration& configuration)
{
    return readableTime(double{configuration.settings.exposureUs});
}

std::string ofGain(const Configuration& configuration)
{
    return "the signal times " +
           readableNumber(std::pow(10, double{configuration.settings.gainDb} / 20));
}

/// The plug-in takes one for off; it compares with this tolerance.
std::string ofGamma(const Configuration& configuration)
{
    const double gamma = configuration.settings.gamma;
    return gamma >= 0.999 && gamma <= 1.001 ? "the camera's gamma is switched off" : "";
}

/// A mode of exposure time or gain, whose value is the key `value`.
std::string ofMode(const Configuration& configuration, std::int32_t mode, std::string_view value)
{
    switch (mode) {
    case kSweepAuto:
        return "the camera chooses the " + std::string(value);
    case kSweepManual:
        return has(configuration, "acquisition", value)
                   ? "manual, the camera takes the " + std::string(value) + " given here"
                   : "manual, the " + std::string(value) + " stays where it is";
    default:
        return std::string(kKept);
    }
}

std::string ofExposureMode(const Configuration& configuration)
{
    return ofMode(configuration, configuration.settings.exposureMode, "exposure");
}

std::string ofGainMode(const Configuration& configuration)
{
    return ofMode(configuration, configuration.settings.gainMode, "gain");
}

std::string ofAutoExposure(const Configuration& configuration)
{
    return configuration.settings.autoProfile == 0 ? std::string(kKept)
                                                   : "the control of brightness is switched on";
}

/// Half the range is where the camera's own scale of exposure values has its zero.
std::string ofBrightness(const Configuration& configuration)
{
    const double share = configuration.settings.brightness;
    if (share == 0.5) {
        return "0 EV, the camera's normal brightness";
    }
    const bool isDark = share < 0.5;
    const double part = isDark ? 1 - 2 * share : 2 * (share - 0.5);
    return readableNumber(100 * part) + " % of the way from 0 EV to the camera's " +
           (isDark ? "darkest" : "brightest") + " setting";
}

/// What the camera's register holds of a limit: whole steps, cut as the plug-in cuts them.
std::string gainSteps(float limitDb)
{
    return readableNumber(std::trunc(double{limitDb} / 0.1)) + " steps of 0.1 dB";
}

std::string exposureSteps(float limitUs)
{
    return readableNumber(std::trunc(limitUs / 10)) + " steps of 10 us";
}

std::string ofGainMin(const Configuration& configuration)
{
    return gainSteps(configuration.settings.autoGainMinDb);
}

std::string ofGainMax(const Configuration& configuration)
{
    return gainSteps(configuration.settings.autoGainMaxDb);
}

std::string ofExposureMin(const Configuration& configuration)
{
    return exposureSteps(configuration.settings.autoExposureMinUs);
}

std::string ofExposureMax(const Configuration& configuration)
{
    return exposureSteps(configuration.settings.autoExposureMaxUs);
}

// ---- Look-up table and time stamps.

std::string ofLut(const Configuration& configuration, const std::string& source)
{
    return std::to_string(configuration.settings.lut.size()) + " values of " +
           std::to_string(configuration.settings.lutBits) + " bits from " + source;
}

std::string ofTable(const Configuration& configuration)
{
    return ofLut(configuration, "the array");
}

std::string ofFile(const Configuration& configuration)
{
    return ofLut(configuration, "the file");
}

std::string ofCurve(const Configuration& configuration)
{
    return ofLut(configuration, "curve " + curveText(configuration.settings.lutCurve));
}

std::string ofLutMode(const Configuration& configuration)
{
    const Settings& settings = configuration.settings;
    if (settings.lutMode != kSweepManual) {
        return std::string(kKept) + "; signals may still compute a table";
    }
    return settings.lut.empty() ? "the camera's look-up table is switched off"
                                : "the table is loaded and switched on";
}

std::string ofClockCorrection(const Configuration& configuration)
{
    return configuration.settings.clockCorrectionNs == 0
               ? "time stamps come from this computer's clock"
               : "time stamps come from the camera's clock";
}

/// One key whose meaning is worth words; `absent` = also when the key is not there.
struct MeaningRule {
    std::string_view section;
    std::string_view name;
    bool absent;
    std::string (*meaning)(const Configuration& configuration);
};
constexpr std::array kMeanings = {
    MeaningRule{"camera", "bus_mask", false, ofBusMask},
    MeaningRule{"grab", "frames", true, ofFrames},
    MeaningRule{"format", "pixel_format", false, ofPixelFormat},
    MeaningRule{"format", "rotation", true, ofRotation},
    MeaningRule{"acquisition", "frame_rate", false, ofFrameRate},
    MeaningRule{"acquisition", "exposure", false, ofExposure},
    MeaningRule{"acquisition", "exposure_mode", true, ofExposureMode},
    MeaningRule{"acquisition", "gain", false, ofGain},
    MeaningRule{"acquisition", "gain_mode", true, ofGainMode},
    MeaningRule{"acquisition", "gamma", false, ofGamma},
    MeaningRule{"auto", "auto_exposure", true, ofAutoExposure},
    MeaningRule{"auto", "brightness", false, ofBrightness},
    MeaningRule{"auto", "gain_min", false, ofGainMin},
    MeaningRule{"auto", "gain_max", false, ofGainMax},
    MeaningRule{"auto", "exposure_min", false, ofExposureMin},
    MeaningRule{"auto", "exposure_max", false, ofExposureMax},
    MeaningRule{"timestamps", "clock_correction", true, ofClockCorrection},
    MeaningRule{"lut", "table", false, ofTable},
    MeaningRule{"lut", "file", false, ofFile},
    MeaningRule{"lut", "curve", false, ofCurve},
    MeaningRule{"lut", "mode", true, ofLutMode},
};

} // namespace

std::string meaningOf(const Configuration& configuration, const Key& key, std::size_t index)
{
    const bool isGiven = findGiven(configuration, key.section, key.name, index) != nullptr;
    if (key.section == kIoboxSection) {
        return ioboxMeaning(configuration, key, index);
    }
    const auto rule = std::ranges::find_if(kMeanings, [&](const MeaningRule& candidate) {
        return candidate.section == key.section && candidate.name == key.name;
    });
    if (rule != kMeanings.end() && (isGiven || rule->absent)) {
        return rule->meaning(configuration);
    }
    return isGiven ? "" : std::string(key.absent);
}

} // namespace kxhost
