// What was true of the newest delivered frames.
#include "truth_log.h"

namespace fcsim {

void TruthLog::prepare()
{
    ring_.resize(kCapacity);
}

void TruthLog::add(const FrameTruth& truth)
{
    ring_[(first_ + count_) % kCapacity] = truth;
    if (count_ < kCapacity) {
        ++count_;
    } else {
        first_ = (first_ + 1) % kCapacity;
    }
}

std::vector<FrameTruth> TruthLog::take()
{
    std::vector<FrameTruth> all;
    all.reserve(count_);
    for (std::size_t i = 0; i < count_; ++i) {
        all.push_back(ring_[(first_ + i) % kCapacity]);
    }
    first_ = 0;
    count_ = 0;
    return all;
}

} // namespace fcsim
