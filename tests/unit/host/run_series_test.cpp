// Tests of how a grab is remembered in bounded memory: spreads, buckets, profiles.
#include "report/duration_profile.h"
#include "report/run_series.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace {

using kxhost::DurationProfile;
using kxhost::RunBucket;
using kxhost::RunPoint;
using kxhost::RunSeries;
using kxhost::Spread;

Spread spreadOf(const std::vector<std::int64_t>& values)
{
    Spread spread;
    for (const std::int64_t value : values) {
        spread.add(value, true);
    }
    return spread;
}

TEST(Spread, KnowsEndsAndMiddle)
{
    const Spread spread = spreadOf({5, -3, 9, 1, 2});
    EXPECT_EQ(spread.count(), 5U);
    EXPECT_EQ(spread.smallest(), -3);
    EXPECT_EQ(spread.largest(), 9);
    EXPECT_EQ(spread.median(), 2);
    EXPECT_EQ(spreadOf({7}).median(), 7);
    EXPECT_EQ(spreadOf({7, 1}).median(), 7) << "the upper one of two";
}

TEST(Spread, AValueThatIsNotSampledCountsForTheEndsOnly)
{
    Spread spread = spreadOf({5});
    spread.add(100, false);
    spread.add(-100, false);
    EXPECT_EQ(spread.count(), 3U);
    EXPECT_EQ(spread.smallest(), -100);
    EXPECT_EQ(spread.largest(), 100);
    EXPECT_EQ(spread.median(), 5);
}

TEST(Spread, AMiddleThereIsThoughNoValueIsSampled)
{
    Spread spread;
    spread.add(7, false);
    spread.add(9, false);
    EXPECT_EQ(spread.median(), 7);
    EXPECT_EQ(spread.kept().size(), 1U);
}

TEST(Spread, MergedIsExactAsLongAsAllValuesAreKept)
{
    Spread spread = spreadOf({1, 2, 3, 4, 5, 6, 7});
    spread.merge(spreadOf({-8, -7, -6, -5, -4, -3, -2, -1}));
    EXPECT_EQ(spread.count(), 15U);
    EXPECT_EQ(spread.kept().size(), 15U);
    EXPECT_EQ(spread.smallest(), -8);
    EXPECT_EQ(spread.median(), -1);
    EXPECT_EQ(spread.largest(), 7);
}

TEST(Spread, AnEmptyOneChangesNothing)
{
    Spread spread;
    spread.merge(spreadOf({3, 4}));
    EXPECT_EQ(spread.smallest(), 3);
    spread.merge({});
    EXPECT_EQ(spread.count(), 2U);
    EXPECT_EQ(spread.smallest(), 3);
    EXPECT_EQ(spread.largest(), 4);
}

RunPoint pointAt(std::int64_t frame)
{
    return {.atUs = frame * 10,
            .intervalUs = frame == 0 ? std::nullopt : std::optional<std::int64_t>(frame % 7),
            .stampErrorUs = std::nullopt,
            .deliveryUs = frame % 1000,
            .lost = frame % 3 == 0 ? 1 : 0};
}

TEST(RunSeries, AShortRunHasABucketForEachFrame)
{
    RunSeries series;
    for (int frame = 0; frame < 256; ++frame) {
        series.add(pointAt(frame));
    }
    ASSERT_EQ(series.buckets().size(), 256U);
    const RunBucket& tenth = series.buckets()[10];
    EXPECT_EQ(tenth.frames, 1U);
    EXPECT_EQ(tenth.fromUs, 100);
    EXPECT_EQ(tenth.toUs, 100);
    EXPECT_EQ(tenth.interval.median(), 3);
    EXPECT_EQ(tenth.delivery.median(), 10);
    EXPECT_EQ(tenth.stampError.count(), 0U);
    EXPECT_EQ(tenth.lost, 0);
    EXPECT_EQ(series.buckets()[0].interval.count(), 0U);
}

TEST(RunSeries, NeighboursAreMergedWhenThereAreTooMany)
{
    RunSeries series;
    for (int frame = 0; frame < 257; ++frame) {
        series.add(pointAt(frame));
    }
    ASSERT_EQ(series.buckets().size(), 129U);
    const RunBucket& bucket = series.buckets()[3];
    EXPECT_EQ(bucket.frames, 2U);
    EXPECT_EQ(bucket.fromUs, 60);
    EXPECT_EQ(bucket.toUs, 70);
    EXPECT_EQ(bucket.interval.smallest(), 0);
    EXPECT_EQ(bucket.interval.largest(), 6);
    EXPECT_EQ(bucket.lost, 1);
    EXPECT_EQ(series.buckets().back().frames, 1U);
    EXPECT_EQ(series.buckets().back().fromUs, 2560);
}

TEST(RunSeries, AYearStaysBoundedAndNothingIsForgotten)
{
    constexpr std::int64_t kFrames = 1'000'000;
    RunSeries series;
    const auto* const memory = series.buckets().data();
    for (std::int64_t frame = 0; frame < kFrames; ++frame) {
        series.add(pointAt(frame));
        ASSERT_LE(series.buckets().size(), RunSeries::kMost);
    }
    EXPECT_EQ(series.buckets().data(), memory) << "nothing was allocated";
    EXPECT_GT(series.buckets().size(), RunSeries::kMost / 2 - 1);
    std::int64_t frames = 0;
    std::int64_t lost = 0;
    std::uint64_t intervals = 0;
    for (const RunBucket& bucket : series.buckets()) {
        EXPECT_EQ(bucket.fromUs, frames * 10);
        frames += static_cast<std::int64_t>(bucket.frames);
        EXPECT_EQ(bucket.toUs, (frames - 1) * 10);
        lost += bucket.lost;
        intervals += bucket.interval.count();
        if (&bucket != &series.buckets().back()) {
            EXPECT_EQ(bucket.frames, series.buckets().front().frames);
            EXPECT_EQ(bucket.delivery.smallest(), 0);
            EXPECT_EQ(bucket.delivery.largest(), 999);
        }
    }
    EXPECT_EQ(frames, kFrames);
    EXPECT_EQ(lost, (kFrames + 2) / 3);
    EXPECT_EQ(intervals, static_cast<std::uint64_t>(kFrames - 1));
}

TEST(RunSeries, MediansDoNotDriftHoweverOftenBucketsAreMerged)
{
    std::mt19937 random(1); // NOLINT(*-msc51-cpp): the same each time
    std::uniform_int_distribution<std::int64_t> value(-1000, 1000);
    RunSeries series;
    for (int frame = 0; frame < 2'000'000; ++frame) {
        RunPoint point;
        point.atUs = frame;
        point.deliveryUs = value(random);
        series.add(point);
    }
    double sum = 0;
    for (const RunBucket& bucket : series.buckets()) {
        sum += static_cast<double>(bucket.delivery.median());
    }
    EXPECT_NEAR(sum / static_cast<double>(series.buckets().size()), 0, 60);
}

TEST(RunSeries, WhereNoFrameThatIsSampledHasAMeasureAnotherOneTellsIt)
{
    RunSeries series;
    for (std::int64_t frame = 0; frame < 5000; ++frame) { // every second one is sampled at the end
        RunPoint point = pointAt(frame);
        point.intervalUs = frame % 2 == 0 ? std::nullopt : std::optional<std::int64_t>(50);
        series.add(point);
    }
    for (const RunBucket& bucket : series.buckets()) {
        ASSERT_GT(bucket.interval.count(), 0U);
        EXPECT_EQ(bucket.interval.median(), 50);
    }
}

TEST(DurationProfile, SmallDurationsAreExact)
{
    DurationProfile profile;
    for (std::int64_t us = 15; us >= 1; --us) {
        profile.add(us);
    }
    EXPECT_EQ(profile.count(), 15U);
    EXPECT_EQ(profile.smallest(), 1);
    EXPECT_EQ(profile.largest(), 15);
    EXPECT_EQ(profile.quantile(0), 1);
    EXPECT_EQ(profile.quantile(0.5), 8);
    EXPECT_EQ(profile.quantile(0.99), 15);
    EXPECT_EQ(profile.quantile(1), 15);
}

TEST(DurationProfile, EveryDurationIsRightToAnEighthOfItsPowerOfTwo)
{
    for (unsigned bit = 0; bit < 63; ++bit) {
        for (const std::int64_t near : {-1, 0, 1}) {
            const std::int64_t us = (std::int64_t{1} << bit) + near;
            DurationProfile profile;
            profile.add(us);
            profile.add(0);
            profile.add(std::numeric_limits<std::int64_t>::max());
            const auto shown = static_cast<double>(profile.quantile(0.5));
            EXPECT_NEAR(shown, static_cast<double>(us), static_cast<double>(us) / 16 + 1e-9) << us;
        }
    }
}

TEST(DurationProfile, NegativeOnesCountToo)
{
    DurationProfile profile;
    for (const std::int64_t us : {-10, -10, -4, 5, 7}) {
        profile.add(us);
    }
    EXPECT_EQ(profile.smallest(), -10);
    EXPECT_EQ(profile.quantile(0.4), -10);
    EXPECT_EQ(profile.quantile(0.5), -4);
    EXPECT_EQ(profile.quantile(0.8), 5);
    EXPECT_EQ(profile.quantile(1), 7);
    DurationProfile least;
    least.add(std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(least.quantile(0.5), std::numeric_limits<std::int64_t>::min());
}

TEST(DurationProfile, AQuantileIsNeverBeyondTheEnds)
{
    DurationProfile profile;
    profile.add(1'000'003);
    EXPECT_EQ(profile.quantile(0.5), 1'000'003);
    EXPECT_EQ(profile.quantile(0.99), 1'000'003);
}

} // namespace
