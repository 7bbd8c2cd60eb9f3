// What a run of frames says about the camera's clock.
#include "clock/clock_fit.h"

#include "clock/camera_timeline.h"
#include "clock/clock_rate.h"
#include "clock/clock_steps.h"

#include <algorithm>
#include <cmath>

namespace kxhost {
namespace {

constexpr double kUsPerSecond = 1e6;
/// Rates are in microseconds per second inside, in nanoseconds per second outside.
constexpr double kNsPerUs = 1e3;
/// Frames on either side of a step that count to neither: its place is known to a frame or two.
constexpr std::size_t kBesideStep = 3;

/// The frames between two steps, and the lines below them.
struct Segment {
    std::size_t begin = 0;
    std::size_t end = 0; ///< behind the last one
    RateFit whole;
    std::vector<RateFit> windows;
    double firstS = 0;
    double lastS = 0;
    double apartS = 0; ///< from the start of one window to that of the next

    const RateFit& windowAt(double seconds, double windowS) const;
};

/// The window whose middle is next: where two overlap, the fit switches in the middle of that.
const RateFit& Segment::windowAt(double seconds, double windowS) const
{
    const double place = apartS > 0 ? std::round((seconds - firstS - windowS / 2) / apartS) : 0;
    const double last = static_cast<double>(windows.size() - 1);
    return windows[static_cast<std::size_t>(std::clamp(place, 0.0, last))];
}

/// Delay of each frame over time, from those of the first frame.
std::vector<Point> delaysOf(std::span<const ClockSample> samples)
{
    const ClockSample& first = samples.front();
    std::vector<Point> delays;
    delays.reserve(samples.size());
    for (const ClockSample& sample : samples) {
        const std::int64_t delayUs =
            (sample.hostUs - first.hostUs) - (sample.cameraUs - first.cameraUs);
        delays.push_back({static_cast<double>(sample.steadyUs - first.steadyUs) / kUsPerSecond,
                          static_cast<double>(delayUs)});
    }
    return delays;
}

/// Windows of `windowS` from one end of the segment to the other, half of each within the next.
void fitWindows(Segment& segment, std::span<const Point> delays, double windowS)
{
    const double spareS = segment.lastS - segment.firstS - windowS;
    if (spareS < 0) {
        return;
    }
    constexpr double kRounding = 1e-6;
    const double gaps = std::ceil(spareS / (windowS / 2) - kRounding);
    segment.apartS = gaps > 0 ? spareS / gaps : 0;
    const std::span<const Point> own = delays.subspan(segment.begin, segment.end - segment.begin);
    for (double gap = 0; gap <= gaps; ++gap) {
        const double from = segment.firstS + gap * segment.apartS;
        const auto begin = std::ranges::lower_bound(own, from, {}, &Point::x);
        const auto end = std::ranges::upper_bound(own, from + windowS, {}, &Point::x);
        const std::optional<RateFit> fit = fitRate({begin, end});
        if (!fit) { // a hole in the run: there is no following through it
            segment.windows.clear();
            return;
        }
        segment.windows.push_back(*fit);
    }
}

class Analysis {
public:
    explicit Analysis(std::span<const ClockSample> samples)
        : samples_(samples), delays_(delaysOf(samples))
    {}

    std::optional<ClockFit> run()
    {
        fit_.frames = samples_.size();
        fit_.seconds = delays_.back().x;
        fit_.windowSeconds = std::max(kLeastWindowS, fit_.seconds / kMostWindows);
        divide();
        if (segments_.empty()) {
            return std::nullopt;
        }
        listWindows();
        judgeWander();
        averageRate();
        locate();
        measureResidual();
        return fit_;
    }

private:
    static constexpr double kLeastWindowS = 10;
    static constexpr double kMostWindows = 12; ///< that do not overlap

    void divide()
    {
        std::size_t begin = 0;
        for (const DelayStep& step : findSteps(delays_)) {
            fit_.steps.push_back(describe(step));
            addSegment(begin, step.frame - std::min(step.frame, kBesideStep));
            begin = step.frame + kBesideStep;
        }
        addSegment(begin, delays_.size());
    }

    ClockStep describe(const DelayStep& step) const
    {
        const auto lead = [this](std::size_t frame) {
            return samples_[frame].hostUs - samples_[frame].steadyUs;
        };
        const std::size_t before = step.frame - std::min(step.frame, kBesideStep);
        const std::size_t behind = std::min(step.frame + kBesideStep, samples_.size() - 1);
        const auto hostUs = static_cast<double>(lead(behind) - lead(before));
        const bool ofHost = std::abs(hostUs) > std::abs(step.sizeUs) / 2;
        return {delays_[step.frame].x, ofHost ? step.sizeUs : -step.sizeUs, ofHost};
    }

    void addSegment(std::size_t begin, std::size_t end)
    {
        if (begin >= end) {
            return;
        }
        const std::optional<RateFit> whole =
            fitRate(std::span(delays_).subspan(begin, end - begin));
        if (!whole) {
            return;
        }
        Segment segment{begin, end, *whole, {}, delays_[begin].x, delays_[end - 1].x, 0};
        fitWindows(segment, delays_, fit_.windowSeconds);
        segments_.push_back(std::move(segment));
    }

    void listWindows()
    {
        for (const Segment& segment : segments_) {
            double fromS = segment.firstS;
            for (const RateFit& window : segment.windows) {
                fit_.windows.push_back({fromS, fromS + fit_.windowSeconds,
                                        -window.line.slope * kNsPerUs,
                                        window.uncertainty * kNsPerUs});
                fromS += segment.apartS;
            }
        }
    }

    /// The clock wanders when most windows do not agree with the line below the whole.
    void judgeWander()
    {
        constexpr std::size_t kFewestWindows = 3;
        std::size_t apart = 0;
        double squares = 0;
        std::size_t pairs = 0;
        for (const Segment& segment : segments_) {
            const std::vector<RateFit>& windows = segment.windows;
            for (std::size_t i = 0; i < windows.size(); ++i) {
                const double off = windows[i].line.slope - segment.whole.line.slope;
                const double both = windows[i].uncertainty + segment.whole.uncertainty;
                apart += std::abs(off) > both ? std::size_t{1} : 0;
                if (i >= 2) {
                    const double change = windows[i].line.slope - windows[i - 2].line.slope;
                    squares += change * change;
                    ++pairs;
                }
            }
        }
        fit_.wanders = fit_.windows.size() >= kFewestWindows && 2 * apart >= fit_.windows.size();
        fit_.spreadNs =
            pairs > 0 ? std::sqrt(squares / 2 / static_cast<double>(pairs)) * kNsPerUs : 0;
    }

    bool follows(const Segment& segment) const { return fit_.wanders && !segment.windows.empty(); }

    /// The line that is in force for a frame of the segment.
    const Line& lineAt(const Segment& segment, double seconds) const
    {
        return follows(segment) ? segment.windowAt(seconds, fit_.windowSeconds).line
                                : segment.whole.line;
    }

    /// Rate of a segment. One that wanders: from where its first line begins to where its last one
    /// ends, each known there as well as the window's rate and its change within the window allow.
    RateFit rateOf(const Segment& segment) const
    {
        if (!follows(segment)) {
            return segment.whole;
        }
        const double seconds = segment.lastS - segment.firstS;
        const RateFit& first = segment.windows.front();
        const RateFit& last = segment.windows.back();
        RateFit rate;
        rate.line.slope = (last.line.at(segment.lastS) - first.line.at(segment.firstS)) / seconds;
        rate.uncertainty =
            fit_.windowSeconds / seconds *
            std::hypot(first.uncertainty, last.uncertainty, fit_.spreadNs / kNsPerUs);
        return rate;
    }

    void averageRate()
    {
        double weights = 0;
        double sum = 0;
        for (const Segment& segment : segments_) {
            const RateFit rate = rateOf(segment);
            const double weight = 1 / (rate.uncertainty * rate.uncertainty);
            weights += weight;
            sum += weight * rate.line.slope;
        }
        fit_.rateNs = 0 - sum / weights * kNsPerUs; // no -0
        fit_.uncertaintyNs = std::sqrt(1 / weights) * kNsPerUs;
    }

    void locate()
    {
        const Segment& segment = segments_.back();
        const std::size_t last = segment.end - 1;
        const double seconds = delays_[last].x;
        const double aheadUs = lineAt(segment, seconds).at(seconds);
        fit_.atCameraUs = (samples_[last].cameraUs % kCameraWrapUs + kCameraWrapUs) % kCameraWrapUs;
        const std::int64_t wrapsUs = samples_[last].cameraUs - fit_.atCameraUs;
        fit_.offsetUs =
            samples_.front().hostUs - samples_.front().cameraUs + wrapsUs + std::llround(aheadUs);
    }

    void measureResidual()
    {
        std::vector<double> late;
        for (const Segment& segment : segments_) {
            for (std::size_t i = segment.begin; i < segment.end; ++i) {
                const Point& delay = delays_[i];
                late.push_back(delay.y - lineAt(segment, delay.x).at(delay.x));
            }
        }
        std::ranges::sort(late);
        fit_.residual = {late[late.size() / 2], late[late.size() * 99 / 100], late.back()};
    }

    std::span<const ClockSample> samples_;
    std::vector<Point> delays_;
    std::vector<Segment> segments_;
    ClockFit fit_;
};

/// Whether any two samples differ in this time.
bool moves(std::span<const ClockSample> samples, std::int64_t ClockSample::*time)
{
    return std::ranges::any_of(
        samples, [&](const ClockSample& sample) { return sample.*time != samples.front().*time; });
}

} // namespace

std::optional<ClockFit> fitClock(std::span<const ClockSample> samples, std::string& problem)
{
    if (samples.size() < kFewestFrames) {
        problem = "too few frames to tell a clock's rate: " + std::to_string(samples.size()) +
                  ", at least " + std::to_string(kFewestFrames) + " are needed";
        return std::nullopt;
    }
    if (!moves(samples, &ClockSample::cameraUs)) {
        problem = "the camera embeds no time stamp in its images, its time stays at " +
                  std::to_string(samples.front().cameraUs) + " us";
        return std::nullopt;
    }
    if (!moves(samples, &ClockSample::steadyUs)) {
        problem = "all frames arrived at the same time";
        return std::nullopt;
    }
    std::optional<ClockFit> fit = Analysis(samples).run();
    if (!fit) {
        problem = "the clocks step too often to tell a rate";
    }
    return fit;
}

std::int64_t clockCorrectionNs(const ClockFit& fit)
{
    const std::int64_t correction = -std::llround(fit.rateNs);
    return correction == 0 ? 1 : correction;
}

} // namespace kxhost
