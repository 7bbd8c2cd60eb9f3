// What differs between two configurations, and when the differences take effect.
#ifndef KXHOST_CONFIG_CHANGE_H
#define KXHOST_CONFIG_CHANGE_H

#include "config.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace kxhost {

/// The keys whose values differ and that take effect in one of these ways, "section.key", each
/// once, in the order of the table.
std::vector<std::string> changedKeys(const Configuration& before, const Configuration& after,
                                     std::initializer_list<Takes> takes);

/// Exchanges the values of all keys that take effect in this way. Allocates nothing.
void swapKeys(Settings& one, Settings& other, Takes takes);

/// Whether a value differs that the grab is started again for. Allocates nothing.
bool needsRestart(Settings& before, Settings& after);

/// Names in a row: "a", "a and b", "a, b and c".
std::string listed(const std::vector<std::string>& names);

} // namespace kxhost

#endif
