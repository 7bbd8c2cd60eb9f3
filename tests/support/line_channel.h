// A line between a sender and the plug-in's receiver: transitions in time, polls of their level,
// noise on the way.
#ifndef KX_TEST_LINE_CHANNEL_H
#define KX_TEST_LINE_CHANNEL_H

#include "pins/io_box_reply.h"

#include <cstdint>
#include <random>
#include <vector>

namespace line {

using Plan = std::vector<fcsim::LineTransition>;

/// A word and how many of its bits count.
using fcsim::LineWord;

/// The transitions with which the plug-in sends a word from `startUs` on, if each write and each
/// pause takes exactly its time.
Plan commandPlan(const LineWord& command, std::uint64_t halfPeriodUs, bool idleHigh,
                 std::uint64_t startUs);

/// What a line suffers on its way to the receiver.
struct Noise {
    double flips = 0;           ///< share of the samples that are read wrongly, each by itself
    double pulsesPerSecond = 0; ///< disturbances that one or two polls see, or none
};

/// How a reply ended for the receiver.
enum class Ending { accepted, wrongParity, tooShort, timedOut };

/// What the receiver made of a reply; without a word unless it was accepted.
struct Reception {
    Ending ending = Ending::timedOut;
    LineWord reply;
};

/// Polls a line that follows `plan`, from 0 on and about each 2.1 ms, into the plug-in's receiver,
/// until a word has ended or `polls` are over.
Reception receive(const Plan& plan, bool idleHigh, const Noise& noise, std::uint32_t polls,
                  std::mt19937_64& random);

/// What became of many replies.
struct Tally {
    unsigned right = 0;       ///< accepted as they were sent
    unsigned otherLength = 0; ///< accepted with fewer or more bits
    unsigned otherBits = 0;   ///< accepted with as many bits, some of them wrong
    unsigned wrongParity = 0;
    unsigned tooShort = 0;
    unsigned timedOut = 0;
};

/// What the replies of a trial are.
struct Trial {
    unsigned replies = 0;
    unsigned bits = 12; ///< of each; 0 = nobody answers
    Noise noise;
    std::uint32_t polls = 1000; ///< time that each reply is given
    std::uint64_t seed = 1;
};

/// Random words from the simulated I/O box, received by the plug-in's receiver.
Tally tryReplies(const Trial& trial);

} // namespace line

#endif
