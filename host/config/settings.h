// The settings of a grab, in the words of the host services: what the getters answer.
#ifndef KXHOST_SETTINGS_H
#define KXHOST_SETTINGS_H

#include "config/lut_curve.h"
#include "export/export_settings.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

/// The getters' "keep what the camera has" of whole numbers.
constexpr std::uint32_t kKeep = 0xFFFFFFFF;
constexpr std::int32_t kKeepSigned = -1;

/// Of times that may have no end.
constexpr std::int32_t kWithoutEnd = -1;

/// Modes of gain, exposure time and look-up table, as the getters give them.
enum SweepMode : std::int32_t { kSweepKeep = 0, kSweepManual = 1, kSweepAuto = 2 };

/// The plug-in reads no more I/O box settings than these.
constexpr std::size_t kMaxIobox = 3;
/// Entries of a configured look-up table.
constexpr std::size_t kLutEntries = 512;

/// What a pin's `mode` and `source` may be, as the getters give them.
enum PinMode : std::int32_t { kPinOff = 0, kPinOutput = 1, kPinInput = 2 };
enum PinSource : std::int32_t { kPinNoSource = 0, kPinStrobe = 2, kPinData = 5 };

/// One setting of an I/O box pin. kx_host.h says how each number is handed over.
struct IoboxSetting {
    std::int32_t pin = 0;
    std::int32_t mode = 0;
    std::int32_t source = 0;
    std::int32_t invert = 0;
    std::array<std::uint32_t, 2> parameters = {kKeep, kKeep};
};

/// Whether the pin sends a command, gives pulses with the exposures, or takes the reply.
constexpr bool isDataOutput(const IoboxSetting& setting)
{
    return setting.source == kPinData && setting.mode == kPinOutput;
}
constexpr bool isStrobeOutput(const IoboxSetting& setting)
{
    return setting.source == kPinStrobe && setting.mode == kPinOutput;
}
constexpr bool isDataInput(const IoboxSetting& setting)
{
    return setting.source == kPinData && setting.mode == kPinInput;
}

/// Every setting, with the value that stands for an absent key.
struct Settings {
    std::string model;
    std::string serial;
    std::uint32_t busMask = 0;
    double waitSeconds = -1;               ///< time limit of waiting for a camera; negative = none
    double reconnectSeconds = kWithoutEnd; ///< the same for one that was lost; 0 = it is not waited
    double silenceSeconds = 30; ///< without a frame the camera is lost then; negative = never

    std::uint32_t packetSize = 0; ///< bytes; 0 = the plug-in's default
    std::uint32_t buffers = 8;
    std::uint32_t frames = 0;    ///< to export; 0 = until a signal
    std::int64_t maxLosses = -1; ///< more losses than this fail the grab; negative = never
    bool watchConfiguration = true;

    std::uint32_t width = kKeep;
    std::uint32_t height = kKeep;
    std::uint32_t offsetX = kKeep;
    std::uint32_t offsetY = kKeep;

    std::int32_t pixelFormat = 1;
    std::int32_t convertTo = 0;
    std::int32_t rotation = 0;

    float frameRate = -1;
    float exposureUs = -1;
    std::int32_t exposureMode = kSweepKeep;
    float gainDb = -100;
    std::int32_t gainMode = kSweepKeep;
    float gamma = -1;

    std::int32_t saturation = kKeepSigned;
    std::int32_t whiteBalanceRed = kKeepSigned;
    std::int32_t whiteBalanceBlue = kKeepSigned;

    std::int32_t autoProfile = 0;
    float brightness = -1;
    float autoGainMinDb = -100;
    float autoGainMaxDb = -100;
    float autoExposureMinUs = -1;
    float autoExposureMaxUs = -1;

    std::int32_t clockCorrectionNs = 0; ///< per second; 0 = time stamps from this computer's clock

    std::int32_t lutMode = kSweepKeep;
    std::uint32_t lutBits = 9;
    std::string lutFile;            ///< path of the file that `lut` was read from; empty = none
    LutCurve lutCurve;              ///< what `lut` was calculated from when lut.curve is given
    std::vector<std::uint16_t> lut; ///< kLutEntries values, or none
    double lutClipLimit = 4;        ///< steepest part of a computed table, in straight lines

    std::vector<IoboxSetting> iobox;

    std::int32_t logLevel = 2; ///< gKxLogLevelLib
    std::int32_t logSinks = 1; ///< gKxLogModeLib
    std::uint32_t logId = 0;   ///< gKxLogIdLib

    std::string outputFolder; ///< empty = nothing goes to disk
    std::string outputPrefix = "frame_";
    std::int32_t outputFormat = static_cast<std::int32_t>(PictureFormat::kPng);
    std::int32_t outputBayer = static_cast<std::int32_t>(BayerPicture::kColour);
    std::int32_t outputCompression = 1;
    bool outputMetadata = true;
    bool outputOverwrite = false;
    std::uint32_t outputQueue = 16;
    std::int32_t outputWhenFull = static_cast<std::int32_t>(WhenFull::kWait);
    std::uint32_t outputWriters = 2;
};

/// The part of the settings that the export side needs.
ExportSettings exportSettings(const Settings& settings);

} // namespace kxhost

#endif
