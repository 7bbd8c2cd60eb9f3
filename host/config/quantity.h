// Quantities with a unit, as people write them in a configuration: "10 ms", "30 fps", "3 dB".
#ifndef KXHOST_QUANTITY_H
#define KXHOST_QUANTITY_H

#include <optional>
#include <string>
#include <string_view>

namespace kxhost {

/// What a quantity measures. Each dimension has a base unit, in which values are held.
enum class Dimension {
    kNone,    ///< a plain number
    kTime,    ///< base unit microsecond
    kSeconds, ///< a time as well, base unit second
    kRate,    ///< base unit frame per second
    kGain,    ///< base unit decibel
    kBytes,   ///< base unit byte
    kPercent, ///< base unit percent
    kShare,   ///< base unit 1; "50 %" is 0.5
    kDrift,   ///< base unit nanosecond per second
};

/// Reads a number with an optional unit of that dimension ("500 us", "0.5ms"). Returns the value in
/// the base unit; empty when the text is no number, when the unit is not one of the dimension, or
/// when there is none and `needsUnit(dimension)`.
std::optional<double> parseQuantity(std::string_view text, Dimension dimension);

/// True when a bare number would leave people guessing (10 what?), so that it is refused.
bool needsUnit(Dimension dimension);

/// The value in the base unit as text that `parseQuantity` reads back: "10000 us".
std::string formatQuantity(double value, Dimension dimension);

/// A number with four digits at most, and a time, given in microseconds, in the unit that people
/// would take: "1.413", "20 ms".
std::string readableNumber(double value);
std::string readableTime(double us);

/// The units that a dimension knows, for messages: "ns, us, ms, s, min"; empty for plain numbers.
std::string unitsOf(Dimension dimension);

} // namespace kxhost

#endif
