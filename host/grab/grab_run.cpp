// One run of the grab: the plug-in on a thread of its own; signals, the configuration file and the
// progress on the calling one.
//
// Signals come through a descriptor that this thread waits for, so nothing is done in a signal
// handler, but the end by a second termination signal when nobody waits for signals any more: what
// is written last may have to wait for its reader for ever. A termination signal that comes inside
// the grab loop is left to the loop, which ends behind the frame at hand. Outside of it (a camera
// is looked for, powered up, configured) nobody would see the signal for an unknown time: the run
// ends at once, and if the plug-in does not come back within a moment, without it. While the last
// frames are written, the end is near anyway. Other signals are kept until the loop runs again.
// What an abandoned plug-in left in the queue is written by another thread, so that this one goes
// on: a second signal still ends the process, and the service manager still hears of the progress.
#include "grab/grab_run.h"

#include "base/descriptor.h"
#include "base/notice.h"
#include "grab/config_watch.h"
#include "grab/services.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <exception>
#include <memory>
#include <optional>
#include <thread>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// What the plug-in has to come back when it is not in its loop and the end is asked for.
constexpr auto kTimeToReturn = 300ms;

/// The signals that steer a grab, and what each asks for.
struct Steering {
    int signal;
    SignalCode code;
};
constexpr std::array kSteering = {Steering{SIGINT, kFinishInterrupt},
                                  Steering{SIGTERM, kFinishTerminate}, Steering{SIGHUP, kReload},
                                  Steering{SIGUSR1, kLut}, Steering{SIGUSR2, kLut12}};

/// What the exit code of a process that was ended by a signal adds to its number.
constexpr int kEndedBySignal = 128;

bool isFinishing(const Steering& steering)
{
    return steering.code == kFinishInterrupt || steering.code == kFinishTerminate;
}

sigset_t steeringSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const Steering& each : kSteering) {
        sigaddset(&set, each.signal);
    }
    return set;
}

// ---- Behind the run.

/// A first termination signal was taken. For the handler.
std::atomic<bool> isLateEndAsked = false; // NOLINT(*-avoid-non-const-global-variables)
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void takeLateSignal(int signal)
{
    if (isLateEndAsked.exchange(true)) {
        _exit(kEndedBySignal + signal);
    }
}

void letSecondSignalEnd(bool isAsked)
{
    isLateEndAsked = isAsked;
    struct sigaction action {};
    action.sa_handler = takeLateSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const Steering& each : kSteering) {
        if (isFinishing(each)) {
            sigaddset(&action.sa_mask, each.signal); // one is taken after the other
        }
    }
    for (const Steering& each : kSteering) {
        if (isFinishing(each)) {
            sigaction(each.signal, &action, nullptr);
        }
    }
    pthread_sigmask(SIG_UNBLOCK, &action.sa_mask, nullptr);
}

// ---- The run.

/// What the grab thread tells the other one. Shared, because an abandoned thread outlives the run.
struct Outcome {
    Descriptor done{eventfd(0, EFD_CLOEXEC), "cannot wait for the grab"};
    /// The plug-in is done for good, or was abandoned; who sets it sees to the writing.
    std::atomic<bool> isOver = false;
    GrabResult result; ///< valid behind `done`
};

/// Writes what the passes left in the queue, and tells that all is done.
void writeTheRest(Outcome& outcome)
{
    services().counts.over = true;
    try {
        if (services().queue != nullptr) {
            services().queue->finish();
        }
    } catch (const std::exception& error) {
        outcome.result = {kExitInternal, std::string("Ended by an exception: ") + error.what(),
                          outcome.result.abandoned};
    }
    eventfd_write(outcome.done.number(), 1);
}

/// Sees to the writing in whatever way the passes end, unless they were abandoned meanwhile.
class AfterPasses {
public:
    explicit AfterPasses(Outcome& outcome) : outcome_(outcome) {}
    ~AfterPasses()
    {
        if (!outcome_.isOver.exchange(true)) {
            writeTheRest(outcome_);
        }
    }
    AfterPasses(const AfterPasses&) = delete;
    AfterPasses& operator=(const AfterPasses&) = delete;

private:
    Outcome& outcome_;
};

/// All passes, and then the writing.
void runToTheEnd(const Plugin& plugin, Outcome& outcome)
{
    const AfterPasses after(outcome);
    outcome.result = {kExitInternal, "The plug-in ended its thread."};
    try {
        outcome.result = runPasses(plugin);
    } catch (const std::exception& error) {
        outcome.result = {kExitInternal, std::string("Ended by an exception: ") + error.what()};
    }
}

/// The calling thread's side of a run.
class Steerer {
public:
    Steerer(const Plugin& plugin, ConfigFollower& follower, bool watch)
        : follower_(follower), outcome_(std::make_shared<Outcome>())
    {
        if (watch) {
            startWatching();
        }
        thread_ = std::thread([&plugin, outcome = outcome_] { runToTheEnd(plugin, *outcome); });
    }

    GrabResult run(int tickMs, const std::function<void()>& tick)
    {
        runToResult(tickMs, tick);
        letSecondSignalEnd(isAsked_);
        return outcome_->result;
    }

private:
    void runToResult(int tickMs, const std::function<void()>& tick)
    {
        std::array<pollfd, 3> wait = {pollfd{outcome_->done.number(), POLLIN, 0},
                                      pollfd{signals_.number(), POLLIN, 0},
                                      pollfd{watch_ ? watch_->descriptor() : -1, POLLIN, 0}};
        while ((wait[0].revents & POLLIN) == 0) {
            if (isTimeToLeave() && !outcome_->isOver.exchange(true)) {
                abandon();
                wait[0].fd = outcome_->done.number();
            }
            if (poll(wait.data(), wait.size(), timeout(tickMs)) < 0) {
                continue;
            }
            if ((wait[1].revents & POLLIN) != 0) {
                takeSignal();
            }
            lookAfterFiles((wait[2].revents & POLLIN) != 0);
            tick();
        }
        thread_.join();
    }

    /// A grab without it is better than none.
    void startWatching()
    {
        try {
            watch_.emplace();
            lookAtFiles();
        } catch (const std::system_error& error) {
            complain(std::string(error.what()) + "; use a reload after changes.");
        }
    }

    void takeSignal()
    {
        signalfd_siginfo info{};
        if (read(signals_.number(), &info, sizeof info) != static_cast<ssize_t>(sizeof info)) {
            return;
        }
        const auto* const steering =
            std::ranges::find(kSteering, static_cast<int>(info.ssi_signo), &Steering::signal);
        if (steering->code == kReload) {
            follower_.reload(); // before the code, which hands it over
            followFiles();
        }
        if (isFinishing(*steering)) {
            finish(steering->signal);
        }
        services().signals.post(steering->code);
    }

    /// The first signal asks for the end, the second one is it.
    void finish(int signal)
    {
        if (isAsked_) {
            _exit(kEndedBySignal + signal);
        }
        isAsked_ = true;
        leaveBy_ = Clock::now() + kTimeToReturn;
    }

    /// Whether the end was asked for while the plug-in was somewhere where it does not see that,
    /// and it is still there.
    bool isTimeToLeave()
    {
        if (leaveBy_ && (services().signalsKept || outcome_->isOver)) {
            leaveBy_.reset();
        }
        return leaveBy_ && Clock::now() >= *leaveBy_;
    }

    /// Leaves the grab thread alone with its outcome; from here on the writing is waited for.
    void abandon()
    {
        thread_.detach();
        outcome_ = std::make_shared<Outcome>();
        outcome_->isOver = true;
        outcome_->result = {kExitFine, "Finished as asked by a signal, outside the grab loop.",
                            true};
        thread_ = std::thread([outcome = outcome_] { writeTheRest(*outcome); });
    }

    int timeout(int tickMs) const
    {
        int ms = tickMs;
        if (leaveBy_) {
            ms = std::min(ms, static_cast<int>(kTimeToReturn / 1ms) / 2);
        }
        const int change = watch_ ? watch_->waitMs(Clock::now()) : -1;
        return change < 0 ? ms : std::min(ms, change);
    }

    void lookAfterFiles(bool happened)
    {
        if (!watch_) {
            return;
        }
        if (happened) {
            watch_->read(Clock::now());
        }
        if (watch_->isDue(Clock::now())) {
            lookAtFiles();
        }
    }

    /// Looks until nothing has come to be watched meanwhile, of which a change could be missed.
    void lookAtFiles()
    {
        do {
            follower_.fileChanged();
        } while (followFiles());
    }

    bool followFiles()
    {
        if (!watch_) {
            return false;
        }
        const bool isNew = watch_->follow(follower_.files());
        if (!watch_->trouble().empty() && watch_->trouble() != trouble_) {
            complain(watch_->trouble());
        }
        trouble_ = watch_->trouble();
        return isNew;
    }

    ConfigFollower& follower_;
    const sigset_t set_ = steeringSignals();
    const Descriptor signals_{signalfd(-1, &set_, SFD_CLOEXEC), "cannot wait for signals"};
    std::optional<ConfigWatch> watch_;         ///< none = changes of files are not looked for
    std::string trouble_;                      ///< of watching, as it was told
    bool isAsked_ = false;                     ///< by a first termination signal
    std::optional<Clock::time_point> leaveBy_; ///< none = the plug-in sees the signal
    std::shared_ptr<Outcome> outcome_;
    std::thread thread_;
};

} // namespace

void blockSteeringSignals()
{
    const sigset_t set = steeringSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

GrabResult runGrab(const Plugin& plugin, ConfigFollower& follower, bool watch, int tickMs,
                   const std::function<void()>& tick)
{
    return Steerer(plugin, follower, watch).run(tickMs, tick);
}

} // namespace kxhost
