// What a camera's metering sees: the mean level of a region before gamma and look-up table.
#ifndef FCSIM_METERING_H
#define FCSIM_METERING_H

#include "scene/scene_canvas.h"
#include "scene/sensor_response.h"

namespace fcsim {

/// Mean level, 0 to 1, of what `response` makes of the light on `region` at a fixed grid of points:
/// of luma where there is colour, of the mosaic in RAW formats. REQUIRES: `region` lies on the
/// canvas and is not empty; `response` has begun the frame.
double meteredMean(const Canvas& light, const Rect& region, SensorResponse& response);

} // namespace fcsim

#endif
