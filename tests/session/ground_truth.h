// What a picture of a simulated camera must look like: its pixels as the camera made them, and the
// samples that a picture file must hold for them.
#ifndef KX_TEST_GROUND_TRUTH_H
#define KX_TEST_GROUND_TRUTH_H

#include "grab_session.h"
#include "read_picture.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace kxtest {

using Bytes = std::vector<std::uint8_t>;

/// Place of the region on the sensor.
struct Offset {
    unsigned x = 0;
    unsigned y = 0;
};

/// The packed pixels of the frame that a line of metadata describes, made by the simulation's own
/// renderer for a camera with this sensor. The line's frame counter says which frame it is.
Bytes truePixels(const TestSensor& sensor, const nlohmann::json& frame, Offset offset = {});

/// Samples of packed pixels, worked out here independently of the host: grey of 8 bits, grey of 16
/// bits with 12 at the top, or R G B; and how far a sample may be off. Of the colours made of a
/// mosaic only those that the sensor saw are known, the others are -1.
struct ExpectedPicture {
    std::uint32_t channels = 1;
    std::uint32_t bitDepth = 8;
    std::vector<int> samples;
    int tolerance = 0;
};
ExpectedPicture expectedPicture(const std::string& codec, std::uint32_t width, std::uint32_t height,
                                const Bytes& pixels);

/// Compares; the first difference fails the test.
void expectPicture(const ReadPicture& read, const ExpectedPicture& expected, std::uint32_t width,
                   std::uint32_t height);

} // namespace kxtest

#endif
