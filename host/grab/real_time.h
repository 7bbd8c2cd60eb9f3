// Whether this process may run the real-time thread that the I/O lines need.
#ifndef KXHOST_REAL_TIME_H
#define KXHOST_REAL_TIME_H

#include "config/settings.h"

#include <string>

namespace kxhost {

/// Why the settings of [[iobox]] will have no effect in this process, as one sentence; empty = they
/// will, or there are none. Tries by starting, and ending, a thread like the plug-in's.
std::string realTimeTrouble(const Settings& settings);

} // namespace kxhost

#endif
