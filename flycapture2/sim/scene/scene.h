// What stands in front of the sensor: a canvas that is painted anew for each frame.
#ifndef FCSIM_SCENE_H
#define FCSIM_SCENE_H

#include "scene/renderer.h"
#include "scene/scene_canvas.h"

#include <memory>
#include <span>

namespace fcsim {

/// A picture source of sensor size. Painting is a pure function of the request. Not thread-safe.
class Scene {
public:
    Scene() = default;
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    virtual ~Scene() = default;

    /// Paints the frame on the canvas. Returns the regions that can differ from frame to frame;
    /// outside of them the canvas is the same for all frames. Valid until the next call.
    virtual std::span<const Rect> paint(const FrameRequest& request) = 0;
    /// The whole sensor as last painted: grey for monochrome sensors, else RGB.
    virtual const Canvas& canvas() const = 0;
};

/// The scene that `settings` describe, or null for `SceneKind::none`. Throws `SceneError`.
std::unique_ptr<Scene> makeScene(const SceneSettings& settings, const SensorSettings& sensor);

} // namespace fcsim

#endif
