// The picture side of a simulated camera: from a scene in front of the sensor to packed frames.
#ifndef FCSIM_RENDERER_H
#define FCSIM_RENDERER_H

#include "scene/pixel_format.h"
#include "scene/sensor_state.h"

#include <FlyCapture2.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace fcsim {

/// What stands in front of the camera.
enum class SceneKind {
    chart,    ///< the built-in moving test chart
    pictures, ///< PNG files, one per frame, played in a loop
    none      ///< nothing is drawn: frames keep what the memory held
};

/// The scene as the bus description gives it.
struct SceneSettings {
    SceneKind kind = SceneKind::chart;
    std::filesystem::path path;        ///< a PNG file, or a folder of them (played sorted by name)
    double brightness = 1.0;           ///< factor on the light that reaches the sensor, above 0
    double referenceExposureUs = 8000; ///< exposure that shows the scene as it is drawn, above 0
};

/// The sensor behind the lens.
struct SensorSettings {
    bool colour = false;
    FlyCapture2::BayerTileFormat tile = FlyCapture2::NONE; ///< colour filter at pixel (0, 0)
    unsigned width = 0;                                    ///< pixels
    unsigned height = 0;                                   ///< pixels
    unsigned bitDepth = 12;  ///< of its converter, 8 to 12; finer steps do not reach the frame
    double fullWell = 10000; ///< electrons that a pixel holds; full scale at 0 dB
    bool noise = true;       ///< false: no noise at all
    double readNoise = 8;    ///< electrons, standard deviation
    std::uint64_t noiseSeed = 1;
    std::string title; ///< written on the chart, usually model and serial number
};

/// One frame to make.
struct FrameRequest {
    FlyCapture2::PixelFormat format = FlyCapture2::PIXEL_FORMAT_MONO8;
    unsigned offsetX = 0; ///< of the region on the sensor, even
    unsigned offsetY = 0; ///< even
    unsigned width = 0;   ///< multiple of the format's pixels per group
    unsigned height = 0;
    std::uint64_t number = 0; ///< counts frames; chooses the chart's state or the picture
    SensorState state;        ///< what the camera has set
};

/// A scene that cannot be shown: missing file or folder, no PNG in it, unreadable picture. `what()`
/// is a sentence that names the path and the reason.
class SceneError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// True for the formats that `Renderer` makes: MONO8, MONO12, MONO16, RAW8, RAW12, RAW16, 411YUV8,
/// 422YUV8, 444YUV8, RGB8, BGR and BGRU.
bool canRender(FlyCapture2::PixelFormat format);

/// Makes the frames of one camera.
///
/// Frames are a pure function of the settings and the request, so tests can predict each byte. The
/// Bayer tile is anchored at the sensor: a region starts at an even offset and so has the tile that
/// the camera reports. Not thread-safe; different renderers are independent.
class Renderer {
public:
    /// Checks the scene; the chart or the pictures are prepared at the first frame, so that cameras
    /// that nobody uses cost nothing. Throws `SceneError`.
    Renderer(const SceneSettings& scene, const SensorSettings& sensor);
    ~Renderer();
    Renderer(Renderer&&) noexcept;
    Renderer& operator=(Renderer&&) noexcept;

    /// Writes the frame to `out`, `packedSize(format, width, height)` bytes. Allocates only when
    /// format, region or the features that are on differ from the frames before. REQUIRES:
    /// `canRender(request.format)`, region inside the sensor.
    void render(const FrameRequest& request, std::uint8_t* out);

    /// What the camera's metering sees: the mean level, 0 to 1, of the frame's region as the sensor
    /// gives it, before gamma and look-up table. Taken without noise from a fixed grid of points,
    /// so that it is cheap (cheaper still for the frame rendered before or after) and the same
    /// every time. 0 without a scene. REQUIRES: as `render`.
    double exposedMean(const FrameRequest& request);

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace fcsim

#endif
