// The look-up table of a configuration: exactly one source, always as many entries as the camera
// has.
#ifndef KXHOST_CONFIG_LUT_H
#define KXHOST_CONFIG_LUT_H

#include "config/config.h"

namespace kxhost {

/// Fills the table from the file or the curve that was given, and checks one that was written out
/// against its bit width.
ConfigErrors completeLut(Configuration& configuration);

} // namespace kxhost

#endif
