// Signals on their way to the grab: which codes wait, which comes next, when one is done with.
#ifndef KXHOST_PENDING_SIGNALS_H
#define KXHOST_PENDING_SIGNALS_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace kxhost {

/// Codes of signals, as `KxUtl__CheckSignal` gives them.
enum SignalCode : int {
    kNoSignal = 0,
    kFinishInterrupt = 1,
    kReload = 2,
    kLut = 3,
    kLut12 = 4,
    kFinishTerminate = 5,
};

/// The codes that nobody has acted on yet.
///
/// The grab loop polls at the top of every iteration, also when no frame came, but acts on what it
/// polled behind a frame only; the next poll makes it forget. So a code is not taken away by the
/// poll. It goes when the plug-in shows that it has acted:
///
/// - a finishing code with the host call that reports it (`KxGi__SetSignalAction`);
/// - a reload with `KxGi__DoReconfig`, before the configuration is handed over: a signal that comes
///   from then on counts anew;
/// - the two codes of the look-up table, for which there is no such call, when a frame arrives
///   behind the poll that gave them.
///
/// A code that waits already is not added again. Finishing codes go first, the others in the order
/// in which they came. Outside the loop only a reload is given, which the plug-in asks for when it
/// is done with a session; the others stay for the next loop.
///
/// `post` and `finishAsked` may be called from any thread; the other members by the grab thread.
/// None of them waits, but `sleep`.
class PendingSignals {
public:
    /// Adds a code. Of the finishing codes only the first one ever counts.
    void post(SignalCode code);
    /// True from the first finishing code on, for good.
    bool finishAsked() const { return finishAsked_.load(std::memory_order_acquire); }

    /// How many reloads were asked for so far; any thread.
    std::uint32_t reloadsAsked() const { return reloadsAsked_.load(std::memory_order_relaxed); }
    /// True while this code waits; any thread.
    bool holds(SignalCode code) const;
    /// True while a reload waits; any thread.
    bool reloadPending() const { return holds(kReload); }

    /// The code for the loop to act on; it stays.
    int pollInLoop();
    /// The code for who is between two loops: a reload, or nothing.
    int pollOutside() const;
    /// A retrieval ended, with a frame or without.
    void frameArrived();
    void frameMissing();
    /// The plug-in has acted on this code.
    void acted(int code);
    /// True while a finishing code waits.
    bool finishPending() const;

    /// Sleeps for `time`, but no longer than until a code is posted. REQUIRES: outside the loop.
    void sleep(std::chrono::milliseconds time);

private:
    /// The codes in their order, four bits each, the next one lowest.
    std::atomic<std::uint32_t> queue_ = 0;
    std::atomic<bool> finishAsked_ = false;
    std::atomic<std::uint32_t> reloadsAsked_ = 0;
    int polled_ = kNoSignal; ///< by the loop, since the last retrieval; grab thread only

    // For the sleeper.
    std::mutex mutex_;
    std::condition_variable posted_;
    std::uint32_t posts_ = 0;
};

} // namespace kxhost

#endif
