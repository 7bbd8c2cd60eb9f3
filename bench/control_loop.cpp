// Period, jitter and processor time of the control thread's loop, beside a bare loop of the same
// policy that samples the line and sleeps as long.
//
// Both poll the same simulated camera in turn, without a load and beside two threads that
// copy memory. The quietest of several rounds counts, since whatever else the machine does only
// adds.
#include "line_camera.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>

#include <unistd.h>

namespace {

using kxbench::LineCamera;
using kxbench::Times;

constexpr double kAimRatio = 1.2;
constexpr useconds_t kLoopUs = 2000;

struct Length {
    unsigned rounds;
    unsigned polls; ///< of each round
};

/// What polls of a loop came to.
struct Loop {
    Times periods;
    double cpuShare = 0; ///< of one processor

    double p50() const { return periods.quantile(0.5); }
    double p99() const { return periods.quantile(0.99); }
    /// Distance from the median that 99 % of the periods keep.
    double jitter() const { return periods.distancesFrom(p50()).quantile(0.99); }
};

/// Measures polls of a thread while they are made.
Loop watch(LineCamera& camera, pthread_t thread, unsigned polls)
{
    Loop loop;
    camera.waitForPoll();
    const double cpuUs = kxbench::cpuUsOf(thread);
    const double startUs = kxbench::nowUs();
    loop.periods = camera.periods(polls);
    loop.cpuShare = (kxbench::cpuUsOf(thread) - cpuUs) / (kxbench::nowUs() - startUs);
    return loop;
}

/// The control thread while it waits for a reply that never comes; nothing when there is none.
std::optional<Loop> controlLoop(unsigned polls)
{
    LineCamera camera(kxbench::Box::isSilent, 0);
    KxPGrey::CCamCtrlThread control;
    control.CtrlThreadStart(&camera);
    if (!camera.ctrlThread) {
        return std::nullopt;
    }
    constexpr std::int32_t kForever = 0x7FFFFFFF;
    camera.send(1, kForever);
    return watch(camera, *camera.ctrlThread, polls);
}

std::optional<Loop> bareLoop(unsigned polls)
{
    LineCamera camera(kxbench::Box::isSilent, 0);
    std::atomic<bool> stop = false;
    std::atomic<pthread_t> self{};
    std::atomic<bool> created = true;
    std::thread starter([&] {
        created = kxbench::runRealTime([&] {
            self = pthread_self();
            while (!stop) {
                bool level = false;
                static_cast<void>(camera.ExGetLineBit(kxbench::kReplyPin, &level));
                usleep(kLoopUs);
            }
        });
    });
    std::optional<Loop> loop;
    while (created && self == pthread_t{}) {
        usleep(kLoopUs);
    }
    if (created) {
        loop = watch(camera, self, polls);
    }
    stop = true;
    starter.join();
    return loop;
}

/// Processor time of a control thread that nothing is configured for.
std::optional<double> idleShare(double us)
{
    LineCamera camera(kxbench::Box::isSilent, 0);
    KxPGrey::CCamCtrlThread control;
    control.CtrlThreadStart(&camera);
    if (!camera.ctrlThread) {
        return std::nullopt;
    }
    const double cpuUs = kxbench::cpuUsOf(*camera.ctrlThread);
    const double startUs = kxbench::nowUs();
    usleep(static_cast<useconds_t>(us));
    return (kxbench::cpuUsOf(*camera.ctrlThread) - cpuUs) / (kxbench::nowUs() - startUs);
}

void keepQuieter(std::optional<Loop>& best, const Loop& loop)
{
    if (!best || loop.p99() < best->p99()) {
        best = loop;
    }
}

void print(const char* load, const char* name, const Loop& loop)
{
    std::printf("| %s | %s | %.0f | %.0f | %.0f | %.0f | %.2f |\n", load, name, loop.p50(),
                loop.p99(), loop.periods.quantile(1), loop.jitter(), 100 * loop.cpuShare);
}

/// False when there are no real-time threads.
bool compare(const char* load, const Length& length)
{
    std::optional<Loop> control;
    std::optional<Loop> bare;
    for (unsigned round = 0; round < length.rounds; ++round) {
        const auto nextControl = controlLoop(length.polls);
        const auto nextBare = bareLoop(length.polls);
        if (!nextControl || !nextBare) {
            return false;
        }
        keepQuieter(control, *nextControl);
        keepQuieter(bare, *nextBare);
    }
    print(load, "control", *control);
    print(load, "bare", *bare);
    std::printf("| %s | control to bare | %.3f | %.3f (aim at most %.1f) | | | |\n", load,
                control->p50() / bare->p50(), control->p99() / bare->p99(), kAimRatio);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const bool isShort = kxbench::isShortForm(argc, argv);
    const Length length = isShort ? Length{1, 100} : Length{8, 1000};
    std::puts("| load | loop | period p50 us | p99 us | longest us | jitter p99 us | "
              "processor % |\n"
              "| --- | --- | --- | --- | --- | --- | --- |");
    if (!compare("no load", length)) {
        std::puts("not measured: real-time threads are not allowed here (SCHED_FIFO)");
        return 0;
    }
    if (const auto share = idleShare(isShort ? 2e5 : 4e6)) {
        std::printf("| no load | control, nothing configured | | | | | %.2f |\n", 100 * *share);
    }
    const kxbench::CopyLoad load;
    compare("copying", length);
    return 0;
}
