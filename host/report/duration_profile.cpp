// How long something takes, over any number of times.
#include "report/duration_profile.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace kxhost {
namespace {

constexpr std::uint64_t kExact = 16; ///< below it each value has its own step
constexpr std::uint64_t kPerOctave = 8;

std::size_t stepOf(std::uint64_t value)
{
    if (value < kExact) {
        return value;
    }
    const auto shift = static_cast<unsigned>(std::bit_width(value)) - 4;
    return kExact + (shift - 1) * kPerOctave + (value >> shift) - kPerOctave;
}

/// The middle of a step.
std::int64_t valueOf(std::size_t step)
{
    if (step < kExact) {
        return static_cast<std::int64_t>(step);
    }
    const std::size_t shift = (step - kExact) / kPerOctave + 1;
    const std::uint64_t low = (kPerOctave + (step - kExact) % kPerOctave) << shift;
    return static_cast<std::int64_t>(low + (std::uint64_t{1} << shift) / 2);
}

} // namespace

void DurationProfile::add(std::int64_t us)
{
    smallest_ = count_ == 0 ? us : std::min(smallest_, us);
    largest_ = count_ == 0 ? us : std::max(largest_, us);
    ++count_;
    if (us < 0) {
        ++negative_[stepOf(std::uint64_t{0} - static_cast<std::uint64_t>(us))];
    } else {
        ++positive_[stepOf(static_cast<std::uint64_t>(us))];
    }
}

std::int64_t DurationProfile::quantile(double share) const
{
    const double wanted = std::ceil(share * static_cast<double>(count_));
    const auto rank = std::max(static_cast<std::uint64_t>(wanted), std::uint64_t{1});
    std::uint64_t below = 0;
    for (std::size_t step = kSteps; step-- > 0;) {
        below += negative_[step];
        if (below >= rank) {
            return std::clamp(-valueOf(step), smallest_, largest_);
        }
    }
    for (std::size_t step = 0; step < kSteps; ++step) {
        below += positive_[step];
        if (below >= rank) {
            return std::clamp(valueOf(step), smallest_, largest_);
        }
    }
    return largest_;
}

} // namespace kxhost
