// Smallest, middle and largest of many values, in little memory.
#include "report/spread.h"

#include <algorithm>
#include <bit>

namespace kxhost {

void Spread::add(std::int64_t value, bool sampled)
{
    smallest_ = count_ == 0 ? value : std::min(smallest_, value);
    largest_ = count_ == 0 ? value : std::max(largest_, value);
    ++count_;
    if (sampled || keptCount_ == 0) {
        kept_[keptCount_++] = value;
    }
}

/// Of more values than can be kept, each second one of the sorted row is, beginning with the first
/// and with the second by turns, so that the median goes neither up nor down with time.
void Spread::merge(const Spread& other)
{
    if (other.count_ == 0) {
        return;
    }
    smallest_ = count_ == 0 ? other.smallest_ : std::min(smallest_, other.smallest_);
    largest_ = count_ == 0 ? other.largest_ : std::max(largest_, other.largest_);
    count_ += other.count_;
    std::array<std::int64_t, 2 * kKept> all{};
    auto* end = std::copy_n(kept_.begin(), keptCount_, all.begin());
    end = std::copy_n(other.kept_.begin(), other.keptCount_, end);
    std::sort(all.begin(), end);
    const auto total = static_cast<std::size_t>(end - all.begin());
    const std::size_t step = total > kKept ? 2 : 1;
    const std::size_t first = step == 2 ? std::bit_width(count_) % 2 : 0;
    keptCount_ = 0;
    for (std::size_t i = first; i < total && keptCount_ < kKept; i += step) {
        kept_[keptCount_++] = all[i];
    }
}

std::int64_t Spread::median() const
{
    std::array<std::int64_t, kKept> sorted = kept_;
    auto* const middle = sorted.begin() + keptCount_ / 2;
    std::nth_element(sorted.begin(), middle, sorted.begin() + keptCount_);
    return *middle;
}

} // namespace kxhost
