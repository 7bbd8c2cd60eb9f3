// How a camera makes edges softer or crisper.
#ifndef FCSIM_SENSOR_SHARPNESS_H
#define FCSIM_SENSOR_SHARPNESS_H

#include "scene/pixel_row.h"

namespace fcsim {

/// How much of a pixel's difference from its neighbours SHARPNESS adds: 0 at the neutral value,
/// -0.5 at 0 (a blur), 1.5 at 4096.
float sharpnessStrength(unsigned sharpness);

/// Adds to each pixel `strength` times its difference from the mean of its neighbours in the row;
/// at the ends the pixel stands in for the one that is missing. `out` must not overlap `levels`.
void sharpenRow(const Level* levels, unsigned width, float strength, Level* out);

} // namespace fcsim

#endif
