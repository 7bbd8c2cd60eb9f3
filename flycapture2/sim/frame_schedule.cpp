// When the frames of a capture are exposed and when they arrive.
#include "frame_schedule.h"

#include <algorithm>
#include <cmath>

namespace fcsim {

namespace {

/// Evenly distributed in [0, 1), the same for the same seed and frame (splitmix64).
double random01(std::uint64_t seed, std::uint64_t number)
{
    std::uint64_t x = seed * 0x9E3779B97F4A7C15U + number * 0xD1B54A32D192ED03U;
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    x ^= x >> 31U;
    return static_cast<double>(x >> 11U) * 0x1.0p-53;
}

} // namespace

FrameSchedule::FrameSchedule(double latencyUs, double jitterUs, std::uint64_t seed)
    : latencyUs_(latencyUs), jitterUs_(jitterUs), seed_(seed)
{}

void FrameSchedule::begin(double startUs, const FrameTiming& timing)
{
    stretches_.assign(1, {0, startUs, timing});
}

void FrameSchedule::change(double nowUs, const FrameTiming& timing)
{
    Stretch& last = stretches_.back();
    const double begun = std::floor((nowUs - last.startUs) / last.timing.periodUs) + 1;
    if (begun <= 0) {
        last.timing = timing; // none of its frames has begun
        return;
    }
    stretches_.push_back({last.first + static_cast<std::uint64_t>(begun),
                          last.startUs + begun * last.timing.periodUs, timing});
}

void FrameSchedule::forget(std::uint64_t number)
{
    while (stretches_.size() > 1 && stretches_[1].first <= number) {
        stretches_.erase(stretches_.begin());
    }
}

const FrameSchedule::Stretch& FrameSchedule::stretchOf(std::uint64_t number) const
{
    auto stretch = stretches_.rbegin();
    while (stretch + 1 != stretches_.rend() && stretch->first > number) {
        ++stretch;
    }
    return *stretch;
}

FrameTimes FrameSchedule::times(std::uint64_t number) const
{
    const Stretch& stretch = stretchOf(number);
    const FrameTiming& timing = stretch.timing;
    FrameTimes times;
    times.timing = timing;
    times.startUs = stretch.startUs + static_cast<double>(number - stretch.first) * timing.periodUs;
    // More jitter than a period would let frames overtake each other.
    const double jitter = std::min(jitterUs_, timing.periodUs) * random01(seed_, number);
    times.arrivalUs = times.startUs + timing.exposureUs + timing.transferUs + latencyUs_ + jitter;
    return times;
}

std::uint64_t FrameSchedule::firstNotArrived(double nowUs, std::uint64_t from) const
{
    std::uint64_t number = from;
    while (times(number).arrivalUs <= nowUs) {
        ++number;
    }
    return number;
}

} // namespace fcsim
