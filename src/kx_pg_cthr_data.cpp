// The control thread's line data: commands out, replies in, sample by sample.
#include "kx_iobox.h"
#include "kx_log.h"
#include "kx_pg_cthr.h"
#include "kx_pg_line_code.h"
#include "kx_pg_line_rx.h"
#include "kx_pg_shared.h"

#include <sys/time.h>

#define KX_LOG_TAG "KX_PG_CTHR"

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "DoGpioProc";

constexpr unsigned int kHalfPeriodUs = 2000;
constexpr std::uint32_t kDefaultTimeout = 10'000; ///< samples
constexpr std::uint32_t kDefaultGap = 12;         ///< samples

std::uint32_t valueOr(std::uint32_t value, std::uint32_t fallback)
{
    return value == kIoNone ? fallback : value;
}

unsigned long long microsecondsNow()
{
    timeval now = {};
    gettimeofday(&now, nullptr);
    return static_cast<unsigned long long>(now.tv_sec) * 1'000'000U +
           static_cast<unsigned long long>(now.tv_usec);
}

// ---- Commands.

/// Command and reply are over: gives the pin back, as a strobe when it was one before.
void finishCommand(CExCam& cam, unsigned int pin, IoPinState& state)
{
    IoPinState& saved = cam.ioPinSaved[pin];
    if (shared::get(saved.mode) == kIoOutput && isStrobe(shared::get(saved.src))) {
        // Pending before the copied record is free again, so that the grab thread keeps off it.
        shared::handOver(cam.ioCfgPending, true);
        copyIoPin(state, saved);
        shared::set(state.dataWord, kIoNone);
        shared::set(state.cfgDirty, 1);
        KX_LOG_I(" Proc IoBox set %u: pin=%u restored strob\n", pin, pin);
    } else {
        shared::handOver(state.pinFree, 1);
    }
    cam.lineCmdSent = false;
}

/// Makes the reply's pin wait for its first pulse.
void armReply(CExCam& cam)
{
    const unsigned int pin = cam.rxPinIndex;
    IoPinState& state = cam.ioPinState[pin];
    const std::uint32_t timeout = valueOr(shared::get(state.param0), kDefaultTimeout);
    shared::set(state.loopsLeft, timeout);
    shared::set(state.dataWord, kIoNone);
    shared::set(state.lastLevel, 0);
    shared::set(state.rxWaitInit, 1);
    shared::set(state.idleCount, 0);
    shared::set(state.pinFree, 0);
    // GPIO 0 shows as "Line1".
    KX_LOG_I(" start polling of Pin %s with timeout %uus to get reply\n",
             KxCfgIoPinMapT[pin + 1].name, timeout);
}

void sendCommand(CExCam& cam, unsigned int pin, IoPinState& state)
{
    const std::uint32_t word = shared::get(state.dataWord);
    const std::uint8_t bits = shared::get(state.bitCount);
    const bool idleHigh = shared::get(state.idleLevel) != 0;
    static_cast<void>(cam.ExSendLineCmdBy2bits(static_cast<pg_pins>(pin), word, bits, kHalfPeriodUs,
                                               idleHigh, true));
    KX_LOG_I(" Proc IoBox set %u: pin=%u sent data 0x%08X (%u bits)\n", pin, pin, word, bits);
    KX_LOG_I("[%llu] Proc IoBox set %u: pin=%u sent data 0x%08X (%u bits)\n", microsecondsNow(),
             pin, pin, word, bits);
    shared::set(state.bitCount, 0);
    shared::set(state.dataWord, kIoNone);
    cam.lineCmdSent = true;
    if (cam.rxPinIndex == kIoNone) {
        cam.lineCmdActive = kIoNone;
    } else {
        armReply(cam);
    }
}

/// Returns whether the pin needs no further pass.
bool serveOutput(CExCam& cam, unsigned int pin, IoPinState& state)
{
    if (cam.lineCmdSent && cam.lineCmdActive == kIoNone) {
        finishCommand(cam, pin, state);
        return true;
    }
    if (shared::get(state.bitCount) == 0 || shared::get(state.dataWord) == kIoNone) {
        return true;
    }
    sendCommand(cam, pin, state);
    return false;
}

// ---- Replies.

LineRx readRx(IoPinState& state)
{
    return {.dataWord = shared::get(state.dataWord),
            .loopsLeft = shared::get(state.loopsLeft),
            .pulseCount = shared::get(state.pulseCount),
            .idleCount = shared::get(state.idleCount),
            .activeCount = shared::get(state.activeCount),
            .bitCount = shared::get(state.bitCount),
            .idleLevel = shared::get(state.idleLevel),
            .lastLevel = shared::get(state.lastLevel),
            .rxWaitInit = shared::get(state.rxWaitInit)};
}

void writeRx(IoPinState& state, const LineRx& rx)
{
    shared::set(state.dataWord, rx.dataWord);
    shared::set(state.loopsLeft, rx.loopsLeft);
    shared::set(state.pulseCount, rx.pulseCount);
    shared::set(state.idleCount, rx.idleCount);
    shared::set(state.activeCount, rx.activeCount);
    shared::set(state.bitCount, rx.bitCount);
    shared::set(state.idleLevel, rx.idleLevel);
    shared::set(state.lastLevel, rx.lastLevel);
    shared::set(state.rxWaitInit, rx.rxWaitInit);
}

/// The reply is over, in whatever way.
void finishReply(CExCam& cam, IoPinState& state)
{
    cam.lineCmdActive = kIoNone;
    shared::handOver(state.pinFree, 1);
}

/// Leaves a good reply for the grab loop.
void takeReply(CExCam& cam, unsigned int pin, IoPinState& state, const LineRx& rx)
{
    const ReceivedWord reply = receivedWord(rx.dataWord, rx.bitCount);
    const char* const parity = reply.parityGood ? "PASS" : "FAIL";
    KX_LOG_I(" pin %u RX: fulldata 0x%08X (%u bits), parity - %s, data 0x%08X\n", pin, reply.word,
             rx.bitCount, parity, reply.payload);
    shared::set(state.dataWord, reply.word);
    finishReply(cam, state);
    if (reply.parityGood && rx.bitCount > kLineSymbolBits) {
        // Bits first: a word that goes out with an older one's bits is accepted here.
        shared::handOver(cam.rxBits, rx.bitCount - kLineSymbolBits);
        shared::handOver(cam.rxData, reply.payload);
    } else {
        // The one text for both reasons.
        KX_LOG_W_AS(kCaller,
                    " pin %u RX: data 0x%08X (%u bits) is rejected (too short), parity - %s!\n",
                    pin, reply.word, rx.bitCount, parity);
    }
}

/// What the learning of the idle level says; `before` is the time left before this sample.
void reportLearning(unsigned int pin, LineEvent event, unsigned int level, std::uint32_t before)
{
    switch (event) {
    case LineEvent::learning:
        KX_LOG_I("[%llu] pin %u RX: start getting initial line level, lineBit %u\n",
                 microsecondsNow(), pin, level);
        break;
    case LineEvent::learnt:
        KX_LOG_I("[%llu] pin %u RX: got initial line level, lineBit %u\n", microsecondsNow(), pin,
                 level);
        break;
    case LineEvent::dataStart:
        KX_LOG_I("[%llu] pin %u RX: pulse start - data start, lineBit %u (TO curr val = %u)\n",
                 microsecondsNow(), pin, level, before);
        break;
    default:
        break;
    }
}

void reportData(unsigned int pin, const LineStep& step, const LineRx& rx)
{
    switch (step.event) {
    case LineEvent::pulseStart:
        KX_LOG_D_AS(kCaller, " pin %u RX: pulse start (prev active cntr %u)\n", pin, step.count);
        break;
    case LineEvent::pulseEnd:
        KX_LOG_D_AS(kCaller, " pin %u RX: pulse end (prev inactive cntr %u)\n", pin, step.count);
        break;
    case LineEvent::symbol:
        KX_LOG_D_AS(kCaller, " pin %u RX: 2bits 0x%01X end (%u bits totally)\n", pin,
                    rx.dataWord & 3U, rx.bitCount);
        break;
    default:
        break;
    }
}

/// Acts on a sample that was taken as data.
void serveDataStep(CExCam& cam, unsigned int pin, const LineStep& step, const LineRx& rx)
{
    IoPinState& state = cam.ioPinState[pin];
    reportData(pin, step, rx);
    if (step.event == LineEvent::frameEnd) {
        takeReply(cam, pin, state, rx);
    }
    KX_LOG_T_AS(kCaller, " pin %u RX: lineBit %u (loops remains %u)\n", pin, rx.lastLevel,
                rx.loopsLeft + 1U);
    if (!step.timedOut) {
        return;
    }
    finishReply(cam, state);
    if (rx.bitCount < kLineBitsMax) {
        KX_LOG_W_AS(kCaller,
                    " pin %u RX: data waiting is timed out - got %u bits (data 0x%08X) so far!\n",
                    pin, rx.bitCount, lowBits(rx.dataWord, rx.bitCount));
    }
}

/// Acts on a sample that was taken while the idle level is learnt.
void serveLearningStep(CExCam& cam, unsigned int pin, const LineStep& step, const LineRx& rx,
                       unsigned int level)
{
    reportLearning(pin, step.event, level, rx.loopsLeft + 1U);
    if (step.timedOut) {
        finishReply(cam, cam.ioPinState[pin]);
        KX_LOG_W_AS(kCaller, " pin %u RX: initial waiting is timed out - last lineBit %u\n", pin,
                    level);
    }
}

/// Takes one sample while a reply is expected. Returns whether the pin needs no further pass.
bool serveInput(CExCam& cam, unsigned int pin, IoPinState& state)
{
    if (cam.lineCmdActive == kIoNone) {
        return true;
    }
    if (!cam.lineCmdSent) {
        return false;
    }
    bool level = false;
    static_cast<void>(cam.ExGetLineBit(static_cast<pg_pins>(pin), &level));
    LineRx rx = readRx(state);
    const LineStep step = stepLineRx(rx, level, valueOr(shared::get(state.param1), kDefaultGap));
    writeRx(state, rx);
    if (step.data) {
        serveDataStep(cam, pin, step, rx);
    } else {
        serveLearningStep(cam, pin, step, rx, static_cast<unsigned int>(level));
    }
    return false;
}

} // namespace

bool CCamCtrlThread::DoGpioProc(CExCam* camera)
{
    KX_LOG_T("IoBox data proc entry\n");
    bool done = true;
    for (unsigned int pin = 0; pin < kPgPinCount; ++pin) {
        IoPinState& state = camera->ioPinState[pin];
        if (shared::get(state.src) != kIoUserData) {
            continue;
        }
        const bool pinDone = shared::get(state.mode) == kIoOutput ? serveOutput(*camera, pin, state)
                                                                  : serveInput(*camera, pin, state);
        done = pinDone && done;
    }
    return done;
}

} // namespace KxPGrey
