// How a grab went over time, in a bounded number of buckets.
#ifndef KXHOST_RUN_SERIES_H
#define KXHOST_RUN_SERIES_H

#include "report/spread.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kxhost {

/// What is known of one frame; times in microseconds.
struct RunPoint {
    std::int64_t atUs = 0;                    ///< arrival, since that of the first frame
    std::optional<std::int64_t> intervalUs;   ///< since the time stamp of the frame before
    std::optional<std::int64_t> stampErrorUs; ///< that, less the interval by the camera's clock
    std::int64_t deliveryUs = 0;              ///< from the time stamp to the arrival
    std::int64_t lost = 0; ///< frames booked as lost before it; negative = taken back
};

/// Frames one behind the other.
struct RunBucket {
    std::int64_t fromUs = 0; ///< arrival of the first
    std::int64_t toUs = 0;   ///< and of the last
    std::uint64_t frames = 0;
    std::int64_t lost = 0;
    Spread interval;
    Spread stampError;
    Spread delivery;
};

/// As many frames to a bucket as are needed to keep their number below `kMost`: whenever that is
/// reached, neighbours are put together two by two. Each bucket but the last has the same number of
/// frames. Not thread-safe. Allocates in its constructor only.
class RunSeries {
public:
    static constexpr std::size_t kMost = 256;

    RunSeries() { buckets_.reserve(kMost); }

    void add(const RunPoint& point);

    const std::vector<RunBucket>& buckets() const { return buckets_; }

private:
    void putTogether();

    std::vector<RunBucket> buckets_;
    std::uint64_t framesEach_ = 1;
};

} // namespace kxhost

#endif
