// Histogram equalisation: how often each grey level occurs in a frame, and the look-up table that
// spreads the levels out.
#ifndef KXHOST_EQUALISATION_H
#define KXHOST_EQUALISATION_H

#include "picture/picture_codec.h"

#include <cstdint>
#include <span>

namespace kxhost {

/// Fills `cdf` with the cumulative distribution of the frame's brightness: entry i counts the
/// pixels of level i and below, where levels stand at the top of the pixel's bits in memory. The
/// brightness is the grey value, the luminance of YUV pixels, or each pixel of a Bayer mosaic. A
/// format with fewer levels than entries fills those between two levels with a straight line.
/// `pitch` is the length of a line in pixels. REQUIRES: 2^bits entries, where bits are the codec's
/// in memory.
void cumulate(const Codec& codec, const void* pixels, std::uint32_t width, std::uint32_t height,
              std::uint32_t pitch, std::span<std::uint32_t> cdf);

/// Computes the table that makes the levels of a frame with this distribution equally frequent,
/// with values from 0 to `largestLutValue(valueBits)`. No part of it is steeper than `clipLimit` (1
/// and above) times the straight line: 1 gives the straight line, 2^bits of the table has no
/// effect. A distribution of one level only, or of none, gives the straight line. REQUIRES: powers
/// of two for both sizes, `valueBits` from 1 to 16.
void equalise(std::span<const std::uint32_t> cdf, double clipLimit, unsigned valueBits,
              std::span<std::uint16_t> table);

} // namespace kxhost

#endif
