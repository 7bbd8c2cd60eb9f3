// Receiver of the line code (kx_pg_line_code.h): samples of an input line to a word.
#ifndef KX_PG_LINE_RX_H
#define KX_PG_LINE_RX_H

#include <cstdint>

namespace KxPGrey {

/// How far a reply has come; the counts are of samples (polls) unless said otherwise.
struct LineRx {
    std::uint32_t dataWord = 0xFFFFFFFF; ///< bits received so far, the newest lowest
    std::uint32_t loopsLeft = 0;         ///< samples until the reply is given up
    std::uint32_t pulseCount = 0;        ///< pulses of the current symbol
    std::uint32_t idleCount = 0;         ///< in a row at the idle level
    std::uint32_t activeCount = 0;       ///< of the newest pulse; 0 = it was too short to count
    std::uint8_t bitCount = 0;           ///< bits received so far
    std::uint8_t idleLevel = 0;
    std::uint8_t lastLevel = 0;  ///< sample before
    std::uint8_t rxWaitInit = 0; ///< 1 = the idle level is still being learnt
};

/// What a sample was the first or last of.
enum class LineEvent : std::uint8_t {
    none,
    learning,   ///< the idle level is looked for
    learnt,     ///< and found
    dataStart,  ///< the first pulse begins
    pulseStart, ///< a later one
    pulseEnd,
    symbol,   ///< two more bits
    frameEnd, ///< the word is complete
};

/// What one sample did.
struct LineStep {
    LineEvent event = LineEvent::none;
    bool data = false;       ///< it was taken as data, the idle level was known before
    bool timedOut = false;   ///< it was the last one that the reply was given
    std::uint32_t count = 0; ///< of a pulse's start the samples of the one before, of its end the
                             ///< idle samples before it
};

/// Takes one sample. `gap` is the number of idle samples that end a symbol; three times as many end
/// the word. A pulse needs three samples to count.
LineStep stepLineRx(LineRx& rx, bool level, std::uint32_t gap);

} // namespace KxPGrey

#endif
