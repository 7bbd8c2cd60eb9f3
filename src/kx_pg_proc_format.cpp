// Pixel format: the host's format codes, what each becomes on the camera, and the Bayer tile.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_proc.h"
#include "kx_scenario.h"

#include <array>

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::PixelFormat;

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "ProcSetPixelFormat";

/// A format code of the host's.
struct HostFormat {
    unsigned char code;
    const char* name;
    PixelFormat pixelFormat;
    unsigned char strideBits;
    unsigned char dataBits;
    bool isColor;
    const char* codec;
    bool monoStandsIn; ///< a camera without it can deliver 8-bit mono instead
};

constexpr unsigned char kMono8 = 1;
constexpr unsigned char kBayer8 = 9;

constexpr std::array<HostFormat, 6> kHostFormats = {{
    {kMono8, "MONO8T", FlyCapture2::PIXEL_FORMAT_MONO8, 8, 8, false, "MONO8T", false},
    {2, "MONO12PT", FlyCapture2::PIXEL_FORMAT_MONO12, 12, 12, false, "MONO12PT", true},
    {3, "MONO12T", FlyCapture2::PIXEL_FORMAT_MONO16, 16, 12, false, "MONO12T", true},
    {4, "YUV411PT", FlyCapture2::PIXEL_FORMAT_411YUV8, 12, 12, true, "YUV411T", true},
    {5, "YUV422PT", FlyCapture2::PIXEL_FORMAT_422YUV8, 16, 16, true, "UYVY", true},
    // The codec of raw Bayer depends on the sensor's tile.
    {kBayer8, "Bayer8T", FlyCapture2::PIXEL_FORMAT_RAW8, 8, 8, false, nullptr, false},
}};

constexpr std::uint32_t letters(const char (&text)[5])
{
    std::uint32_t value = 0;
    for (int index = 0; index < 4; ++index) {
        value = (value << 8U) | static_cast<unsigned char>(text[index]);
    }
    return value;
}

struct BayerTile {
    std::uint32_t mapping;
    const char* codec;
};

constexpr std::array<BayerTile, 4> kBayerTiles = {{
    {letters("RGGB"), "BayerRG8T"},
    {letters("GRBG"), "BayerGR8T"},
    {letters("GBRG"), "BayerGB8T"},
    {letters("BGGR"), "BayerBG8T"},
}};

const HostFormat* findFormat(unsigned char code)
{
    for (const HostFormat& format : kHostFormats) {
        if (format.code == code) {
            return &format;
        }
    }
    return nullptr;
}

const char* findBayerCodec(std::uint32_t mapping)
{
    for (const BayerTile& tile : kBayerTiles) {
        if (tile.mapping == mapping) {
            return tile.codec;
        }
    }
    const char* const fallback = kBayerTiles[0].codec;
    KX_LOG_W_AS(kCaller, "Can't obtain Bayer format from 0x%08X\n", mapping);
    KX_LOG_W_AS(kCaller, "Forcing pixel format to '%s'\n", fallback);
    return fallback;
}

const char* chooseBayerCodec(CExCam* cam)
{
    const std::uint32_t mapping = cam == nullptr ? 0 : cam->ExGetBayerFormat();
    const char* const codec = findBayerCodec(mapping);
    KX_LOG_I("BAYER_TILE_MAPPING value: 0x%08X (meta codec chosen '%s')\n", mapping, codec);
    return codec;
}

/// What the camera can deliver of `format`: itself, 8-bit mono in its place, or nothing (null).
/// `code` becomes that of 8-bit mono as soon as it has to stand in, even if it is not there either.
const HostFormat* fitToCamera(const HostFormat* format, unsigned int supported, unsigned char& code)
{
    const auto offers = [supported](const HostFormat* candidate) {
        return (supported & static_cast<unsigned int>(candidate->pixelFormat)) != 0;
    };
    if (offers(format)) {
        return format;
    }
    if (format->monoStandsIn) {
        const HostFormat* const mono = findFormat(kMono8);
        KX_LOG_W_AS(kCaller, "The pixel format '%s' is not supported, forced to '%s'\n",
                    format->name, mono->name);
        format = mono;
        code = mono->code;
        if (offers(mono)) {
            return mono;
        }
    }
    KX_LOG_W_AS(kCaller, "The pixel format '%s' is not supported\n", format->name);
    return nullptr;
}

template <typename T>
void writeIfAsked(T* output, T value)
{
    if (output != nullptr) {
        *output = value;
    }
}

} // namespace

int CCamProc::ProcSetPixelFormat(unsigned int supported,
                                 FlyCapture2::Format7ImageSettings* settings, CExCam* cam,
                                 unsigned char* cfgFormatCode, unsigned char* strideBits,
                                 unsigned char* dataBitsOut, PixelFormat* pixelFormatOut,
                                 const char** codecName)
{
    constexpr int kNotSupported = -1;
    const HostFormat* format = findFormat(*cfgFormatCode);
    if (format == nullptr) {
        return kNotSupported;
    }
    const char* const bayerCodec = format->code == kBayer8 ? chooseBayerCodec(cam) : nullptr;
    if (settings != nullptr) {
        format = fitToCamera(format, supported, *cfgFormatCode);
        if (format == nullptr) {
            return kNotSupported;
        }
    }
    const char* const codec = bayerCodec != nullptr ? bayerCodec : format->codec;
    writeIfAsked(strideBits, format->strideBits);
    writeIfAsked(dataBitsOut, format->dataBits);
    writeIfAsked(pixelFormatOut, format->pixelFormat);
    writeIfAsked(codecName, codec);
    if (settings == nullptr) {
        KX_LOG_I("Use pixel format: '%s'\n", format->name);
        return 0;
    }
    isColor = format->isColor;
    settings->pixelFormat = format->pixelFormat;
    KxSc__SetParamVal(kKxScCodec, codec);
    KX_LOG_I("Configure pixel format: 0x%08X\n", static_cast<unsigned int>(format->pixelFormat));
    return 0;
}

} // namespace KxPGrey
