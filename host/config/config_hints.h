// Hints about keys that are right but have no effect, or not the one that was meant, where they
// are.
#ifndef KXHOST_CONFIG_HINTS_H
#define KXHOST_CONFIG_HINTS_H

#include "config/config.h"

namespace kxhost {

/// Why the value of this key does nothing in its surroundings, or something that surprises; empty =
/// nothing to say.
/// `index` counts the tables of [[iobox]] and is 0 elsewhere.
std::string hintOn(const Configuration& configuration, const Key& key, std::size_t index = 0);

/// The hints on all keys that were given, one line each with place, key and value, in the order of
/// the table of keys; those on the second and third table of [[iobox]] follow.
std::vector<std::string> hintsOn(const Configuration& configuration);

} // namespace kxhost

#endif
