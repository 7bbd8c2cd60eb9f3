// The pixel formats as they lie in memory: names, bits, sizes.
#include "scene/pixel_format.h"

#include <algorithm>
#include <array>

namespace fcsim {

namespace {

constexpr std::array kLayouts = {
    PixelLayout{FlyCapture2::PIXEL_FORMAT_MONO8, "MONO8", 8, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_411YUV8, "411YUV8", 12, 4},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_422YUV8, "422YUV8", 16, 2},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_444YUV8, "444YUV8", 24, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_RGB8, "RGB8", 24, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_MONO16, "MONO16", 16, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_RGB16, "RGB16", 48, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_S_MONO16, "S_MONO16", 16, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_S_RGB16, "S_RGB16", 48, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_RAW8, "RAW8", 8, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_RAW16, "RAW16", 16, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_MONO12, "MONO12", 12, 2},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_RAW12, "RAW12", 12, 2},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_BGR, "BGR", 24, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_BGRU, "BGRU", 32, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_RGBU, "RGBU", 32, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_BGR16, "BGR16", 48, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_BGRU16, "BGRU16", 64, 1},
    PixelLayout{FlyCapture2::PIXEL_FORMAT_422YUV8_JPEG, "422YUV8_JPEG", 0, 2},
};

} // namespace

const PixelLayout* findPixelLayout(FlyCapture2::PixelFormat format)
{
    const auto* found =
        std::find_if(kLayouts.begin(), kLayouts.end(),
                     [format](const PixelLayout& layout) { return layout.format == format; });
    return found == kLayouts.end() ? nullptr : found;
}

const char* pixelFormatName(FlyCapture2::PixelFormat format)
{
    const PixelLayout* layout = findPixelLayout(format);
    return layout == nullptr ? "unknown" : layout->name;
}

bool isRawFormat(FlyCapture2::PixelFormat format)
{
    return format == FlyCapture2::PIXEL_FORMAT_RAW8 || format == FlyCapture2::PIXEL_FORMAT_RAW12 ||
           format == FlyCapture2::PIXEL_FORMAT_RAW16;
}

std::size_t packedRowSize(FlyCapture2::PixelFormat format, unsigned width)
{
    const PixelLayout* layout = findPixelLayout(format);
    return layout == nullptr ? 0 : (std::size_t{width} * layout->bitsPerPixel + 7) / 8;
}

std::size_t packedSize(FlyCapture2::PixelFormat format, unsigned width, unsigned height)
{
    return packedRowSize(format, width) * height;
}

} // namespace fcsim
