// What differs between two configurations, and when the differences take effect.
#include "config/config_change.h"

#include "config/config_value.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace kxhost {
namespace {

bool isSame(const Slot& one, const Slot& other)
{
    return std::visit(
        [&](auto* value) { return *value == *std::get<std::decay_t<decltype(value)>>(other); },
        one);
}

void exchange(const Slot& one, const Slot& other)
{
    std::visit(
        [&](auto* value) { std::swap(*value, *std::get<std::decay_t<decltype(value)>>(other)); },
        one);
}

bool isGivenIn(const Configuration& configuration, const Key& key, std::size_t index)
{
    return findGiven(configuration, key.section, key.name, index) != nullptr;
}

/// Whether the table behind the name of its file is another one.
bool hasOtherTable(const Configuration& before, const Configuration& after, const Key& key)
{
    return key.section == "lut" && key.name == "file" && before.settings.lut != after.settings.lut;
}

/// How many tables a key may be in.
std::size_t tablesOf(const Key& key)
{
    return key.section == kIoboxSection ? kMaxIobox : 1;
}

/// Of the keys that share a value (a pin's parameters) those count that somebody has set.
bool differsAt(Configuration& before, Configuration& after, const Key& key, std::size_t index)
{
    const bool given = isGivenIn(before, key, index) || isGivenIn(after, key, index);
    return given && (!isSame(key.slot(before.settings, index), key.slot(after.settings, index)) ||
                     hasOtherTable(before, after, key));
}

bool differs(Configuration& before, Configuration& after, const Key& key)
{
    for (std::size_t index = 0; index < tablesOf(key); ++index) {
        if (differsAt(before, after, key, index)) {
            return true;
        }
    }
    return false;
}

/// Whether a data input has other parameters and is the same otherwise: the plug-in then leaves it
/// as it is.
bool hasOtherInput(const Settings& before, const Settings& after)
{
    const auto isOther = [](const IoboxSetting& one, const IoboxSetting& other) {
        return isDataInput(one) && isDataInput(other) && one.pin == other.pin &&
               one.invert == other.invert && one.parameters != other.parameters;
    };
    const std::size_t count = std::min(before.iobox.size(), after.iobox.size());
    for (std::size_t index = 0; index < count; ++index) {
        if (isOther(before.iobox[index], after.iobox[index])) {
            return true;
        }
    }
    return false;
}

bool isAmong(Takes takes, std::initializer_list<Takes> all)
{
    return std::ranges::find(all, takes) != all.end();
}

/// A text stands without its quotation marks.
KeyValue valueOf(Configuration& configuration, const Key& key, std::size_t index)
{
    std::string name(key.section);
    if (key.section == kIoboxSection) {
        name += "[" + std::to_string(index) + "]";
    }
    name += "." + std::string(key.name);
    if (!isGivenIn(configuration, key, index)) {
        return {name, ""};
    }
    std::string text = valueText(key.rule, key.slot(configuration.settings, index));
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        text = text.substr(1, text.size() - 2);
    }
    return {name, text};
}

/// A copy with all settings of pins that there can be.
Configuration withEveryPin(Configuration configuration)
{
    configuration.settings.iobox.resize(kMaxIobox);
    return configuration;
}

} // namespace

std::vector<std::string> changedKeys(const Configuration& before, const Configuration& after,
                                     std::initializer_list<Takes> takes)
{
    Configuration one = withEveryPin(before);
    Configuration other = withEveryPin(after);
    std::vector<std::string> names;
    for (const Key& key : configKeys()) {
        if (isAmong(key.takes, takes) && differs(one, other, key)) {
            names.push_back(std::string(key.section) + "." + std::string(key.name));
        }
    }
    return names;
}

std::vector<KeyValue> changedValues(const Configuration& before, const Configuration& after,
                                    std::initializer_list<Takes> takes)
{
    Configuration one = withEveryPin(before);
    Configuration other = withEveryPin(after);
    std::vector<KeyValue> values;
    for (const Key& key : configKeys()) {
        for (std::size_t index = 0; index < tablesOf(key); ++index) {
            if (isAmong(key.takes, takes) && differsAt(one, other, key, index)) {
                values.push_back(valueOf(other, key, index));
            }
        }
    }
    return values;
}

std::vector<KeyValue> givenValues(const Configuration& configuration)
{
    Configuration all = withEveryPin(configuration);
    std::vector<KeyValue> values;
    for (const Key& key : configKeys()) {
        for (std::size_t index = 0; index < tablesOf(key); ++index) {
            if (isGivenIn(all, key, index)) {
                values.push_back(valueOf(all, key, index));
            }
        }
    }
    return values;
}

void swapKeys(Settings& one, Settings& other, Takes takes)
{
    for (const Key& key : configKeys()) {
        if (key.takes == takes && key.section != kIoboxSection) {
            exchange(key.slot(one, 0), key.slot(other, 0));
        }
    }
    // Those of a pin go together. The few that are not live differ only with a reload, which takes
    // over all keys.
    if (takes == Takes::kLive) {
        std::swap(one.iobox, other.iobox);
    }
}

bool needsRestart(Settings& before, Settings& after)
{
    const bool hasOtherKey = std::ranges::any_of(configKeys(), [&](const Key& key) {
        return key.takes == Takes::kRestart && key.section != kIoboxSection &&
               !isSame(key.slot(before, 0), key.slot(after, 0));
    });
    return hasOtherKey || hasOtherInput(before, after);
}

std::string listed(const std::vector<std::string>& names)
{
    std::string text;
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (index > 0) {
            text += index + 1 == names.size() ? " and " : ", ";
        }
        text += names[index];
    }
    return text;
}

} // namespace kxhost
