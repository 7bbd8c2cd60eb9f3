// From light to the levels of the converter: exposure, full well, noise, gain, black level.
#include "scene/sensor_exposure.h"

#include <algorithm>
#include <cmath>

namespace fcsim {

namespace {

constexpr double kFullScale = 65535;

Level converted(float level, const ExposureChain& exposure)
{
    const float limited = std::min(std::max(level, 0.0F), exposure.ceiling);
    return static_cast<Level>(static_cast<unsigned>(static_cast<int>(limited)) & exposure.kept);
}

} // namespace

ExposureChain makeExposureChain(const SceneSettings& scene, const SensorSettings& sensor,
                                const SensorState& state)
{
    const double signal =
        scene.brightness * static_cast<double>(state.shutterUs) / scene.referenceExposureUs;
    const double gain = std::pow(10.0, static_cast<double>(state.gainDb) / 20);
    const double black = static_cast<double>(state.brightnessPercent) / 100 * kFullScale;
    const double levelsPerElectron = kFullScale / sensor.fullWell * gain;
    const double readNoise = sensor.readNoise * levelsPerElectron;

    ExposureChain exposure;
    exposure.slope = static_cast<float>(signal * gain);
    exposure.offset = static_cast<float>(black);
    exposure.slopeVariance = static_cast<float>(signal * gain * levelsPerElectron);
    exposure.offsetVariance = static_cast<float>(readNoise * readNoise);
    exposure.ceiling = static_cast<float>(std::min(kFullScale * gain + black, kFullScale));
    exposure.kept = 0xFFFFU << (16 - std::clamp(sensor.bitDepth, 8U, 12U)) & 0xFFFFU;
    return exposure;
}

void exposeRow(const Level* light, unsigned width, const ExposureChain& exposure,
               const float* deviates, Level* out)
{
    const ExposureChain chain =
        exposure; // cannot be changed through `out`, as the compiler then knows
    if (deviates == nullptr) {
        for (unsigned x = 0; x < width; ++x) {
            const auto lit = static_cast<float>(light[x]);
            out[x] = converted(lit * chain.slope + chain.offset, chain);
        }
        return;
    }
    for (unsigned x = 0; x < width; ++x) {
        const auto lit = static_cast<float>(light[x]);
        const float deviation = std::sqrt(lit * chain.slopeVariance + chain.offsetVariance);
        out[x] = converted(lit * chain.slope + chain.offset + deviates[x] * deviation, chain);
    }
}

} // namespace fcsim
