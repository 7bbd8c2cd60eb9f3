// What a camera of some kind has when its description does not say otherwise.
#ifndef FCSIM_CAMERA_DEFAULTS_H
#define FCSIM_CAMERA_DEFAULTS_H

#include "description/bus_description.h"

namespace fcsim {

/// Properties, pixel formats and embeddable items of a camera with this sensor. To be called before
/// the keys for them are read.
void setSensorDefaults(CameraDescription& camera);
/// Fills in what is still open: packet sizes and bandwidth by interface, sizes by sensor. To be
/// called after all keys are read.
void completeDescription(CameraDescription& camera);

} // namespace fcsim

#endif
