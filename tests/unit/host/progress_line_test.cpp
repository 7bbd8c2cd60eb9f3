// The line of progress: what it says before the first frame, and the rate between two lines.
#include "grab/progress_line.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

constexpr std::uint64_t kStartUs = 5'000'000;

TEST(ProgressLine, BeforeTheFirstFrameItSaysWhatIsWaitedFor)
{
    GrabCounts counts;
    ProgressLine line(counts, 0, kStartUs);
    EXPECT_EQ(line.text({}, kStartUs + 1), "waiting for a camera");
    counts.capturing = true;
    EXPECT_EQ(line.text({}, kStartUs + 2), "capturing");
}

TEST(ProgressLine, TheRateIsThatSinceTheLineBefore)
{
    GrabCounts counts;
    ProgressLine line(counts, 100, kStartUs);
    counts.retrieved = 11;
    counts.exported = 10;
    EXPECT_EQ(line.text({}, kStartUs + 1'000'000), "10 of 100 frames  11.0 fps  0 lost  0 queued");
    counts.retrieved = 31;
    counts.exported = 30;
    EXPECT_EQ(line.text({}, kStartUs + 1'500'000), "30 of 100 frames  40.0 fps  0 lost  0 queued");
}

TEST(ProgressLine, TimeWithoutACameraDoesNotCount)
{
    GrabCounts counts;
    ProgressLine line(counts, 0, kStartUs);
    line.text({}, kStartUs + 9'000'000);
    counts.retrieved = 11;
    EXPECT_EQ(line.text({}, kStartUs + 10'000'000), "0 frames  11.0 fps  0 lost  0 queued");
}

TEST(ProgressLine, LossesAreCountedWhereverTheyHappen)
{
    GrabCounts counts;
    counts.retrieved = 1;
    counts.lost = 55;
    ExportTotals exported;
    exported.failed = 8;
    exported.accepted = 100;
    exported.written = 89;
    EXPECT_EQ(ProgressLine(counts, 0, kStartUs).text(exported, kStartUs + 1'000'000),
              "0 frames  1.0 fps  63 lost  3 queued");
}

TEST(ProgressLine, FailedRetrievalsAreShownWhenThereAreSome)
{
    GrabCounts counts;
    counts.retrieved = 1;
    counts.missing = 6;
    EXPECT_EQ(ProgressLine(counts, 0, kStartUs).text({}, kStartUs + 1'000'000),
              "0 frames  1.0 fps  0 lost  0 queued  6 failed retrievals");
}

TEST(ProgressLine, SaysForHowLongTheCameraHasBeenAway)
{
    GrabCounts counts;
    ProgressLine line(counts, 0, kStartUs);
    counts.retrieved = 1;
    counts.away = true;
    counts.lastUs = kStartUs + 500'000;
    EXPECT_EQ(line.text({}, kStartUs + 13'499'999),
              "0 frames  0.1 fps  0 lost  0 queued  camera away 12 s");
    EXPECT_TRUE(line.text({}, kStartUs + 13'500'000).ends_with("  camera away 13 s"));
    EXPECT_TRUE(line.text({}, kStartUs + 400'000).ends_with("  camera away 0 s"))
        << "the loss came after the look at the clock";
    counts.away = false;
    EXPECT_TRUE(line.text({}, kStartUs + 14'000'000).ends_with(" queued"));
}

} // namespace
} // namespace kxhost
