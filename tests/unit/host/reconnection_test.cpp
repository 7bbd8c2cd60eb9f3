// Whether a grab waits for a camera that was lost.
#include "grab/reconnection.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

using std::chrono::milliseconds;
using Verdict = Reconnection::Verdict;

constexpr std::uint64_t kFrameUs = 7'000'000;
constexpr std::uint64_t kSecondUs = 1'000'000;
constexpr double kForever = -1;

TEST(Reconnection, WaitsForACameraThatIsAwayOrBroken)
{
    Reconnection reconnection(kForever);
    for (const PassEnd end : {PassEnd::kBroken, PassEnd::kAbsent, PassEnd::kRefused}) {
        EXPECT_EQ(reconnection.passEnded(end, kFrameUs, kFrameUs), Verdict::kWait);
    }
    EXPECT_EQ(reconnection.passEnded(PassEnd::kAbsent, kFrameUs, kFrameUs + 1'000'000 * kSecondUs),
              Verdict::kWait);
}

TEST(Reconnection, DoesNotWaitWhenAllIsWell)
{
    Reconnection reconnection(kForever);
    EXPECT_EQ(reconnection.passEnded(PassEnd::kDone, kFrameUs, kFrameUs), Verdict::kOff);
}

TEST(Reconnection, DoesNotWaitForACameraThatNeverDelivered)
{
    Reconnection reconnection(kForever);
    EXPECT_EQ(reconnection.passEnded(PassEnd::kBroken, 0, kFrameUs), Verdict::kOff);
    EXPECT_EQ(reconnection.passEnded(PassEnd::kAbsent, 0, kFrameUs), Verdict::kOff);
}

TEST(Reconnection, MayBeOff)
{
    Reconnection reconnection(0);
    EXPECT_FALSE(reconnection.isOn());
    EXPECT_TRUE(Reconnection(kForever).isOn());
    EXPECT_TRUE(Reconnection(0.1).isOn());
    EXPECT_EQ(reconnection.passEnded(PassEnd::kBroken, kFrameUs, kFrameUs), Verdict::kOff);
}

TEST(Reconnection, TheTimeCountsFromWhenTheLossShowed)
{
    Reconnection reconnection(2);
    const std::uint64_t lostUs = kFrameUs + 30 * kSecondUs; // it fell silent
    EXPECT_EQ(reconnection.passEnded(PassEnd::kBroken, kFrameUs, lostUs), Verdict::kWait);
    EXPECT_EQ(reconnection.pause(lostUs), milliseconds(500));
    EXPECT_EQ(reconnection.passEnded(PassEnd::kAbsent, kFrameUs, lostUs + 2 * kSecondUs - 1),
              Verdict::kWait);
    EXPECT_EQ(reconnection.passEnded(PassEnd::kAbsent, kFrameUs, lostUs + 2 * kSecondUs),
              Verdict::kTooLate);
    const std::uint64_t nextUs = lostUs + 3 * kSecondUs;
    EXPECT_EQ(reconnection.passEnded(PassEnd::kBroken, nextUs, nextUs + kSecondUs), Verdict::kWait);
}

TEST(Reconnection, TheThirdRefusalInARowIsTheLast)
{
    Reconnection reconnection(kForever);
    EXPECT_EQ(reconnection.passEnded(PassEnd::kBroken, kFrameUs, kFrameUs), Verdict::kWait);
    EXPECT_EQ(reconnection.passEnded(PassEnd::kRefused, kFrameUs, kFrameUs), Verdict::kWait);
    EXPECT_EQ(reconnection.passEnded(PassEnd::kRefused, kFrameUs, kFrameUs), Verdict::kWait);
    EXPECT_EQ(reconnection.passEnded(PassEnd::kRefused, kFrameUs, kFrameUs), Verdict::kRefused);
}

TEST(Reconnection, RefusalsOfACameraThatGoesInBetweenDoNotAddUp)
{
    Reconnection reconnection(kForever);
    for (const PassEnd between : {PassEnd::kAbsent, PassEnd::kBroken}) {
        EXPECT_EQ(reconnection.passEnded(PassEnd::kRefused, kFrameUs, kFrameUs), Verdict::kWait);
        EXPECT_EQ(reconnection.passEnded(PassEnd::kRefused, kFrameUs, kFrameUs), Verdict::kWait);
        EXPECT_EQ(reconnection.passEnded(between, kFrameUs, kFrameUs), Verdict::kWait);
    }
}

TEST(Reconnection, AFrameForgivesRefusals)
{
    Reconnection reconnection(kForever);
    for (std::uint64_t frameUs = kFrameUs; frameUs < kFrameUs + 5; ++frameUs) {
        EXPECT_EQ(reconnection.passEnded(PassEnd::kRefused, frameUs, frameUs), Verdict::kWait);
        EXPECT_EQ(reconnection.passEnded(PassEnd::kRefused, frameUs, frameUs), Verdict::kWait);
    }
}

TEST(Reconnection, LooksTwiceASecondAndWhenTheTimeIsOver)
{
    Reconnection forever(kForever);
    static_cast<void>(forever.passEnded(PassEnd::kBroken, kFrameUs, kFrameUs));
    EXPECT_EQ(forever.pause(kFrameUs + 99 * kSecondUs), milliseconds(500));
    Reconnection limited(2);
    static_cast<void>(limited.passEnded(PassEnd::kBroken, kFrameUs, kFrameUs));
    EXPECT_EQ(limited.pause(kFrameUs), milliseconds(500));
    EXPECT_EQ(limited.pause(kFrameUs + 1'700'000), milliseconds(300));
    EXPECT_EQ(limited.pause(kFrameUs + 1'999'999), milliseconds(1));
    EXPECT_EQ(limited.pause(kFrameUs + 5 * kSecondUs), milliseconds(0));
}

} // namespace
} // namespace kxhost
