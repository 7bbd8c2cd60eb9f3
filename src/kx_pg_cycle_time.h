// The 1394 cycle time: how these cameras tell the time, in their clock register and in each image.
#ifndef KX_PG_CYCLE_TIME_H
#define KX_PG_CYCLE_TIME_H

#include <cstdint>

namespace KxPGrey {

/// The camera's clock starts anew after this many microseconds.
inline constexpr std::uint32_t kCycleTimeWrapUs = 128'000'000;

/// Microseconds of a cycle time that comes in three fields: whole seconds, cycles of 125 us, and
/// the offset in the cycle, of which bits 4 to 11 count as 1/256 of a cycle (the lower four are
/// below the resolution that matters here). Computed in 32 bits.
constexpr std::uint32_t cycleTimeUs(std::uint32_t seconds, std::uint32_t count,
                                    std::uint32_t offset)
{
    const std::uint32_t part = (offset >> 4U) & 0xFFU;
    return seconds * 1'000'000U + count * 125U + part * 125U / 256U;
}

/// The same for the packed form: bits 25 to 31 seconds, 12 to 24 cycles, 0 to 11 offset.
constexpr std::uint32_t cycleTimeUs(std::uint32_t packed)
{
    return cycleTimeUs(packed >> 25U, (packed >> 12U) & 0x1FFFU, packed & 0xFFFU);
}

} // namespace KxPGrey

#endif
