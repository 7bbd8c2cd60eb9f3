// How the simulated I/O box understands the line code: from transitions and their times to words.
//
// On the wire a symbol of two bits is one to four pulses away from the idle level, a gap ends the
// symbol, a gap about twice as long ends the frame, and the last symbol holds the parity.
#ifndef FCSIM_IO_BOX_DECODER_H
#define FCSIM_IO_BOX_DECODER_H

#include "control/sim_control.h"

#include <cstdint>
#include <optional>

namespace fcsim {

/// Where the decoder draws its borders, in microseconds.
struct LineTiming {
    std::uint64_t shortestUs;  ///< a level that lasts less is a disturbance and does not count
    std::uint64_t symbolGapUs; ///< idle times from here on end a symbol
    std::uint64_t frameEndUs;  ///< idle times from here on end a frame; so does an endless pulse
};

/// Borders for a sender with that half period: 20 or 21 of them between symbols, 41 behind a
/// frame. What delays such a sender only lengthens its times, so the borders are near the longer
/// neighbour's side.
LineTiming timingOfSender(std::uint64_t halfPeriodUs);

/// What was heard between two frame ends.
struct HeardFrame {
    IoBoxVerdict verdict = IoBoxVerdict::good;
    std::uint32_t word = 0;        ///< without the parity symbol
    unsigned bits = 0;             ///< of the word
    std::uint64_t firstEdgeUs = 0; ///< the first pulse begins
    std::uint64_t lastEdgeUs = 0;  ///< the last pulse ends
    std::uint64_t endUs = 0;       ///< from here on it is clear that the frame is over
};

/// The decoder of one line. It is told of each transition and of the time; times never go back.
/// Not thread-safe; allocates nothing.
class LineDecoder {
public:
    /// The line begins low, be that its idle level or not.
    LineDecoder(const LineTiming& timing, bool idleHigh) : timing_(timing), idleHigh_(idleHigh) {}

    /// The line changes. Returns the frame that has ended before.
    std::optional<HeardFrame> change(const LineTransition& transition);
    /// The line has stayed as it is until `nowUs`. Returns the frame that has ended by then.
    std::optional<HeardFrame> wait(std::uint64_t nowUs);

private:
    void commit(const LineTransition& transition);
    void addPulse(std::uint64_t startUs, std::uint64_t endUs);
    void closeSymbol();
    HeardFrame finish(std::uint64_t endUs, bool stuck);

    LineTiming timing_;
    bool idleHigh_;
    bool level_ = false;
    std::optional<LineTransition> pending_;   ///< too young to count
    std::optional<std::uint64_t> pulseSince_; ///< begin of the pulse that lasts
    std::uint64_t firstEdgeUs_ = 0;
    std::uint64_t lastEdgeUs_ = 0;
    unsigned pulses_ = 0;   ///< in the current symbol
    unsigned symbols_ = 0;  ///< that are complete
    std::uint64_t raw_ = 0; ///< their values
    bool garbled_ = false;
};

} // namespace fcsim

#endif
