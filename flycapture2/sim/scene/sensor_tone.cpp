// The last step before a camera sends its levels: gamma, then the look-up table.
#include "scene/sensor_tone.h"

#include <algorithm>
#include <cmath>

namespace fcsim {

namespace {

Level throughGamma(std::size_t step, float gamma)
{
    if (gamma == 1) {
        return static_cast<Level>(step << 4U);
    }
    const double part = std::pow(static_cast<double>(step) / 4095, 1 / static_cast<double>(gamma));
    return static_cast<Level>(std::lround(part * 65535));
}

Level throughLut(Level level, const SensorLut& lut, unsigned plane)
{
    const auto& entries = lut.channels[plane < lut.channels.size() ? plane : 0];
    const std::size_t index = std::size_t{level} >> (16 - lut.inputBits);
    return static_cast<Level>(entries[std::min(index, entries.size() - 1)]
                              << (16 - lut.outputBits));
}

} // namespace

void ToneCurve::set(const SensorState& state)
{
    if (state.gamma == gamma_ && state.lut == lut_) {
        return;
    }
    gamma_ = state.gamma;
    lut_ = state.lut;
    fill();
}

void ToneCurve::fill()
{
    for (std::size_t step = 0; step < tables_[0].size(); ++step) {
        const Level level = throughGamma(step, gamma_);
        for (unsigned plane = 0; plane < tables_.size(); ++plane) {
            tables_[plane][step] = lut_ == nullptr ? level : throughLut(level, *lut_, plane);
        }
    }
}

void ToneCurve::apply(unsigned plane, Level* levels, unsigned width) const
{
    if (straight()) {
        return;
    }
    std::transform(levels, levels + width, levels,
                   [&table = tables_[plane]](Level level) { return table[level >> 4]; });
}

} // namespace fcsim
