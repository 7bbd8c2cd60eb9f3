// Packed rows of every pixel format to samples, and samples to packed rows.
//
// Bytes of the formats, in order:
//   MONO8, RAW8      one byte per pixel
//   MONO16, RAW16    low byte first; 12 significant bits, left-aligned (level << 4), as the cameras
//                    deliver them; all 16 bits are read
//   MONO12, RAW12    3 bytes for 2 pixels: high 8 bits of pixel 0; low 4 bits of pixel 0 (in bits
//                    0..3) and of pixel 1 (in bits 4..7); high 8 bits of pixel 1
//   411YUV8          U Y0 Y1 V Y2 Y3      for 4 pixels
//   422YUV8          U Y0 V Y1            for 2 pixels
//   444YUV8          U Y V
//   RGB8, BGR        as the name says;  BGRU the same with a fourth byte, written as 255
// Pixels that share colour get the rounded mean of theirs.
#ifndef FCSIM_PIXEL_CODEC_H
#define FCSIM_PIXEL_CODEC_H

#include "scene/pixel_row.h"

#include <FlyCapture2.h>

#include <cstdint>

namespace fcsim {

/// How rows of one format are read and written. RAW formats decode to the grey levels behind the
/// colour filter (see pixel_bayer.h).
struct PixelCodec {
    FlyCapture2::PixelFormat format;
    Space space; ///< of the rows that `decode` yields and `encode` takes
    void (*decode)(const std::uint8_t* packed, unsigned width, Row& out);
    void (*encode)(const RowView& row, std::uint8_t* packed);
};

/// The codec of `format`, or null for formats that are not implemented. Widths given to it are
/// multiples of the format's pixels per group. Thread-safe.
const PixelCodec* findPixelCodec(FlyCapture2::PixelFormat format);

} // namespace fcsim

#endif
