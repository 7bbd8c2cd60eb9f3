// A grab of a simulated camera without noise that looks at a scene of the test.
#ifndef KX_TEST_SCENE_SESSION_H
#define KX_TEST_SCENE_SESSION_H

#include "grab_session.h"
#include "read_picture.h"
#include "scene_file.h"

#include <nlohmann/json.hpp>

#include <string>

namespace kxtest {

/// Size of these sensors.
constexpr unsigned kSceneWidth = 64;
constexpr unsigned kSceneHeight = 48;

/// How the camera is when it is switched on. 8 ms and 0 dB show a scene as it is.
struct CameraStart {
    double exposureMs = 8;
    double gainDb = 0;
    std::string extra; ///< further keys and tables of the camera
};

/// A camera for grabs that are steered while they run. It is slow to answer calls, so that frames
/// come in hundreds a second, not in thousands; without pace none is ever dropped.
inline CameraStart slowCamera(const std::string& extra = "")
{
    return {8, 0, "register_time_us = 400\n" + extra};
}

class SceneSession : public GrabSession {
public:
    /// A monochrome camera, or one with colour, in front of this light.
    explicit SceneSession(const GreyLight& light, const CameraStart& start = {});
    explicit SceneSession(const ColourLight& light, const CameraStart& start = {});

    /// Reads a picture of a frame back, the raw one or the converted one behind it.
    ReadPicture picture(const nlohmann::json& frame, std::size_t which = 0) const;
    /// Runs the grab to its end, which must go well, and returns the picture of its last frame.
    ReadPicture grabPicture();

private:
    void show(bool colour, const CameraStart& start);
};

} // namespace kxtest

#endif
