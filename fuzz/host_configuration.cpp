// Fuzz target: the configuration of kxhost, from TOML to settings and back.
#include "config/config.h"
#include "config/config_change.h"
#include "config/config_hints.h"
#include "config/config_value.h"
#include "fuzz_input.h"

#include <string>
#include <vector>

namespace kxfuzz {
namespace {

using kxhost::Configuration;
using kxhost::Takes;

constexpr const char* kFile = "fuzz.toml";

/// The parts between NUL characters: the file, then the overrides.
std::vector<std::string> partsOf(std::string_view text)
{
    std::vector<std::string> parts;
    while (true) {
        const std::size_t end = text.find('\0');
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

bool isOneLine(std::string_view text)
{
    return !text.empty() && text.find('\n') == std::string_view::npos;
}

void checkRefused(const kxhost::ConfigErrors& errors, const Configuration& untouched)
{
    KX_MUST(untouched.given.empty());
    KX_MUST(untouched.settings.iobox.empty());
    for (const std::string& error : errors) {
        KX_MUST(isOneLine(error));
        KX_MUST(error.starts_with(kFile) || error.starts_with("--set "));
    }
}

void checkSettings(const kxhost::Settings& settings)
{
    KX_MUST(settings.iobox.size() <= kxhost::kMaxIobox);
    KX_MUST(settings.lutBits >= 1 && settings.lutBits <= 16);
    KX_MUST(settings.lut.empty() || settings.lut.size() == kxhost::kLutEntries);
    for (const std::uint16_t entry : settings.lut) {
        KX_MUST(entry >> settings.lutBits == 0);
    }
    KX_MUST(settings.buffers >= 1 && settings.outputQueue >= 1 && settings.outputWriters >= 1);
    KX_MUST(settings.outputPrefix.find('/') == std::string::npos);
}

/// A number that was given lies within the limits that are documented, or is one of the words.
void checkNumbers(const Configuration& configuration)
{
    kxhost::Settings settings = configuration.settings;
    for (const kxhost::GivenKey& given : configuration.given) {
        const auto* const rule = std::get_if<kxhost::NumberRule>(&given.key->rule);
        if (rule == nullptr) {
            continue;
        }
        const kxhost::Slot slot = given.key->slot(settings, given.index);
        const std::string text = kxhost::valueText(*rule, slot);
        bool isWord = false;
        for (const kxhost::Word& word : rule->words) {
            isWord = isWord || text.find(word.name) != std::string::npos;
        }
        const auto first = text.find_first_not_of('"');
        const double number = std::strtod(text.c_str() + first, nullptr);
        KX_MUST(isWord || (number >= rule->min && number <= rule->max));
    }
}

/// What is printed of a configuration is a configuration that means the same.
void checkReadsBack(const Configuration& configuration)
{
    const std::string text = kxhost::describeConfiguration(configuration);
    Configuration again;
    KX_MUST(kxhost::readConfiguration(text, "again.toml", {}, {}, again).empty());
    const auto changed = kxhost::changedKeys(
        configuration, again, {Takes::kLive, Takes::kReload, Takes::kRestart, Takes::kStart});
    for (const std::string& name : changed) {
        KX_MUST(name == "lut.file" || name == "output.folder"); // names become absolute
    }
    KX_MUST(again.given.size() == configuration.given.size());
    KX_MUST(kxhost::describeConfiguration(again) == text);
    kxhost::Settings before = configuration.settings;
    KX_MUST(!kxhost::needsRestart(before, again.settings));
}

void hostConfiguration(Input input)
{
    std::vector<std::string> overrides = partsOf(textOf(input));
    const std::string text = overrides.front();
    overrides.erase(overrides.begin());
    Configuration configuration;
    const kxhost::ConfigErrors errors =
        kxhost::readConfiguration(text, kFile, "folder", overrides, configuration);
    if (!errors.empty()) {
        checkRefused(errors, configuration);
        return;
    }
    checkSettings(configuration.settings);
    checkNumbers(configuration);
    checkReadsBack(configuration);
    for (const std::string& hint : kxhost::hintsOn(configuration)) {
        KX_MUST(isOneLine(hint));
    }
}

} // namespace
} // namespace kxfuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kxfuzz::hostConfiguration({data, size});
    return 0;
}
