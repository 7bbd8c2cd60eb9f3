// What a camera does to colours: white balance, saturation, hue.
#include "scene/sensor_colour.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace fcsim {

namespace {

constexpr float kFullScale = 65535;

Level rounded(float level)
{
    const float limited = std::min(std::max(level + 0.5F, 0.0F), kFullScale);
    return static_cast<Level>(static_cast<int>(limited));
}

} // namespace

std::array<float, 3> balanceOf(const SensorState& state)
{
    const auto factor = [](unsigned value) {
        return static_cast<float>(value) / static_cast<float>(kNeutralWhiteBalance);
    };
    return {factor(state.whiteBalanceRed), 1, factor(state.whiteBalanceBlue)};
}

void balanceRow(Level* levels, unsigned width, float even, float odd)
{
    if (even == 1 && odd == 1) {
        return;
    }
    for (unsigned x = 0; x + 1 < width; x += 2) {
        levels[x] = rounded(static_cast<float>(levels[x]) * even);
        levels[x + 1] = rounded(static_cast<float>(levels[x + 1]) * odd);
    }
    if (width % 2 != 0) {
        levels[width - 1] = rounded(static_cast<float>(levels[width - 1]) * even);
    }
}

ColourTurn colourTurnOf(const SensorState& state)
{
    const double saturation = static_cast<double>(state.saturationPercent) / 100;
    const double angle = static_cast<double>(state.hueDegrees) * std::numbers::pi / 180;
    return {static_cast<float>(saturation * std::cos(angle)),
            static_cast<float>(saturation * std::sin(angle))};
}

void turnColours(Row& rgb, unsigned width, const ColourTurn& by)
{
    const ColourTurn turn = by; // cannot be changed through the planes, as the compiler then knows
    Level* red = rgb.plane(0);
    Level* green = rgb.plane(1);
    Level* blue = rgb.plane(2);
    for (unsigned x = 0; x < width; ++x) {
        const auto r = static_cast<float>(red[x]);
        const auto g = static_cast<float>(green[x]);
        const auto b = static_cast<float>(blue[x]);
        const float luminance = 0.299F * r + 0.587F * g + 0.114F * b;
        const float blueness = (b - luminance) / 1.772F;
        const float redness = (r - luminance) / 1.402F;
        const float newBlueness = turn.along * blueness - turn.across * redness;
        const float newRedness = turn.across * blueness + turn.along * redness;
        red[x] = rounded(luminance + 1.402F * newRedness);
        green[x] = rounded(luminance - 0.344136F * newBlueness - 0.714136F * newRedness);
        blue[x] = rounded(luminance + 1.772F * newBlueness);
    }
}

} // namespace fcsim
