// The picture side of a simulated camera: from a scene in front of the sensor to packed frames.
#include "scene/renderer.h"

#include "scene/metering.h"
#include "scene/pixel_codec.h"
#include "scene/scene.h"
#include "scene/sensor_response.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

namespace fcsim {

namespace {

/// Pixels that share bytes or colour in any format: regions are packed in multiples of it.
constexpr int kPackingStep = 4;

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

/// True when a frame shows the same as another wherever the scene does not change.
bool sameStill(const FrameRequest& first, const FrameRequest& second)
{
    return first.format == second.format && first.offsetX == second.offsetX &&
           first.offsetY == second.offsetY && first.width == second.width &&
           first.height == second.height && first.state == second.state;
}

/// True when the scene looks the same in two frames. It shows number, exposure and gain.
bool samePainting(const FrameRequest& first, const FrameRequest& second)
{
    return first.number == second.number && first.state.shutterUs == second.state.shutterUs &&
           first.state.gainDb == second.state.gainDb;
}

} // namespace

class Renderer::Impl {
public:
    Impl(const SceneSettings& scene, const SensorSettings& sensor)
        : settings_(scene), sensor_(sensor), response_(scene, sensor)
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
        const std::span<const Rect> changing = begin(request);
        const Rect region = regionOf(request);
        if (!response_.pointwise() || isWhole(changing, region)) {
            pack(request, region, region, out);
            return;
        }
        copyStill(request, region, out);
        for (const Rect& area : changing) {
            pack(request, region, packable(area, region), out);
        }
    }

    double exposedMean(const FrameRequest& request)
    {
        if (settings_.kind == SceneKind::none) {
            return 0;
        }
        begin(request);
        return meteredMean(scene_->canvas(), regionOf(request), response_);
    }

private:
    /// Paints the scene, unless it was metered just now, and sets the response for a frame. Returns
    /// what changes in the scene.
    std::span<const Rect> begin(const FrameRequest& request)
    {
        if (scene_ == nullptr) {
            scene_ = makeScene(settings_, sensor_);
        }
        response_.begin(request);
        if (!painted_ || !samePainting(*painted_, request)) {
            changing_ = scene_->paint(request);
            painted_ = request;
        }
        return changing_;
    }

    /// Fills `out` with the last frame packed alike: right outside of the regions that change.
    void copyStill(const FrameRequest& request, const Rect& region, std::uint8_t* out)
    {
        const std::size_t size = packedSize(request.format, request.width, request.height);
        if (!sameStill(request, still_) || stillFrame_.empty()) {
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
            const RowView row = response_.develop(scene_->canvas(), area.x, y, area.width);
            codec.encode(rowInSpace(row, codec.space, inSpace_),
                         corner + static_cast<std::size_t>(y - region.y) * rowSize);
        }
    }

    SceneSettings settings_;
    SensorSettings sensor_;
    SensorResponse response_;
    std::unique_ptr<Scene> scene_;
    std::optional<FrameRequest> painted_;  ///< what the scene shows
    std::span<const Rect> changing_;       ///< as the scene said when it was painted
    FrameRequest still_;                   ///< what `stillFrame_` was packed for
    std::vector<std::uint8_t> stillFrame_; ///< a packed frame; empty before the first
    Row inSpace_;
};

bool canRender(FlyCapture2::PixelFormat format)
{
    return findPixelCodec(format) != nullptr;
}

Renderer::Renderer(const SceneSettings& scene, const SensorSettings& sensor)
    : impl_(std::make_unique<Impl>(scene, sensor))
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
