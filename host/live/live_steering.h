// The buttons of the live page.
#ifndef KXHOST_LIVE_STEERING_H
#define KXHOST_LIVE_STEERING_H

#include "grab/grab_counts.h"
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
    LiveSteering(const PendingSignals& signals, const GrabCounts& counts,
                 std::function<int(int)> raise)
        : signals_(signals), counts_(counts), raise_(std::move(raise))
    {}

    /// Presses a button. While the grab is finishing all are refused: nobody would act on them any
    /// more, and a second finishing signal ends the process without writing what waits.
    HttpReply press(std::string_view word);

private:
    const PendingSignals& signals_;
    const GrabCounts& counts_;
    std::function<int(int)> raise_;
    bool isFinishSent_ = false;
};

} // namespace kxhost

#endif
