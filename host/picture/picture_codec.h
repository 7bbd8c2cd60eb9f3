// The codecs that the plug-in publishes: name, bits per pixel and what kind of pixels they are.
#ifndef KXHOST_PICTURE_CODEC_H
#define KXHOST_PICTURE_CODEC_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kxhost {

enum class PixelKind {
    kMono8,
    kMono12Packed, ///< two pixels in three bytes: high 8 of the first, low 4 of both, high 8 of the
                   ///< second
    kMono16,       ///< 12 significant bits at the top of 16-bit little-endian words
    kYuv411,       ///< U Y Y V Y Y: four pixels in six bytes
    kYuv422,       ///< U Y V Y: two pixels in four bytes
    kBayer8,
};

struct Codec {
    std::string_view name;
    PixelKind kind;
    std::uint32_t bitsPerPixel; ///< in memory
    int redX = 0;               ///< Bayer: place of the red pixel in the 2 x 2 tile
    int redY = 0;
};

/// The codec of this name; null = unknown. Static storage.
const Codec* findCodec(std::string_view name);

/// Bytes of one line, and of one picture without padding between its lines. A line whose bits do
/// not fill its last byte takes that byte whole.
std::size_t lineBytes(const Codec& codec, std::uint32_t width);
std::size_t pictureBytes(const Codec& codec, std::uint32_t width, std::uint32_t height);

} // namespace kxhost

#endif
