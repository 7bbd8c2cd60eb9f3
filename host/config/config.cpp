// The configuration of a grab: reads TOML by the table of keys.
#include "config/config.h"

#include "config/config_check.h"
#include "config/config_lut.h"
#include "config/config_value.h"
#include "config/suggest.h"
#include "config/toml_text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kxhost {
namespace {

bool takesText(const Key* key)
{
    return key != nullptr && (std::holds_alternative<TextRule>(key->rule) ||
                              std::holds_alternative<FileRule>(key->rule));
}

/// What stands behind the equals sign: TOML, or a bare word that is taken as a text. Where a text
/// belongs, 2024-05-01 is one too and no date. Throws what is wrong with bytes that are no UTF-8,
/// which no configuration could hold.
toml::table parseValue(const std::string& text, const Key* key)
{
    try {
        toml::table value = toml::parse("value = " + text);
        if (!takesText(key) || value.get("value")->is_string()) {
            return value;
        }
    } catch (const toml::parse_error&) {
        // Not TOML, so it is a text.
    }
    return toml::parse("value = " + tomlText(text));
}

/// Reads tables into a configuration and collects what is wrong with them.
class Reader {
public:
    Reader(Configuration& configuration, ConfigErrors& errors)
        : configuration_(configuration), errors_(errors)
    {}

    void readFile(std::string_view text, const std::string& name, const std::string& folder)
    {
        name_ = name;
        folder_ = folder;
        try {
            const toml::table root = toml::parse(text, name);
            for (const auto& [section, node] : root) {
                readSection(section.str(), node);
            }
        } catch (const toml::parse_error& error) {
            report(error.source(), std::string(error.description()));
        }
    }

    void readOverride(const std::string& assignment)
    {
        name_ = "--set " + assignment;
        folder_.clear();
        const std::size_t equals = assignment.find('=');
        const std::size_t dot = assignment.find('.');
        if (equals == std::string::npos || dot == std::string::npos || dot > equals) {
            report({}, "expected section.key=value");
            return;
        }
        const std::string section = assignment.substr(0, dot);
        if (section == kIoboxSection) {
            report({}, "the settings of [[iobox]] can only be given in a file");
            return;
        }
        const std::string name = assignment.substr(dot + 1, equals - dot - 1);
        try {
            const toml::table value =
                parseValue(assignment.substr(equals + 1), findKey(section, name));
            readKey(section, name, *value.get("value"), 0);
        } catch (const toml::parse_error& error) {
            report({}, std::string(error.description()));
        }
    }

private:
    void readSection(std::string_view section, const toml::node& node)
    {
        if (section == kIoboxSection) {
            readIobox(node);
            return;
        }
        if (!knowsSection(section)) {
            reportUnknownSection(section, node);
            return;
        }
        const toml::table* table = node.as_table();
        if (table == nullptr) {
            report(node.source(), std::string(section) + " is a section: write [" +
                                      std::string(section) + "] and its keys below");
            return;
        }
        readTable(section, *table, 0);
    }

    void readIobox(const toml::node& node)
    {
        const toml::array* tables = node.as_array();
        if (tables == nullptr || !tables->is_homogeneous(toml::node_type::table)) {
            report(node.source(), "iobox settings are written as [[iobox]], one per pin");
            return;
        }
        if (tables->size() > kMaxIobox) {
            report(tables->get(kMaxIobox)->source(), "there may be " + std::to_string(kMaxIobox) +
                                                         " [[iobox]] settings, not " +
                                                         std::to_string(tables->size()));
            return;
        }
        configuration_.settings.iobox.resize(tables->size());
        for (std::size_t index = 0; index < tables->size(); ++index) {
            configuration_.ioboxPlaces.push_back(place(tables->get(index)->source()));
            readTable(kIoboxSection, *tables->get(index)->as_table(), index);
        }
    }

    void readTable(std::string_view section, const toml::table& table, std::size_t index)
    {
        for (const auto& [name, value] : table) {
            readKey(section, name.str(), value, index);
        }
    }

    void readKey(std::string_view section, std::string_view name, const toml::node& value,
                 std::size_t index)
    {
        const Key* key = findKey(section, name);
        if (key == nullptr) {
            reportUnknownKey(section, name, value);
            return;
        }
        const std::string problem =
            assignValue(key->rule, value, folder_, key->slot(configuration_.settings, index));
        if (!problem.empty()) {
            report(value.source(), std::string(section) + "." + std::string(name) + " = " +
                                       written(value) + ": " + problem);
            return;
        }
        std::erase_if(configuration_.given, [&](const GivenKey& other) {
            return other.key == key && other.index == index;
        });
        configuration_.given.push_back({key, index, place(value.source())});
    }

    static bool knowsSection(std::string_view section)
    {
        return std::ranges::any_of(configKeys(),
                                   [&](const Key& key) { return key.section == section; });
    }

    void reportUnknownSection(std::string_view section, const toml::node& node)
    {
        const auto stray = std::ranges::find(configKeys(), section, &Key::name);
        if (!node.is_table() && stray != configKeys().end()) {
            report(node.source(), std::string(section) + " stands outside its section [" +
                                      std::string(stray->section) + "]");
            return;
        }
        std::vector<std::string_view> known;
        for (const Key& key : configKeys()) {
            known.push_back(key.section);
        }
        report(node.source(), "unknown section [" + std::string(section) + "]" +
                                  didYouMean("[", nearestWord(section, known), "]"));
    }

    void reportUnknownKey(std::string_view section, std::string_view name, const toml::node& node)
    {
        std::vector<std::string_view> here;
        std::vector<std::string_view> everywhere;
        for (const Key& key : configKeys()) {
            everywhere.push_back(key.name);
            if (key.section == section) {
                here.push_back(key.name);
            }
        }
        std::string_view suggested = nearestWord(name, here);
        std::string_view home = section;
        if (const auto elsewhere = nearestWord(name, everywhere);
            suggested.empty() && !elsewhere.empty()) {
            suggested = elsewhere;
            home = std::ranges::find(configKeys(), elsewhere, &Key::name)->section;
        }
        report(node.source(), "unknown key " + std::string(section) + "." + std::string(name) +
                                  didYouMean(std::string(home) + ".", suggested, ""));
    }

    static std::string didYouMean(std::string_view before, std::string_view word,
                                  std::string_view after)
    {
        if (word.empty()) {
            return {};
        }
        return "; did you mean " + std::string(before) + std::string(word) + std::string(after) +
               "?";
    }

    static std::string written(const toml::node& value)
    {
        if (const auto* given = value.as_string()) {
            return tomlText(given->get());
        }
        std::ostringstream text;
        text << toml::node_view<const toml::node>(value);
        return onOneLine(text.str());
    }

    /// "file:line"; overrides have no lines.
    std::string place(const toml::source_region& source) const
    {
        const bool hasLine = source.path && source.begin.line > 0;
        return printable(name_) + (hasLine ? ":" + std::to_string(source.begin.line) : "");
    }

    void report(const toml::source_region& source, const std::string& problem)
    {
        errors_.push_back(place(source) + ": " + printable(problem));
    }

    Configuration& configuration_;
    ConfigErrors& errors_;
    std::string name_;
    std::string folder_;
};

/// Errors of a file in the order of its lines, as they were found otherwise.
void sortByLine(ConfigErrors& errors)
{
    const auto line = [](const std::string& error) {
        const std::size_t colon = error.find(':');
        return colon == std::string::npos ? 0
                                          : std::strtoul(error.c_str() + colon + 1, nullptr, 10);
    };
    std::ranges::stable_sort(errors, {}, line);
}

} // namespace

ConfigErrors loadConfiguration(const std::string& path, const std::vector<std::string>& overrides,
                               Configuration& result)
{
    if (path.empty()) {
        return readConfiguration({}, {}, {}, overrides, result);
    }
    std::ifstream file(path);
    std::error_code ignored;
    if (!file || std::filesystem::is_directory(path, ignored)) {
        return {path + ": the configuration file cannot be read"};
    }
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return readConfiguration(text, path, folder, overrides, result);
}

ConfigErrors readConfiguration(std::string_view text, const std::string& name,
                               const std::string& folder, const std::vector<std::string>& overrides,
                               Configuration& result)
{
    Configuration configuration;
    ConfigErrors errors;
    Reader reader(configuration, errors);
    reader.readFile(text, name, folder);
    sortByLine(errors);
    for (const std::string& assignment : overrides) {
        reader.readOverride(assignment);
    }
    if (errors.empty()) {
        completeModes(configuration);
        errors = completeLut(configuration);
    }
    if (errors.empty()) {
        errors = checkConfiguration(configuration);
    }
    if (errors.empty()) {
        result = std::move(configuration);
    }
    return errors;
}

std::string whyNoValue(const Key& key, const std::string& text)
{
    Settings scratch;
    try {
        const toml::table value = parseValue(text, &key);
        return assignValue(key.rule, *value.get("value"), {}, key.slot(scratch, 0));
    } catch (const toml::parse_error& error) {
        return printable(error.description());
    }
}

const GivenKey* findGiven(const Configuration& configuration, std::string_view section,
                          std::string_view name, std::size_t index)
{
    const auto found = std::ranges::find_if(configuration.given, [&](const GivenKey& given) {
        return given.key->section == section && given.key->name == name && given.index == index;
    });
    return found == configuration.given.end() ? nullptr : &*found;
}

} // namespace kxhost
