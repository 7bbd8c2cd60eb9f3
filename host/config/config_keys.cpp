// The table of configuration keys.
#include "config/config_keys.h"

#include <array>

namespace kxhost {
namespace {

constexpr std::array kFormatWords = {Word{"mono8", 1},  Word{"mono12_packed", 2},
                                     Word{"mono12", 3}, Word{"yuv411", 4},
                                     Word{"yuv422", 5}, Word{"bayer8", 9}};
constexpr std::array kConversionWords = {
    Word{"none", 0},   Word{"mono8", 1},  Word{"mono12_packed", 2}, Word{"mono12", 3},
    Word{"yuv411", 4}, Word{"yuv422", 5}, Word{"bayer8", 9}};
constexpr std::array kRotationWords = {Word{"keep", 0}, Word{"off", 1}, Word{"on", 2}};
constexpr std::array kModeWords = {Word{"keep", kSweepKeep}, Word{"manual", kSweepManual},
                                   Word{"auto", kSweepAuto}};
constexpr std::array kProfileWords = {Word{"keep", 0}, Word{"on", 1}};

/// The camera's pins by their ids; hosts for other cameras have further ones.
constexpr std::array kPinWords = {Word{"gpio0", 9}, Word{"gpio1", 10}, Word{"gpio2", 11},
                                  Word{"gpio3", 12}};
constexpr std::array kPinModeWords = {Word{"off", kPinOff}, Word{"output", kPinOutput},
                                      Word{"input", kPinInput}};
constexpr std::array kPinSourceWords = {Word{"none", kPinNoSource}, Word{"strobe", kPinStrobe},
                                        Word{"data", kPinData}};
constexpr std::array kInvertWords = {Word{"no", 0}, Word{"yes", 2}};

constexpr std::array kLevelWords = {Word{"off", 0},  Word{"error", 1}, Word{"warning", 2},
                                    Word{"info", 3}, Word{"debug", 4}, Word{"trace", 5}};
constexpr std::array kSinkWords = {Word{"none", 0}, Word{"stdout", 1}, Word{"syslog", 2},
                                   Word{"both", 3}};

constexpr std::array kPictureWords = {Word{"none", static_cast<int>(PictureFormat::kNone)},
                                      Word{"png", static_cast<int>(PictureFormat::kPng)},
                                      Word{"tiff", static_cast<int>(PictureFormat::kTiff)},
                                      Word{"raw", static_cast<int>(PictureFormat::kRaw)}};
constexpr std::array kBayerWords = {Word{"colour", static_cast<int>(BayerPicture::kColour)},
                                    Word{"color", static_cast<int>(BayerPicture::kColour)},
                                    Word{"mosaic", static_cast<int>(BayerPicture::kMosaic)}};
constexpr std::array kReconnectWords = {Word{"no", 0}, Word{"forever", kWithoutEnd}};
constexpr std::array kSilenceWords = {Word{"never", kWithoutEnd}};
constexpr std::array kFullWords = {Word{"wait", static_cast<int>(WhenFull::kWait)},
                                   Word{"drop", static_cast<int>(WhenFull::kDrop)}};

/// The largest value of a whole number that is not the getters' "keep".
constexpr double kLargest = 4294967294.0;
/// Pixels that a sensor may have in one direction.
constexpr double kMaxPixels = 65535;

constexpr NumberRule whole(double min, double max, Dimension dimension = Dimension::kNone)
{
    return {dimension, min, max, true};
}

constexpr NumberRule number(Dimension dimension, double min, double max)
{
    return {dimension, min, max, false};
}

/// The slot of a member of Settings.
template <auto Member>
constexpr auto member = [](Settings& settings, std::size_t) -> Slot { return &(settings.*Member); };

/// The slot of a member of an I/O box setting.
template <auto Member>
constexpr auto pinMember =
    [](Settings& settings, std::size_t index) -> Slot { return &(settings.iobox[index].*Member); };

/// The slot of one of its two parameters, which have a name for each use of a pin.
template <std::size_t Which>
constexpr auto pinParameter = [](Settings& settings, std::size_t index) -> Slot {
    return &settings.iobox[index].parameters[Which];
};

constexpr NumberRule kExposureRule = number(Dimension::kTime, 1, 3600e6);
constexpr NumberRule kGainRule = number(Dimension::kGain, -99, 100);
/// The camera's registers count automatic gain in 12 bits of 0.1 dB and automatic exposure in 12
/// bits of 10 us; what lies outside would become another value.
constexpr NumberRule kGainLimitRule = number(Dimension::kGain, 0, 100);
constexpr NumberRule kExposureLimitRule = number(Dimension::kTime, 10, 40950);
/// The receiver counts a pulse at the third poll of rest behind it, so a symbol cannot end sooner.
constexpr double kShortestGap = 4;
constexpr double kLongestGap = 1e6;
constexpr NumberRule kPinTimeRule = whole(0, kLargest, Dimension::kTime);

const std::array kKeys = {
    Key{"camera", "model", Takes::kStart, TextRule{false}, "any",
        "The camera's model name, or the beginning of it.", member<&Settings::model>},
    Key{"camera", "serial", Takes::kStart, SerialRule{}, "any",
        "The camera's serial number; a text may be decimal, 0x hexadecimal or 0 octal.",
        member<&Settings::serial>},
    Key{"camera", "bus_mask", Takes::kStart, whole(0, 0xFFFFFFFFU), "0",
        "Bit i set: the camera at place i of the bus may be used whatever its model and serial.",
        member<&Settings::busMask>},
    Key{"camera", "wait", Takes::kStart, number(Dimension::kSeconds, 0, 1e9), "as long as it takes",
        "How long to wait for the camera to appear.", member<&Settings::waitSeconds>},

    Key{"camera", "reconnect", Takes::kStart,
        NumberRule{Dimension::kSeconds, 0.1, 1e9, false, kReconnectWords}, "forever",
        "How long to wait for a camera that was lost; no: the grab ends then.",
        member<&Settings::reconnectSeconds>},
    Key{"camera", "silence", Takes::kStart,
        NumberRule{Dimension::kSeconds, 1, 1e9, false, kSilenceWords}, "30 s",
        "A camera that delivers no frame for so long counts as lost.",
        member<&Settings::silenceSeconds>},

    Key{"gige", "packet_size", Takes::kRestart, whole(1, 9000, Dimension::kBytes), "1500 B",
        "Packet size of a GigE camera; large ones need jumbo frames on the whole way.",
        member<&Settings::packetSize>},

    Key{"grab", "frames", Takes::kStart, whole(0, 4294967293.0), "0",
        "Number of frames to export; 0 = until a signal or an error.", member<&Settings::frames>},
    Key{"grab", "buffers", Takes::kRestart, whole(1, 1024), "8",
        "Number of frame buffers that the camera fills.", member<&Settings::buffers>},
    Key{"grab", "max_losses", Takes::kStart, whole(0, 1e15), "any number",
        "With more lost frames than this the exit code tells so.", member<&Settings::maxLosses>},
    Key{"grab", "watch", Takes::kStart, SwitchRule{}, "true",
        "Watch the configuration file and take over changes of live keys.",
        member<&Settings::watchConfiguration>},

    Key{"region", "width", Takes::kRestart, whole(1, kMaxPixels), kKept,
        "Width of the picture in pixels.", member<&Settings::width>},
    Key{"region", "height", Takes::kRestart, whole(1, kMaxPixels), kKept,
        "Height of the picture in pixels.", member<&Settings::height>},
    Key{"region", "offset_x", Takes::kRestart, whole(0, kMaxPixels), kKept,
        "Distance of the picture from the sensor's left edge in pixels.",
        member<&Settings::offsetX>},
    Key{"region", "offset_y", Takes::kRestart, whole(0, kMaxPixels), kKept,
        "Distance of the picture from the sensor's upper edge in pixels.",
        member<&Settings::offsetY>},

    Key{"format", "pixel_format", Takes::kRestart, WordRule{kFormatWords}, "mono8",
        "Pixel format that the camera sends.", member<&Settings::pixelFormat>},
    Key{"format", "convert_to", Takes::kRestart, WordRule{kConversionWords}, "none",
        "Pixel format that frames are converted to; both pictures are exported.",
        member<&Settings::convertTo>},
    Key{"format", "rotation", Takes::kReload, WordRule{kRotationWords}, "keep",
        "Rotation of the picture in software.", member<&Settings::rotation>},

    Key{"acquisition", "frame_rate", Takes::kReload, number(Dimension::kRate, 0.001, 1e6), kKept,
        "Frames per second.", member<&Settings::frameRate>},
    Key{"acquisition", "exposure", Takes::kLive, kExposureRule, kKept,
        "Exposure time (shutter) in manual mode.", member<&Settings::exposureUs>},
    Key{"acquisition", "exposure_mode", Takes::kLive, WordRule{kModeWords},
        "manual with exposure, else keep", "Who sets the exposure time.",
        member<&Settings::exposureMode>},
    Key{"acquisition", "gain", Takes::kLive, kGainRule, kKept, "Gain in manual mode.",
        member<&Settings::gainDb>},
    Key{"acquisition", "gain_mode", Takes::kLive, WordRule{kModeWords},
        "manual with gain, else keep", "Who sets the gain.", member<&Settings::gainMode>},
    Key{"acquisition", "gamma", Takes::kLive, number(Dimension::kNone, 0.2, 10), kKept,
        "Gamma; 1 switches the camera's gamma off.", member<&Settings::gamma>},

    Key{"color", "saturation", Takes::kLive, whole(0, 10000, Dimension::kPercent), kKept,
        "Saturation; YUV formats only.", member<&Settings::saturation>},
    Key{"color", "white_balance_red", Takes::kLive, whole(0, 65535), kKept,
        "Red part of the white balance in the camera's units; YUV formats only.",
        member<&Settings::whiteBalanceRed>},
    Key{"color", "white_balance_blue", Takes::kLive, whole(0, 65535), kKept,
        "Blue part of the white balance in the camera's units; YUV formats only.",
        member<&Settings::whiteBalanceBlue>},

    Key{"auto", "auto_exposure", Takes::kLive, WordRule{kProfileWords}, "keep",
        "The camera's control of brightness, which automatic gain and exposure follow.",
        member<&Settings::autoProfile>},
    Key{"auto", "brightness", Takes::kReload, number(Dimension::kShare, 0.001, 0.999), kKept,
        "Brightness that the automatic functions aim at, as a share of their range.",
        member<&Settings::brightness>},
    Key{"auto", "gain_min", Takes::kReload, kGainLimitRule, kKept, "Lower limit of automatic gain.",
        member<&Settings::autoGainMinDb>},
    Key{"auto", "gain_max", Takes::kReload, kGainLimitRule, kKept, "Upper limit of automatic gain.",
        member<&Settings::autoGainMaxDb>},
    Key{"auto", "exposure_min", Takes::kReload, kExposureLimitRule, kKept,
        "Lower limit of automatic exposure.", member<&Settings::autoExposureMinUs>},
    Key{"auto", "exposure_max", Takes::kReload, kExposureLimitRule, kKept,
        "Upper limit of automatic exposure.", member<&Settings::autoExposureMaxUs>},

    Key{"timestamps", "clock_correction", Takes::kReload, whole(-1e9, 1e9, Dimension::kDrift),
        "0 ns/s",
        "Correction of the camera's clock; other than 0, time stamps come from that clock.",
        member<&Settings::clockCorrectionNs>},

    Key{"lut", "table", Takes::kLive, TableRule{}, "none",
        "The look-up table as an array of 512 whole numbers.", member<&Settings::lut>},
    Key{"lut", "file", Takes::kLive, FileRule{}, "none",
        "File that holds the look-up table: text, or 16-bit binary (.bin, .raw, .u16).",
        member<&Settings::lutFile>},
    Key{"lut", "curve", Takes::kLive, CurveRule{}, "none",
        "Curve from which the look-up table is calculated.", member<&Settings::lutCurve>},
    Key{"lut", "bits", Takes::kLive, whole(1, 16), "9", "Bit width of the table's values.",
        member<&Settings::lutBits>},
    Key{"lut", "mode", Takes::kLive, WordRule{kModeWords},
        "manual with a table, file or curve, else keep",
        "Who sets the look-up table; manual without one switches the camera's off.",
        member<&Settings::lutMode>},
    Key{"lut", "clip_limit", Takes::kLive, number(Dimension::kNone, 1, 4096), "4",
        "How much a table computed from the picture may raise contrast; 1 not at all.",
        member<&Settings::lutClipLimit>},

    Key{kIoboxSection, "pin", Takes::kLive, WordRule{kPinWords}, "required", "The pin that is set.",
        pinMember<&IoboxSetting::pin>},
    Key{kIoboxSection, "mode", Takes::kLive, WordRule{kPinModeWords}, "off",
        "Direction of the pin.", pinMember<&IoboxSetting::mode>},
    Key{kIoboxSection, "source", Takes::kLive, WordRule{kPinSourceWords}, "none",
        "What the pin carries: the strobe of the exposure, or data words.",
        pinMember<&IoboxSetting::source>},
    Key{kIoboxSection, "invert", Takes::kLive, WordRule{kInvertWords}, "no",
        "Inversion of the pin's level.", pinMember<&IoboxSetting::invert>},
    Key{kIoboxSection, "delay", Takes::kLive, kPinTimeRule, kKept,
        "Strobe: from the start of the exposure to the pulse.", pinParameter<0>},
    Key{kIoboxSection, "duration", Takes::kLive, kPinTimeRule, kKept,
        "Strobe: length of the pulse, at most the exposure.", pinParameter<1>},
    Key{kIoboxSection, "bits", Takes::kLive, whole(1, 32), "none",
        "Data output: number of bits to send.", pinParameter<0>},
    Key{kIoboxSection, "word", Takes::kLive, whole(0, kLargest), "none",
        "Data output: the word to send.", pinParameter<1>},
    Key{kIoboxSection, "timeout_polls", Takes::kRestart, whole(1, kLargest), "10000",
        "Data input: polls of the line until a reply is given up.", pinParameter<0>},
    Key{kIoboxSection, "gap_polls", Takes::kRestart, whole(kShortestGap, kLongestGap), "12",
        "Data input: polls of an idle line that end a symbol.", pinParameter<1>},

    Key{"log", "level", Takes::kLive, WordRule{kLevelWords}, "warning",
        "The least important messages of the plug-in that are written.",
        member<&Settings::logLevel>},
    Key{"log", "sinks", Takes::kStart, WordRule{kSinkWords}, "stdout",
        "Where the plug-in's messages go.", member<&Settings::logSinks>},
    Key{"log", "id", Takes::kStart, whole(0, kLargest), "0",
        "Number in the plug-in's syslog identity.", member<&Settings::logId>},

    Key{"output", "folder", Takes::kStart, TextRule{false}, "nothing is written",
        "Folder for pictures and metadata; created when it is missing.",
        member<&Settings::outputFolder>},
    Key{"output", "prefix", Takes::kStart, TextRule{true}, "frame_",
        "Beginning of the picture files' names.", member<&Settings::outputPrefix>},
    Key{"output", "format", Takes::kStart, WordRule{kPictureWords}, "png",
        "Format of the picture files.", member<&Settings::outputFormat>},
    Key{"output", "bayer", Takes::kStart, WordRule{kBayerWords}, "colour",
        "What raw Bayer frames become: a colour picture, or the grey mosaic as it came.",
        member<&Settings::outputBayer>},
    Key{"output", "compression", Takes::kStart, whole(0, 9), "1",
        "PNG compression: 0 fastest, 9 smallest.", member<&Settings::outputCompression>},
    Key{"output", "metadata", Takes::kStart, SwitchRule{}, "true",
        "Write one line of metadata per frame into frames.ndjson.",
        member<&Settings::outputMetadata>},
    Key{"output", "overwrite", Takes::kStart, SwitchRule{}, "false",
        "Files of an earlier grab may be replaced.", member<&Settings::outputOverwrite>},
    Key{"output", "queue", Takes::kStart, whole(1, 4096), "16",
        "Frames that may wait to be written.", member<&Settings::outputQueue>},
    Key{"output", "when_full", Takes::kStart, WordRule{kFullWords}, "wait",
        "What a frame does that finds the queue full: wait for a place, or be dropped and counted.",
        member<&Settings::outputWhenFull>},
    Key{"output", "writers", Takes::kStart, whole(1, 64), "2", "Threads that write pictures.",
        member<&Settings::outputWriters>},
};

} // namespace

std::span<const Key> configKeys()
{
    return kKeys;
}

const Key* findKey(std::string_view section, std::string_view name)
{
    for (const Key& key : kKeys) {
        if (key.section == section && key.name == name) {
            return &key;
        }
    }
    return nullptr;
}

} // namespace kxhost
