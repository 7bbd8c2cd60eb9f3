// Lines of YUV pixels to RGB: ITU-R BT.601, full range.
#include "picture/picture_yuv.h"

#include <algorithm>
#include <array>

namespace kxhost {

namespace {

// The coefficients of BT.601 in 1/65536: 1.402, 0.344136, 0.714136, 1.772.
constexpr int kRedOfV = 91881;
constexpr int kGreenOfU = 22554;
constexpr int kGreenOfV = 46802;
constexpr int kBlueOfU = 116130;
constexpr int kHalf = 1 << 15;

std::uint8_t clamp8(int value)
{
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

void pixelToRgb(int luma, int chromaU, int chromaV, std::uint8_t* out)
{
    const int u = chromaU - 128;
    const int v = chromaV - 128;
    out[0] = clamp8(luma + ((kRedOfV * v + kHalf) >> 16));
    out[1] = clamp8(luma + ((-kGreenOfU * u - kGreenOfV * v + kHalf) >> 16));
    out[2] = clamp8(luma + ((kBlueOfU * u + kHalf) >> 16));
}

/// Where U, V and the Y of each pixel stand in the group of bytes that shares its colour.
template <std::size_t Pixels>
struct Group {
    std::size_t bytes;
    std::size_t u;
    std::size_t v;
    std::array<std::size_t, Pixels> y;
};

template <std::size_t Pixels>
void lineToRgb(const Group<Pixels>& group, const std::uint8_t* in, std::uint32_t width,
               std::uint8_t* out)
{
    for (std::uint32_t x = 0; x < width; x += Pixels, in += group.bytes) {
        const auto pixels = std::min<std::size_t>(Pixels, width - x);
        for (std::size_t i = 0; i < pixels; ++i, out += 3) {
            pixelToRgb(in[group.y[i]], in[group.u], in[group.v], out);
        }
    }
}

} // namespace

void yuv411ToRgb(const std::uint8_t* in, std::uint32_t width, std::uint8_t* out)
{
    lineToRgb(Group<4>{6, 0, 3, {1, 2, 4, 5}}, in, width, out);
}

void yuv422ToRgb(const std::uint8_t* in, std::uint32_t width, std::uint8_t* out)
{
    lineToRgb(Group<2>{4, 0, 2, {1, 3}}, in, width, out);
}

} // namespace kxhost
