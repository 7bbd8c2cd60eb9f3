// Packed rows of every pixel format to samples, and samples to packed rows.
#include "scene/pixel_codec.h"

#include <algorithm>
#include <array>

namespace fcsim {

namespace {

using std::uint8_t;

constexpr uint8_t highByte(Level level)
{
    return static_cast<uint8_t>(level >> 8);
}

constexpr Level fromHighByte(uint8_t value)
{
    return static_cast<Level>(value << 8);
}

void decode8(const uint8_t* packed, unsigned width, Row& out)
{
    std::transform(packed, packed + width, out.plane(0), fromHighByte);
}

void encode8(const RowView& row, uint8_t* packed)
{
    std::transform(row.plane[0], row.plane[0] + row.width, packed, highByte);
}

void decode16(const uint8_t* packed, unsigned width, Row& out)
{
    Level* level = out.plane(0);
    for (unsigned x = 0; x < width; ++x, packed += 2) {
        level[x] = static_cast<Level>(packed[0] | packed[1] << 8);
    }
}

void encode16(const RowView& row, uint8_t* packed)
{
    const Level* level = row.plane[0];
    for (unsigned x = 0; x < row.width; ++x, packed += 2) {
        packed[0] = static_cast<uint8_t>(level[x] & 0xF0U);
        packed[1] = highByte(level[x]);
    }
}

void decode12(const uint8_t* packed, unsigned width, Row& out)
{
    Level* level = out.plane(0);
    for (unsigned x = 0; x + 1 < width; x += 2, packed += 3) {
        level[x] = static_cast<Level>(fromHighByte(packed[0]) | (packed[1] & 0x0FU) << 4);
        level[x + 1] = static_cast<Level>(fromHighByte(packed[2]) | (packed[1] & 0xF0U));
    }
}

void encode12(const RowView& row, uint8_t* packed)
{
    const Level* level = row.plane[0];
    for (unsigned x = 0; x + 1 < row.width; x += 2, packed += 3) {
        packed[0] = highByte(level[x]);
        packed[1] = static_cast<uint8_t>((level[x] & 0xF0U) >> 4 | (level[x + 1] & 0xF0U));
        packed[2] = highByte(level[x + 1]);
    }
}

/// Where the samples of a YUV group of `Pixels` pixels lie: U at 0, V at `v`, the Ys at `y`.
template <unsigned Pixels>
struct YuvGroup;
template <>
struct YuvGroup<1> {
    static constexpr unsigned v = 2;
    static constexpr std::array<unsigned, 1> y = {1};
};
template <>
struct YuvGroup<2> {
    static constexpr unsigned v = 2;
    static constexpr std::array<unsigned, 2> y = {1, 3};
};
template <>
struct YuvGroup<4> {
    static constexpr unsigned v = 3;
    static constexpr std::array<unsigned, 4> y = {1, 2, 4, 5};
};

template <unsigned Pixels>
void decodeYuv(const uint8_t* packed, unsigned width, Row& out)
{
    using Group = YuvGroup<Pixels>;
    Level* luminance = out.plane(0);
    Level* blueness = out.plane(1);
    Level* redness = out.plane(2);
    for (unsigned x = 0; x + Pixels <= width; x += Pixels, packed += Pixels + 2) {
        for (unsigned i = 0; i < Pixels; ++i) {
            luminance[x + i] = fromHighByte(packed[Group::y[i]]);
            blueness[x + i] = fromHighByte(packed[0]);
            redness[x + i] = fromHighByte(packed[Group::v]);
        }
    }
}

/// Rounded mean of the 8-bit values of `Pixels` neighbours.
template <unsigned Pixels>
uint8_t meanByte(const Level* level)
{
    unsigned sum = Pixels / 2;
    for (unsigned i = 0; i < Pixels; ++i) {
        sum += highByte(level[i]);
    }
    return static_cast<uint8_t>(sum / Pixels);
}

template <unsigned Pixels>
void encodeYuv(const RowView& row, uint8_t* packed)
{
    using Group = YuvGroup<Pixels>;
    for (unsigned x = 0; x + Pixels <= row.width; x += Pixels, packed += Pixels + 2) {
        packed[0] = meanByte<Pixels>(row.plane[1] + x);
        packed[Group::v] = meanByte<Pixels>(row.plane[2] + x);
        for (unsigned i = 0; i < Pixels; ++i) {
            packed[Group::y[i]] = highByte(row.plane[0][x + i]);
        }
    }
}

/// Colour as bytes: red at `Red`, green at 1, blue at 2 - `Red`, `Bytes` per pixel.
template <unsigned Red, unsigned Bytes>
void decodeRgb(const uint8_t* packed, unsigned width, Row& out)
{
    Level* red = out.plane(0);
    Level* green = out.plane(1);
    Level* blue = out.plane(2);
    for (unsigned x = 0; x < width; ++x, packed += Bytes) {
        red[x] = fromHighByte(packed[Red]);
        green[x] = fromHighByte(packed[1]);
        blue[x] = fromHighByte(packed[2 - Red]);
    }
}

template <unsigned Red, unsigned Bytes>
void encodeRgb(const RowView& row, uint8_t* packed)
{
    for (unsigned x = 0; x < row.width; ++x, packed += Bytes) {
        packed[Red] = highByte(row.plane[0][x]);
        packed[1] = highByte(row.plane[1][x]);
        packed[2 - Red] = highByte(row.plane[2][x]);
        if constexpr (Bytes == 4) {
            packed[3] = 0xFF;
        }
    }
}

constexpr std::array kCodecs = {
    PixelCodec{FlyCapture2::PIXEL_FORMAT_MONO8, Space::grey, decode8, encode8},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_RAW8, Space::grey, decode8, encode8},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_MONO12, Space::grey, decode12, encode12},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_RAW12, Space::grey, decode12, encode12},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_MONO16, Space::grey, decode16, encode16},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_RAW16, Space::grey, decode16, encode16},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_411YUV8, Space::yuv, decodeYuv<4>, encodeYuv<4>},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_422YUV8, Space::yuv, decodeYuv<2>, encodeYuv<2>},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_444YUV8, Space::yuv, decodeYuv<1>, encodeYuv<1>},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_RGB8, Space::rgb, decodeRgb<0, 3>, encodeRgb<0, 3>},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_BGR, Space::rgb, decodeRgb<2, 3>, encodeRgb<2, 3>},
    PixelCodec{FlyCapture2::PIXEL_FORMAT_BGRU, Space::rgb, decodeRgb<2, 4>, encodeRgb<2, 4>},
};

} // namespace

const PixelCodec* findPixelCodec(FlyCapture2::PixelFormat format)
{
    const auto* found = std::find_if(kCodecs.begin(), kCodecs.end(), [format](const auto& codec) {
        return codec.format == format;
    });
    return found == kCodecs.end() ? nullptr : found;
}

} // namespace fcsim
