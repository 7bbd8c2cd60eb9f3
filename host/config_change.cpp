// What differs between two configurations, and when the differences take effect.
#include "config_change.h"

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

/// Of the keys that share a value (a pin's parameters) those count that somebody has set.
bool differs(Configuration& before, Configuration& after, const Key& key)
{
    const std::size_t count = key.section == kIoboxSection ? kMaxIobox : 1;
    for (std::size_t index = 0; index < count; ++index) {
        const bool given = isGivenIn(before, key, index) || isGivenIn(after, key, index);
        if (given && (!isSame(key.slot(before.settings, index), key.slot(after.settings, index)) ||
                      hasOtherTable(before, after, key))) {
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
        const bool asked = std::ranges::find(takes, key.takes) != takes.end();
        if (asked && differs(one, other, key)) {
            names.push_back(std::string(key.section) + "." + std::string(key.name));
        }
    }
    return names;
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
