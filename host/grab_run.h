// One run of the grab: calls the plug-in, repeats it while it waits for a camera, minds signals.
#ifndef KXHOST_GRAB_RUN_H
#define KXHOST_GRAB_RUN_H

#include "exit_code.h"
#include "plugin.h"

#include <functional>
#include <string>

namespace kxhost {

/// How a run ended.
struct GrabResult {
    ExitCode exitCode = kExitFine;
    std::string reason;  ///< one sentence
    unsigned passes = 0; ///< calls of the plug-in
};

/// Keeps termination signals from ending this thread and those that it starts from now on;
/// `runGrab` takes them instead. REQUIRES: called before other threads are started.
void blockTerminationSignals();

/// Runs until the plug-in is done and everything is written, or a signal ends it, with the settings
/// and counters of `services()`. The plug-in runs on a thread of its own; the calling thread waits
/// for signals and calls `tick` about every `tickMs` milliseconds. A second signal ends the process
/// at once.
GrabResult runGrab(const Plugin& plugin, int tickMs, const std::function<void()>& tick);

/// What a pass that ended with this code means; `asked` = the end had been asked for.
GrabResult describePass(int code, bool asked);

} // namespace kxhost

#endif
