// The pixel formats as they lie in memory: names, bits, sizes.
#ifndef FCSIM_PIXEL_FORMAT_H
#define FCSIM_PIXEL_FORMAT_H

#include <FlyCapture2.h>

#include <cstddef>

namespace fcsim {

/// How pixels of one format lie in memory.
struct PixelLayout {
    FlyCapture2::PixelFormat format;
    const char* name;        ///< as in the SDK, without the prefix: "MONO8", "411YUV8"
    unsigned bitsPerPixel;   ///< on average; 0 where the size depends on the content
    unsigned pixelsPerGroup; ///< pixels that share bytes; widths are multiples of it
};

/// Layout of `format`, or null when the SDK has no such format. Thread-safe.
const PixelLayout* findPixelLayout(FlyCapture2::PixelFormat format);
/// Name of `format` for messages, "unknown" when the SDK has no such format. Thread-safe.
const char* pixelFormatName(FlyCapture2::PixelFormat format);
/// True for RAW8, RAW12 and RAW16, whose samples sit behind the sensor's colour filter.
bool isRawFormat(FlyCapture2::PixelFormat format);
/// Bytes of a row of `width` pixels without padding; 0 for an unknown format. Thread-safe.
std::size_t packedRowSize(FlyCapture2::PixelFormat format, unsigned width);
/// Bytes of a whole picture whose rows follow each other without padding. Thread-safe.
std::size_t packedSize(FlyCapture2::PixelFormat format, unsigned width, unsigned height);

} // namespace fcsim

#endif
