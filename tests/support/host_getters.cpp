// The recording host's configuration getters.
#include "host_overrides.h"
#include "journal.h"
#include "kx_host.h"
#include "recording_host.h"

using kxtest::host;
using kxtest::HostConfig;

namespace {

template <typename T>
T answer(const char* name, T HostConfig::*field)
{
    kxtest::journal().add({kxtest::Kind::getter, name, "", 0});
    return kxtest::overrideOf<T>(name).value_or(host().config.*field);
}

const char* answer(const char* name, std::optional<std::string> HostConfig::*field)
{
    kxtest::journal().add({kxtest::Kind::getter, name, "", 0});
    const std::optional<std::string>& text = host().config.*field;
    return kxtest::overrideOf<const char*>(name).value_or(text ? text->c_str() : nullptr);
}

int32_t ioboxValue(const char* getter, int set, std::int32_t kxtest::IoboxEntry::*field)
{
    kxtest::journal().add({kxtest::Kind::getter, getter, std::to_string(set), 0});
    if (const auto answer = kxtest::overrideOf<std::int32_t>(getter)) {
        return *answer;
    }
    return host().config.iobox.at(static_cast<std::size_t>(set)).*field;
}

} // namespace

kxtest::HostOverrides& kxtest::hostOverrides()
{
    static HostOverrides overrides;
    return overrides;
}

#define KX_GETTER(TYPE, NAME, FIELD)                                                               \
    TYPE NAME(void)                                                                                \
    {                                                                                              \
        return answer(#NAME, &HostConfig::FIELD);                                                  \
    }

extern "C" {

KX_GETTER(const char*, KxGiMainCtx__GetModelStr, model)
KX_GETTER(const char*, KxGiMainCtx__GetIdStr, id)
KX_GETTER(uint32_t, KxGiMainCtx__GetActiveCamMask, activeCamMask)
KX_GETTER(uint32_t, KxGiMainCtx__GetDatachunk, datachunk)
KX_GETTER(uint32_t, KxGiMainCtx__GetBnum, bnum)
KX_GETTER(uint32_t, KxGiMainCtx__GetFnum, fnum)
KX_GETTER(uint32_t, KxGiMainCtx__GetWidth, width)
KX_GETTER(uint32_t, KxGiMainCtx__GetHeight, height)
KX_GETTER(uint32_t, KxGiMainCtx__GetOffsetX, offsetX)
KX_GETTER(uint32_t, KxGiMainCtx__GetOffsetY, offsetY)
KX_GETTER(uint8_t, KxGiMainCtx__GetFormat, format)
KX_GETTER(uint8_t, KxGiMainCtx__GetCformat, cformat)
KX_GETTER(float, KxGiMainCtx__GetFps, fps)
KX_GETTER(float, KxGiMainCtx__GetGainMan, gainMan)
KX_GETTER(float, KxGiMainCtx__GetExptMan, exptMan)
KX_GETTER(float, KxGiMainCtx__GetGamma, gamma)
KX_GETTER(int32_t, KxGiMainCtx__GetSatur, satur)
KX_GETTER(int32_t, KxGiMainCtx__GetWbred, wbred)
KX_GETTER(int32_t, KxGiMainCtx__GetWbblu, wbblu)
KX_GETTER(int32_t, KxGiMainCtx__GetRotate, rotate)
KX_GETTER(float, KxGiMainCtx__GetAtbright, atbright)
KX_GETTER(float, KxGiMainCtx__GetGainlimsLow, gainlimsLow)
KX_GETTER(float, KxGiMainCtx__GetGainlimsHigh, gainlimsHigh)
KX_GETTER(float, KxGiMainCtx__GetEtlimsLow, etlimsLow)
KX_GETTER(float, KxGiMainCtx__GetEtlimsHigh, etlimsHigh)
KX_GETTER(int32_t, KxGiMainCtx__GetSweepProf, sweepProf)
KX_GETTER(int32_t, KxGiMainCtx__GetSweepGainMod, sweepGainMod)
KX_GETTER(int32_t, KxGiMainCtx__GetSweepEtimeMod, sweepEtimeMod)
KX_GETTER(int32_t, KxGiMainCtx__GetSweepLutMod, sweepLutMod)
KX_GETTER(int32_t, KxGiMainCtx__GetTsadjns, tsadjns)

KX_GETTER(uint16_t, KxGiMainCtx__GetLutBitSize, lutBits)

const uint16_t* KxGiMainCtx__GetLutDataU16(void)
{
    kxtest::journal().add({kxtest::Kind::getter, "KxGiMainCtx__GetLutDataU16", "", 0});
    const std::vector<std::uint16_t>& lut = host().config.lut;
    return kxtest::overrideOf<const uint16_t*>("KxGiMainCtx__GetLutDataU16")
        .value_or(lut.empty() ? nullptr : lut.data());
}

uint32_t KxGiMainCtx__GetIoboxNum(void)
{
    kxtest::journal().add({kxtest::Kind::getter, "KxGiMainCtx__GetIoboxNum", "", 0});
    return kxtest::overrideOf<uint32_t>("KxGiMainCtx__GetIoboxNum")
        .value_or(static_cast<uint32_t>(host().config.iobox.size()));
}

int32_t KxGiMainCtx__GetIoboxPin(int set)
{
    return ioboxValue("KxGiMainCtx__GetIoboxPin", set, &kxtest::IoboxEntry::pin);
}
int32_t KxGiMainCtx__GetIoboxMod(int set)
{
    return ioboxValue("KxGiMainCtx__GetIoboxMod", set, &kxtest::IoboxEntry::mode);
}
int32_t KxGiMainCtx__GetIoboxInv(int set)
{
    return ioboxValue("KxGiMainCtx__GetIoboxInv", set, &kxtest::IoboxEntry::inv);
}
int32_t KxGiMainCtx__GetIoboxSrc(int set)
{
    return ioboxValue("KxGiMainCtx__GetIoboxSrc", set, &kxtest::IoboxEntry::src);
}

int32_t KxGiMainCtx__GetIoboxPar(int set, int which)
{
    kxtest::journal().add({kxtest::Kind::getter, "KxGiMainCtx__GetIoboxPar",
                           kxtest::format("%i, %i", set, which), 0});
    if (const auto answer = kxtest::overrideOf<std::int32_t>("KxGiMainCtx__GetIoboxPar")) {
        return *answer;
    }
    return host()
        .config.iobox.at(static_cast<std::size_t>(set))
        .par.at(static_cast<std::size_t>(which));
}

void KxGiMainCtx__SetFormat(int code)
{
    kxtest::journal().add({kxtest::Kind::host, "KxGiMainCtx__SetFormat", std::to_string(code), 0});
    host().config.format = static_cast<std::uint8_t>(code);
}
}
