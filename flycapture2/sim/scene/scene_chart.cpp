// The built-in test chart: static targets, and parts that move with the frame number.
#include "scene/scene_chart.h"

#include "scene/scene_chart_targets.h"
#include "scene/scene_glyphs.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace fcsim {

namespace {

// Frames that the moving parts take to come back to where they were.
constexpr std::uint64_t kHandPeriod = 60;
constexpr std::uint64_t kBarPeriod = 120;
constexpr std::uint64_t kBallPeriod = 180; ///< there and back
constexpr std::uint64_t kBouncePeriod = 45;

enum Panel : std::size_t { kNumberPanel, kExposurePanel, kClockPanel, kTrackPanel };

/// Where in its period the frame is: 0 up to 1.
float phase(std::uint64_t number, std::uint64_t period)
{
    return static_cast<float>(number % period) / static_cast<float>(period);
}

Colour mixed(const Colour& below, const Colour& above, float part)
{
    const auto mix = [part](Level from, Level to) {
        const auto level = static_cast<float>(from);
        return static_cast<Level>(level + (static_cast<float>(to) - level) * part);
    };
    return {mix(below.red, above.red), mix(below.green, above.green), mix(below.blue, above.blue)};
}

Canvas paintedTargets(const SensorSettings& sensor, const ChartLayout& layout)
{
    Canvas canvas(layout.sensor.width, layout.sensor.height,
                  sensor.colour ? Space::rgb : Space::grey);
    paintChartTargets(canvas, layout, sensor.title);
    return canvas;
}

} // namespace

ChartScene::ChartScene(const SensorSettings& sensor)
    : layout_(static_cast<int>(sensor.width), static_cast<int>(sensor.height)),
      canvas_(paintedTargets(sensor, layout_)), panels_{SavedArea(canvas_, layout_.number),
                                                        SavedArea(canvas_, layout_.exposure),
                                                        SavedArea(canvas_, layout_.clock),
                                                        SavedArea(canvas_, layout_.track)},
      areas_{panels_[kNumberPanel].area(), panels_[kExposurePanel].area(),
             panels_[kClockPanel].area(), panels_[kTrackPanel].area()}
{}

std::span<const Rect> ChartScene::paint(const FrameRequest& request)
{
    for (const SavedArea& panel : panels_) {
        panel.restore(canvas_);
    }
    paintNumber(request.number);
    paintExposure(request.state.shutterUs, request.state.gainDb);
    paintHand(request.number);
    paintTrack(request.number);
    return areas_;
}

void ChartScene::paintNumber(std::uint64_t number)
{
    std::array<char, kNumberDigits> digits{};
    std::uint64_t rest = number;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, rest /= 10) {
        *digit = static_cast<char>('0' + rest % 10);
    }
    const int dot = layout_.numberDot;
    drawText(canvas_, layout_.number.x + dot, layout_.number.y + dot,
             {digits.data(), digits.size()}, dot, dot / 6, kChartSignal);
    const int square = layout_.code.width / kCodeBits;
    for (int bit = 0; bit < kCodeBits; ++bit) {
        const bool lit = (number >> static_cast<unsigned>(kCodeBits - 1 - bit) & 1U) != 0;
        canvas_.fill({layout_.code.x + bit * square, layout_.code.y, square, layout_.code.height},
                     lit ? colour8(255, 255, 255) : grey(0));
    }
}

void ChartScene::paintExposure(float shutterUs, float gainDb)
{
    std::array<char, kExposureSample.size() + 1> text{};
    const double shutterMs = std::clamp(static_cast<double>(shutterUs) / 1000, 0.0, 99999.999);
    const double gain = std::clamp(static_cast<double>(gainDb), -99.99, 99.99);
    int length =
        std::snprintf(text.data(), text.size(), "SHUTTER %.3f MS  GAIN %.2f DB", shutterMs, gain);
    std::string_view shown(text.data(), static_cast<std::size_t>(std::max(length, 0)));
    const auto tooWide = [&] { return textWidth(shown) * layout_.dot > layout_.exposure.width; };
    if (tooWide()) { // as on small sensors
        length = std::snprintf(text.data(), text.size(), "%.3f MS  %.2f DB", shutterMs, gain);
        shown = {text.data(), static_cast<std::size_t>(std::max(length, 0))};
    }
    while (tooWide()) { // beyond the panel it would never be wiped out
        shown.remove_suffix(1);
    }
    drawText(canvas_, layout_.exposure.x, layout_.exposure.y, shown, layout_.dot, 0,
             kChartLettering);
}

void ChartScene::paintHand(std::uint64_t number)
{
    const float radius = static_cast<float>(layout_.clock.width) / 2;
    const float centreX = static_cast<float>(layout_.clock.x) + radius;
    const float centreY = static_cast<float>(layout_.clock.y) + radius;
    const float angle = 2 * std::numbers::pi_v<float> * phase(number, kHandPeriod);
    canvas_.line(centreX, centreY, centreX + 0.74F * radius * std::sin(angle),
                 centreY - 0.74F * radius * std::cos(angle), radius * 0.06F, kChartSignal);
    canvas_.disc(centreX, centreY, radius * 0.08F, kChartSignal);
}

void ChartScene::paintTrack(std::uint64_t number)
{
    const Rect& track = layout_.track;
    const int head = static_cast<int>(phase(number, kBarPeriod) * static_cast<float>(track.width));
    const int tail = std::max(track.width / 8, 1);
    for (int back = 0; back < std::min(tail, head + 1); ++back) {
        const float light = 0.8F * static_cast<float>(tail - back) / static_cast<float>(tail);
        canvas_.fill({track.x + head - back, track.y, 1, track.height},
                     mixed(kChartInset, colour8(64, 160, 255), light * light));
    }
    const float radius = static_cast<float>(track.height) * 0.24F;
    const float across = 1 - std::abs(1 - 2 * phase(number, kBallPeriod));
    const float bounce = 2 * phase(number, kBouncePeriod) - 1;
    const float reachX = static_cast<float>(track.width) - 2 * radius;
    const float reachY = static_cast<float>(track.height) - 2 * radius;
    canvas_.disc(static_cast<float>(track.x) + radius + reachX * across,
                 static_cast<float>(track.y) + radius + reachY * bounce * bounce, radius,
                 kChartSignal);
}

} // namespace fcsim
