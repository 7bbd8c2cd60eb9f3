// A picture ready to be encoded: grey or RGB samples of 8 or 16 bits.
#ifndef KXHOST_PICTURE_H
#define KXHOST_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kxhost {

struct Picture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t channels = 1;        ///< 1 grey, 3 RGB
    std::uint32_t bitDepth = 8;        ///< of one sample: 8 or 16
    std::uint32_t significantBits = 8; ///< of one sample, at its top
    std::vector<std::uint8_t> bytes; ///< lines without padding, 16-bit samples in the host's order

    std::size_t lineBytes() const { return std::size_t{width} * channels * (bitDepth / 8); }
};

} // namespace kxhost

#endif
