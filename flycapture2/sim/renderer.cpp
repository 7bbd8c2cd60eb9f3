// The picture side of a simulated camera: from a scene in front of the sensor to packed frames.
#include "renderer.h"

#include "pixel_bayer.h"
#include "pixel_codec.h"
#include "scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace fcsim {

namespace {

/// Pixels that share bytes or colour in any format: regions are packed in multiples of it.
constexpr int kPackingStep = 4;

/// Points that the metering looks at.
constexpr int kMeteringColumns = 64;
constexpr int kMeteringRows = 48;

/// The sensor's answer to light: level of the scene to level in the frame, in 12-bit steps. All
/// that a sensor does to brightness belongs into this table.
using Response = std::array<Level, 4096>;

Response makeResponse(double brightness, unsigned bitDepth)
{
    const unsigned kept = 0xFFFFU << (16 - std::clamp(bitDepth, 8U, 12U));
    Response response{};
    for (std::size_t light = 0; light < response.size(); ++light) {
        const double level = std::min(std::round(static_cast<double>(light) * brightness), 4095.0);
        response[light] = static_cast<Level>(static_cast<unsigned>(level) << 4 & kept);
    }
    return response;
}

Rect regionOf(const FrameRequest& request)
{
    return {static_cast<int>(request.offsetX), static_cast<int>(request.offsetY),
            static_cast<int>(request.width), static_cast<int>(request.height)};
}

/// The part of `area` inside `region`, widened to whole groups of pixels counted from its edge.
Rect packable(const Rect& area, const Rect& region)
{
    Rect part = intersection(area, region);
    if (part.empty()) {
        return part;
    }
    const int from = (part.x - region.x) / kPackingStep * kPackingStep;
    const int to = (part.right() - region.x + kPackingStep - 1) / kPackingStep * kPackingStep;
    part.x = region.x + from;
    part.width = std::min(to, region.width) - from;
    return part;
}

/// True when one of the areas covers all of `region`.
bool isWhole(std::span<const Rect> areas, const Rect& region)
{
    return std::any_of(areas.begin(), areas.end(), [&region](const Rect& area) {
        const Rect part = intersection(area, region);
        return part.width == region.width && part.height == region.height;
    });
}

bool samePlace(const FrameRequest& first, const FrameRequest& second)
{
    return first.format == second.format && first.offsetX == second.offsetX &&
           first.offsetY == second.offsetY && first.width == second.width &&
           first.height == second.height;
}

} // namespace

class Renderer::Impl {
public:
    Impl(SceneSettings scene, SensorSettings sensor)
        : settings_(std::move(scene)), sensor_(std::move(sensor)),
          response_(makeResponse(settings_.brightness, sensor_.bitDepth))
    {
        if (settings_.kind == SceneKind::pictures) {
            scene_ = makeScene(settings_, sensor_);
        }
    }

    void render(const FrameRequest& request, std::uint8_t* out)
    {
        if (settings_.kind == SceneKind::none) {
            return;
        }
        if (scene_ == nullptr) {
            scene_ = makeScene(settings_, sensor_);
        }
        const std::span<const Rect> changing = scene_->paint(request);
        const Rect region = regionOf(request);
        if (!isWhole(changing, region)) {
            copyStill(request, region, out);
        }
        for (const Rect& area : changing) {
            pack(request, region, packable(area, region), out);
        }
    }

    double exposedMean(const FrameRequest& request)
    {
        if (settings_.kind == SceneKind::none) {
            return 0;
        }
        if (scene_ == nullptr) {
            scene_ = makeScene(settings_, sensor_);
        }
        scene_->paint(request);
        const SensorState& state = request.state;
        const double factor = settings_.brightness * static_cast<double>(state.shutterUs) / 8000 *
                              std::pow(10.0, static_cast<double>(state.gainDb) / 20);
        const double black = static_cast<double>(state.brightnessPercent) / 100;
        double sum = 0;
        for (int y = 0; y < kMeteringRows; ++y) {
            for (int x = 0; x < kMeteringColumns; ++x) {
                sum += std::min(lightAt(request, x, y) * factor + black, 1.0);
            }
        }
        return sum / (kMeteringRows * kMeteringColumns);
    }

private:
    /// Light, 0 to 1, at a point of the metering's grid.
    double lightAt(const FrameRequest& request, int x, int y)
    {
        const Rect region = regionOf(request);
        const RowView light =
            scene_->canvas().row(region.x + region.width * (2 * x + 1) / (2 * kMeteringColumns),
                                 region.y + region.height * (2 * y + 1) / (2 * kMeteringRows), 1);
        return rowInSpace(light, Space::grey, inSpace_).plane[0][0] / 65535.0;
    }

    /// Fills `out` with the last frame packed for this format and region: right outside of the
    /// regions that change.
    void copyStill(const FrameRequest& request, const Rect& region, std::uint8_t* out)
    {
        const std::size_t size = packedSize(request.format, request.width, request.height);
        if (!samePlace(request, still_) || stillFrame_.empty()) {
            stillFrame_.resize(size);
            pack(request, region, region, stillFrame_.data());
            still_ = request;
        }
        std::memcpy(out, stillFrame_.data(), size);
    }

    void pack(const FrameRequest& request, const Rect& region, const Rect& area, std::uint8_t* out)
    {
        const PixelCodec& codec = *findPixelCodec(request.format);
        const std::size_t rowSize = packedRowSize(request.format, request.width);
        const auto left = static_cast<unsigned>(area.x - region.x);
        std::uint8_t* corner = out + packedRowSize(request.format, left);
        for (int y = area.y; y < area.bottom(); ++y) {
            const RowView light = scene_->canvas().row(area.x, y, area.width);
            const RowView sensed = sense(light, request.format, area.x, y);
            codec.encode(rowInSpace(sensed, codec.space, inSpace_),
                         corner + static_cast<std::size_t>(y - region.y) * rowSize);
        }
    }

    /// What the sensor makes of a row of light: filtered by the tile for RAW formats, through the
    /// response.
    RowView sense(const RowView& light, FlyCapture2::PixelFormat format, int x, int y)
    {
        RowView seen = light;
        if (light.space == Space::rgb && isRawFormat(format) && sensor_.tile != FlyCapture2::NONE) {
            mosaicRow(light, sensor_.tile, static_cast<unsigned>(x), static_cast<unsigned>(y),
                      mosaic_);
            seen = mosaic_.view();
        }
        sensed_.reset(seen.space, seen.width);
        for (unsigned plane = 0; plane < planeCount(seen.space); ++plane) {
            std::transform(seen.plane[plane], seen.plane[plane] + seen.width, sensed_.plane(plane),
                           [this](Level level) { return response_[level >> 4]; });
        }
        return sensed_.view();
    }

    SceneSettings settings_;
    SensorSettings sensor_;
    Response response_;
    std::unique_ptr<Scene> scene_;
    FrameRequest still_;                   ///< what `stillFrame_` was packed for
    std::vector<std::uint8_t> stillFrame_; ///< a packed frame; empty before the first
    Row mosaic_;
    Row sensed_;
    Row inSpace_;
};

bool canRender(FlyCapture2::PixelFormat format)
{
    return findPixelCodec(format) != nullptr;
}

Renderer::Renderer(SceneSettings scene, SensorSettings sensor)
    : impl_(std::make_unique<Impl>(std::move(scene), std::move(sensor)))
{}

Renderer::~Renderer() = default;
Renderer::Renderer(Renderer&&) noexcept = default;
Renderer& Renderer::operator=(Renderer&&) noexcept = default;

void Renderer::render(const FrameRequest& request, std::uint8_t* out)
{
    impl_->render(request, out);
}

double Renderer::exposedMean(const FrameRequest& request)
{
    return impl_->exposedMean(request);
}

} // namespace fcsim
