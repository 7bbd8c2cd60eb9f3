// Named curves from which look-up tables are calculated.
#include "config/lut_curve.h"

#include "config/quantity.h"
#include "config/settings.h"

#include <array>
#include <cmath>

namespace kxhost {
namespace {

struct NamedCurve {
    CurveShape shape;
    std::string_view name;
    std::string_view parameter; ///< what messages call it; empty = there is none
    double min;
    double max;
};
constexpr std::array kCurves = {
    NamedCurve{CurveShape::kLinear, "linear", "", 1, 1},
    NamedCurve{CurveShape::kInvert, "invert", "", 1, 1},
    NamedCurve{CurveShape::kContrast, "contrast", "S", 0.1, 20},
    NamedCurve{CurveShape::kGamma, "gamma", "G", 0.1, 10},
};

std::string number(double value)
{
    return formatQuantity(value, Dimension::kNone);
}

/// y for x and 1 - x, which are both given so that neither loses digits.
double valueAt(const LutCurve& curve, double x, double rest)
{
    switch (curve.shape) {
    case CurveShape::kLinear:
        return x;
    case CurveShape::kInvert:
        return rest;
    case CurveShape::kContrast: {
        const double up = std::pow(x, curve.parameter);
        return up / (up + std::pow(rest, curve.parameter));
    }
    case CurveShape::kGamma:
        return std::pow(x, 1 / curve.parameter);
    }
    return x;
}

} // namespace

std::optional<LutCurve> parseCurve(std::string_view text)
{
    const std::size_t blank = text.find(' ');
    const std::string_view name = text.substr(0, blank);
    for (const NamedCurve& known : kCurves) {
        if (known.name != name) {
            continue;
        }
        if (known.parameter.empty()) {
            return blank == std::string_view::npos ? std::optional(LutCurve{known.shape, 1})
                                                   : std::nullopt;
        }
        const auto parameter = parseQuantity(text.substr(name.size()), Dimension::kNone);
        const bool fits = parameter && *parameter >= known.min && *parameter <= known.max;
        return fits ? std::optional(LutCurve{known.shape, *parameter}) : std::nullopt;
    }
    return std::nullopt;
}

std::string curveText(const LutCurve& curve)
{
    for (const NamedCurve& known : kCurves) {
        if (known.shape == curve.shape) {
            const std::string name(known.name);
            return known.parameter.empty() ? name : name + " " + number(curve.parameter);
        }
    }
    return {};
}

std::string knownCurves()
{
    std::string text = "one of ";
    for (const NamedCurve& known : kCurves) {
        text.append(&known == kCurves.data() ? "\"" : ", \"").append(known.name);
        if (known.parameter.empty()) {
            text.append("\"");
            continue;
        }
        text.append(" ").append(known.parameter).append("\" with ").append(known.parameter);
        text.append(" from " + number(known.min) + " to " + number(known.max));
    }
    return text;
}

unsigned largestLutValue(unsigned bits)
{
    constexpr unsigned kCameraBits = 9;
    const unsigned all = (1U << bits) - 1;
    return bits <= kCameraBits ? all : all - (1U << (bits - kCameraBits - 1));
}

std::vector<std::uint16_t> curveEntries(const LutCurve& curve, unsigned bits)
{
    constexpr auto kLast = static_cast<double>(kLutEntries - 1);
    const double top = largestLutValue(bits);
    std::vector<std::uint16_t> entries;
    entries.reserve(kLutEntries);
    for (std::size_t index = 0; index < kLutEntries; ++index) {
        const auto input = static_cast<double>(index);
        const double value = valueAt(curve, input / kLast, (kLast - input) / kLast);
        entries.push_back(static_cast<std::uint16_t>(std::lround(value * top)));
    }
    return entries;
}

} // namespace kxhost
