// The built-in test chart: static targets, and parts that move with the frame number.
#ifndef FCSIM_SCENE_CHART_H
#define FCSIM_SCENE_CHART_H

#include "scene/scene.h"
#include "scene/scene_chart_layout.h"

#include <array>
#include <cstdint>

namespace fcsim {

/// Shows the frame number in digits and as 32 black or white squares (most significant bit left), a
/// hand that turns by one sixtieth per frame, a sweeping bar with a bouncing ball, exposure and
/// gain; and, all the time, colour patches, a grey ramp and steps, gratings from one pixel up, a
/// star, and a border that ends exactly at the sensor's edge.
class ChartScene : public Scene {
public:
    explicit ChartScene(const SensorSettings& sensor);

    std::span<const Rect> paint(const FrameRequest& request) override;
    const Canvas& canvas() const override { return canvas_; }

private:
    void paintNumber(std::uint64_t number);
    void paintExposure(float shutterUs, float gainDb);
    void paintHand(std::uint64_t number);
    void paintTrack(std::uint64_t number);

    ChartLayout layout_;
    Canvas canvas_;
    std::array<SavedArea, 4> panels_; ///< what the moving parts are painted on
    std::array<Rect, 4> areas_;
};

} // namespace fcsim

#endif
