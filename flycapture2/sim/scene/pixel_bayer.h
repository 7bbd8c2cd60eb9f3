// The colour filter on the sensor: which colour a pixel sees, and colour back from a mosaic.
#ifndef FCSIM_PIXEL_BAYER_H
#define FCSIM_PIXEL_BAYER_H

#include "scene/pixel_row.h"

#include <FlyCapture2.h>

#include <array>

namespace fcsim {

/// Colour plane (0 red, 1 green, 2 blue) behind pixel (x, y) of `tile`; only the parity of the
/// coordinates counts. REQUIRES: `tile` is not NONE.
unsigned bayerPlane(FlyCapture2::BayerTileFormat tile, unsigned x, unsigned y);

/// Takes from an RGB row what the sensor sees of it at (x0 + i, y). `out` becomes a grey row.
void mosaicRow(const RowView& rgb, FlyCapture2::BayerTileFormat tile, unsigned x0, unsigned y,
               Row& out);

/// How missing colours are guessed.
enum class Demosaic {
    nearest, ///< from the 2 x 2 tile the pixel lies in
    bilinear ///< mean of the nearest pixels of the colour; mirrored at the borders
};

/// Colour of row `y` of a mosaic. `rows` are the rows y - 1, y and y + 1; at the upper and lower
/// border the caller repeats y + 1 and y - 1. REQUIRES: at least 2 x 2 pixels.
void demosaicRow(const std::array<const Level*, 3>& rows, unsigned width,
                 FlyCapture2::BayerTileFormat tile, unsigned y, Demosaic method, Row& out);

} // namespace fcsim

#endif
