// The plug-in's camera: mode and level of its pins, and the strobes on them.
#include "kx_log.h"
#include "kx_pg_excam.h"

#define KX_LOG_TAG "KX_PG_EXCAM"

using FlyCapture2::Error;
using FlyCapture2::PGRERROR_OK;

namespace KxPGrey {

namespace {

constexpr std::array<unsigned int, kPgPinCount> _S_RegGpioCtrl = {0x1110, 0x1120, 0x1130, 0x1140};

// The bits of a control register.
constexpr std::uint32_t kPresent = 0x8000'0000;
constexpr unsigned int kModeShift = 16;
constexpr std::uint32_t kModeMask = 0xFU << kModeShift;
constexpr std::uint32_t kLevel = 1;

constexpr unsigned int kOutputMode = 1;
constexpr unsigned int kModesToSet = 5;
constexpr unsigned int kNoMode = 255;
constexpr std::uint32_t kUnknown = 0xFFFFFFFF;
constexpr unsigned int kKeep = 0xFFFFFFFF;

/// A register that cannot be read says that its pin is not there.
std::uint32_t readPin(CExCam& cam, pg_pins pin)
{
    unsigned int word = 0;
    static_cast<void>(cam.ReadRegister(_S_RegGpioCtrl[pin], &word));
    return word;
}

void writePin(CExCam& cam, pg_pins pin, std::uint32_t word)
{
    static_cast<void>(cam.WriteRegister(_S_RegGpioCtrl[pin], word, false));
}

constexpr bool isPresent(std::uint32_t word)
{
    return (word & kPresent) != 0;
}

constexpr std::uint32_t withLevel(std::uint32_t word, bool level)
{
    return level ? word | kLevel : word & ~kLevel;
}

void setUnlessKept(float& milliseconds, unsigned int us)
{
    constexpr float kUsPerMs = 1000.0F;
    if (us != kKeep) {
        milliseconds = static_cast<float>(us) / kUsPerMs;
    }
}

} // namespace

unsigned int CExCam::ExGetLineMode(pg_pins pin)
{
    const std::uint32_t word = readPin(*this, pin);
    return isPresent(word) ? (word & kModeMask) >> kModeShift : kNoMode;
}

int CExCam::ExSetLineMode(pg_pins pin, unsigned int mode, bool level)
{
    if (mode >= kModesToSet) {
        KX_LOG_E("The asked GPIO mode %u is not supported\n", mode);
        return -2;
    }
    std::uint32_t word = readPin(*this, pin);
    if (!isPresent(word)) {
        KX_LOG_E("The feature is not available\n");
        return -1;
    }
    word = (word & ~kModeMask) | (mode << kModeShift);
    if (mode == kOutputMode) {
        word = withLevel(word, level);
    }
    KX_LOG_I("### initially set pin %u: mode %u ###\n", static_cast<unsigned int>(pin), mode);
    // The shadow stays: the next level of a pin that has one goes out with the mode it had then.
    writePin(*this, pin, word);
    return 0;
}

int CExCam::ExSetLineBit(pg_pins pin, bool level)
{
    std::uint32_t& shadow = gpioCtrlShadow[pin];
    std::uint32_t word = shadow;
    if (word == kUnknown) {
        word = readPin(*this, pin);
        if (!isPresent(word)) {
            return -1;
        }
    }
    shadow = withLevel(word, level);
    writePin(*this, pin, shadow);
    return 0;
}

int CExCam::ExGetLineBit(pg_pins pin, bool* level)
{
    const std::uint32_t word = readPin(*this, pin);
    if (!isPresent(word)) {
        return -1;
    }
    if (level != nullptr) {
        *level = (word & kLevel) != 0;
    }
    return 0;
}

int CExCam::ExSetLineModeOutStrobe(pg_pins pin, bool onOff, bool polarity, unsigned int delayUs,
                                   unsigned int durationUs)
{
    FlyCapture2::StrobeInfo info;
    info.source = pin;
    if (const Error error = GetStrobeInfo(&info); error != PGRERROR_OK) {
        KX_LOG_W("can't do GetStrobeInfo: error %s", error.GetDescription());
        return -1;
    }
    FlyCapture2::StrobeControl control;
    control.source = pin;
    if (const Error error = GetStrobe(&control); error != PGRERROR_OK) {
        KX_LOG_W("can't do GetStrobe: error %s", error.GetDescription());
        return -2;
    }
    control.onOff = onOff;
    if (onOff) {
        control.polarity = polarity ? 1 : 0;
        setUnlessKept(control.delay, delayUs);
        setUnlessKept(control.duration, durationUs);
    }
    if (const Error error = SetStrobe(&control, false); error != PGRERROR_OK) {
        KX_LOG_W("can't do SetStrobe: error %s", error.GetDescription());
        return -3;
    }
    KX_LOG_I("### set strobe on pin %u: onOff=%u (delay=%f, duration=%f, polarity=%u) ###\n",
             static_cast<unsigned int>(pin), static_cast<unsigned int>(control.onOff),
             static_cast<double>(control.delay), static_cast<double>(control.duration),
             control.polarity);
    return 0;
}

} // namespace KxPGrey
