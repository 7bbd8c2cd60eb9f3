// A grab of a simulated camera without noise that looks at a scene of the test.
#include "scene_session.h"

#include <stdexcept>

namespace kxtest {

namespace {

constexpr const char* kSceneName = "scene.png";

} // namespace

SceneSession::SceneSession(const GreyLight& light, const CameraStart& start)
{
    writeGreyScene(folder().file(kSceneName), kSceneWidth, kSceneHeight, light);
    show(false, start);
}

SceneSession::SceneSession(const ColourLight& light, const CameraStart& start)
{
    writeColourScene(folder().file(kSceneName), kSceneWidth, kSceneHeight, light);
    show(true, start);
}

void SceneSession::show(bool colour, const CameraStart& start)
{
    TestSensor sensor{kSceneWidth, kSceneHeight, colour ? "RGGB" : ""};
    // Room for long exposures; without pace the frames come faster all the same.
    sensor.frameRate = 4;
    sensor.noise = false;
    sensor.exposureMs = start.exposureMs;
    sensor.gainDb = start.gainDb;
    bus = busWith(sensor, start.extra + "\n" + sceneTable(folder().file(kSceneName)));
    settings = {"grab.frames=2"};
}

ReadPicture SceneSession::picture(const nlohmann::json& frame, std::size_t which) const
{
    return readPng(output(frame["pictures"][which]["file"]));
}

ReadPicture SceneSession::grabPicture()
{
    const Finished finished = run();
    if (finished.code != 0 || frames().empty()) {
        throw std::runtime_error("the grab failed: " + finished.err + finished.out);
    }
    return picture(frames().back());
}

} // namespace kxtest
