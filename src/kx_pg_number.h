// Conversions from floating point to integers that are defined for every value.
#ifndef KX_PG_NUMBER_H
#define KX_PG_NUMBER_H

#include <cstdint>

namespace KxPGrey {

/// Truncated toward zero; the most negative value for what does not fit and for what is no number.
std::int32_t truncateToI32(double value);

/// Truncated toward zero, the lower 32 bits of the 64-bit result; 0 for what does not fit 64 bits
/// and for what is no number.
std::uint32_t truncateToU32(double value);

/// Rounded to the nearest integer, halves away from zero; otherwise as `truncateToU32`.
std::uint32_t roundToU32(float value);

} // namespace KxPGrey

#endif
