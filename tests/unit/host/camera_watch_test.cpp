// When a camera is taken for gone, or for silent.
#include "grab/camera_watch.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

using Finding = CameraWatch::Finding;

constexpr std::uint64_t kStart = 5'000'000;
constexpr std::uint64_t kNever = 0;
constexpr std::uint64_t kSilence = 1'000'000;

TEST(CameraWatch, IsGoneWithTheThirdFailureInARowThatItDoesNotAnswer)
{
    CameraWatch watch;
    watch.start(kStart);
    watch.frameArrived(kStart, true);
    EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
    EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
    EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kGone);
}

TEST(CameraWatch, AnAnswerOrAFrameInBetweenBeginsTheRowAnew)
{
    CameraWatch watch;
    watch.start(kStart);
    watch.frameArrived(kStart, true);
    for (const bool byFrame : {true, false}) {
        EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
        EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
        if (byFrame) {
            watch.frameArrived(kStart, false);
        } else {
            EXPECT_EQ(watch.frameMissing(kStart, true, kNever), Finding::kThere);
        }
    }
    EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
}

TEST(CameraWatch, ACameraThatNeverAnswersIsNotGone)
{
    CameraWatch watch;
    watch.start(kStart);
    watch.frameArrived(kStart, false);
    for (int failure = 0; failure < 100; ++failure) {
        EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
    }
}

TEST(CameraWatch, WhatAnsweredInOneCaptureIsGoneInTheNext)
{
    CameraWatch watch;
    watch.start(kStart);
    watch.frameArrived(kStart, true);
    EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
    watch.start(kStart);
    EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
    EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kThere);
    EXPECT_EQ(watch.frameMissing(kStart, false, kNever), Finding::kGone);
}

TEST(CameraWatch, IsSilentWhenTheTimeIsOver)
{
    CameraWatch watch;
    watch.start(kStart);
    EXPECT_EQ(watch.frameMissing(kStart + kSilence - 1, true, kSilence), Finding::kThere);
    EXPECT_EQ(watch.frameMissing(kStart + kSilence, true, kSilence), Finding::kSilent);
    EXPECT_EQ(watch.silentUs(kStart + kSilence), kSilence);
}

TEST(CameraWatch, EachFrameEndsTheSilence)
{
    CameraWatch watch;
    watch.start(kStart);
    watch.frameArrived(kStart + kSilence, true);
    EXPECT_EQ(watch.frameMissing(kStart + 2 * kSilence - 1, true, kSilence), Finding::kThere);
    EXPECT_EQ(watch.frameMissing(kStart + 2 * kSilence, true, kSilence), Finding::kSilent);
}

TEST(CameraWatch, WithoutALimitItMayBeSilentForEver)
{
    CameraWatch watch;
    watch.start(kStart);
    EXPECT_EQ(watch.frameMissing(kStart * 1'000'000, true, kNever), Finding::kThere);
}

} // namespace
} // namespace kxhost
