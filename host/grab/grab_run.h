// One run of the grab: the plug-in on a thread of its own; signals, the configuration file and the
// progress on the calling one.
#ifndef KXHOST_GRAB_RUN_H
#define KXHOST_GRAB_RUN_H

#include "grab/config_follower.h"
#include "grab/grab_passes.h"

#include <functional>

namespace kxhost {

/// Keeps the signals that steer a grab from ending this thread and those that it starts from now
/// on; `runGrab` takes them instead. REQUIRES: called before other threads are started.
void blockSteeringSignals();

/// Runs until the plug-in is done and everything is written, or a signal ends it, with the settings
/// and counters of `services()`. The plug-in runs on a thread of its own; the calling thread waits
/// for signals and changes of the file (when `watch` says so), and calls `tick` about every
/// `tickMs` milliseconds. A second termination signal ends the process at once, also behind the
/// end, where the calling thread takes such signals.
///
/// When the result says that the plug-in was abandoned, everything is written as well, but the
/// process must end without destroying anything that the plug-in uses.
GrabResult runGrab(const Plugin& plugin, ConfigFollower& follower, bool watch, int tickMs,
                   const std::function<void()>& tick);

} // namespace kxhost

#endif
