// The codecs that the plug-in publishes: the table and the sizes that follow from it.
#include "picture/picture_codec.h"

#include <algorithm>
#include <array>

namespace kxhost {

namespace {

constexpr std::array kCodecs = {
    Codec{"MONO8T", PixelKind::kMono8, 8},
    Codec{"MONO12PT", PixelKind::kMono12Packed, 12},
    Codec{"MONO12T", PixelKind::kMono16, 16},
    Codec{"YUV411T", PixelKind::kYuv411, 12},
    Codec{"UYVY", PixelKind::kYuv422, 16},
    Codec{"BayerRG8T", PixelKind::kBayer8, 8, 0, 0},
    Codec{"BayerGR8T", PixelKind::kBayer8, 8, 1, 0},
    Codec{"BayerGB8T", PixelKind::kBayer8, 8, 0, 1},
    Codec{"BayerBG8T", PixelKind::kBayer8, 8, 1, 1},
};

} // namespace

const Codec* findCodec(std::string_view name)
{
    const auto* const found = std::find_if(kCodecs.begin(), kCodecs.end(),
                                           [&](const Codec& codec) { return codec.name == name; });
    return found == kCodecs.end() ? nullptr : found;
}

std::size_t lineBytes(const Codec& codec, std::uint32_t width)
{
    return (std::size_t{width} * codec.bitsPerPixel + 7) / 8;
}

std::size_t pictureBytes(const Codec& codec, std::uint32_t width, std::uint32_t height)
{
    return lineBytes(codec, width) * height;
}

} // namespace kxhost
