// Prints a configuration: every key with what is in force, as a file that could be read again.
#include "config/config.h"
#include "config/config_hints.h"
#include "config/config_meaning.h"
#include "config/config_value.h"

namespace kxhost {
namespace {

/// One key: its value with its meaning beside it, or a comment that says what holds without it.
void describeKey(Configuration& configuration, const Key& key, std::size_t index, std::string& text)
{
    const bool given = findGiven(configuration, key.section, key.name, index) != nullptr;
    const std::string meaning = meaningOf(configuration, key, index);
    if (!given) {
        text.append("# ").append(key.name).append(": ").append(meaning).append("\n");
        return;
    }
    text.append(key.name).append(" = ");
    text.append(valueText(key.rule, key.slot(configuration.settings, index)));
    text.append(meaning.empty() ? "" : "  # ").append(meaning).append("\n");
    const std::string hint = hintOn(configuration, key, index);
    if (!hint.empty()) {
        text.append("#   hint: ").append(key.name).append(" ").append(hint).append("\n");
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
