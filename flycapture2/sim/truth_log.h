// What was true of the newest delivered frames.
#ifndef FCSIM_TRUTH_LOG_H
#define FCSIM_TRUTH_LOG_H

#include "sim_control.h"

#include <vector>

namespace fcsim {

/// Ring of the newest 65536 entries. Its memory is made in one go, so that adding never allocates.
/// Not thread-safe.
class TruthLog {
public:
    /// Makes the memory, once.
    void prepare();
    void add(const FrameTruth& truth);
    /// All entries, oldest first, and forgets them.
    std::vector<FrameTruth> take();

private:
    static constexpr std::size_t kCapacity = 65536;

    std::vector<FrameTruth> ring_;
    std::size_t first_ = 0;
    std::size_t count_ = 0;
};

} // namespace fcsim

#endif
