// The last twenty durations of one step of the grab loop.
#ifndef KX_PG_PROFILE_RING_H
#define KX_PG_PROFILE_RING_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace KxPGrey {

struct ProfileRing {
    std::array<std::uint32_t, 20> values = {}; ///< microseconds
    std::uint32_t position = 0;                ///< where the next duration goes, over the oldest

    void add(std::uint32_t durationUs)
    {
        values[position] = durationUs;
        position = (position + 1U) % static_cast<std::uint32_t>(values.size());
    }
};

} // namespace KxPGrey

#endif
