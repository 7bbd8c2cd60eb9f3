// Prints a configuration: every key with what is in force, as a file that could be read again.
#include "config.h"
#include "config_value.h"

#include <algorithm>

namespace kxhost {
namespace {

void describeKey(Configuration& configuration, const Key& key, std::size_t index, std::string& text)
{
    const bool given = findGiven(configuration, key.section, key.name, index) != nullptr;
    if (given) {
        text.append(key.name).append(" = ");
        text.append(valueText(key.rule, key.slot(configuration.settings, index))).append("\n");
    } else {
        text.append("# ").append(key.name).append(": ").append(key.absent).append("\n");
    }
}

void describeSection(Configuration& configuration, std::string_view section, std::size_t index,
                     std::string& text)
{
    for (const Key& key : configKeys()) {
        if (key.section == section) {
            describeKey(configuration, key, index, text);
        }
    }
    text.append("\n");
}

} // namespace

std::string describeConfiguration(Configuration configuration)
{
    std::string text;
    std::string_view section;
    for (const Key& key : configKeys()) {
        if (key.section == section) {
            continue;
        }
        section = key.section;
        if (section != kIoboxSection) {
            text.append("[").append(section).append("]\n");
            describeSection(configuration, section, 0, text);
            continue;
        }
        for (std::size_t index = 0; index < configuration.settings.iobox.size(); ++index) {
            text.append("[[").append(section).append("]]\n");
            describeSection(configuration, section, index, text);
        }
    }
    text.pop_back();
    return text;
}

} // namespace kxhost
