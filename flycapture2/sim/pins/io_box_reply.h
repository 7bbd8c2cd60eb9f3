// What the simulated I/O box puts on its answer line: a word as a list of transitions.
#ifndef FCSIM_IO_BOX_REPLY_H
#define FCSIM_IO_BOX_REPLY_H

#include "control/sim_control.h"

#include <cstdint>
#include <vector>

namespace fcsim {

/// A word and how many of its bits count (1 to 32).
struct LineWord {
    std::uint32_t word = 0;
    unsigned bits = 0;
};

/// Times of an answer, in microseconds. The defaults suit a receiver that looks every 2 ms or so
/// and wants pulses and pauses of at least three looks and gaps of 12 to 35 looks.
struct ReplyShape {
    bool idleHigh = false;
    std::uint64_t halfPeriodUs = 12'000; ///< of a pulse, and of the pause between two of a symbol
    std::uint64_t gapUs = 44'000;        ///< idle time between two symbols
};

/// What is wrong with an answer.
enum class Misbehaviour {
    none,
    wrongParity, ///< the parity symbol says the opposite
    shortPulses, ///< pulses of 2 ms, too short to count; they come as often as otherwise
    noise,       ///< disturbances of 0.5 to 2.5 ms in every fourth phase or so
    silence,     ///< no answer at all
    truncated    ///< only the first half of the symbols
};

/// The transitions of an answer that begins at `startUs`, oldest first; none for `silence`. An odd
/// number of bits is filled up with a zero at the low end. `seed` chooses the noise.
std::vector<LineTransition> planReply(const LineWord& word, const ReplyShape& shape,
                                      std::uint64_t startUs, Misbehaviour misbehaviour,
                                      std::uint64_t seed);

/// The level that `plan` gives a line at `atUs`; `before` until its first transition.
bool levelAt(const std::vector<LineTransition>& plan, std::uint64_t atUs, bool before);

} // namespace fcsim

#endif
