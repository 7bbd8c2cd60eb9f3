// How long something takes, over any number of times.
#ifndef KXHOST_DURATION_PROFILE_H
#define KXHOST_DURATION_PROFILE_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace kxhost {

/// Counts durations in steps of an eighth of their power of two, so that a quantile is right to
/// about 6 %, and exactly below 16. The ends are exact. Negative ones count as well. Allocates
/// nothing.
class DurationProfile {
public:
    void add(std::int64_t us);

    std::uint64_t count() const { return count_; }
    std::int64_t smallest() const { return smallest_; } ///< REQUIRES: count() > 0, as the next two
    std::int64_t largest() const { return largest_; }
    /// The duration that this share (0 to 1) of all do not exceed.
    std::int64_t quantile(double share) const;

private:
    static constexpr std::size_t kSteps = 488; ///< for all 63 bits

    std::uint64_t count_ = 0;
    std::int64_t smallest_ = 0;
    std::int64_t largest_ = 0;
    std::array<std::uint64_t, kSteps> negative_{};
    std::array<std::uint64_t, kSteps> positive_{};
};

} // namespace kxhost

#endif
