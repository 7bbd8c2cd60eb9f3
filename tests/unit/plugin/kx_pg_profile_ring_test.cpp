// Tests of the ring of durations.
#include "kx_pg_profile_ring.h"

#include <gtest/gtest.h>

namespace {

TEST(ProfileRing, TheTwentyFirstDurationReplacesTheFirst)
{
    KxPGrey::ProfileRing ring;
    for (std::uint32_t duration = 1; duration <= 20; ++duration) {
        ring.add(duration);
    }
    EXPECT_EQ(ring.position, 0U);
    EXPECT_EQ(ring.values.front(), 1U);
    EXPECT_EQ(ring.values.back(), 20U);
    ring.add(21);
    EXPECT_EQ(ring.position, 1U);
    EXPECT_EQ(ring.values.front(), 21U);
    EXPECT_EQ(ring.values[1], 2U);
}

} // namespace
