// The line code as a camera sends it and as a polling receiver hears it, in plain words.
#ifndef KX_TESTS_LINE_FIXTURE_H
#define KX_TESTS_LINE_FIXTURE_H

#include <cstdint>
#include <vector>

#include <control/sim_control.h>

namespace line {

using Plan = std::vector<fcsim::LineTransition>;

/// Symbol values of a word of an even number of bits, its parity at the end.
inline std::vector<unsigned> symbolsOf(std::uint32_t word, unsigned bits)
{
    std::vector<unsigned> symbols;
    unsigned ones = 0;
    for (unsigned pair = bits / 2; pair > 0; --pair) {
        const unsigned symbol = word >> (2 * (pair - 1)) & 3U;
        symbols.push_back(symbol);
        ones += (symbol & 1U) + (symbol >> 1U);
    }
    symbols.push_back(ones % 2);
    return symbols;
}

/// Appends symbols, each one pulse more than its value; transition i ends `stretch(i)` late.
template <class Stretch>
void send(Plan& plan, const std::vector<unsigned>& symbols, std::uint64_t halfUs, bool idleHigh,
          std::uint64_t startUs, const Stretch& stretch)
{
    std::uint64_t atUs = startUs;
    for (const unsigned symbol : symbols) {
        for (unsigned transition = 0; transition < 2 * (symbol + 1); ++transition) {
            plan.push_back({atUs, (transition % 2 == 0) != idleHigh});
            atUs += halfUs + stretch(plan.size());
        }
        atUs += 20 * halfUs;
    }
}

inline Plan sent(const std::vector<unsigned>& symbols, std::uint64_t halfUs, bool idleHigh,
                 std::uint64_t startUs)
{
    Plan plan;
    send(plan, symbols, halfUs, idleHigh, startUs, [](std::size_t) { return std::uint64_t{0}; });
    return plan;
}

} // namespace line

#endif
