// What the summary and the metadata say of the configurations of a grab.
#ifndef KXHOST_CHANGE_REPORT_H
#define KXHOST_CHANGE_REPORT_H

#include "export/config_history.h"

#include <nlohmann/json_fwd.hpp>

#include <vector>

namespace kxhost {

/// One object for each configuration: `number`, `kind`, `at_us`, and `changed`, an object of keys
/// and their values as text (null = the key is not set any more).
nlohmann::ordered_json changesJson(const std::vector<ConfigurationChangePtr>& changes);

} // namespace kxhost

#endif
