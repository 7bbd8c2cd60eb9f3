// What a bus description says about an I/O box.
#ifndef FCSIM_IO_BOX_DESCRIPTION_H
#define FCSIM_IO_BOX_DESCRIPTION_H

#include "pins/io_box_reply.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fcsim {

/// What the box says to a command.
struct IoBoxReply {
    std::optional<std::uint32_t> command; ///< none: to every command
    LineWord answer;
};

/// What a bus description says about a box. The defaults here are those of the keys.
struct IoBoxDescription {
    unsigned listensOn = 0;
    std::optional<unsigned> answersOn;   ///< none: it never answers
    std::uint64_t halfPeriodUs = 2000;   ///< of the commands
    std::uint64_t replyDelayUs = 60'000; ///< from the end of a command's frame to the first pulse
    ReplyShape shape;                    ///< `idleHigh` holds for the commands, too
    std::vector<IoBoxReply> replies;     ///< the first that fits counts; none at all: an echo
    Misbehaviour misbehaviour = Misbehaviour::none;
    unsigned misbehaves = 0; ///< so many answers, then all is well; 0: always
    std::uint64_t seed = 1;  ///< of the noise
    std::string log;         ///< file of the text log; empty: none
};

} // namespace fcsim

#endif
