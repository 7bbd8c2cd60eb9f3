// What keys demand of each other.
#ifndef KXHOST_CONFIG_CHECK_H
#define KXHOST_CONFIG_CHECK_H

#include "config.h"

namespace kxhost {

/// Completes what follows from other keys: a mode that was not given is manual when its value was.
void completeModes(Configuration& configuration);

/// Finds keys that contradict each other, lack their partner or have no effect where they stand.
ConfigErrors checkConfiguration(const Configuration& configuration);

} // namespace kxhost

#endif
