// The line code: how a data word goes over a single line, and how it is read back from it.
//
// A word travels as 2-bit symbols, the most significant pair first. A symbol is a burst of pulses
// on a resting line, its value plus one of them. A longer rest ends the symbol, one of about twice
// that length the frame. With parity a last symbol follows: 0, or 1 when the word has an odd number
// of ones, so that a receiver finds the parity in the lowest bit of what it collected, with a 0
// above.
#ifndef KX_PG_LINE_CODE_H
#define KX_PG_LINE_CODE_H

#include <array>
#include <cstdint>

namespace KxPGrey {

inline constexpr unsigned int kLineBitsMax = 32;   ///< longest word
inline constexpr unsigned int kLineSymbolBits = 2; ///< of a symbol; those of the parity, too

// ---- A word to its symbols, and those to transitions.

/// The symbols of a frame in the order in which they are sent.
struct LineSymbols {
    std::array<std::uint8_t, kLineBitsMax / kLineSymbolBits + 1> values = {};
    unsigned int count = 0; ///< 0 = nothing to send

    const std::uint8_t* begin() const { return values.data(); }
    const std::uint8_t* end() const { return values.data() + count; }
};

/// The lower `bits` bits of `data` as symbols; an odd number of bits gets a 0 at the lower end.
/// None when `bits` is not 1 to 32.
LineSymbols lineSymbols(std::uint32_t data, unsigned int bits, bool withParity);

/// Number of transitions that make a symbol; the last one leads back to rest.
constexpr unsigned int symbolTransitions(std::uint8_t symbol)
{
    return 2 * (symbol + 1U);
}

/// Level after transition `number`, counted from 0, of a square wave whose first level is low or
/// high. A symbol on a line that rests high begins low.
constexpr bool waveLevel(std::uint64_t number, bool startLow)
{
    return (number % 2 != 0) == startLow;
}

// ---- Pulses back to a word.

/// The lower `bits` bits of `word`; all of it from 32 bits on.
constexpr std::uint32_t lowBits(std::uint32_t word, unsigned int bits)
{
    return bits < kLineBitsMax ? word & ((1U << bits) - 1U) : word;
}

/// Value of a symbol of that many pulses: 4 pulses and none at all are 3, 5 are 0 again.
constexpr std::uint32_t symbolOfPulses(std::uint32_t pulses)
{
    return (pulses - 1U) & 3U;
}

/// `word` with one more symbol at its lower end.
constexpr std::uint32_t appendSymbol(std::uint32_t word, std::uint32_t symbol)
{
    return (word << kLineSymbolBits) | symbol;
}

/// A complete frame, taken apart.
struct ReceivedWord {
    std::uint32_t word = 0;    ///< payload and parity symbol, without older bits above them
    std::uint32_t payload = 0; ///< without the parity symbol
    bool parityGood = false;
};

/// Takes the lower `bits` bits of `word` apart. Of the parity symbol only the lower bit counts.
ReceivedWord receivedWord(std::uint32_t word, unsigned int bits);

} // namespace KxPGrey

#endif
