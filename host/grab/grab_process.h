// Looks at another process: whether it is a grab that takes a signal.
#ifndef KXHOST_GRAB_PROCESS_H
#define KXHOST_GRAB_PROCESS_H

#include <string>

namespace kxhost {

/// Why this signal must not be sent to the process: there is none, it is not kxhost, or it does not
/// grab and would be killed by the signal. One sentence; empty = it can be sent. `proc` is the
/// mount of the process information, and stands here for tests.
std::string whyNoGrab(int pid, int signal, const std::string& proc = "/proc");

} // namespace kxhost

#endif
