// The way around protected user buffers: which addresses are written elsewhere.
#include "capture/write_alias.h"
#include "control/sim_control.h"

#include <gtest/gtest.h>

#include <array>

namespace {

class WriteAlias : public testing::Test {
protected:
    void SetUp() override { fcsim::aliasWrites(seen_.data() + 8, writable_.data(), 16); }
    void TearDown() override { fcsim::aliasWrites(nullptr, nullptr, 0); }

    std::array<std::uint8_t, 32> seen_{};
    std::array<std::uint8_t, 16> writable_{};
};

TEST_F(WriteAlias, MovesAnAddressInsideByItsDistance)
{
    EXPECT_EQ(fcsim::writableAddress(seen_.data() + 8), writable_.data());
    EXPECT_EQ(fcsim::writableAddress(seen_.data() + 23), writable_.data() + 15);
}

TEST_F(WriteAlias, LeavesAddressesBeforeAndBehind)
{
    EXPECT_EQ(fcsim::writableAddress(seen_.data() + 7), seen_.data() + 7);
    EXPECT_EQ(fcsim::writableAddress(seen_.data() + 24), seen_.data() + 24);
}

TEST_F(WriteAlias, EndsWithALengthOfZero)
{
    fcsim::aliasWrites(seen_.data() + 8, writable_.data(), 0);
    EXPECT_EQ(fcsim::writableAddress(seen_.data() + 8), seen_.data() + 8);
}

} // namespace
