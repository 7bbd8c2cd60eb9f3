// Arithmetic of the automatic functions: the words of their range registers, and the target level.
#ifndef KX_PG_AUTO_RANGE_H
#define KX_PG_AUTO_RANGE_H

#include <cstdint>

namespace KxPGrey {

/// Limits of an automatic function in the steps of its register.
struct AutoRangeSteps {
    std::uint32_t min;
    std::uint32_t max;
};

/// Limits of automatic gain in steps of 0.1 dB, truncated toward zero. A negative limit gives the
/// lower 32 bits of the negative number of steps.
AutoRangeSteps gainSteps(float minDb, float maxDb);

/// Limits of automatic exposure, given in microseconds, in steps of 10 us; otherwise as
/// `gainSteps`.
AutoRangeSteps shutterSteps(float minUs, float maxUs);

/// Whether the camera has the register that `word` was read from.
bool hasAutoRange(std::uint32_t word);

/// The word to write to the gain range register that reads `current`. Of each limit only the lower
/// 12 bits fit: 4096 steps are written as 0.
std::uint32_t gainRangeWord(std::uint32_t current, AutoRangeSteps steps);

/// The same for the exposure range register.
std::uint32_t shutterRangeWord(std::uint32_t current, AutoRangeSteps steps);

/// Auto-exposure target for a brightness `level` between 0 and 1: from `absMin` at 0 through 0 at
/// one half to `absMax` at 1, in the camera's unit.
float autoExposureTarget(float level, float absMin, float absMax);

} // namespace KxPGrey

#endif
