// Prints what the plug-in's receiver makes of replies on a noisy line: how many words arrive, and
// how many wrong ones pass.
#include "line_channel.h"

#include <cstdio>

namespace {

using line::Tally;
using line::Trial;

constexpr unsigned kReplies = 10'000;

void print(const Trial& trial)
{
    const Tally tally = line::tryReplies(trial);
    std::printf("| %u | %g | %g | %u | %u | %u | %u | %u | %u |\n", trial.bits,
                100 * trial.noise.flips, trial.noise.pulsesPerSecond, tally.right,
                tally.otherLength, tally.otherBits, tally.wrongParity, tally.tooShort,
                tally.timedOut);
}

void printAll(unsigned bits)
{
    Trial trial;
    trial.replies = kReplies;
    trial.bits = bits;
    for (const double percent : {0.0, 0.03, 0.1, 0.3, 1.0, 3.0, 10.0}) {
        trial.noise = {.flips = percent / 100, .pulsesPerSecond = 0};
        print(trial);
    }
    for (const double perSecond : {0.3, 1.0, 3.0, 10.0, 30.0, 100.0}) {
        trial.noise = {.flips = 0, .pulsesPerSecond = perSecond};
        print(trial);
    }
}

} // namespace

int main()
{
    std::puts("| bits | flipped samples % | short pulses/s | right | wrong: other length | "
              "wrong: other bits | refused: parity | refused: too short | timed out |");
    std::puts("| --- | --- | --- | --- | --- | --- | --- | --- | --- |");
    printAll(12);
    printAll(0); // nobody answers
    return 0;
}
