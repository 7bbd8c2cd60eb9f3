// One configuration value: from TOML into its slot by the key's rule, and back into text.
#ifndef KXHOST_CONFIG_VALUE_H
#define KXHOST_CONFIG_VALUE_H

#include "config/config_keys.h"
#include "config/toml_library.h"

#include <string>
#include <vector>

namespace kxhost {

/// What a key allows, as a noun phrase for messages: `one of "keep", "manual", "auto"`.
std::string allowedBy(const Rule& rule);

/// Writes the value of `node` into `slot`. `folder` is where relative file names start. Returns an
/// empty text, or what is wrong; the slot is then unchanged.
std::string assignValue(const Rule& rule, const toml::node& node, const std::string& folder,
                        const Slot& slot);

/// The value in `slot` as it can be written in a configuration file.
std::string valueText(const Rule& rule, const Slot& slot);

} // namespace kxhost

#endif
