// Hints about keys that have no effect where they are.
#include "config/config_hints.h"

#include "config/config_check.h"
#include "config/config_iobox.h"

#include <algorithm>
#include <array>

namespace kxhost {
namespace {

constexpr std::int32_t kMono12Packed = 2;
constexpr std::int32_t kMono12 = 3;
constexpr std::int32_t kYuv411 = 4;
constexpr std::int32_t kYuv422 = 5;
constexpr std::int32_t kBayer8 = 9;

/// A value that is set by hand, in a mode in which it is not.
std::string notManual(std::int32_t mode, std::string_view modeKey)
{
    const std::string key(modeKey);
    switch (mode) {
    case kSweepAuto:
        return "has no effect: with " + key + " = \"auto\" the camera chooses the value";
    case kSweepKeep:
        return "has no effect: with " + key + " = \"keep\" it is not handed to the camera";
    default:
        return {};
    }
}

std::string onExposure(const Settings& settings)
{
    constexpr double kSecond = 1e6;
    const bool fits = settings.frameRate < 0 ||
                      double{settings.exposureUs} * double{settings.frameRate} <= kSecond;
    const std::string hint = notManual(settings.exposureMode, "exposure_mode");
    return hint.empty() && !fits
               ? "is longer than the time between two frames of frame_rate; no camera can do both"
               : hint;
}

std::string onGain(const Settings& settings)
{
    return notManual(settings.gainMode, "gain_mode");
}

/// The plug-in hands what automatic functions aim at and their limits over when one of them is on.
std::string onAutomatic(const Settings& settings)
{
    const bool isAny = settings.gainMode == kSweepAuto || settings.exposureMode == kSweepAuto;
    return isAny ? "" : "has no effect: neither gain_mode nor exposure_mode is \"auto\"";
}

std::string onGainLimit(const Settings& settings)
{
    const std::string hint = onAutomatic(settings);
    return hint.empty() && settings.gainMode == kSweepManual
               ? "has no effect: gain_mode is \"manual\""
               : hint;
}

std::string onExposureLimit(const Settings& settings)
{
    const std::string hint = onAutomatic(settings);
    return hint.empty() && settings.exposureMode == kSweepManual
               ? "has no effect: exposure_mode is \"manual\""
               : hint;
}

std::string onAutoExposure(const Settings& settings)
{
    const bool byHand = settings.gainMode == kSweepManual && settings.exposureMode == kSweepManual;
    return byHand && settings.autoProfile != 0
               ? "has no effect: gain_mode and exposure_mode are both \"manual\""
               : "";
}

std::string onColour(const Settings& settings)
{
    const bool isColour = settings.pixelFormat == kYuv411 || settings.pixelFormat == kYuv422;
    return isColour ? "" : "has no effect: only with pixel_format yuv411 or yuv422 are colours set";
}

std::string onRotation(const Settings& settings)
{
    constexpr std::int32_t kOn = 2;
    return settings.rotation == kOn
               ? "is handed to the plug-in, which takes note of it; kxhost turns no pictures"
               : "";
}

bool hasTwelveBits(const Settings& settings)
{
    return settings.pixelFormat == kMono12 || settings.pixelFormat == kMono12Packed;
}

std::string onLut(const Settings& settings)
{
    if (settings.lutMode != kSweepManual) {
        return "has no effect: only with lut.mode = \"manual\" the table is loaded";
    }
    if (hasTwelveBits(settings)) {
        return "has no effect: cameras take no look-up table with 12-bit pixels";
    }
    const unsigned largest = largestLutValue(settings.lutBits);
    const auto tooLarge =
        std::ranges::find_if(settings.lut, [&](std::uint16_t value) { return value > largest; });
    if (tooLarge != settings.lut.end()) {
        return "holds " + std::to_string(*tooLarge) +
               ", which becomes 512 of the camera's 9 bits, "
               "one too many for them; " +
               std::to_string(largest) +
               " is the largest value of lut.bits = " + std::to_string(settings.lutBits) +
               " that does not";
    }
    return {};
}

std::string onLutBits(const Settings& settings)
{
    return settings.lut.empty() ? "has no effect: there is no table, file or curve" : "";
}

bool writes(const Settings& settings, PictureFormat format)
{
    return settings.outputFormat == static_cast<std::int32_t>(format);
}

std::string onPrefix(const Settings& settings)
{
    return writes(settings, PictureFormat::kNone) ? "has no effect: output.format is \"none\"" : "";
}

std::string onCompression(const Settings& settings)
{
    return writes(settings, PictureFormat::kPng) ? ""
                                                 : "has no effect: output.format is not \"png\"";
}

std::string onBayer(const Settings& settings)
{
    if (settings.pixelFormat != kBayer8 && settings.convertTo != kBayer8) {
        return "has no effect: neither pixel_format nor convert_to is \"bayer8\"";
    }
    const bool isPicture =
        writes(settings, PictureFormat::kPng) || writes(settings, PictureFormat::kTiff);
    return isPicture ? "" : "has no effect: output.format is neither \"png\" nor \"tiff\"";
}

std::string onLogId(const Settings& settings)
{
    constexpr std::int32_t kSyslog = 2;
    const bool isUsed = (settings.logSinks & kSyslog) != 0;
    return isUsed ? "" : "has no effect: log.sinks does not hold syslog";
}

struct HintRule {
    std::string_view section;
    std::string_view name;
    std::string (*hint)(const Settings& settings);
};
constexpr std::array kHints = {
    HintRule{"format", "rotation", onRotation},
    HintRule{"acquisition", "exposure", onExposure},
    HintRule{"acquisition", "gain", onGain},
    HintRule{"color", "saturation", onColour},
    HintRule{"color", "white_balance_red", onColour},
    HintRule{"color", "white_balance_blue", onColour},
    HintRule{"auto", "auto_exposure", onAutoExposure},
    HintRule{"auto", "brightness", onAutomatic},
    HintRule{"auto", "gain_min", onGainLimit},
    HintRule{"auto", "gain_max", onGainLimit},
    HintRule{"auto", "exposure_min", onExposureLimit},
    HintRule{"auto", "exposure_max", onExposureLimit},
    HintRule{"lut", "table", onLut},
    HintRule{"lut", "file", onLut},
    HintRule{"lut", "curve", onLut},
    HintRule{"lut", "bits", onLutBits},
    HintRule{"log", "id", onLogId},
    HintRule{"output", "prefix", onPrefix},
    HintRule{"output", "bayer", onBayer},
    HintRule{"output", "compression", onCompression},
};

} // namespace

std::string hintOn(const Configuration& configuration, const Key& key, std::size_t index)
{
    if (findGiven(configuration, key.section, key.name, index) == nullptr) {
        return {};
    }
    if (key.section == kIoboxSection) {
        return ioboxHint(configuration, key, index);
    }
    const auto rule = std::ranges::find_if(kHints, [&](const HintRule& candidate) {
        return candidate.section == key.section && candidate.name == key.name;
    });
    return rule != kHints.end() ? rule->hint(configuration.settings) : "";
}

std::vector<std::string> hintsOn(const Configuration& configuration)
{
    std::vector<std::string> hints;
    for (std::size_t index = 0; index < kMaxIobox; ++index) {
        for (const Key& key : configKeys()) {
            const std::string hint = hintOn(configuration, key, index);
            if (!hint.empty()) {
                const GivenKey* given = findGiven(configuration, key.section, key.name, index);
                hints.push_back(problemOf(configuration, *given, hint));
            }
        }
    }
    return hints;
}

} // namespace kxhost
