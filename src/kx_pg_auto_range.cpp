// Arithmetic of the automatic functions: the words of their range registers, and the target level.
#include "kx_pg_auto_range.h"

#include "kx_pg_number.h"

namespace KxPGrey {

namespace {

constexpr std::uint32_t kPresent = 0x80000000;
constexpr std::uint32_t kFlags = 0xFF000000;    ///< kept as the camera has them
constexpr std::uint32_t kLimit = 0xFFF;         ///< bits of one limit
constexpr std::uint32_t kMinShift = 12;         ///< the maximum lies below the minimum
constexpr std::uint32_t kGainFlag = 0x02000000; ///< set with every range of the gain

std::uint32_t rangeWord(std::uint32_t current, AutoRangeSteps steps)
{
    return (current & kFlags) | ((steps.min & kLimit) << kMinShift) | (steps.max & kLimit);
}

/// In double precision. A limit such as 0.7 dB lies just under its step and gives 6 of them.
std::uint32_t decibelSteps(float decibels)
{
    return truncateToU32(static_cast<double>(decibels) / 0.1);
}

/// In single precision, unlike the gain; 10 has an exact value.
std::uint32_t timeSteps(float microseconds)
{
    const float steps = microseconds / 10.0F;
    return truncateToU32(static_cast<double>(steps));
}

} // namespace

AutoRangeSteps gainSteps(float minDb, float maxDb)
{
    return {decibelSteps(minDb), decibelSteps(maxDb)};
}

AutoRangeSteps shutterSteps(float minUs, float maxUs)
{
    return {timeSteps(minUs), timeSteps(maxUs)};
}

bool hasAutoRange(std::uint32_t word)
{
    return (word & kPresent) != 0;
}

std::uint32_t gainRangeWord(std::uint32_t current, AutoRangeSteps steps)
{
    return rangeWord(current, steps) | kGainFlag;
}

std::uint32_t shutterRangeWord(std::uint32_t current, AutoRangeSteps steps)
{
    return rangeWord(current, steps);
}

float autoExposureTarget(float level, float absMin, float absMax)
{
    if (level < 0.5F) {
        return absMin - 2.0F * level * absMin;
    }
    return 2.0F * absMax * (level - 0.5F);
}

} // namespace KxPGrey
