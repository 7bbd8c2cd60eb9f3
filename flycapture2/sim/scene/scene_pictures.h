// PNG pictures as scene, one per frame, played in a loop.
#ifndef FCSIM_SCENE_PICTURES_H
#define FCSIM_SCENE_PICTURES_H

#include "scene/scene.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace fcsim {

/// Shows picture `number % count` of a folder sorted by name, or always the one file.
///
/// A picture of the sensor's size is shown pixel by pixel. Any other is scaled to cover the sensor,
/// keeping its proportions, and what hangs over is cut off on both sides alike; smaller pictures
/// repeat pixels, larger ones are averaged. Colour becomes luma before a monochrome sensor.
///
/// Each picture is read when first shown and kept; when more than 1 GiB is kept, all are dropped
/// and the loop reads again. A picture whose file went bad after the start shows as black.
class PictureScene : public Scene {
public:
    /// Lists the pictures and checks that each is a PNG file. Throws `SceneError`.
    PictureScene(const std::filesystem::path& path, const SensorSettings& sensor);

    std::span<const Rect> paint(const FrameRequest& request) override;
    const Canvas& canvas() const override { return *shown_; }

private:
    struct Picture {
        std::filesystem::path path;
        std::optional<Canvas> canvas; ///< of sensor size, once it has been shown
    };
    const Canvas& load(Picture& picture);

    int width_;
    int height_;
    Space space_;
    std::vector<Picture> pictures_;
    std::size_t kept_ = 0; ///< bytes of the canvases in `pictures_`
    const Canvas* shown_ = nullptr;
    Rect whole_;
};

} // namespace fcsim

#endif
