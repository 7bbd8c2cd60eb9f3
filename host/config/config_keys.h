// The table of configuration keys: the one place that says what can be configured and how.
//
// Reading a file, `--set`, `kxhost check` and the check of the documentation all go by this table.
#ifndef KXHOST_CONFIG_KEYS_H
#define KXHOST_CONFIG_KEYS_H

#include "config/quantity.h"
#include "config/settings.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <variant>

namespace kxhost {

/// Where a key's value goes.
using Slot = std::variant<float*, double*, std::uint32_t*, std::int32_t*, std::int64_t*, bool*,
                          std::string*, std::vector<std::uint16_t>*, LutCurve*>;

/// One of several words.
struct Word {
    std::string_view name;
    std::int32_t value;
};

/// A number, with unit where the dimension has one; both limits included.
struct NumberRule {
    Dimension dimension;
    double min;
    double max;
    bool whole;
    std::span<const Word> words = {}; ///< that stand for numbers beyond the limits
};

struct WordRule {
    std::span<const Word> words;
};

/// Free text; without slashes when it becomes part of a file's name.
struct TextRule {
    bool inFileName;
};

/// The name of an existing file; relative ones start in the folder of the configuration file.
struct FileRule {};

/// A serial number: a whole number, or text in decimal, 0x hexadecimal or 0 octal.
struct SerialRule {};

/// true or false.
struct SwitchRule {};

/// The entries of a look-up table as an array.
struct TableRule {};

/// A named curve.
struct CurveRule {};

using Rule = std::variant<NumberRule, WordRule, TextRule, FileRule, SerialRule, SwitchRule,
                          TableRule, CurveRule>;

/// When a changed value takes effect in a running grab.
enum class Takes {
    kLive,    ///< at once, when the file has changed
    kReload,  ///< with a reload (SIGHUP), while the grab goes on
    kRestart, ///< with a reload, which then starts the grab again
    kStart,   ///< with the next start of kxhost
};

/// One configuration key.
struct Key {
    std::string_view section;
    std::string_view name;
    Takes takes;
    Rule rule;
    std::string_view absent;  ///< what is in force without the key
    std::string_view meaning; ///< one sentence
    /// Where the value goes; `index` counts the tables of [[iobox]] and is 0 elsewhere.
    Slot (*slot)(Settings& settings, std::size_t index);
};

/// What stands in `Key::absent` when the camera's own value stays.
constexpr std::string_view kKept = "kept as the camera has it";
/// The section that may occur several times.
constexpr std::string_view kIoboxSection = "iobox";

/// All keys, those of one section together.
std::span<const Key> configKeys();

/// The key of this section and name; null = there is none.
const Key* findKey(std::string_view section, std::string_view name);

} // namespace kxhost

#endif
