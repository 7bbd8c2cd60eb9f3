// The line code: data words as bursts of pulses, and back.
#include "kx_pg_line_code.h"

#include <bit>

namespace KxPGrey {

namespace {

std::uint8_t evenParity(std::uint32_t word)
{
    return static_cast<std::uint8_t>(std::popcount(word) % 2);
}

} // namespace

LineSymbols lineSymbols(std::uint32_t data, unsigned int bits, bool withParity)
{
    LineSymbols symbols;
    if (bits < 1 || bits > kLineBitsMax) {
        return symbols;
    }
    const unsigned int padding = bits % kLineSymbolBits;
    const std::uint32_t word = lowBits(data, bits) << padding;
    for (unsigned int shift = bits + padding; shift != 0;) {
        shift -= kLineSymbolBits;
        symbols.values[symbols.count++] = static_cast<std::uint8_t>((word >> shift) & 3U);
    }
    if (withParity) {
        symbols.values[symbols.count++] = evenParity(word);
    }
    return symbols;
}

ReceivedWord receivedWord(std::uint32_t word, unsigned int bits)
{
    ReceivedWord received;
    received.word = lowBits(word, bits);
    received.payload = received.word >> kLineSymbolBits;
    received.parityGood = evenParity(received.payload) == (received.word & 1U);
    return received;
}

} // namespace KxPGrey
