// Turns the camera's pixels into pictures that an encoder takes.
#include "picture/picture_decode.h"

#include "picture/picture_bayer.h"
#include "picture/picture_yuv.h"

#include <algorithm>
#include <cstring>

namespace kxhost {

namespace {

void shape(Picture& picture, std::uint32_t channels, std::uint32_t bitDepth,
           std::uint32_t significantBits)
{
    picture.channels = channels;
    picture.bitDepth = bitDepth;
    picture.significantBits = significantBits;
    picture.bytes.resize(picture.lineBytes() * picture.height);
}

void storeSample16(std::uint8_t* to, unsigned value)
{
    const auto sample = static_cast<std::uint16_t>(value);
    std::memcpy(to, &sample, sizeof sample);
}

/// One line of 12-bit pixels, two in three bytes.
void unpack12(const std::uint8_t* in, std::uint32_t width, std::uint8_t* out)
{
    for (std::uint32_t x = 0; x < width; x += 2, in += 3) {
        storeSample16(out + std::size_t{x} * 2, (unsigned{in[0]} << 8U) | ((in[1] & 0x0FU) << 4U));
        if (x + 1 < width) {
            storeSample16(out + std::size_t{x} * 2 + 2, (unsigned{in[2]} << 8U) | (in[1] & 0xF0U));
        }
    }
}

/// One line of 16-bit little-endian words.
void read16(const std::uint8_t* in, std::uint32_t width, std::uint8_t* out)
{
    for (std::uint32_t x = 0; x < width; ++x, in += 2, out += 2) {
        storeSample16(out, in[0] | (unsigned{in[1]} << 8U));
    }
}

using LineDecoder = void (*)(const std::uint8_t* in, std::uint32_t width, std::uint8_t* out);

void decodeLines(const Codec& codec, const std::uint8_t* pixels, LineDecoder line, Picture& out)
{
    const std::size_t inLine = lineBytes(codec, out.width);
    for (std::uint32_t y = 0; y < out.height; ++y) {
        line(pixels + y * inLine, out.width, out.bytes.data() + y * out.lineBytes());
    }
}

void copyGrey8(const std::uint8_t* pixels, Picture& out)
{
    shape(out, 1, 8, 8);
    std::copy_n(pixels, out.bytes.size(), out.bytes.begin());
}

} // namespace

void decode(const Codec& codec, std::uint32_t width, std::uint32_t height,
            const std::uint8_t* pixels, BayerPicture bayer, Picture& out)
{
    out.width = width;
    out.height = height;
    switch (codec.kind) {
    case PixelKind::kMono8:
        copyGrey8(pixels, out);
        break;
    case PixelKind::kMono12Packed:
        shape(out, 1, 16, 12);
        decodeLines(codec, pixels, unpack12, out);
        break;
    case PixelKind::kMono16:
        shape(out, 1, 16, 12);
        decodeLines(codec, pixels, read16, out);
        break;
    case PixelKind::kYuv411:
        shape(out, 3, 8, 8);
        decodeLines(codec, pixels, yuv411ToRgb, out);
        break;
    case PixelKind::kYuv422:
        shape(out, 3, 8, 8);
        decodeLines(codec, pixels, yuv422ToRgb, out);
        break;
    case PixelKind::kBayer8:
        if (bayer == BayerPicture::kMosaic) {
            copyGrey8(pixels, out);
        } else {
            shape(out, 3, 8, 8);
            bayerToRgb(pixels, codec.redX, codec.redY, out);
        }
        break;
    }
}

} // namespace kxhost
