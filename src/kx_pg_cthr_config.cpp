// The control thread's configuration of pins: strobes, outputs that send, inputs that receive.
#include "kx_log.h"
#include "kx_pg_cthr.h"
#include "kx_pg_shared.h"

#define KX_LOG_TAG "KX_PG_CTHR"

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "DoGpioCfg";

constexpr std::uint8_t kNotInverted = 2;
constexpr std::uint32_t kMostBits = 32;

/// Queues a command. Returns false when one is still on its way.
bool configureOutput(CExCam& cam, unsigned int pin, IoPinState& state)
{
    const std::uint32_t bits = shared::get(state.param0);
    const std::uint32_t word = shared::get(state.param1);
    if (bits < 1 || bits > kMostBits || word == kIoNone) {
        return true;
    }
    if (shared::get(state.dataWord) != kIoNone) {
        cam.ioDataActive = true;
        KX_LOG_W_AS(kCaller,
                    " Cfg IoBox set %u: prev cmd ('%u' 0x%08X) sending is active, skip cmd '%u' "
                    "(0x%08X)\n",
                    pin, cam.lineCmdActive, cam.lineCmdActive, word, word);
        shared::set(state.cfgDirty, 1);
        shared::set(state.pinFree, 0);
        return false;
    }
    const std::uint8_t inv = shared::get(state.inv);
    if (cam.ExSetLineMode(static_cast<pg_pins>(pin), kIoOutput, inv != 0) != 0) {
        return true;
    }
    shared::set(state.dataWord, word);
    shared::set(state.bitCount, static_cast<std::uint8_t>(bits));
    shared::set(state.bitCountCfg, static_cast<std::uint8_t>(bits));
    shared::set(state.rxWaitInit, 1);
    shared::set(state.pulseCount, 0);
    shared::set(state.idleLevel, inv);
    KX_LOG_I(" Cfg IoBox set %u: enqueue gpio cmd '%u' (0x%08X)\n", pin, word, word);
    cam.ioDataActive = true;
    cam.lineCmdSent = false;
    cam.lineCmdActive = word;
    shared::set(state.pinFree, 0);
    if (cam.rxPinIndex != kIoNone) {
        shared::set(cam.ioPinState[cam.rxPinIndex].pinFree, 0);
    }
    return true;
}

void configureInput(CExCam& cam, unsigned int pin, IoPinState& state)
{
    constexpr unsigned int kLineInput = 0;
    const bool idle = shared::get(state.inv) == kNotInverted;
    if (cam.ExSetLineMode(static_cast<pg_pins>(pin), kLineInput, idle) != 0) {
        return;
    }
    const std::uint32_t timeout = shared::get(state.param0);
    KX_LOG_I(" Cfg IoBox set %u: user input with timeout '%u' (0x%08X) us\n", pin, timeout,
             timeout);
    shared::set(state.dataWord, kIoNone);
    shared::set(state.idleLevel, static_cast<std::uint8_t>(idle));
    cam.ioDataActive = true;
    shared::set(state.pinFree, 0);
    cam.rxPinIndex = pin;
}

/// Switches the strobe on, never longer than the exposure, or off.
void configureStrobe(CExCam& cam, unsigned int pin, IoPinState& state)
{
    const std::uint32_t expoTimeUs = shared::get(cam.expoTimeUs);
    const std::uint8_t src = shared::get(state.src);
    const std::uint8_t mode = shared::get(state.mode);
    const std::uint8_t inv = shared::get(state.inv);
    const std::uint32_t delay = shared::get(state.param0);
    std::uint32_t duration = shared::get(state.param1);
    const bool timed = duration != kIoNone;
    if (timed && duration >= expoTimeUs) {
        duration = expoTimeUs;
    }
    if (isStrobe(src)) {
        shared::set(state.expoAtCfgUs, timed && expoTimeUs != kIoNone ? expoTimeUs : 0);
    }
    KX_LOG_I(" Cfg IoBox set %u: Pin %u, Mod %d, Src %d, Inv %d (param[0]=0x%X, param[1]=0x%X)\n",
             pin, pin, mode, src, inv, delay, duration);
    static_cast<void>(cam.ExSetLineModeOutStrobe(static_cast<pg_pins>(pin),
                                                 mode == kIoOutput && isStrobe(src),
                                                 inv != kNotInverted, delay, duration));
    shared::handOver(state.pinFree, 1);
}

/// Applies one changed record. Returns false when its command was refused.
bool applyRecord(CExCam& cam, unsigned int pin, IoPinState& state)
{
    if (shared::get(state.src) != kIoUserData) {
        configureStrobe(cam, pin, state);
        return true;
    }
    switch (shared::get(state.mode)) {
    case kIoOutput:
        return configureOutput(cam, pin, state);
    case kIoInput:
        configureInput(cam, pin, state);
        return true;
    default:
        return true;
    }
}

} // namespace

bool CCamCtrlThread::DoGpioCfg(CExCam* camera)
{
    KX_LOG_D("IoBox configuration apply handler entry\n");
    bool taken = true;
    for (unsigned int pin = 0; pin < kPgPinCount; ++pin) {
        IoPinState& state = camera->ioPinState[pin];
        if (shared::look(state.cfgDirty) == 0) {
            continue;
        }
        shared::set(state.cfgDirty, 0);
        if (camera->rxPinIndex == pin) {
            camera->rxPinIndex = kIoNone;
        }
        taken = applyRecord(*camera, pin, state) && taken;
    }
    return taken;
}

int CCamCtrlThread::ConfigureLineUserOutput(CExCam* camera, pg_pins pin, unsigned char inv)
{
    constexpr std::uint32_t kTestBits = 10;
    constexpr std::uint32_t kTestWord = 914;
    constexpr int kDone = 0;
    IoPinState& state = camera->ioPinState[static_cast<unsigned int>(pin)];
    shared::set(state.mode, kIoOutput);
    shared::set(state.src, kIoUserData);
    shared::set(state.inv, inv);
    shared::set(state.param0, kTestBits);
    shared::set(state.param1, kTestWord);
    shared::handOver(state.cfgDirty, 1);
    shared::handOver(camera->ioCfgPending, true);
    KX_LOG_I("***** Opening GPIO line from ctrl thread: rc=%i *********\n", kDone);
    return kDone;
}

} // namespace KxPGrey
