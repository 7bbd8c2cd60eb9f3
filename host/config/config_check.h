// What keys demand of each other.
#ifndef KXHOST_CONFIG_CHECK_H
#define KXHOST_CONFIG_CHECK_H

#include "config/config.h"

namespace kxhost {

/// Completes what follows from other keys: a mode that was not given is manual when its value was.
void completeModes(Configuration& configuration);

/// Finds keys that contradict each other or lack their partner.
ConfigErrors checkConfiguration(const Configuration& configuration);

/// A problem of a key that was given: "camera.toml:3: auto.gain_min = \"3 dB\": <what is wrong>".
std::string problemOf(const Configuration& configuration, const GivenKey& given,
                      std::string_view problem);

} // namespace kxhost

#endif
