// Smallest, middle and largest of many values, in little memory.
#ifndef KXHOST_SPREAD_H
#define KXHOST_SPREAD_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kxhost {

/// The ends and the number are exact, however many values there are. The median is exact of up to
/// `kKept` values, and an estimate from so many of them beyond. Allocates nothing.
class Spread {
public:
    static constexpr std::size_t kKept = 15;

    /// Counts a value. `sampled`: it is one of those that the median is taken from, as the first
    /// one is in any case; REQUIRES: of no more than `kKept` values, the first one included.
    void add(std::int64_t value, bool sampled);
    /// Counts the values of the other one too. REQUIRES: where more values come together than can
    /// be kept, that both have about the same number; else the median is that of the smaller.
    void merge(const Spread& other);

    std::uint64_t count() const { return count_; }
    std::int64_t smallest() const { return smallest_; } ///< REQUIRES: count() > 0, as the next two
    std::int64_t largest() const { return largest_; }
    std::int64_t median() const;
    /// Those that the median is taken from, in any order.
    std::span<const std::int64_t> kept() const { return {kept_.data(), keptCount_}; }

private:
    std::uint64_t count_ = 0;
    std::int64_t smallest_ = 0;
    std::int64_t largest_ = 0;
    std::size_t keptCount_ = 0;
    std::array<std::int64_t, kKept> kept_{};
};

} // namespace kxhost

#endif
