// How often each brightness occurs in a frame, colour by colour.
#include "picture/histogram.h"

#include "picture/picture_decode.h"

#include <cstring>

namespace kxhost {
namespace {

constexpr unsigned kBitsOf8 = 8;
constexpr unsigned kBitsOf12 = 12;

void count(ChannelHistogram& channel, unsigned level, unsigned bits)
{
    const unsigned highest = (1U << bits) - 1;
    ++channel.bins[level >> (bits - kBitsOf8)];
    ++channel.pixels;
    channel.darkest += level == 0 ? 1U : 0U;
    channel.brightest += level == highest ? 1U : 0U;
}

/// Samples of 16 bits, of which the upper 12 count.
void countWide(const Picture& picture, Histogram& histogram)
{
    histogram.levels = 1U << kBitsOf12;
    for (std::size_t at = 0; at < picture.bytes.size(); at += 2) {
        std::uint16_t sample = 0;
        std::memcpy(&sample, picture.bytes.data() + at, sizeof sample);
        count(histogram.each[0], unsigned{sample} >> (16U - kBitsOf12), kBitsOf12);
    }
}

void countMosaic(const Picture& picture, const Codec& codec, Histogram& histogram)
{
    histogram.channels = 3;
    const std::uint8_t* pixel = picture.bytes.data();
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        const bool redLine = y % 2 == static_cast<std::uint32_t>(codec.redY);
        for (std::uint32_t x = 0; x < picture.width; ++x, ++pixel) {
            const bool redColumn = x % 2 == static_cast<std::uint32_t>(codec.redX);
            const std::size_t colour = redLine != redColumn ? 1 : (redLine ? 0 : 2);
            count(histogram.each[colour], *pixel, kBitsOf8);
        }
    }
}

void countSamples(const Picture& picture, Histogram& histogram)
{
    histogram.channels = picture.channels;
    std::size_t channel = 0;
    for (const std::uint8_t sample : picture.bytes) {
        count(histogram.each[channel], sample, kBitsOf8);
        channel = channel + 1 == picture.channels ? 0 : channel + 1;
    }
}

} // namespace

Histogram histogramOf(const Codec& codec, std::uint32_t width, std::uint32_t height,
                      const std::uint8_t* pixels, Picture& scratch)
{
    decode(codec, width, height, pixels, BayerPicture::kMosaic, scratch);
    Histogram histogram;
    histogram.channels = 1;
    if (codec.kind == PixelKind::kBayer8) {
        countMosaic(scratch, codec, histogram);
    } else if (scratch.bitDepth == 16) {
        countWide(scratch, histogram);
    } else {
        countSamples(scratch, histogram);
    }
    return histogram;
}

} // namespace kxhost
