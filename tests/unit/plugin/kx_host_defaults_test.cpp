// The default host services: what they answer, and that a host's own take their place.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <thread>

#include <kx_host.h>

// The one service in which this "host" differs from the defaults, which kx_host_defaults.cpp has.
uint32_t KxGiMainCtx__GetFnum()
{
    return 4711;
}

namespace {

constexpr std::uint32_t kKeep = std::numeric_limits<std::uint32_t>::max();

TEST(HostDefaults, HostsOwnServiceTakesThePlaceOfTheDefault)
{
    EXPECT_EQ(KxGiMainCtx__GetFnum(), 4711U);
}

TEST(HostDefaults, TakesTheFirstCamera)
{
    EXPECT_STREQ(KxGiMainCtx__GetModelStr(), "");
    EXPECT_EQ(KxGiMainCtx__GetIdStr(), nullptr);
    EXPECT_EQ(KxGiMainCtx__GetActiveCamMask(), 0U);
}

TEST(HostDefaults, LeavesTheCamerasSettings)
{
    EXPECT_EQ(KxGiMainCtx__GetWidth(), kKeep);
    EXPECT_EQ(KxGiMainCtx__GetHeight(), kKeep);
    EXPECT_EQ(KxGiMainCtx__GetOffsetX(), kKeep);
    EXPECT_EQ(KxGiMainCtx__GetOffsetY(), kKeep);
    EXPECT_EQ(KxGiMainCtx__GetFps(), -1);
    EXPECT_EQ(KxGiMainCtx__GetGainMan(), -100);
    EXPECT_EQ(KxGiMainCtx__GetExptMan(), -1);
    EXPECT_EQ(KxGiMainCtx__GetGamma(), -1);
    EXPECT_EQ(KxGiMainCtx__GetSatur(), -1);
    EXPECT_EQ(KxGiMainCtx__GetWbred(), -1);
    EXPECT_EQ(KxGiMainCtx__GetWbblu(), -1);
    EXPECT_EQ(KxGiMainCtx__GetRotate(), 0);
    EXPECT_EQ(KxGiMainCtx__GetAtbright(), -1);
    EXPECT_EQ(KxGiMainCtx__GetGainlimsLow(), -100);
    EXPECT_EQ(KxGiMainCtx__GetGainlimsHigh(), -100);
    EXPECT_EQ(KxGiMainCtx__GetEtlimsLow(), -1);
    EXPECT_EQ(KxGiMainCtx__GetEtlimsHigh(), -1);
    EXPECT_EQ(KxGiMainCtx__GetSweepProf(), 0);
    EXPECT_EQ(KxGiMainCtx__GetSweepGainMod(), 0);
    EXPECT_EQ(KxGiMainCtx__GetSweepEtimeMod(), 0);
    EXPECT_EQ(KxGiMainCtx__GetSweepLutMod(), 0);
    EXPECT_EQ(KxGiMainCtx__GetTsadjns(), 0);
    EXPECT_EQ(KxGiMainCtx__GetLutDataU16(), nullptr);
    EXPECT_EQ(KxGiMainCtx__GetIoboxNum(), 0U);
}

TEST(HostDefaults, AsksForPlainPicturesInTheLibrarysMemory)
{
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 1);
    EXPECT_EQ(KxGiMainCtx__GetCformat(), 0);
    EXPECT_EQ(KxGiMainCtx__GetDatachunk(), 0U);
    EXPECT_EQ(KxGiMainCtx__GetBnum(), 8U);
    EXPECT_EQ(KxGiMem__IsFactoryUsed(), 0);
    EXPECT_EQ(KxGiMem__GetBufPtr(0), nullptr);
}

TEST(HostDefaults, TakesEveryFrameAndHasNoWishes)
{
    EXPECT_EQ(KxGiMemInst__Trigger(0, 0, 1, nullptr, 0), 0);
    EXPECT_EQ(KxUtl__CheckSignal(), 0);
    EXPECT_EQ(KxGi__CheckDynConfig(), 0);
    int restart = 0;
    EXPECT_NE(KxGi__DoReconfig(&restart), 0);
}

TEST(HostDefaults, CalculatedTableChangesNothing)
{
    constexpr std::uint16_t kUntouched = 0xFFFF;
    std::array<std::uint16_t, 513> table{};
    table.fill(kUntouched);
    KxGi__GetLutDynam(9, nullptr, 12, table.data());
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[255], 255);
    EXPECT_EQ(table[511], 511);
    EXPECT_EQ(table[512], kUntouched);
}

TEST(HostDefaults, DifferenceOfTimesCrossesTheSecond)
{
    const timeval later{.tv_sec = 12, .tv_usec = 100};
    const timeval earlier{.tv_sec = 10, .tv_usec = 999900};
    const timeval* difference = KxUtl__TimeValDiff(&later, &earlier);
    EXPECT_EQ(difference->tv_sec, 1);
    EXPECT_EQ(difference->tv_usec, 200);
}

TEST(HostDefaults, EachThreadHasItsOwnDifference)
{
    const timeval later{.tv_sec = 3, .tv_usec = 0};
    const timeval earlier{.tv_sec = 1, .tv_usec = 0};
    const timeval* mine = KxUtl__TimeValDiff(&later, &earlier);
    std::thread([&] { KxUtl__TimeValDiff(&later, &later); }).join();
    EXPECT_EQ(mine->tv_sec, 2);
}

} // namespace
