// The settings of [[iobox]]: what they demand of each other, which have no effect, what they mean.
#include "config/config_iobox.h"

#include "config/config_check.h"
#include "config/quantity.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>

namespace kxhost {
namespace {

constexpr std::uint32_t kWholeWord = 32; ///< bits
/// What the plug-in takes for a gap that is not configured.
constexpr std::uint32_t kDefaultGapPolls = 12;
/// The control thread's loop pauses for so long; its own work comes on top.
constexpr double kPollUs = 2000;
/// Of a command's pulses, which are as long as the rest between them.
constexpr double kHalfPeriodUs = 2000;

/// One table of [[iobox]] among the others.
struct Entry {
    const Configuration& configuration;
    std::size_t index;

    const IoboxSetting& setting() const { return configuration.settings.iobox[index]; }
    const std::string& place() const { return configuration.ioboxPlaces[index]; }
    const GivenKey* given(std::string_view name) const
    {
        return findGiven(configuration, kIoboxSection, name, index);
    }
    std::string problem(std::string_view name, std::string_view text) const
    {
        return problemOf(configuration, *given(name), text);
    }
};

// ---- Errors.

/// What a pin's parameters are called in the use that its source and mode make of it.
struct PinUse {
    PinSource source;
    PinMode mode; ///< kPinOff = any
    std::string_view name;
    std::array<std::string_view, 2> parameters;
    bool required;
};
constexpr std::array kPinUses = {
    PinUse{kPinStrobe, kPinOff, "a strobe", {"delay", "duration"}, false},
    PinUse{kPinData, kPinOutput, "data output", {"bits", "word"}, true},
    PinUse{kPinData, kPinInput, "data input", {"timeout_polls", "gap_polls"}, false},
};

bool isInUse(const PinUse& use, const IoboxSetting& setting)
{
    return use.source == setting.source && (use.mode == kPinOff || use.mode == setting.mode);
}

void checkParameters(const Entry& entry, ConfigErrors& errors)
{
    for (const PinUse& use : kPinUses) {
        const bool inUse = isInUse(use, entry.setting());
        for (const std::string_view name : use.parameters) {
            const bool isGiven = entry.given(name) != nullptr;
            if (isGiven && !inUse) {
                errors.push_back(entry.problem(name, "is for " + std::string(use.name) + " only"));
            }
            if (!isGiven && inUse && use.required) {
                errors.push_back(
                    entry.problem("source", std::string(use.name) + " needs " + std::string(name)));
            }
        }
    }
}

void checkWord(const Entry& entry, ConfigErrors& errors)
{
    if (!isDataOutput(entry.setting()) || entry.given("bits") == nullptr ||
        entry.given("word") == nullptr) {
        return;
    }
    const auto [bits, word] = entry.setting().parameters;
    if (bits < kWholeWord && word >> bits != 0) {
        errors.push_back(entry.problem("word", "does not fit into bits = " + std::to_string(bits)));
    }
}

/// The control thread gives a pin back to the strobe that it was before a command. Any other pair
/// of settings would only replace the first one by the second.
void checkShared(const Entry& entry, ConfigErrors& errors)
{
    for (std::size_t before = 0; before < entry.index; ++before) {
        const Entry other{entry.configuration, before};
        if (other.setting().pin != entry.setting().pin || entry.given("pin") == nullptr ||
            (isStrobeOutput(other.setting()) && isDataOutput(entry.setting()))) {
            continue;
        }
        const bool isReversed = isDataOutput(other.setting()) && isStrobeOutput(entry.setting());
        errors.push_back(
            entry.problem("pin", "is set at " + other.place() + " already; " +
                                     (isReversed ? "a strobe that shares its pin with data "
                                                   "output stands above it"
                                                 : "only a strobe and, below it, data output "
                                                   "can share a pin")));
        return;
    }
}

// ---- Hints.

bool isAnotherDataInput(const Entry& entry, const IoboxSetting& other)
{
    return isDataInput(other) && other.pin > entry.setting().pin;
}

std::string onDataInput(const Entry& entry)
{
    const auto& all = entry.configuration.settings.iobox;
    if (std::ranges::none_of(all, isDataOutput)) {
        return "has no effect: replies follow commands, and no [[iobox]] sends one";
    }
    const bool isHighest = std::ranges::none_of(
        all, [&](const IoboxSetting& other) { return isAnotherDataInput(entry, other); });
    return isHighest ? ""
                     : "has no effect: of several data inputs the one with the highest number "
                       "takes the replies";
}

std::string onDataOutput(const Entry& entry)
{
    const auto& all = entry.configuration.settings.iobox;
    const auto end = all.begin() + static_cast<std::ptrdiff_t>(entry.index);
    return std::none_of(all.begin(), end, isDataOutput)
               ? ""
               : "is a second command: only one at a time is kept track of, so that the reply to "
                 "the other one, or the strobe of a shared pin, may be lost";
}

std::string onMode(const Entry& entry)
{
    const IoboxSetting& setting = entry.setting();
    if (isDataInput(setting)) {
        return onDataInput(entry);
    }
    if (isDataOutput(setting)) {
        return onDataOutput(entry);
    }
    if (setting.source == kPinNoSource && setting.mode != kPinOff) {
        return "only switches a strobe off: there is no source";
    }
    return setting.source == kPinStrobe && setting.mode == kPinInput
               ? "switches the strobe off: it takes mode = \"output\""
               : "";
}

std::string onSource(const Entry& entry)
{
    if (entry.setting().mode != kPinOff) {
        return {};
    }
    switch (entry.setting().source) {
    case kPinData:
        return "has no effect: data takes mode = \"output\" or \"input\"";
    case kPinStrobe:
        return entry.given("mode") != nullptr
                   ? ""
                   : "switches the strobe off: it takes mode = \"output\"";
    default:
        return {};
    }
}

std::string onInvert(const Entry& entry)
{
    if (isDataInput(entry.setting())) {
        return "has no effect: the receiver learns the level at which the line rests";
    }
    const bool isOutput = isDataOutput(entry.setting()) || isStrobeOutput(entry.setting());
    return isOutput ? "" : "has no effect: the pin puts nothing out";
}

std::string onDelay(const Entry& entry)
{
    return isStrobeOutput(entry.setting()) ? "" : "has no effect: the strobe is off";
}

std::string onDuration(const Entry& entry)
{
    const Settings& settings = entry.configuration.settings;
    const bool isKnown = settings.exposureMode == kSweepManual && settings.exposureUs >= 0;
    const std::string hint = onDelay(entry);
    return hint.empty() && isKnown &&
                   static_cast<double>(entry.setting().parameters[1]) > double{settings.exposureUs}
               ? "is longer than the exposure, to which it is cut: " +
                     readableTime(double{settings.exposureUs})
               : hint;
}

std::uint32_t gapPolls(const Entry& entry)
{
    const std::uint32_t gap = entry.setting().parameters[1];
    return gap == kKeep ? kDefaultGapPolls : gap;
}

/// Three polls to learn the resting level, then the shortest reply: one pulse, the gap that ends
/// its symbol, one pulse for the parity and the three gaps that end a reply.
std::string onTimeout(const Entry& entry)
{
    constexpr std::uint32_t kPulsePolls = 3;
    const std::uint32_t shortest = 3 * kPulsePolls + 4 * gapPolls(entry);
    return entry.setting().parameters[0] < shortest
               ? "is too short for any reply: the shortest takes " + std::to_string(shortest) +
                     " polls"
               : "";
}

// ---- Meanings.

std::string ofInvert(const Entry& entry)
{
    const bool isInverted = entry.setting().invert != 0;
    if (isStrobeOutput(entry.setting())) {
        return isInverted ? "the pulse is low" : "the pulse is high";
    }
    if (isDataOutput(entry.setting())) {
        return isInverted ? "the line rests high" : "the line rests low";
    }
    return {};
}

std::string ofDelay(const Entry& entry)
{
    return readableTime(entry.setting().parameters[0]);
}

std::string ofDuration(const Entry& entry)
{
    return readableTime(entry.setting().parameters[1]);
}

/// The number of bits that are sent: symbols have two of them.
std::uint32_t evenBits(std::uint32_t bits)
{
    return bits + bits % 2;
}

std::string ofBits(const Entry& entry)
{
    const std::uint32_t bits = entry.setting().parameters[0];
    const std::uint32_t count = evenBits(bits) / 2;
    const std::string symbols =
        std::to_string(count) + (count == 1 ? " symbol" : " symbols") + " and the parity";
    return evenBits(bits) == bits ? symbols : symbols + ", a 0 is sent behind the last bit";
}

/// A symbol of value s has 2 s + 1 half periods to its last transition, after which the line rests
/// for 20, at the end of the frame for 41.
double frameUs(std::uint32_t bits, std::uint32_t word)
{
    constexpr std::uint32_t kRest = 20;
    constexpr std::uint32_t kEnd = 41;
    const auto parity = static_cast<std::uint32_t>(std::popcount(word)) % 2;
    std::uint32_t halfPeriods = 2 * parity + 1 + kEnd;
    const std::uint32_t sent = word << bits % 2;
    for (std::uint32_t shift = 0; shift < evenBits(bits); shift += 2) {
        halfPeriods += 2 * (sent >> shift & 3U) + 1 + kRest;
    }
    return halfPeriods * kHalfPeriodUs;
}

std::string ofWord(const Entry& entry)
{
    const auto [bits, word] = entry.setting().parameters;
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "0x%X", word);
    return digits.data() + std::string(", ") + readableTime(frameUs(bits, word)) + " on the line";
}

std::string ofTimeout(const Entry& entry)
{
    return "at least " + readableTime(kPollUs * entry.setting().parameters[0]);
}

std::string ofGap(const Entry& entry)
{
    const double gapUs = kPollUs * gapPolls(entry);
    return "at least " + readableTime(gapUs) + " of rest end a symbol, " + readableTime(3 * gapUs) +
           " the reply";
}

/// What holds without the key.
std::string ofAbsent(const Entry& entry, const Key& key)
{
    const auto* const use = std::ranges::find_if(kPinUses, [&](const PinUse& candidate) {
        return std::ranges::find(candidate.parameters, key.name) != candidate.parameters.end();
    });
    return use == kPinUses.end() || isInUse(*use, entry.setting())
               ? std::string(key.absent)
               : "for " + std::string(use->name) + " only";
}

/// What is to be said of one key; null = nothing.
struct IoboxRule {
    std::string_view name;
    std::string (*hint)(const Entry& entry);
    std::string (*meaning)(const Entry& entry);
};
constexpr std::array kRules = {
    IoboxRule{"mode", onMode, nullptr},
    IoboxRule{"source", onSource, nullptr},
    IoboxRule{"invert", onInvert, ofInvert},
    IoboxRule{"delay", onDelay, ofDelay},
    IoboxRule{"duration", onDuration, ofDuration},
    IoboxRule{"bits", nullptr, ofBits},
    IoboxRule{"word", nullptr, ofWord},
    IoboxRule{"timeout_polls", onTimeout, ofTimeout},
    IoboxRule{"gap_polls", nullptr, ofGap},
};

std::string apply(std::string (*IoboxRule::*what)(const Entry& entry),
                  const Configuration& configuration, const Key& key, std::size_t index)
{
    const auto* const rule = std::ranges::find(kRules, key.name, &IoboxRule::name);
    return rule != kRules.end() && rule->*what != nullptr
               ? (rule->*what)(Entry{configuration, index})
               : "";
}

} // namespace

ConfigErrors checkIobox(const Configuration& configuration)
{
    ConfigErrors errors;
    for (std::size_t index = 0; index < configuration.settings.iobox.size(); ++index) {
        const Entry entry{configuration, index};
        if (entry.given("pin") == nullptr) {
            errors.push_back(entry.place() + ": [[iobox]]: pin is missing");
        }
        checkParameters(entry, errors);
        checkWord(entry, errors);
        checkShared(entry, errors);
    }
    return errors;
}

std::string ioboxHint(const Configuration& configuration, const Key& key, std::size_t index)
{
    return apply(&IoboxRule::hint, configuration, key, index);
}

std::string ioboxMeaning(const Configuration& configuration, const Key& key, std::size_t index)
{
    const Entry entry{configuration, index};
    if (entry.given(key.name) == nullptr) {
        return ofAbsent(entry, key);
    }
    return apply(&IoboxRule::meaning, configuration, key, index);
}

} // namespace kxhost
