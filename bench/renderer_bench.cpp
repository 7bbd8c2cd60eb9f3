// Frames a second that the simulated sensor makes on one core, per pixel format.
#include "scene/renderer.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

using namespace FlyCapture2;

/// What the camera has set.
enum Kind : std::int64_t {
    kPlain,     ///< nothing but noise, as at power-up
    kNoiseless, ///< what does not move is copied
    kEverything ///< every step from light to the picture
};

fcsim::SensorState stateOf(std::int64_t kind)
{
    fcsim::SensorState state;
    if (kind == kEverything) {
        state.gainDb = 6;
        state.gamma = 1.5F;
        state.sharpness = 2000;
        state.saturationPercent = 150;
        state.whiteBalanceRed = 600;
        auto lut = std::make_shared<fcsim::SensorLut>();
        lut->channels.emplace_back(512, std::uint16_t{300});
        state.lut = lut;
    }
    return state;
}

/// Arguments: pixel format, width, height, what is set.
void renderChart(benchmark::State& state)
{
    const auto format = static_cast<PixelFormat>(state.range(0));
    fcsim::SensorSettings sensor;
    sensor.colour = format != PIXEL_FORMAT_MONO8 && format != PIXEL_FORMAT_MONO12 &&
                    format != PIXEL_FORMAT_MONO16;
    sensor.tile = sensor.colour ? RGGB : NONE;
    sensor.width = static_cast<unsigned>(state.range(1));
    sensor.height = static_cast<unsigned>(state.range(2));
    sensor.title = "BENCHMARK";
    sensor.noise = state.range(3) != kNoiseless;
    fcsim::Renderer renderer(fcsim::SceneSettings{}, sensor);

    fcsim::FrameRequest request;
    request.format = format;
    request.width = sensor.width;
    request.height = sensor.height;
    request.state = stateOf(state.range(3));
    std::vector<std::uint8_t> frame(fcsim::packedSize(format, request.width, request.height));
    renderer.render(request, frame.data()); // prepares the chart
    for (auto _ : state) {
        ++request.number;
        renderer.render(request, frame.data());
        benchmark::DoNotOptimize(frame.data());
        benchmark::ClobberMemory();
    }
    state.SetLabel(fcsim::pixelFormatName(format));
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(frame.size()));
}

void addCases(benchmark::internal::Benchmark* bench)
{
    for (const PixelFormat format :
         {PIXEL_FORMAT_MONO8, PIXEL_FORMAT_MONO12, PIXEL_FORMAT_MONO16, PIXEL_FORMAT_RAW8,
          PIXEL_FORMAT_RAW16, PIXEL_FORMAT_411YUV8, PIXEL_FORMAT_422YUV8, PIXEL_FORMAT_444YUV8,
          PIXEL_FORMAT_RGB8, PIXEL_FORMAT_BGRU}) {
        bench->Args({static_cast<std::int64_t>(format), 1280, 1024, kPlain});
    }
    for (const PixelFormat format : {PIXEL_FORMAT_MONO8, PIXEL_FORMAT_RAW8, PIXEL_FORMAT_422YUV8}) {
        bench->Args({static_cast<std::int64_t>(format), 1280, 1024, kNoiseless});
        bench->Args({static_cast<std::int64_t>(format), 1280, 1024, kEverything});
    }
    bench->Args({static_cast<std::int64_t>(PIXEL_FORMAT_MONO8), 640, 480, kPlain});
    bench->Args({static_cast<std::int64_t>(PIXEL_FORMAT_MONO8), 2448, 2048, kPlain});
    bench->Unit(benchmark::kMicrosecond);
}

BENCHMARK(renderChart)->Apply(addCases);

/// What the metering adds to a frame that is made, too.
void meterChart(benchmark::State& state)
{
    fcsim::SensorSettings sensor;
    sensor.colour = state.range(0) != 0;
    sensor.tile = sensor.colour ? RGGB : NONE;
    sensor.width = 1280;
    sensor.height = 1024;
    fcsim::Renderer renderer(fcsim::SceneSettings{}, sensor);
    fcsim::FrameRequest request;
    request.width = sensor.width;
    request.height = sensor.height;
    for (auto _ : state) {
        benchmark::DoNotOptimize(renderer.exposedMean(request));
    }
    state.SetLabel(sensor.colour ? "colour" : "mono");
}

BENCHMARK(meterChart)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace
