// Host services: the getters of the configuration.
#include "grab/services.h"
#include "services/service_exports.h"

namespace {

/// The code of the format that a 12-bit pass asks for.
constexpr int kMono12Packed = 2;

const kxhost::Settings& settings()
{
    return kxhost::services().settings;
}

/// Which camera is looked for.
struct Sought {
    const std::string& model;
    const std::string& serial;
    std::uint32_t busMask;
};
Sought sought()
{
    const std::optional<kxhost::CameraChoice>& choice = kxhost::services().choice;
    return choice ? Sought{choice->model, choice->serial, choice->busMask}
                  : Sought{settings().model, settings().serial, settings().busMask};
}

/// The setting number `set`; a neutral one for numbers that do not exist.
const kxhost::IoboxSetting& iobox(int set)
{
    static const kxhost::IoboxSetting kNone;
    const auto index = static_cast<std::size_t>(set);
    return index < settings().iobox.size() ? settings().iobox[index] : kNone;
}

} // namespace

/// Without any choice every model will do. A bus mask alone chooses alone, which takes a null
/// model.
const char* KxGiMainCtx__GetModelStr()
{
    const auto [model, serial, busMask] = sought();
    const bool maskAlone = model.empty() && serial.empty() && busMask != 0;
    return maskAlone ? nullptr : model.c_str();
}

const char* KxGiMainCtx__GetIdStr()
{
    return sought().serial.c_str();
}

uint32_t KxGiMainCtx__GetActiveCamMask()
{
    return sought().busMask;
}

uint32_t KxGiMainCtx__GetDatachunk()
{
    return settings().packetSize;
}

uint32_t KxGiMainCtx__GetBnum()
{
    return settings().buffers;
}

/// The first frame of a grab starts the timing and is not exported, so it takes one more. A grab
/// that starts again goes on counting.
uint32_t KxGiMainCtx__GetFnum()
{
    const uint64_t wanted = settings().frames;
    if (wanted == 0) {
        return 0;
    }
    const kxhost::GrabCounts& counts = kxhost::services().counts;
    const uint64_t had = counts.retrieved - counts.timing;
    return static_cast<uint32_t>(wanted > had ? wanted - had : 0) + 1;
}

uint32_t KxGiMainCtx__GetWidth()
{
    return settings().width;
}

uint32_t KxGiMainCtx__GetHeight()
{
    return settings().height;
}

uint32_t KxGiMainCtx__GetOffsetX()
{
    return settings().offsetX;
}

uint32_t KxGiMainCtx__GetOffsetY()
{
    return settings().offsetY;
}

uint8_t KxGiMainCtx__GetFormat()
{
    return static_cast<uint8_t>(settings().pixelFormat);
}

/// A 12-bit pass asks for 12 bits and then for 8 again, which is the format that it found.
void KxGiMainCtx__SetFormat(int code)
{
    kxhost::HostServices& host = kxhost::services();
    if (code == kMono12Packed) {
        host.formatBeforePass = host.settings.pixelFormat;
    } else if (host.formatBeforePass) {
        code = *host.formatBeforePass;
        host.formatBeforePass.reset();
    }
    host.settings.pixelFormat = code;
}

uint8_t KxGiMainCtx__GetCformat()
{
    return static_cast<uint8_t>(settings().convertTo);
}

float KxGiMainCtx__GetFps()
{
    return settings().frameRate;
}

float KxGiMainCtx__GetGainMan()
{
    return settings().gainDb;
}

float KxGiMainCtx__GetExptMan()
{
    return settings().exposureUs;
}

float KxGiMainCtx__GetGamma()
{
    return settings().gamma;
}

int32_t KxGiMainCtx__GetSatur()
{
    return settings().saturation;
}

int32_t KxGiMainCtx__GetWbred()
{
    return settings().whiteBalanceRed;
}

int32_t KxGiMainCtx__GetWbblu()
{
    return settings().whiteBalanceBlue;
}

int32_t KxGiMainCtx__GetRotate()
{
    return settings().rotation;
}

float KxGiMainCtx__GetAtbright()
{
    return settings().brightness;
}

float KxGiMainCtx__GetGainlimsLow()
{
    return settings().autoGainMinDb;
}

float KxGiMainCtx__GetGainlimsHigh()
{
    return settings().autoGainMaxDb;
}

float KxGiMainCtx__GetEtlimsLow()
{
    return settings().autoExposureMinUs;
}

float KxGiMainCtx__GetEtlimsHigh()
{
    return settings().autoExposureMaxUs;
}

int32_t KxGiMainCtx__GetSweepProf()
{
    return settings().autoProfile;
}

int32_t KxGiMainCtx__GetSweepGainMod()
{
    return settings().gainMode;
}

int32_t KxGiMainCtx__GetSweepEtimeMod()
{
    return settings().exposureMode;
}

int32_t KxGiMainCtx__GetSweepLutMod()
{
    return settings().lutMode;
}

int32_t KxGiMainCtx__GetTsadjns()
{
    return settings().clockCorrectionNs;
}

uint16_t KxGiMainCtx__GetLutBitSize()
{
    return static_cast<uint16_t>(settings().lutBits);
}

const uint16_t* KxGiMainCtx__GetLutDataU16()
{
    return settings().lut.empty() ? nullptr : settings().lut.data();
}

uint32_t KxGiMainCtx__GetIoboxNum()
{
    return static_cast<uint32_t>(settings().iobox.size());
}

int32_t KxGiMainCtx__GetIoboxPin(int set)
{
    return iobox(set).pin;
}

int32_t KxGiMainCtx__GetIoboxMod(int set)
{
    return iobox(set).mode;
}

int32_t KxGiMainCtx__GetIoboxInv(int set)
{
    return iobox(set).invert;
}

int32_t KxGiMainCtx__GetIoboxSrc(int set)
{
    return iobox(set).source;
}

int32_t KxGiMainCtx__GetIoboxPar(int set, int which)
{
    const auto& parameters = iobox(set).parameters;
    const auto index = static_cast<std::size_t>(which);
    return index < parameters.size() ? static_cast<int32_t>(parameters[index])
                                     : kxhost::kKeepSigned;
}
