// One run of the grab: the plug-in on a thread of its own, signals and progress on this one.
#include "grab_run.h"

#include "services.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;

// Exit codes of the plug-in (a pass that ended without camera is worth a repetition).
constexpr int kPassFine = 0;
constexpr int kPassReconfigurationRefused = 1;
constexpr int kPassNoCamera = 2;
constexpr int kPassNotOurCamera = 3;
constexpr int kPassSetUpFailed = -1;
constexpr int kPassConfiguration = -2;
constexpr int kPassNoPower = -5;
constexpr int kPassLost = -10;

/// Time between two looks for a camera.
constexpr auto kLookAgain = 500ms;

/// A file descriptor of this process; closes it.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number)
    {
        if (number_ < 0) {
            throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
        }
    }
    ~Descriptor() { close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return number_; }

private:
    int number_;
};

sigset_t terminationSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

/// Calls the plug-in until a pass says something other than "no camera", the time is over or the
/// end is asked for.
GrabResult runPasses(const Plugin& plugin)
{
    HostServices& host = services();
    const double limit = host.settings.waitSeconds;
    const auto start = std::chrono::steady_clock::now();
    unsigned passes = 0;
    while (true) {
        const int code = plugin.run();
        ++passes;
        GrabResult result = describePass(code, host.termination.requested());
        const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
        const bool isOver = limit >= 0 && waited.count() >= limit;
        if (result.exitCode == kExitNoCamera && !isOver) {
            if (!host.termination.sleep(kLookAgain)) {
                continue;
            }
            result = describePass(code, true);
        }
        result.passes = passes;
        return result;
    }
}

/// All passes, and then the writing of what they left in the queue.
GrabResult runToTheEnd(const Plugin& plugin)
{
    try {
        GrabResult result = runPasses(plugin);
        if (services().queue != nullptr) {
            services().queue->finish();
        }
        return result;
    } catch (const std::exception& error) {
        return {kExitInternal, std::string("Ended by an exception: ") + error.what(), 1};
    }
}

/// The first signal asks for the end, the second one is it.
void takeSignal(int signals)
{
    signalfd_siginfo info{};
    if (read(signals, &info, sizeof info) != static_cast<ssize_t>(sizeof info)) {
        return;
    }
    if (services().termination.requested()) {
        constexpr int kEndedBySignal = 128;
        _exit(kEndedBySignal + static_cast<int>(info.ssi_signo));
    }
    services().termination.request(info.ssi_signo == SIGINT ? kFinishInterrupt : kFinishTerminate);
}

} // namespace

void blockTerminationSignals()
{
    const sigset_t set = terminationSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

GrabResult describePass(int code, bool asked)
{
    constexpr const char* kAskedWhileWaiting =
        "Finished as asked by a signal, before a camera came.";
    switch (code) {
    case kPassFine:
        return {kExitFine, asked ? "Finished as asked by a signal." : "Finished.", 0};
    case kPassReconfigurationRefused:
        return {kExitConfiguration, "The new configuration was refused.", 0};
    case kPassNoCamera:
        if (asked) {
            return {kExitFine, kAskedWhileWaiting, 0};
        }
        return {kExitNoCamera, "There is no camera on the buses.", 0};
    case kPassNotOurCamera:
        if (asked) {
            return {kExitFine, kAskedWhileWaiting, 0};
        }
        return {kExitNoCamera,
                "None of the cameras on the buses is the configured one, or it is in use.", 0};
    case kPassSetUpFailed:
        return {kExitCamera, "The camera could not be reached again, or refused the frame buffers.",
                0};
    case kPassConfiguration:
        return {kExitCamera, "The camera refused its configuration.", 0};
    case kPassNoPower:
        return {kExitCamera, "The camera could not be powered up.", 0};
    case kPassLost:
        if (asked) {
            return {kExitFine, "Finished as asked by a signal, while no frame arrived.", 0};
        }
        return {kExitCamera, "The camera was lost or delivered no more frames.", 0};
    default:
        return {kExitCamera, "The plug-in ended with code " + std::to_string(code) + ".", 0};
    }
}

GrabResult runGrab(const Plugin& plugin, int tickMs, const std::function<void()>& tick)
{
    const sigset_t set = terminationSignals();
    const Descriptor signals(signalfd(-1, &set, SFD_CLOEXEC));
    const Descriptor done(eventfd(0, EFD_CLOEXEC));
    GrabResult result;
    std::thread grab([&] {
        result = runToTheEnd(plugin);
        eventfd_write(done.number(), 1);
    });
    std::array<pollfd, 2> wait = {pollfd{done.number(), POLLIN, 0},
                                  pollfd{signals.number(), POLLIN, 0}};
    while ((wait[0].revents & POLLIN) == 0) {
        if (poll(wait.data(), wait.size(), tickMs) < 0) {
            continue;
        }
        if ((wait[1].revents & POLLIN) != 0) {
            takeSignal(signals.number());
        }
        tick();
    }
    grab.join();
    return result;
}

} // namespace kxhost
