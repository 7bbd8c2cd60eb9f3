// Quantities with a unit: one table of units, one parser, one formatter.
#include "config/quantity.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace kxhost {
namespace {

struct Unit {
    Dimension dimension;
    std::string_view name;
    long double factor; ///< to the base unit; long, so that "1.1 ms" is as good as "0.0011 s"
};

// The base unit of a dimension comes first; it is the one that is written.
constexpr std::array kUnits = {
    Unit{Dimension::kTime, "us", 1},        Unit{Dimension::kTime, "ns", 1e-3L},
    Unit{Dimension::kTime, "ms", 1e3},      Unit{Dimension::kTime, "s", 1e6},
    Unit{Dimension::kTime, "min", 60e6},    Unit{Dimension::kSeconds, "s", 1},
    Unit{Dimension::kSeconds, "ms", 1e-3L}, Unit{Dimension::kSeconds, "min", 60},
    Unit{Dimension::kSeconds, "h", 3600},   Unit{Dimension::kRate, "fps", 1},
    Unit{Dimension::kRate, "Hz", 1},        Unit{Dimension::kGain, "dB", 1},
    Unit{Dimension::kBytes, "B", 1},        Unit{Dimension::kBytes, "kB", 1000},
    Unit{Dimension::kBytes, "KiB", 1024},   Unit{Dimension::kPercent, "%", 1},
    Unit{Dimension::kShare, "%", 0.01L},    Unit{Dimension::kDrift, "ns/s", 1},
    Unit{Dimension::kDrift, "us/s", 1e3},   Unit{Dimension::kDrift, "ppm", 1e3},
};

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<long double> factorOf(std::string_view unit, Dimension dimension)
{
    if (unit.empty()) {
        return needsUnit(dimension) ? std::nullopt : std::optional(1.0L);
    }
    for (const Unit& known : kUnits) {
        if (known.dimension == dimension && known.name == unit) {
            return known.factor;
        }
    }
    return std::nullopt;
}

/// As few digits as read back as the same value.
std::string exactly(double value)
{
    constexpr int kMost = 17;
    std::array<char, 64> digits{};
    int length = 0;
    for (int precision = 10; precision <= kMost; ++precision) {
        length = std::snprintf(digits.data(), digits.size(), "%.*g", precision, value);
        if (std::strtod(digits.data(), nullptr) == value) {
            break;
        }
    }
    return {digits.data(), static_cast<std::size_t>(length)};
}

} // namespace

std::optional<double> parseQuantity(std::string_view text, Dimension dimension)
{
    text = trimmed(text);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    long double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{}) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    const auto factor = factorOf(trimmed(text), dimension);
    return factor ? std::optional(static_cast<double>(number * *factor)) : std::nullopt;
}

bool needsUnit(Dimension dimension)
{
    return dimension == Dimension::kTime || dimension == Dimension::kSeconds ||
           dimension == Dimension::kDrift;
}

std::string formatQuantity(double value, Dimension dimension)
{
    std::string text = exactly(value);
    for (const Unit& unit : kUnits) {
        if (unit.dimension == dimension && unit.factor == 1) {
            return text.append(" ").append(unit.name);
        }
    }
    return text;
}

std::string readableNumber(double value)
{
    std::array<char, 32> digits{};
    const int length = std::snprintf(digits.data(), digits.size(), "%.4g", value);
    return {digits.data(), static_cast<std::size_t>(length)};
}

std::string readableTime(double us)
{
    constexpr double kMillisecond = 1e3;
    constexpr double kSecond = 1e6;
    if (us < kMillisecond) {
        return readableNumber(us) + " us";
    }
    return us < kSecond ? readableNumber(us / kMillisecond) + " ms"
                        : readableNumber(us / kSecond) + " s";
}

std::string unitsOf(Dimension dimension)
{
    std::string names;
    for (const Unit& unit : kUnits) {
        if (unit.dimension == dimension) {
            names.append(names.empty() ? "" : ", ").append(unit.name);
        }
    }
    return names;
}

} // namespace kxhost
