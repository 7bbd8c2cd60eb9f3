// From light to the levels of the converter: exposure, full well, noise, gain, black level.
//
// With light L (0 to 65535), everything in levels of the frame (full scale 65535):
//   signal = L x scene brightness x shutter / reference exposure
//   charge = signal + noise, at most the full well, which is full scale at 0 dB
//   level  = charge x gain, at most full scale, plus black level, within 0 and full scale
// The converter then cuts what is finer than its bits. The noise is normal with the variance of
// shot noise (as many electrons squared as the signal has electrons) and read noise together.
#ifndef FCSIM_SENSOR_EXPOSURE_H
#define FCSIM_SENSOR_EXPOSURE_H

#include "scene/pixel_row.h"
#include "scene/renderer.h"

namespace fcsim {

/// The chain above as coefficients, limits drawn together.
struct ExposureChain {
    float slope = 1;          ///< levels per level of light
    float offset = 0;         ///< black level
    float slopeVariance = 0;  ///< of the noise, per level of light
    float offsetVariance = 0; ///< of the noise, without light
    float ceiling = 65535;    ///< largest level: full well or end of the converter
    unsigned kept = 0xFFFF;   ///< bits of the level that the converter has
};

ExposureChain makeExposureChain(const SceneSettings& scene, const SensorSettings& sensor,
                                const SensorState& state);

/// Exposes `width` pixels. `deviates` (mean 0, variance 1) make the noise; null leaves it out.
/// `out` may be `light`.
void exposeRow(const Level* light, unsigned width, const ExposureChain& exposure,
               const float* deviates, Level* out);

} // namespace fcsim

#endif
