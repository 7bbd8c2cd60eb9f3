// Sends one word over a pin of a simulated camera, as the control thread does, and prints when the
// line changed: a line for each transition, microseconds since the first and the new level; then
// the time at which the sender was done.
//
//   line_frame WORD BITS
#include "control/sim_control.h"
#include "line_camera.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

int main(int count, char** arguments)
{
    if (count != 3) {
        std::fputs("usage: line_frame WORD BITS\n", stderr);
        return 2;
    }
    constexpr unsigned kRegisterUs = 30;
    constexpr unsigned kHalfPeriodUs = 2000;
    const auto word = static_cast<unsigned>(std::strtoul(arguments[1], nullptr, 0));
    const auto bits = static_cast<unsigned char>(std::strtoul(arguments[2], nullptr, 0));

    kxbench::LineCamera camera(kxbench::Box::isSilent, kRegisterUs);
    const bool isSent =
        camera.ExSetLineMode(kxbench::kCommandPin, KxPGrey::kIoOutput, false) == 0 &&
        camera.ExSendLineCmdBy2bits(kxbench::kCommandPin, word, bits, kHalfPeriodUs, false, true) ==
            0;
    const std::uint64_t endUs = fcsim::nowUs();
    const auto transitions = fcsim::takeTransitions(kxbench::kLineSerial, kxbench::kCommandPin);
    if (!isSent || transitions.empty()) {
        std::fputs("line_frame: the word could not be sent\n", stderr);
        return 1;
    }
    const std::uint64_t startUs = transitions.front().atUs;
    for (const fcsim::LineTransition& each : transitions) {
        std::printf("%" PRIu64 " %d\n", each.atUs - startUs, each.level ? 1 : 0);
    }
    std::printf("%" PRIu64 " end\n", endUs - startUs);
    return 0;
}
