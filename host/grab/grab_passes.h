// The passes of a grab: calls the plug-in until the grab is over, and says how it ended.
#ifndef KXHOST_GRAB_PASSES_H
#define KXHOST_GRAB_PASSES_H

#include "base/exit_code.h"
#include "grab/plugin.h"

#include <string>

namespace kxhost {

/// How a run ended.
struct GrabResult {
    ExitCode exitCode = kExitFine;
    std::string reason;     ///< one sentence
    bool abandoned = false; ///< the plug-in is still at it and will not be waited for
};

/// Calls the plug-in again while it waits for a camera, when it has ended a pass for a new
/// configuration (one that the camera refuses is replaced by the one before), and when the camera
/// was lost. Frames and counters run on. Ends when a pass says something else, the time to wait for
/// a camera is over, or the end is asked for. For the grab thread.
GrabResult runPasses(const Plugin& plugin);

/// What a pass that ended with this code means; `asked` = the end had been asked for.
GrabResult describePass(int code, bool asked);

} // namespace kxhost

#endif
