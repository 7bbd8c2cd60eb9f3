// What differs between two configurations, and when the differences take effect.
#ifndef KXHOST_CONFIG_CHANGE_H
#define KXHOST_CONFIG_CHANGE_H

#include "config/config.h"
#include "export/config_history.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace kxhost {

/// The keys whose values differ and that take effect in one of these ways, "section.key", each
/// once, in the order of the table.
std::vector<std::string> changedKeys(const Configuration& before, const Configuration& after,
                                     std::initializer_list<Takes> takes);

/// The same keys with the values that they have in `after`, "iobox[1].mode" where there are
/// several.
std::vector<KeyValue> changedValues(const Configuration& before, const Configuration& after,
                                    std::initializer_list<Takes> takes);

/// All keys that somebody has set, with their values.
std::vector<KeyValue> givenValues(const Configuration& configuration);

/// Exchanges the values of all keys that take effect in this way. Allocates nothing.
void swapKeys(Settings& one, Settings& other, Takes takes);

/// Whether a value differs that the grab is started again for. Allocates nothing.
bool needsRestart(Settings& before, Settings& after);

/// Names in a row: "a", "a and b", "a, b and c".
std::string listed(const std::vector<std::string>& names);

} // namespace kxhost

#endif
