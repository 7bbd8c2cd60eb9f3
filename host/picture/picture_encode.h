// Encoders: a picture to the bytes of a PNG or TIFF file.
#ifndef KXHOST_PICTURE_ENCODE_H
#define KXHOST_PICTURE_ENCODE_H

#include "picture/picture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

/// Replaces the content of `file` by the picture as PNG. `compression` is 0 (none) to 9. Pictures
/// of fewer significant bits than samples say so in an sBIT chunk. Returns an empty text or the
/// library's error. Thread-safe, as the next one.
std::string encodePng(const Picture& picture, int compression, std::vector<std::uint8_t>& file);
/// The same as uncompressed TIFF.
std::string encodeTiff(const Picture& picture, std::vector<std::uint8_t>& file);

} // namespace kxhost

#endif
