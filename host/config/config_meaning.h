// What the values of a configuration mean for the camera, in words.
#ifndef KXHOST_CONFIG_MEANING_H
#define KXHOST_CONFIG_MEANING_H

#include "config/config.h"

namespace kxhost {

/// What the key's value, or its absence, means: "20 ms", "the camera's gamma is switched off",
/// "kept as the camera has it". Empty where a given value says everything by itself.
/// `index` counts the tables of [[iobox]] and is 0 elsewhere.
std::string meaningOf(const Configuration& configuration, const Key& key, std::size_t index = 0);

} // namespace kxhost

#endif
