// Chooses what stands in front of the sensor.
#include "scene/scene.h"

#include "scene/scene_chart.h"
#include "scene/scene_pictures.h"

namespace fcsim {

std::unique_ptr<Scene> makeScene(const SceneSettings& settings, const SensorSettings& sensor)
{
    switch (settings.kind) {
    case SceneKind::chart:
        return std::make_unique<ChartScene>(sensor);
    case SceneKind::pictures:
        return std::make_unique<PictureScene>(settings.path, sensor);
    case SceneKind::none:
        break;
    }
    return nullptr;
}

} // namespace fcsim
