// The noise of a frame: normal deviates that are the same each time that they are asked for.
#include "scene/sensor_noise.h"

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace fcsim {

namespace {

/// Places where a row can begin; a power of two.
constexpr std::size_t kStarts = std::size_t{1} << 16;

/// Spreads neighbouring numbers over all 64 bits.
std::uint64_t scattered(std::uint64_t value)
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9U;
    value = (value ^ value >> 27) * 0x94D049BB133111EBU;
    return value ^ value >> 31;
}

/// Evenly distributed above 0, up to 1.
double uniform(std::uint64_t index)
{
    return std::ldexp(static_cast<double>((scattered(index) >> 11) + 1), -53);
}

std::vector<float> makeTable()
{
    std::vector<float> table(kStarts + kMaxNoiseWidth);
    for (std::size_t i = 0; i < table.size(); i += 2) {
        // Box and Muller: two normal deviates from two even ones.
        const double radius = std::sqrt(-2 * std::log(uniform(i)));
        const double angle = 2 * std::numbers::pi * uniform(i + 1);
        table[i] = static_cast<float>(radius * std::cos(angle));
        table[i + 1] = static_cast<float>(radius * std::sin(angle));
    }
    return table;
}

const float* deviates()
{
    static const std::vector<float> kTable = makeTable();
    return kTable.data();
}

} // namespace

FrameNoise::FrameNoise(std::uint64_t seed, std::uint64_t frame)
    : table_(deviates()), key_(scattered(scattered(seed) + frame))
{}

const float* FrameNoise::row(unsigned plane, int x, int y) const
{
    const std::uint64_t line = static_cast<std::uint64_t>(y) * 3 + plane;
    return table_ + scattered(key_ + line) % kStarts + x;
}

} // namespace fcsim
