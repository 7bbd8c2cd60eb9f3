// The wish to end: a termination signal, or a reason of the host's own, on its way to the grab.
#ifndef KXHOST_TERMINATION_H
#define KXHOST_TERMINATION_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace kxhost {

/// Codes of finishing signals, as `KxUtl__CheckSignal` gives them.
enum FinishCode : int { kFinishInterrupt = 1, kFinishTerminate = 5 };

/// One wish to end per run. All members may be called from any thread.
class Termination {
public:
    /// Asks for the end; only the first request counts.
    void request(FinishCode code);
    /// True from the first request on.
    bool requested() const;
    /// The code that nobody has acted on yet; 0 = none.
    int pending() const;
    /// The code has been acted on.
    void acknowledge();
    /// Sleeps for `time`, but no longer than until the end is asked for. Returns `requested()`.
    bool sleep(std::chrono::milliseconds time);

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool requested_ = false;
    int pending_ = 0;
};

} // namespace kxhost

#endif
