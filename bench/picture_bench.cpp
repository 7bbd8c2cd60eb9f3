// Time that a writer thread takes for one picture of 1280 x 1024: decoding and encoding, in memory.
#include "picture/picture_decode.h"
#include "picture/picture_encode.h"
#include "scene/renderer.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::uint32_t kWidth = 1280;
constexpr std::uint32_t kHeight = 1024;

struct Source {
    const char* codec;
    FlyCapture2::PixelFormat format;
};

constexpr Source kMono8{"MONO8T", FlyCapture2::PIXEL_FORMAT_MONO8};
constexpr Source kMono12{"MONO12PT", FlyCapture2::PIXEL_FORMAT_MONO12};
constexpr Source kYuv{"UYVY", FlyCapture2::PIXEL_FORMAT_422YUV8};
constexpr Source kBayer{"BayerRG8T", FlyCapture2::PIXEL_FORMAT_RAW8};

/// A frame of the built-in chart.
std::vector<std::uint8_t> frameOf(const Source& source)
{
    fcsim::SensorSettings sensor;
    sensor.colour = true;
    sensor.tile = FlyCapture2::RGGB;
    sensor.width = kWidth;
    sensor.height = kHeight;
    fcsim::FrameRequest request;
    request.format = source.format;
    request.width = kWidth;
    request.height = kHeight;
    std::vector<std::uint8_t> pixels(fcsim::packedSize(source.format, kWidth, kHeight));
    fcsim::Renderer({}, sensor).render(request, pixels.data());
    return pixels;
}

kxhost::Picture decoded(const Source& source, const std::vector<std::uint8_t>& pixels)
{
    kxhost::Picture picture;
    kxhost::decode(*kxhost::findCodec(source.codec), kWidth, kHeight, pixels.data(),
                   kxhost::BayerPicture::kColour, picture);
    return picture;
}

void decodePixels(benchmark::State& state, const Source& source)
{
    const std::vector<std::uint8_t> pixels = frameOf(source);
    kxhost::Picture picture = decoded(source, pixels);
    for (auto _ : state) {
        kxhost::decode(*kxhost::findCodec(source.codec), kWidth, kHeight, pixels.data(),
                       kxhost::BayerPicture::kColour, picture);
        benchmark::DoNotOptimize(picture.bytes.data());
    }
}
BENCHMARK_CAPTURE(decodePixels, mono12_packed, kMono12)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodePixels, yuv422, kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decodePixels, bayer_colour, kBayer)->Unit(benchmark::kMillisecond);

/// The argument is the compression.
void encodeAsPng(benchmark::State& state, const Source& source)
{
    const kxhost::Picture picture = decoded(source, frameOf(source));
    std::vector<std::uint8_t> file;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            kxhost::encodePng(picture, static_cast<int>(state.range(0)), file));
    }
    state.counters["file"] = static_cast<double>(file.size());
}
BENCHMARK_CAPTURE(encodeAsPng, mono8, kMono8)
    ->Arg(0)
    ->Arg(1)
    ->Arg(6)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encodeAsPng, mono12_packed, kMono12)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encodeAsPng, bayer_colour, kBayer)->Arg(1)->Unit(benchmark::kMillisecond);

void encodeAsTiff(benchmark::State& state, const Source& source)
{
    const kxhost::Picture picture = decoded(source, frameOf(source));
    std::vector<std::uint8_t> file;
    for (auto _ : state) {
        benchmark::DoNotOptimize(kxhost::encodeTiff(picture, file));
    }
}
BENCHMARK_CAPTURE(encodeAsTiff, mono12_packed, kMono12)->Unit(benchmark::kMillisecond);

} // namespace
