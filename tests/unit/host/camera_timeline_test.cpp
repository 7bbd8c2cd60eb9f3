// The camera's clock on a line: wraps, gaps and jumps, and the cycles that the plug-in shortens.
#include "clock/camera_timeline.h"

#include <gtest/gtest.h>

namespace {

using kxhost::CameraTimeline;
using kxhost::fullCameraTime;
using kxhost::kCameraWrapUs;

TEST(CameraTimeline, BeginsWhereTheCameraIs)
{
    CameraTimeline timeline;
    EXPECT_EQ(timeline.place(5'000'000, 77), 5'000'000);
}

TEST(CameraTimeline, RunsOnWhereTheClockWraps)
{
    CameraTimeline timeline;
    timeline.place(127'995'000, 1'000'000);
    EXPECT_EQ(timeline.place(5'000, 1'010'000), 128'005'000);
    EXPECT_EQ(timeline.place(15'000, 1'020'000), 128'015'000);
}

TEST(CameraTimeline, CountsTheWrapsInAGap)
{
    CameraTimeline timeline;
    timeline.place(10'000'000, 0);
    EXPECT_EQ(timeline.place(11'000'000, 3 * kCameraWrapUs + 1'000'000),
              3 * kCameraWrapUs + 11'000'000);
    EXPECT_EQ(timeline.place(10'000'000, 4 * kCameraWrapUs), 4 * kCameraWrapUs + 10'000'000);
}

TEST(CameraTimeline, AJumpOfTheCameraStaysOne)
{
    CameraTimeline timeline;
    timeline.place(50'000'000, 0);
    EXPECT_EQ(timeline.place(110'000'000, 10'000), 110'000'000);
    EXPECT_EQ(timeline.place(60'000'000, 20'000), 60'000'000);
    EXPECT_EQ(timeline.place(0, 30'000), 0);
}

TEST(CameraTimeline, AJumpBackOverTheStartGoesBelowIt)
{
    CameraTimeline timeline;
    timeline.place(1'000'000, 0);
    EXPECT_EQ(timeline.place(127'000'000, 10'000), -1'000'000);
}

TEST(CameraTimeline, ALateArrivalIsNoWrap)
{
    CameraTimeline timeline;
    timeline.place(127'000'000, 0);
    EXPECT_EQ(timeline.place(127'010'000, 5'000'000), 127'010'000);
}

/// The plug-in's arithmetic: bits 4 to 11 of the offset as parts of 256 of a cycle.
std::int64_t decoded(std::int64_t cycle, std::int64_t offset)
{
    return cycle * 125 + offset / 16 * 125 / 256;
}

TEST(FullCameraTime, StretchesTheCycleThatTheDecoderShortens)
{
    for (std::int64_t cycle : {0, 1, 7999, 1'023'999}) {
        for (std::int64_t offset = 0; offset < 3072; ++offset) {
            const double trueUs =
                static_cast<double>(cycle) * 125 + static_cast<double>(offset) / 24.576;
            const std::int64_t shownUs = decoded(cycle, offset);
            ASSERT_NEAR(static_cast<double>(fullCameraTime(shownUs)), trueUs, 2.5) << offset;
        }
    }
}

TEST(FullCameraTime, LeavesTimesAloneThatNoSuchCameraShows)
{
    EXPECT_EQ(fullCameraTime(125 + 93), 125 + 124);
    EXPECT_EQ(fullCameraTime(125 + 94), 125 + 94);
    EXPECT_EQ(fullCameraTime(125 + 124), 125 + 124);
    EXPECT_EQ(fullCameraTime(250), 250);
}

} // namespace
