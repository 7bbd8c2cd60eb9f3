// One configuration value: each kind of rule reads, writes and describes itself here.
#include "config_value.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace kxhost {
namespace {

std::string inQuotes(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

// ---- Numbers.

void storeNumber(double value, const Slot& slot)
{
    std::visit(
        [value](auto* target) {
            using T = std::remove_pointer_t<decltype(target)>;
            if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) {
                *target = static_cast<T>(value);
            }
        },
        slot);
}

/// The double that is written like this float: 0.1F reads 0.1, not 0.10000000149.
double asWritten(float value)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
    double result = 0;
    std::from_chars(digits.begin(), end, result);
    return result;
}

double loadNumber(const Slot& slot)
{
    return std::visit(
        [](auto* target) -> double {
            using T = std::remove_pointer_t<decltype(target)>;
            if constexpr (std::is_same_v<T, float>) {
                return asWritten(*target);
            } else if constexpr (std::is_arithmetic_v<T>) {
                return static_cast<double>(*target);
            } else {
                return 0;
            }
        },
        slot);
}

std::optional<double> numberIn(const toml::node& node, Dimension dimension)
{
    if (const auto* text = node.as_string()) {
        return parseQuantity(text->get(), dimension);
    }
    if (!node.is_number() || needsUnit(dimension)) {
        return std::nullopt;
    }
    return node.value<double>();
}

std::string assign(const NumberRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    const auto value = numberIn(node, rule.dimension);
    const bool fits = value && *value >= rule.min && *value <= rule.max &&
                      (!rule.whole || *value == std::floor(*value));
    if (!fits) {
        return "expected " + allowedBy(rule);
    }
    storeNumber(*value, slot);
    return {};
}

std::string allowed(const NumberRule& rule)
{
    std::string text =
        rule.whole && rule.dimension == Dimension::kNone ? "a whole number" : "a number";
    text += " from " + formatQuantity(rule.min, rule.dimension) + " to " +
            formatQuantity(rule.max, rule.dimension);
    const std::string units = unitsOf(rule.dimension);
    if (!units.empty()) {
        text += needsUnit(rule.dimension) ? ", with its unit (" : ", unit ";
        text += units;
        text += needsUnit(rule.dimension) ? ")" : " or none";
    }
    return text;
}

std::string text(const NumberRule& rule, const Slot& slot)
{
    const std::string value = formatQuantity(loadNumber(slot), rule.dimension);
    return rule.dimension == Dimension::kNone ? value : inQuotes(value);
}

// ---- Words.

std::string assign(const WordRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    const auto given = node.value_exact<std::string_view>();
    for (const Word& word : rule.words) {
        if (given && *given == word.name) {
            *std::get<std::int32_t*>(slot) = word.value;
            return {};
        }
    }
    return "expected " + allowedBy(rule);
}

std::string allowed(const WordRule& rule)
{
    std::string names;
    for (const Word& word : rule.words) {
        names.append(names.empty() ? "" : ", ").append(inQuotes(word.name));
    }
    return "one of " + names;
}

std::string text(const WordRule& rule, const Slot& slot)
{
    for (const Word& word : rule.words) {
        if (word.value == *std::get<std::int32_t*>(slot)) {
            return inQuotes(word.name);
        }
    }
    return "?";
}

// ---- Texts and switches.

std::string assign(const TextRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    const auto given = node.value_exact<std::string>();
    if (!given || (given->empty() && !rule.mayBeEmpty)) {
        return "expected " + allowedBy(rule);
    }
    *std::get<std::string*>(slot) = *given;
    return {};
}

std::string allowed(const TextRule& rule)
{
    return rule.mayBeEmpty ? "a text" : "a text that is not empty";
}

std::string text(const TextRule&, const Slot& slot)
{
    return inQuotes(*std::get<std::string*>(slot));
}

/// The plug-in reads the text with automatic base and rejects what is left over.
bool isSerial(const std::string& text)
{
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(text.c_str(), &end, 0);
    const bool digitsOnly = text.find_first_of(" \t+-") == std::string::npos;
    return errno == 0 && digitsOnly && !text.empty() && *end == '\0' && value <= kKeep;
}

std::string assign(const SerialRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    std::string given;
    if (const auto* number = node.as_integer()) {
        given = std::to_string(number->get());
    } else if (const auto* asText = node.as_string()) {
        given = asText->get();
    }
    if (!isSerial(given)) {
        return "expected " + allowedBy(rule);
    }
    *std::get<std::string*>(slot) = given;
    return {};
}

std::string allowed(const SerialRule&)
{
    return "a serial number from 0 to 4294967295, as a number or a text";
}

std::string text(const SerialRule&, const Slot& slot)
{
    return inQuotes(*std::get<std::string*>(slot));
}

std::string assign(const SwitchRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    const auto given = node.value_exact<bool>();
    if (!given) {
        return "expected " + allowedBy(rule);
    }
    *std::get<bool*>(slot) = *given;
    return {};
}

std::string allowed(const SwitchRule&)
{
    return "true or false";
}

std::string text(const SwitchRule&, const Slot& slot)
{
    return *std::get<bool*>(slot) ? "true" : "false";
}

// ---- Look-up tables.

std::string checkLut(const std::vector<std::uint16_t>& entries, const std::string& source)
{
    if (entries.size() == kLutEntries) {
        return {};
    }
    return source + " has " + std::to_string(entries.size()) + " entries, a table has " +
           std::to_string(kLutEntries);
}

std::string readLutArray(const toml::array& array, std::vector<std::uint16_t>& entries)
{
    for (const toml::node& node : array) {
        const auto entry = node.value_exact<std::int64_t>();
        if (!entry || *entry < 0 || *entry > 0xFFFF) {
            return "entry " + std::to_string(entries.size()) +
                   " is not a whole number from 0 to 65535";
        }
        entries.push_back(static_cast<std::uint16_t>(*entry));
    }
    return checkLut(entries, "the array");
}

std::string assign(const LutRule& rule, const toml::node& node, const std::string& folder,
                   const Slot& slot)
{
    std::vector<std::uint16_t> entries;
    std::string problem = "expected " + allowedBy(rule);
    if (const auto* array = node.as_array()) {
        problem = readLutArray(*array, entries);
    } else if (const auto* name = node.as_string()) {
        problem = readLutFile((std::filesystem::path(folder) / name->get()).string(), entries);
    }
    if (problem.empty()) {
        *std::get<std::vector<std::uint16_t>*>(slot) = std::move(entries);
    }
    return problem;
}

std::string allowed(const LutRule&)
{
    return "an array of 512 whole numbers from 0 to 65535, or the name of a file that holds them";
}

std::string text(const LutRule&, const Slot& slot)
{
    const auto& entries = *std::get<std::vector<std::uint16_t>*>(slot);
    std::string list = "[";
    for (const std::uint16_t entry : entries) {
        list.append(list.size() > 1 ? ", " : "").append(std::to_string(entry));
    }
    return list + "]";
}

} // namespace

std::string allowedBy(const Rule& rule)
{
    return std::visit([](const auto& one) { return allowed(one); }, rule);
}

std::string assignValue(const Rule& rule, const toml::node& node, const std::string& folder,
                        const Slot& slot)
{
    return std::visit([&](const auto& one) { return assign(one, node, folder, slot); }, rule);
}

std::string valueText(const Rule& rule, const Slot& slot)
{
    return std::visit([&](const auto& one) { return text(one, slot); }, rule);
}

std::string readLutFile(const std::string& path, std::vector<std::uint16_t>& entries)
{
    std::ifstream file(path);
    if (!file) {
        return "the file " + inQuotes(path) + " cannot be read";
    }
    std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    constexpr const char* kBetween = " \t\r\n,;";
    std::size_t at = content.find_first_not_of(kBetween);
    while (at != std::string::npos) {
        const std::size_t end = std::min(content.find_first_of(kBetween, at), content.size());
        std::uint16_t entry = 0;
        const auto [stop, error] = std::from_chars(&content[at], &content[at] + (end - at), entry);
        if (error != std::errc{} || stop != &content[at] + (end - at)) {
            return "the file " + inQuotes(path) + " has " + inQuotes(content.substr(at, end - at)) +
                   " where a whole number from 0 to 65535 belongs";
        }
        entries.push_back(entry);
        at = content.find_first_not_of(kBetween, end);
    }
    return checkLut(entries, "the file " + inQuotes(path));
}

} // namespace kxhost
