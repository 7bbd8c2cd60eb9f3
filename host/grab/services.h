// What the host services work on: the state behind the plain functions of kx_host.h.
#ifndef KXHOST_SERVICES_H
#define KXHOST_SERVICES_H

#include "clock/clock_recorder.h"
#include "config/settings.h"
#include "export/config_history.h"
#include "export/export_queue.h"
#include "grab/camera_absence.h"
#include "grab/camera_choice.h"
#include "grab/camera_watch.h"
#include "grab/config_offer.h"
#include "grab/frame_fates.h"
#include "grab/frame_memory.h"
#include "grab/grab_counts.h"
#include "grab/pending_signals.h"
#include "grab/scenario.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace kxhost {

class Plugin;

/// Thrown through the grab loop when the end was asked for and no frame comes that would take
/// the loop to its signal step. As with CameraLost, `logErrorsOnly` comes first.
class NoFrameToStopAt : public std::runtime_error {
public:
    NoFrameToStopAt() : std::runtime_error("asked to finish while no frame arrives") {}
};

/// Thrown through the grab loop when the camera is taken for lost, or of no use any more.
class CameraLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The state of the host. The plug-in calls plain functions, so there is one per process.
/// `counts`, `signals`, `offers`, `signalsKept` and `fates.ledger()` may be used from any thread,
/// everything else by the grab thread, or before and after it has run.
struct HostServices {
    Settings settings;
    const Plugin* plugin = nullptr; ///< not owned; hears of a changed log level; null = nobody does
    ExportQueue* queue = nullptr;   ///< not owned; null = frames are counted and let go
    ClockRecorder* clock = nullptr; ///< not owned; takes the times of frames; null = nobody does
    PendingSignals signals;
    ConfigOffers offers;
    GrabCounts counts;

    FrameMemory pool;
    Scenario scenario;

    // The camera: which one, and whether it is there.
    std::optional<CameraChoice> choice; ///< in place of that of the settings
    CameraWatch watch;
    CameraAbsence absence;

    // Changes of the configuration.
    ConfigHistory history;            ///< the configurations of this grab, by number
    std::unique_ptr<Settings> before; ///< what a reload has replaced, while there is a way back
    std::vector<KeyValue> wayBack;    ///< how `before` differs
    std::vector<std::vector<std::uint16_t>> oldTables; ///< look-up tables, lately in force
    std::optional<std::int32_t> formatBeforePass;      ///< pixel format, while a pass has its own
    bool startAgain = false;              ///< the plug-in ended its session for a new configuration
    std::uint32_t distributionBits = 8;   ///< of the distribution that was added up last
    SignalCode computedTable = kNoSignal; ///< asked for the table that was computed last

    // The grab loop's passage from frame to frame.
    std::atomic<bool> signalsKept = false; ///< between ResetTermSigProc and SetTermSigProc
    bool firstFrame = false;               ///< the next frame to arrive only starts the timing
    unsigned missingInRow = 0; ///< failed retrievals since the last frame, while asked to end
    FrameFates fates{scenario, counts};
    std::uint64_t arrivedUs = 0;       ///< the frame that arrived last, us since 1970
    std::uint64_t arrivedSteadyUs = 0; ///< the same on the steady clock
    std::uint64_t handOverFrame = 0;   ///< time stamp of the frame that is being handed over
    std::uint64_t handOverStartUs = 0;
};

/// The one state of this process.
HostServices& services();

/// The plug-in's loop has ended, in whatever way: the frame at hand will not be exported any more,
/// signals are not looked for, and the plug-in logs as configured. May be called again. Grab
/// thread.
void endCapture(HostServices& host);

/// Microseconds of a clock that never steps.
std::uint64_t steadyUs();

/// Microseconds since 1970 on the clock that frames are stamped with.
std::uint64_t wallUs();

} // namespace kxhost

#endif
