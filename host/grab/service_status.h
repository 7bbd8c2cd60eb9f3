// What a service manager is told of a grab: ready, reloading, stopping, alive, and a line of
// status.
#ifndef KXHOST_SERVICE_STATUS_H
#define KXHOST_SERVICE_STATUS_H

#include "grab/grab_counts.h"
#include "grab/notify_socket.h"
#include "grab/pending_signals.h"
#include "grab/progress_line.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kxhost {

/// Microseconds within which the service manager wants a sign of life; nothing = it does not watch
/// this process. Given by the environment (WATCHDOG_USEC, WATCHDOG_PID).
std::optional<std::uint64_t> watchdogOfEnvironment();

/// One thread, that which also posts reloads; times are those of the steady clock, in microseconds.
///
/// - READY with the first frame that has arrived: a camera that is found, powered up and configured
///   may still deliver nothing.
/// - RELOADING when a reload is asked for, READY again with the first frame behind its take-over.
/// - STOPPING when the end is asked for, or comes.
/// - EXTEND_TIMEOUT_USEC from then on, as often as something has moved: who takes long to write
/// what
///   was accepted is given another minute, who hangs is not.
/// - WATCHDOG only after something has moved since the last one: a frame arrived, a wait for one
///   ended, the camera was looked for, a picture was written. A thread that hangs moves nothing.
class ServiceStatus {
public:
    ServiceStatus(const NotifySocket& manager, std::optional<std::uint64_t> watchdogUs,
                  const GrabCounts& counts, const PendingSignals& signals, ProgressLine line)
        : manager_(manager), watchdogUs_(watchdogUs), counts_(counts), signals_(signals),
          line_(line)
    {}

    /// Milliseconds within which `update` is to be called again.
    int tickMs() const;
    /// Tells what has changed, and the line of status once a second.
    void update(const ExportTotals& exported, std::uint64_t nowUs);
    /// Tells that the grab has ended, and why.
    void end(const std::string& reason);

private:
    void tellReady();
    void tellReload(std::uint64_t nowUs);
    void tellAlive(const ExportTotals& exported);
    void tellStatus(const ExportTotals& exported, std::uint64_t nowUs);
    void tellStopping();

    const NotifySocket& manager_;
    const std::optional<std::uint64_t> watchdogUs_;
    const GrabCounts& counts_;
    const PendingSignals& signals_;
    ProgressLine line_;
    bool ready_ = false;
    bool stopping_ = false;
    std::uint32_t reloadsTold_ = 0;
    bool takingOver_ = false;      ///< a reload waits, when it was looked at last
    std::uint64_t readyAbove_ = 0; ///< frames that came before the last reload was taken over
    std::optional<std::uint64_t> movesTold_; ///< nothing = no sign of life yet
    std::uint64_t nextStatusUs_ = 0;
};

} // namespace kxhost

#endif
