// What the live page takes off exported frames: pictures that were asked for, and losses.
#include "live/live_tap.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

class LiveTapTest : public testing::Test {
protected:
    LiveTapTest()
    {
        tap_.whenCome([this] { ++come_; });
    }

    void look(std::uint64_t number, const std::vector<std::uint8_t>& pixels)
    {
        const FrameInfo info{Instance::kRaw, static_cast<std::uint32_t>(pixels.size()), 1, "MONO8T",
                             1000 + number};
        ScenarioValues values;
        values.gainDb = 6;
        tap_.look({number, info, pixels, values});
    }

    void release(std::uint64_t number, const CauseCounts& lost)
    {
        ScenarioValues values;
        values.frameCounter = static_cast<std::uint32_t>(100 + number);
        values.ledger.lostBefore = lost;
        tap_.released({number, 1000 + number, values, true, 0, 0});
    }

    static CauseCounts counts(FrameCause cause, std::uint64_t count)
    {
        CauseCounts counts;
        counts[cause] = count;
        return counts;
    }

    LiveTap tap_;
    LiveFrame frame_;
    int come_ = 0;
};

TEST_F(LiveTapTest, NobodyAsksNobodyGets)
{
    EXPECT_FALSE(tap_.wantsPixels());
    look(1, {1, 2});
    EXPECT_FALSE(tap_.take(frame_));
    EXPECT_EQ(come_, 0);
}

TEST_F(LiveTapTest, WhoAsksGetsTheNextFrameOnce)
{
    tap_.ask();
    EXPECT_TRUE(tap_.wantsPixels());
    look(7, {1, 2});
    EXPECT_FALSE(tap_.wantsPixels());
    look(8, {3, 4});
    EXPECT_EQ(come_, 1);
    ASSERT_TRUE(tap_.take(frame_));
    EXPECT_EQ(frame_.number, 7U);
    EXPECT_EQ(frame_.pixels, (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(frame_.info.timestampUs, 1007U);
    EXPECT_EQ(frame_.values.gainDb, 6);
    EXPECT_FALSE(tap_.take(frame_));
}

TEST_F(LiveTapTest, AFrameWithoutPixelsIsNotWhatWasAskedFor)
{
    tap_.ask();
    look(1, {});
    EXPECT_TRUE(tap_.wantsPixels());
    EXPECT_FALSE(tap_.take(frame_));
}

TEST_F(LiveTapTest, ALaterFrameReplacesOneThatNobodyTook)
{
    tap_.ask();
    look(1, {1, 2, 3});
    tap_.ask();
    look(2, {4});
    ASSERT_TRUE(tap_.take(frame_));
    EXPECT_EQ(frame_.number, 2U);
    EXPECT_EQ(frame_.pixels, std::vector<std::uint8_t>{4});
}

TEST_F(LiveTapTest, LossesAreAddedUpAndTheLatestListed)
{
    EXPECT_EQ(tap_.takeLosses(), nullptr);
    release(1, {});
    EXPECT_EQ(tap_.takeLosses(), nullptr) << "nothing was lost";
    CauseCounts mixed = counts(FrameCause::kCameraSkipped, 3);
    mixed[FrameCause::kTiming] = 1;
    release(2, mixed);
    release(3, counts(FrameCause::kQueueFull, 2));
    const auto losses = tap_.takeLosses();
    ASSERT_NE(losses, nullptr);
    CauseCounts all = counts(FrameCause::kCameraSkipped, 3);
    all[FrameCause::kQueueFull] = 2;
    EXPECT_EQ(losses->causes, all);
    ASSERT_EQ(losses->latest.size(), 2U);
    EXPECT_EQ(losses->latest[0].frame, 2U);
    EXPECT_EQ(losses->latest[0].timestampUs, 1002U);
    EXPECT_EQ(losses->latest[0].counter, 102U);
    EXPECT_EQ(losses->latest[0].causes, counts(FrameCause::kCameraSkipped, 3));
    EXPECT_EQ(tap_.takeLosses(), nullptr) << "was told";
}

TEST_F(LiveTapTest, TheFrameThatStartsTheTimingIsNoLoss)
{
    release(1, counts(FrameCause::kTiming, 1));
    EXPECT_EQ(tap_.takeLosses(), nullptr);
}

TEST_F(LiveTapTest, TwentyLossesAreListedAndAllAreCounted)
{
    for (std::uint64_t frame = 1; frame <= 21; ++frame) {
        release(frame, counts(FrameCause::kNoBuffer, 1));
    }
    const auto losses = tap_.takeLosses();
    EXPECT_EQ(losses->causes, counts(FrameCause::kNoBuffer, 21));
    ASSERT_EQ(losses->latest.size(), 20U);
    EXPECT_EQ(losses->latest.front().frame, 2U);
    EXPECT_EQ(losses->latest.back().frame, 21U);
}

TEST_F(LiveTapTest, WhatProvesWrongIsTakenBack)
{
    release(1, counts(FrameCause::kCameraSkipped, 5));
    CauseCounts back;
    back -= counts(FrameCause::kCameraSkipped, 5);
    release(2, back);
    EXPECT_EQ(tap_.takeLosses()->causes, CauseCounts());
}

} // namespace
} // namespace kxhost
