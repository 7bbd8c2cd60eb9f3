// Named curves from which look-up tables are calculated.
//
// A curve maps x, from 0 at the darkest to 1 at the brightest input, to y in the same range:
//   linear     y = x
//   invert     y = 1 - x
//   contrast S y = x^S / (x^S + (1 - x)^S), an S whose steepness in the middle is S
//   gamma G    y = x^(1/G), which lifts the dark parts when G is above 1
#ifndef KXHOST_LUT_CURVE_H
#define KXHOST_LUT_CURVE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

enum class CurveShape { kLinear, kInvert, kContrast, kGamma };

/// A curve; linear and invert have no parameter.
struct LutCurve {
    CurveShape shape = CurveShape::kLinear;
    double parameter = 1;

    bool operator==(const LutCurve&) const = default;
};

/// Reads "linear", "invert", "contrast S" or "gamma G"; empty when the text is none of these or the
/// parameter lies outside its range.
std::optional<LutCurve> parseCurve(std::string_view text);

/// The curve in the words that `parseCurve` reads.
std::string curveText(const LutCurve& curve);

/// The curves there are, with the ranges of their parameters, as a noun phrase for messages.
std::string knownCurves();

/// The largest value of `bits` bits (1 to 16) that the camera's 9-bit table can hold: values of
/// more than 9 bits are rounded to 9, and the uppermost of them would become 512.
unsigned largestLutValue(unsigned bits);

/// A table of `kLutEntries` values of `bits` bits, entry i for x = i / (kLutEntries - 1), each the
/// nearest whole number to y times `largestLutValue(bits)`.
std::vector<std::uint16_t> curveEntries(const LutCurve& curve, unsigned bits);

} // namespace kxhost

#endif
