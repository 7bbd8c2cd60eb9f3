// Reads PNG and TIFF pictures back, sample by sample.
#ifndef KX_TEST_READ_PICTURE_H
#define KX_TEST_READ_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kxtest {

struct ReadPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t channels = 0;
    std::uint32_t bitDepth = 0;
    std::uint32_t significantBits = 0; ///< of an sBIT chunk; 0 = none
    std::vector<std::uint16_t> samples;

    std::uint16_t at(std::uint32_t x, std::uint32_t y, std::uint32_t channel = 0) const
    {
        return samples.at((std::size_t{y} * width + x) * channels + channel);
    }
};

/// Read with libpng and libtiff. A picture that cannot be read has width 0.
ReadPicture readPng(const std::string& path);
ReadPicture readTiff(const std::string& path);

} // namespace kxtest

#endif
