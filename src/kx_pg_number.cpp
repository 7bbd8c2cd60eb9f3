// Conversions from floating point to integers that are defined for every value.
#include "kx_pg_number.h"

#include <cmath>
#include <limits>

namespace KxPGrey {

std::int32_t truncateToI32(double value)
{
    // Both bounds are exact as double, and NaN fails both comparisons.
    if (value > -2147483649.0 && value < 2147483648.0) {
        return static_cast<std::int32_t>(value);
    }
    return std::numeric_limits<std::int32_t>::min();
}

std::uint32_t truncateToU32(double value)
{
    if (value >= -9223372036854775808.0 && value < 9223372036854775808.0) {
        return static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
    }
    return 0;
}

std::uint32_t roundToU32(float value)
{
    return truncateToU32(static_cast<double>(std::round(value)));
}

} // namespace KxPGrey
