// One configuration value: each kind of rule reads, writes and describes itself here.
#include "config/config_value.h"

#include "config/toml_text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <optional>

namespace kxhost {
namespace {

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

/// The word that stands for the number, or the number that the word stands for; null = none.
const Word* wordFor(const NumberRule& rule, double value)
{
    const auto word = std::ranges::find(rule.words, value, &Word::value);
    return word == rule.words.end() ? nullptr : &*word;
}

const Word* wordFor(const NumberRule& rule, const toml::node& node)
{
    const auto given = node.value_exact<std::string_view>();
    const auto word = given ? std::ranges::find(rule.words, *given, &Word::name) : rule.words.end();
    return word == rule.words.end() ? nullptr : &*word;
}

std::string assign(const NumberRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    if (const Word* const word = wordFor(rule, node)) {
        storeNumber(word->value, slot);
        return {};
    }
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
    for (const Word& word : rule.words) {
        text += ", or " + tomlText(word.name);
    }
    return text;
}

std::string text(const NumberRule& rule, const Slot& slot)
{
    if (const Word* const word = wordFor(rule, loadNumber(slot))) {
        return tomlText(word->name);
    }
    const std::string value = formatQuantity(loadNumber(slot), rule.dimension);
    const bool hasUnit = value.find(' ') != std::string::npos;
    return hasUnit ? tomlText(value) : value;
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
        names.append(names.empty() ? "" : ", ").append(tomlText(word.name));
    }
    return "one of " + names;
}

std::string text(const WordRule& rule, const Slot& slot)
{
    for (const Word& word : rule.words) {
        if (word.value == *std::get<std::int32_t*>(slot)) {
            return tomlText(word.name);
        }
    }
    return "?";
}

// ---- Texts and switches.

std::string assign(const TextRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    const auto given = node.value_exact<std::string>();
    if (!given || (rule.inFileName && given->find('/') != std::string::npos)) {
        return "expected " + allowedBy(rule);
    }
    *std::get<std::string*>(slot) = *given;
    return {};
}

std::string allowed(const TextRule& rule)
{
    return rule.inFileName ? "a text in quotes, without slashes" : "a text in quotes";
}

std::string text(const TextRule&, const Slot& slot)
{
    return tomlText(*std::get<std::string*>(slot));
}

std::string assign(const FileRule& rule, const toml::node& node, const std::string& folder,
                   const Slot& slot)
{
    const auto given = node.value_exact<std::string>();
    if (!given || given->empty()) {
        return "expected " + allowedBy(rule);
    }
    *std::get<std::string*>(slot) = (std::filesystem::path(folder) / *given).string();
    return {};
}

std::string allowed(const FileRule&)
{
    return "the name of a file in quotes";
}

/// An absolute name means the same wherever the text is read again.
std::string text(const FileRule&, const Slot& slot)
{
    const std::filesystem::path path = *std::get<std::string*>(slot);
    return tomlText(std::filesystem::absolute(path).lexically_normal().string());
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
    return tomlText(*std::get<std::string*>(slot));
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

std::string assign(const TableRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    const toml::array* array = node.as_array();
    if (array == nullptr) {
        return "expected " + allowedBy(rule);
    }
    std::vector<std::uint16_t> entries;
    for (const toml::node& each : *array) {
        const auto entry = each.value_exact<std::int64_t>();
        if (!entry || *entry < 0 || *entry > 0xFFFF) {
            return "entry " + std::to_string(entries.size()) +
                   " is not a whole number from 0 to 65535";
        }
        entries.push_back(static_cast<std::uint16_t>(*entry));
    }
    if (entries.size() != kLutEntries) {
        return "holds " + std::to_string(entries.size()) + " values, a table has " +
               std::to_string(kLutEntries);
    }
    *std::get<std::vector<std::uint16_t>*>(slot) = std::move(entries);
    return {};
}

std::string allowed(const TableRule&)
{
    return "an array of 512 whole numbers from 0 to 65535 (a file's name goes to lut.file)";
}

std::string text(const TableRule&, const Slot& slot)
{
    constexpr std::size_t kPerLine = 16;
    const auto& entries = *std::get<std::vector<std::uint16_t>*>(slot);
    std::string list = "[";
    for (std::size_t index = 0; index < entries.size(); ++index) {
        list.append(index % kPerLine == 0 ? "\n    " : " ");
        list.append(std::to_string(entries[index])).append(",");
    }
    return list + "\n]";
}

std::string assign(const CurveRule& rule, const toml::node& node, const std::string&,
                   const Slot& slot)
{
    const auto given = node.value_exact<std::string>();
    const auto curve = given ? parseCurve(*given) : std::nullopt;
    if (!curve) {
        return "expected " + allowedBy(rule);
    }
    *std::get<LutCurve*>(slot) = *curve;
    return {};
}

std::string allowed(const CurveRule&)
{
    return knownCurves();
}

std::string text(const CurveRule&, const Slot& slot)
{
    return tomlText(curveText(*std::get<LutCurve*>(slot)));
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

} // namespace kxhost
