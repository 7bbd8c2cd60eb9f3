// How a camera makes edges softer or crisper.
#include "scene/sensor_sharpness.h"

#include "scene/sensor_state.h"

#include <algorithm>

namespace fcsim {

namespace {

constexpr float kFullScale = 65535;

Level sharpened(Level left, Level here, Level right, float strength)
{
    const auto level = static_cast<float>(here);
    const float around = 0.5F * static_cast<float>(left + right);
    const float sharp = level + strength * (level - around);
    return static_cast<Level>(static_cast<int>(std::min(std::max(sharp, 0.0F), kFullScale)));
}

} // namespace

float sharpnessStrength(unsigned sharpness)
{
    return static_cast<float>(sharpness) / (2.0F * kNeutralSharpness) - 0.5F;
}

void sharpenRow(const Level* levels, unsigned width, float strength, Level* out)
{
    if (width < 2) {
        std::copy_n(levels, width, out);
        return;
    }
    const unsigned last = width - 1;
    out[0] = sharpened(levels[0], levels[0], levels[1], strength);
    for (unsigned x = 1; x < last; ++x) {
        out[x] = sharpened(levels[x - 1], levels[x], levels[x + 1], strength);
    }
    out[last] = sharpened(levels[last - 1], levels[last], levels[last], strength);
}

} // namespace fcsim
