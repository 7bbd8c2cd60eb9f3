// Colour from a Bayer mosaic by bilinear interpolation.
#ifndef KXHOST_PICTURE_BAYER_H
#define KXHOST_PICTURE_BAYER_H

#include "picture/picture.h"

#include <cstdint>

namespace kxhost {

/// Fills `out` (already shaped as 8-bit RGB) from a mosaic of the same size whose red pixels stand
/// at (redX, redY) of each 2 x 2 tile. A pixel's own colour is kept exactly; each of the others is
/// the rounded mean of its nearest neighbours of that colour. At the edges the mosaic is continued
/// by mirroring. Thread-safe.
void bayerToRgb(const std::uint8_t* mosaic, int redX, int redY, Picture& out);

} // namespace kxhost

#endif
