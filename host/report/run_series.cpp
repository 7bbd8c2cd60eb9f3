// How a grab went over time, in a bounded number of buckets.
#include "report/run_series.h"

namespace kxhost {
namespace {

void merge(RunBucket& bucket, const RunBucket& next)
{
    bucket.toUs = next.toUs;
    bucket.frames += next.frames;
    bucket.lost += next.lost;
    bucket.interval.merge(next.interval);
    bucket.stampError.merge(next.stampError);
    bucket.delivery.merge(next.delivery);
}

} // namespace

void RunSeries::add(const RunPoint& point)
{
    if (buckets_.empty() || buckets_.back().frames == framesEach_) {
        if (buckets_.size() == kMost) {
            putTogether();
        }
        RunBucket& fresh = buckets_.emplace_back();
        fresh.fromUs = point.atUs;
    }
    RunBucket& bucket = buckets_.back();
    // Medians are taken from frames that lie evenly in the bucket.
    const std::uint64_t every = (framesEach_ + Spread::kKept - 1) / Spread::kKept;
    const bool sampled = bucket.frames % every == 0;
    bucket.toUs = point.atUs;
    ++bucket.frames;
    bucket.lost += point.lost;
    bucket.delivery.add(point.deliveryUs, sampled);
    if (point.intervalUs) {
        bucket.interval.add(*point.intervalUs, sampled);
    }
    if (point.stampErrorUs) {
        bucket.stampError.add(*point.stampErrorUs, sampled);
    }
}

void RunSeries::putTogether()
{
    for (std::size_t i = 0; i < buckets_.size() / 2; ++i) {
        RunBucket pair = buckets_[2 * i];
        merge(pair, buckets_[2 * i + 1]);
        buckets_[i] = pair;
    }
    buckets_.resize(buckets_.size() / 2);
    framesEach_ *= 2;
}

} // namespace kxhost
