// Receiver of the line code: samples of an input line to a word.
#include "kx_pg_line_rx.h"

#include "kx_pg_line_code.h"

namespace KxPGrey {

namespace {

constexpr std::uint32_t kShortestPulse = 3; ///< samples
constexpr std::uint32_t kStable = 3;        ///< samples of one level that make it the idle one

/// The line rests until the first pulse; its level is learnt meanwhile.
LineEvent learn(LineRx& rx, std::uint8_t level)
{
    LineEvent event = LineEvent::none;
    if (rx.idleCount == 0) {
        rx.lastLevel = level;
        event = LineEvent::learning;
    }
    if (level == rx.lastLevel) {
        ++rx.idleCount;
        if (rx.idleCount == kStable) {
            rx.idleLevel = level;
            event = LineEvent::learnt;
        }
        return event;
    }
    if (rx.idleCount < kStable) {
        rx.idleCount = 0;
        return event;
    }
    rx.rxWaitInit = 0;
    rx.pulseCount = 0;
    rx.bitCount = 0;
    rx.lastLevel = level;
    rx.activeCount = 1;
    rx.idleCount = 0;
    return LineEvent::dataStart;
}

/// Two more bits: one less than there were pulses. What does not fit into a word is dropped.
LineEvent endSymbol(LineRx& rx)
{
    LineEvent event = LineEvent::none;
    if (rx.bitCount < kLineBitsMax) {
        rx.bitCount = static_cast<std::uint8_t>(rx.bitCount + kLineSymbolBits);
        rx.dataWord = appendSymbol(rx.dataWord, symbolOfPulses(rx.pulseCount));
        event = LineEvent::symbol;
    }
    rx.pulseCount = 0;
    return event;
}

/// The line rests after a pulse: for how long says what has ended.
LineEvent rest(LineRx& rx, std::uint32_t gap)
{
    ++rx.idleCount;
    if (rx.activeCount < kShortestPulse) {
        rx.activeCount = 0;
        return LineEvent::none;
    }
    if (rx.idleCount == 3 * gap) {
        return LineEvent::frameEnd;
    }
    if (rx.idleCount == gap) {
        return endSymbol(rx);
    }
    if (rx.idleCount == kStable) {
        ++rx.pulseCount;
    }
    return LineEvent::none;
}

LineStep receive(LineRx& rx, std::uint8_t level, std::uint32_t gap)
{
    LineStep step{.event = LineEvent::none, .data = true};
    if (level != rx.idleLevel) {
        if (level != rx.lastLevel) {
            step.event = LineEvent::pulseStart;
            step.count = rx.activeCount;
            rx.activeCount = 1;
        } else {
            ++rx.activeCount;
        }
    } else if (rx.lastLevel != rx.idleLevel) {
        step.event = LineEvent::pulseEnd;
        step.count = rx.idleCount;
        rx.idleCount = 1;
    } else {
        step.event = rest(rx, gap);
    }
    rx.lastLevel = level;
    return step;
}

} // namespace

LineStep stepLineRx(LineRx& rx, bool level, std::uint32_t gap)
{
    const auto sample = static_cast<std::uint8_t>(level);
    LineStep step;
    if (rx.rxWaitInit != 0) {
        step.event = learn(rx, sample);
    } else {
        step = receive(rx, sample, gap);
    }
    --rx.loopsLeft;
    step.timedOut = rx.loopsLeft == 0;
    return step;
}

} // namespace KxPGrey
