// The configuration of a grab: a TOML file and overrides from the command line.
#ifndef KXHOST_CONFIG_H
#define KXHOST_CONFIG_H

#include "config/config_keys.h"

#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

/// A key that somebody set.
struct GivenKey {
    const Key* key = nullptr;
    std::size_t index = 0; ///< which table of [[iobox]]; 0 elsewhere
    std::string where;     ///< for messages: "camera.toml:12" or "--set"
};

struct Configuration {
    Settings settings;
    std::vector<GivenKey> given;          ///< each key and index once
    std::vector<std::string> ioboxPlaces; ///< of each table of [[iobox]]: "camera.toml:9"
};

/// Every problem of a configuration, one line of text each; empty = none.
using ConfigErrors = std::vector<std::string>;

/// Reads `path` (empty = no file) and then applies `overrides` of the form "section.key=value" in
/// order, where the value is TOML or a bare word. `result` changes only when there is no problem.
ConfigErrors loadConfiguration(const std::string& path, const std::vector<std::string>& overrides,
                               Configuration& result);

/// The same with the file's text at hand; `name` stands for the file in messages, `folder` is where
/// relative file names in it start.
ConfigErrors readConfiguration(std::string_view text, const std::string& name,
                               const std::string& folder, const std::vector<std::string>& overrides,
                               Configuration& result);

/// Why `text` is no value for a key outside of [[iobox]], as overrides write values; empty = it is
/// one.
std::string whyNoValue(const Key& key, const std::string& text);

/// How `given` names the key `section.name` at `index`; null = it was not set.
const GivenKey* findGiven(const Configuration& configuration, std::string_view section,
                          std::string_view name, std::size_t index = 0);

/// All keys with what is in force, as a configuration file with comments.
std::string describeConfiguration(Configuration configuration);

} // namespace kxhost

#endif
