// How exactly words are timed on the line: the pauses between recorded transitions, against those
// that the sender means to make.
//
// It means to make half periods of 2 ms from transition to transition, of which a write may take
// one millisecond, and gaps of 20 half periods. A pause may come out longer, since threads wake
// late. A half period behind a write that took longer than others comes out shorter, though never
// shorter than a millisecond and a write; gaps and ends never do.
#include "control/sim_control.h"
#include "line_camera.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

namespace {

using kxbench::LineCamera;
using kxbench::Times;

constexpr unsigned kHalfPeriodUs = 2000;
constexpr unsigned kShortestUs = 1000; ///< of a pause
constexpr unsigned kGapUs = 20 * kHalfPeriodUs;
constexpr unsigned kEndUs = 41 * kHalfPeriodUs;
/// Recorded times are whole microseconds.
constexpr double kResolutionUs = 2;

/// How much longer than meant the pauses were.
struct Lateness {
    Times halfPeriods;
    Times gaps;
    Times ends;
};

/// Pauses between the transitions of a word that was sent until `endUs`.
void measure(Lateness& late, unsigned registerUs, std::uint64_t endUs)
{
    const auto plan = fcsim::takeTransitions(kxbench::kLineSerial, kxbench::kCommandPin);
    const unsigned halfUs = std::max(kHalfPeriodUs, registerUs + kShortestUs);
    for (std::size_t i = 1; i < plan.size(); ++i) {
        const auto pauseUs = static_cast<double>(plan[i].atUs - plan[i - 1].atUs);
        if (pauseUs < kGapUs / 2.0) {
            late.halfPeriods.add(pauseUs - halfUs);
        } else {
            late.gaps.add(pauseUs - kGapUs - registerUs);
        }
    }
    late.ends.add(static_cast<double>(endUs - plan.back().atUs) - kEndUs);
}

/// Sends random words. False when there are no real-time threads.
bool sendWords(Lateness& late, unsigned registerUs, unsigned words)
{
    LineCamera camera(kxbench::Box::isSilent, registerUs);
    static_cast<void>(camera.ExSetLineMode(kxbench::kCommandPin, KxPGrey::kIoOutput, false));
    return kxbench::runRealTime([&] {
        std::mt19937 random(1);
        for (unsigned word = 0; word < words; ++word) {
            static_cast<void>(
                camera.ExSendLineCmdBy2bits(kxbench::kCommandPin, static_cast<unsigned>(random()),
                                            kxbench::kCommandBits, kHalfPeriodUs, false, true));
            measure(late, registerUs, fcsim::nowUs());
        }
    });
}

/// Prints one kind of pause; false when one of them was early by more than it may be.
bool print(const char* load, unsigned registerUs, const char* what, const Times& late,
           double earlyUs = 0)
{
    std::printf("| %s | %u | %s | %.0f | %.0f | %.0f | %.0f |\n", load, registerUs, what,
                late.quantile(0), late.median(), late.quantile(0.99), late.quantile(1));
    return late.quantile(0) >= -earlyUs - kResolutionUs;
}

/// False when a pause was too short.
bool sendAll(const char* load, unsigned words)
{
    bool isKept = true;
    for (const unsigned registerUs : {0U, 30U, 900U, 1500U}) {
        Lateness late;
        if (!sendWords(late, registerUs, words)) {
            std::puts("not measured: real-time threads are not allowed here (SCHED_FIFO)");
            return true;
        }
        const unsigned shortestUs = registerUs + kShortestUs;
        isKept = print(load, registerUs, "half period", late.halfPeriods,
                       std::max(kHalfPeriodUs, shortestUs) - shortestUs) &&
                 isKept;
        isKept = print(load, registerUs, "gap", late.gaps) && isKept;
        isKept = print(load, registerUs, "end", late.ends) && isKept;
    }
    return isKept;
}

} // namespace

int main(int argc, char** argv)
{
    const unsigned words = kxbench::isShortForm(argc, argv) ? 1 : 20;
    std::puts("| load | register us | pause | least late us | median | p99 | most |\n"
              "| --- | --- | --- | --- | --- | --- | --- |");
    const bool isKept = sendAll("no load", words);
    const kxbench::CopyLoad load;
    return sendAll("copying", words) && isKept ? 0 : 1;
}
