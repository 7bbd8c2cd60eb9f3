// When the frames of a capture are exposed and with what, and when they arrive.
#include "capture/frame_schedule.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace fcsim {

namespace {

/// Changes that are kept apart. Frames on their way need some of them; thousands would only come
/// together where nothing ever arrives.
constexpr std::size_t kMostStretches = 256;

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

void FrameSchedule::begin(double startUs, const FrameSettings& settings)
{
    stretches_.reserve(kMostStretches);
    stretches_.assign(1, {0, startUs, -std::numeric_limits<double>::infinity(), 0, settings});
}

std::uint64_t FrameSchedule::firstAfter(double nowUs) const
{
    const Stretch& last = stretches_.back();
    const double begun = std::floor((nowUs - last.startUs) / last.settings.periodUs) + 1;
    return last.first + static_cast<std::uint64_t>(std::max(begun, 0.0));
}

void FrameSchedule::change(std::uint64_t first, const FrameSettings& settings)
{
    Stretch& last = stretches_.back();
    if (first <= last.first) {
        apply(last, settings);
        return;
    }
    const double periodUs = last.settings.periodUs;
    const double startUs = last.startUs + static_cast<double>(first - last.first) * periodUs;
    Stretch next{first, startUs, startUs - periodUs + last.settings.exposureUs, periodUs, {}};
    apply(next, settings);
    if (stretches_.size() == kMostStretches) {
        stretches_.erase(stretches_.begin() + 1);
    }
    stretches_.push_back(next);
}

/// Exposures end at least the shorter of the two periods apart.
void FrameSchedule::apply(Stretch& stretch, const FrameSettings& settings)
{
    const double apartUs = std::min(stretch.periodBeforeUs, settings.periodUs);
    stretch.startUs =
        std::max(stretch.startUs, stretch.endBeforeUs + apartUs - settings.exposureUs);
    stretch.settings = settings;
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

/// Jitter and spike of a frame. Later by more than a period, frames would overtake each other.
double FrameSchedule::lateUs(std::uint64_t number, double periodUs) const
{
    const double jitterUs = std::min(delivery_.jitterUs, periodUs);
    const bool isSpike = random01(~delivery_.seed, number) < delivery_.spikeShare;
    return std::min(jitterUs * random01(delivery_.seed, number) + (isSpike ? delivery_.spikeUs : 0),
                    periodUs);
}

FrameTimes FrameSchedule::times(std::uint64_t number) const
{
    const Stretch& stretch = stretchOf(number);
    const FrameSettings& settings = stretch.settings;
    FrameTimes times;
    times.startUs =
        stretch.startUs + static_cast<double>(number - stretch.first) * settings.periodUs;
    times.exposureEndUs = times.startUs + settings.exposureUs;
    times.arrivalUs = times.exposureEndUs + settings.transferUs + delivery_.latencyUs +
                      lateUs(number, settings.periodUs);
    return times;
}

ScheduledFrame FrameSchedule::frame(std::uint64_t number) const
{
    return {number, times(number), settings(number)};
}

} // namespace fcsim
