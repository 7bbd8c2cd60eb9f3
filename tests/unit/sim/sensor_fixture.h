// What tests of the sensor's answer to light share: settings, requests, canvases of plain light.
#ifndef FCSIM_TESTS_SENSOR_FIXTURE_H
#define FCSIM_TESTS_SENSOR_FIXTURE_H

#include "scene/pixel_format.h"
#include "scene/renderer.h"
#include "scene/scene_canvas.h"

#include <memory>
#include <numeric>
#include <vector>

namespace fcsim {

using Bytes = std::vector<std::uint8_t>;

/// A sensor of 320 x 240 pixels without noise; with a tile a colour one.
inline SensorSettings quietSensor(FlyCapture2::BayerTileFormat tile = FlyCapture2::NONE)
{
    SensorSettings settings;
    settings.colour = tile != FlyCapture2::NONE;
    settings.tile = tile;
    settings.width = 320;
    settings.height = 240;
    settings.noise = false;
    settings.title = "TEST";
    return settings;
}

inline SensorSettings noisySensor(FlyCapture2::BayerTileFormat tile = FlyCapture2::NONE)
{
    SensorSettings settings = quietSensor(tile);
    settings.noise = true;
    return settings;
}

/// A frame of the whole sensor.
inline FrameRequest wholeFrame(FlyCapture2::PixelFormat format, std::uint64_t number = 0,
                               const SensorState& state = {})
{
    FrameRequest request;
    request.format = format;
    request.width = 320;
    request.height = 240;
    request.number = number;
    request.state = state;
    return request;
}

inline Bytes frameOf(Renderer& renderer, const FrameRequest& request)
{
    Bytes out(packedSize(request.format, request.width, request.height), 0xAA);
    renderer.render(request, out.data());
    return out;
}

/// The frame as the first one of a new camera before the chart.
inline Bytes freshFrame(const SensorSettings& sensor, const FrameRequest& request)
{
    Renderer renderer(SceneSettings{}, sensor);
    return frameOf(renderer, request);
}

/// Mean of bytes in percent of the largest.
inline double meanPercent(const Bytes& bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), 0.0) / static_cast<double>(bytes.size()) /
           2.55;
}

/// A state that differs from the neutral one in everything.
inline SensorState busyState()
{
    SensorState state;
    state.shutterUs = 11000;
    state.gainDb = 3;
    state.brightnessPercent = 2;
    state.gamma = 1.4F;
    state.sharpness = 2500;
    state.saturationPercent = 130;
    state.hueDegrees = 25;
    state.whiteBalanceRed = 600;
    state.whiteBalanceBlue = 450;
    auto lut = std::make_shared<SensorLut>();
    for (unsigned bend = 1; bend <= 3; ++bend) {
        auto& channel = lut->channels.emplace_back();
        for (unsigned entry = 0; entry < 512; ++entry) {
            channel.push_back(static_cast<std::uint16_t>(511 - entry / bend));
        }
    }
    state.lut = lut;
    return state;
}

} // namespace fcsim

#endif
