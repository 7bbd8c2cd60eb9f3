// Whole pictures from one pixel format to another.
#ifndef FCSIM_CONVERT_H
#define FCSIM_CONVERT_H

#include <FlyCapture2.h>

#include <cstdint>
#include <string>

namespace fcsim {

/// A picture in memory.
struct PictureShape {
    unsigned rows = 0;
    unsigned cols = 0;
    unsigned stride = 0; ///< bytes from row to row
    FlyCapture2::PixelFormat format = FlyCapture2::UNSPECIFIED_PIXEL_FORMAT;
    FlyCapture2::BayerTileFormat tile = FlyCapture2::NONE;
};

/// Colour from a Bayer mosaic as `algorithm` asks: NEAREST_NEIGHBOR; every other one, DEFAULT too,
/// is bilinear here. NO_COLOR_PROCESSING takes the mosaic as grey levels.
///
/// Why the picture cannot be converted to `target`, as a sentence that names both formats: a format
/// that is not implemented, no pixels, a width that is no multiple of a format's pixels per group.
/// Empty when it can.
std::string conversionObstacle(const PictureShape& source, FlyCapture2::PixelFormat target);

/// True when converting keeps the mosaic as it is: from RAW to RAW.
bool keepsMosaic(const PictureShape& source, FlyCapture2::PixelFormat target);

/// Converts `source` at `pixels` to `target`, rows packed one after the other at `out`
/// (`packedSize` bytes). Colour becomes luma in grey and RAW formats. Allocates nothing once a
/// picture of this width was converted on the thread. Thread-safe.
/// REQUIRES: `conversionObstacle` is empty.
void convertPicture(const PictureShape& source, const std::uint8_t* pixels,
                    FlyCapture2::PixelFormat target,
                    FlyCapture2::ColorProcessingAlgorithm algorithm, std::uint8_t* out);

} // namespace fcsim

#endif
