// How often each brightness occurs in a frame, colour by colour.
#ifndef KXHOST_HISTOGRAM_H
#define KXHOST_HISTOGRAM_H

#include "picture/picture.h"
#include "picture/picture_codec.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kxhost {

struct ChannelHistogram {
    static constexpr std::size_t kBins = 256;

    std::array<std::uint64_t, kBins> bins{}; ///< dark to bright, each of levels / kBins levels
    std::uint64_t pixels = 0;                ///< the sum of all bins
    std::uint64_t darkest = 0;               ///< pixels at the lowest level: clipped, or black
    std::uint64_t brightest = 0;             ///< pixels at the highest level: clipped

    bool operator==(const ChannelHistogram&) const = default;
};

struct Histogram {
    std::uint32_t channels = 0;             ///< 1 grey; 3 red, green, blue; 0 = of no frame
    std::uint32_t levels = 256;             ///< that a pixel can have: 256 or 4096
    std::array<ChannelHistogram, 3> each{}; ///< the first `channels` of them

    bool operator==(const Histogram&) const = default;
};

/// Counts the pixels of `pictureBytes(codec, width, height)` bytes. Those of a Bayer mosaic count
/// for their own colour only, without interpolation; YUV is converted to RGB first. `scratch` keeps
/// working memory from one frame to the next. Thread-safe.
Histogram histogramOf(const Codec& codec, std::uint32_t width, std::uint32_t height,
                      const std::uint8_t* pixels, Picture& scratch);

} // namespace kxhost

#endif
