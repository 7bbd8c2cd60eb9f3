// What a picture of a simulated camera must look like.
#include "ground_truth.h"

#include "scene/pixel_format.h"
#include "scene/renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace kxtest {

namespace {

/// A colour that the mosaic does not show at a pixel.
constexpr int kUnknown = -1;

FlyCapture2::PixelFormat formatOf(const std::string& codec)
{
    static const std::map<std::string, FlyCapture2::PixelFormat> kFormats = {
        {"MONO8T", FlyCapture2::PIXEL_FORMAT_MONO8},
        {"MONO12PT", FlyCapture2::PIXEL_FORMAT_MONO12},
        {"MONO12T", FlyCapture2::PIXEL_FORMAT_MONO16},
        {"YUV411T", FlyCapture2::PIXEL_FORMAT_411YUV8},
        {"UYVY", FlyCapture2::PIXEL_FORMAT_422YUV8},
    };
    const auto found = kFormats.find(codec);
    return found == kFormats.end() ? FlyCapture2::PIXEL_FORMAT_RAW8 : found->second;
}

void addRgb(std::vector<int>& samples, int luma, int chromaU, int chromaV)
{
    const double u = chromaU - 128;
    const double v = chromaV - 128;
    for (const double value :
         {luma + 1.402 * v, luma - 0.344136 * u - 0.714136 * v, luma + 1.772 * u}) {
        samples.push_back(static_cast<int>(std::lround(std::clamp(value, 0.0, 255.0))));
    }
}

void addTwelveBits(std::vector<int>& samples, const Bytes& pixels)
{
    for (std::size_t i = 0; i + 2 < pixels.size(); i += 3) {
        samples.push_back(pixels[i] * 256 + pixels[i + 1] % 16 * 16);
        samples.push_back(pixels[i + 2] * 256 + pixels[i + 1] / 16 * 16);
    }
}

/// `codec` names the first two pixels of the tile, "BayerRG8T" or so.
void addMosaic(std::vector<int>& samples, const std::string& codec, std::uint32_t width,
               const Bytes& pixels)
{
    const std::string first = codec.substr(5, 2);
    const std::string tile = first == "RG"   ? "RGGB"
                             : first == "GR" ? "GRBG"
                             : first == "GB" ? "GBRG"
                                             : "BGGR";
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const char colour = tile[i / width % 2 * 2 + i % width % 2];
        samples.push_back(colour == 'R' ? pixels[i] : kUnknown);
        samples.push_back(colour == 'G' ? pixels[i] : kUnknown);
        samples.push_back(colour == 'B' ? pixels[i] : kUnknown);
    }
}

fcsim::SensorSettings settingsOf(const TestSensor& sensor)
{
    static const std::map<std::string, FlyCapture2::BayerTileFormat> kTiles = {
        {"", FlyCapture2::NONE},     {"RGGB", FlyCapture2::RGGB}, {"GRBG", FlyCapture2::GRBG},
        {"GBRG", FlyCapture2::GBRG}, {"BGGR", FlyCapture2::BGGR},
    };
    fcsim::SensorSettings settings;
    settings.colour = !sensor.tile.empty();
    settings.tile = kTiles.at(sensor.tile);
    settings.width = sensor.width;
    settings.height = sensor.height;
    settings.title = std::string(kModel) + " " + std::to_string(kSerial);
    return settings;
}

} // namespace

Bytes truePixels(const TestSensor& sensor, const nlohmann::json& frame, Offset offset)
{
    fcsim::FrameRequest request;
    request.format = formatOf(frame["codec"]);
    request.offsetX = offset.x;
    request.offsetY = offset.y;
    request.width = frame["width"];
    request.height = frame["height"];
    request.number = frame["frame_counter"];
    request.state.shutterUs = frame["exposure_us"];
    request.state.gainDb = frame["gain_db"];
    Bytes pixels(fcsim::packedSize(request.format, request.width, request.height));
    fcsim::Renderer({}, settingsOf(sensor)).render(request, pixels.data());
    return pixels;
}

ExpectedPicture expectedPicture(const std::string& codec, std::uint32_t width, std::uint32_t height,
                                const Bytes& pixels)
{
    ExpectedPicture expected;
    if (codec == "MONO8T") {
        expected.samples.assign(pixels.begin(), pixels.end());
    } else if (codec == "MONO12PT") {
        expected.bitDepth = 16;
        addTwelveBits(expected.samples, pixels);
    } else if (codec == "MONO12T") {
        expected.bitDepth = 16;
        for (std::size_t i = 0; i < pixels.size(); i += 2) {
            expected.samples.push_back(pixels[i] + 256 * pixels[i + 1]);
        }
    } else if (codec == "UYVY") {
        expected.channels = 3;
        expected.tolerance = 1;
        for (std::size_t i = 0; i < pixels.size(); i += 4) {
            addRgb(expected.samples, pixels[i + 1], pixels[i], pixels[i + 2]);
            addRgb(expected.samples, pixels[i + 3], pixels[i], pixels[i + 2]);
        }
    } else if (codec == "YUV411T") {
        expected.channels = 3;
        expected.tolerance = 1;
        for (std::size_t i = 0; i < pixels.size(); i += 6) {
            for (const std::size_t y : {1U, 2U, 4U, 5U}) {
                addRgb(expected.samples, pixels[i + y], pixels[i], pixels[i + 3]);
            }
        }
    } else {
        expected.channels = 3;
        addMosaic(expected.samples, codec, width, pixels);
    }
    EXPECT_EQ(expected.samples.size(), std::size_t{width} * height * expected.channels);
    return expected;
}

void expectPicture(const ReadPicture& read, const ExpectedPicture& expected, std::uint32_t width,
                   std::uint32_t height)
{
    ASSERT_EQ(read.width, width);
    ASSERT_EQ(read.height, height);
    ASSERT_EQ(read.channels, expected.channels);
    ASSERT_EQ(read.bitDepth, expected.bitDepth);
    ASSERT_EQ(read.samples.size(), expected.samples.size());
    for (std::size_t i = 0; i < read.samples.size(); ++i) {
        if (expected.samples[i] != kUnknown) {
            ASSERT_NEAR(read.samples[i], expected.samples[i], expected.tolerance)
                << "sample " << i << " at x=" << i / read.channels % width
                << " y=" << i / read.channels / width;
        }
    }
}

} // namespace kxtest
