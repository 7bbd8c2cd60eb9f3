// Turns the camera's pixels into pictures that an encoder takes.
#ifndef KXHOST_PICTURE_DECODE_H
#define KXHOST_PICTURE_DECODE_H

#include "picture/picture.h"
#include "picture/picture_codec.h"

#include <cstdint>

namespace kxhost {

/// What a raw Bayer frame becomes.
enum class BayerPicture {
    kColour, ///< a colour picture, interpolated bilinearly
    kMosaic, ///< a grey picture of the mosaic, pixel by pixel as the sensor saw it
};

/// Decodes `pictureBytes(codec, width, height)` bytes. No bit is lost but in the conversion of YUV
/// and Bayer pixels to RGB: 12-bit values stand in the upper bits of 16, as the camera's own 16-bit
/// format has them. `out` keeps its memory from one picture to the next. Thread-safe.
void decode(const Codec& codec, std::uint32_t width, std::uint32_t height,
            const std::uint8_t* pixels, BayerPicture bayer, Picture& out);

} // namespace kxhost

#endif
