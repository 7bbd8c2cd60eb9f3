// The buttons of the live page.
#ifndef KXHOST_LIVE_STEERING_H
#define KXHOST_LIVE_STEERING_H

#include "grab/pending_signals.h"
#include "live/live_http.h"

#include <functional>
#include <string_view>

namespace kxhost {

/// Does what `kxhost ctl` does for the same words: sends this process the signal. For the thread
/// that serves the page.
class LiveSteering {
public:
    /// `raise` sends a signal to this process and returns 0, or the number of the system's error.
    LiveSteering(const PendingSignals& signals, std::function<int(int)> raise)
        : signals_(signals), raise_(std::move(raise))
    {}

    /// Presses a button. A second finish is refused: the second signal of that kind ends the
    /// process without writing what waits.
    HttpReply press(std::string_view word);

private:
    const PendingSignals& signals_;
    std::function<int(int)> raise_;
    bool isFinishSent_ = false;
};

} // namespace kxhost

#endif
