// Automatic exposure and gain: the pictures come to their brightness, inside the limits.
#include "picture_levels.h"
#include "scene_session.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using kxtest::SceneSession;
using Json = nlohmann::json;

/// Mean level, 0 to 1, that `auto.brightness = 0.5` asks for: 18 % grey, the camera's 0 EV.
constexpr double kMiddleGrey = 0.18;
/// The camera leaves a mean level alone that is this near to the target, as a factor.
const double kNearEnough = std::exp2(0.05);

/// An even wall; the camera begins with the exposure and gain given.
class Wall : public SceneSession {
public:
    Wall(double light, double exposureMs, double gainDb)
        : SceneSession(
              [light](unsigned, unsigned) { return static_cast<std::uint16_t>(light * 65535); },
              {exposureMs, gainDb, ""})
    {
        settings = {"grab.frames=40",
                    "format.pixel_format=mono12",
                    "acquisition.exposure_mode=auto",
                    "acquisition.gain_mode=auto",
                    "auto.auto_exposure=on",
                    "auto.brightness=0.5",
                    "auto.exposure_min=100 us",
                    "auto.exposure_max=20 ms",
                    "auto.gain_min=0 dB",
                    "auto.gain_max=12 dB"};
    }
};

/// Mean level, 0 to 1, of the last picture.
double lastLevel(SceneSession& session)
{
    const double level = kxtest::meanLevel(session.grabPicture()) / 65536;
    for (const Json& frame : session.frames()) {
        if (frame["number"] > 5) { // until the limits are reached from outside
            EXPECT_GE(frame["exposure_us"].get<double>(), 99) << frame;
            EXPECT_LE(frame["exposure_us"].get<double>(), 20001) << frame;
            EXPECT_GE(frame["gain_db"].get<double>(), -0.01) << frame;
            EXPECT_LE(frame["gain_db"].get<double>(), 12.01) << frame;
        }
    }
    return level;
}

/// The target, to the share that the camera tolerates and a hundredth for its steps.
void expectTarget(double level, double target)
{
    EXPECT_GT(level, target / kNearEnough * 0.99);
    EXPECT_LT(level, target * kNearEnough * 1.01);
}

TEST(SessionAuto, ComesToTheTargetFromDark)
{
    Wall session(0.1, 0.2, 0); // a fortieth of the light drawn
    expectTarget(lastLevel(session), kMiddleGrey);
    const auto frames = session.frames();
    EXPECT_GT(frames.back()["exposure_us"], frames.front()["exposure_us"]);
}

TEST(SessionAuto, ComesToTheTargetFromBright)
{
    Wall session(0.9, 200, 20); // all white
    expectTarget(lastLevel(session), kMiddleGrey);
    EXPECT_LT(session.frames().back()["exposure_us"].get<double>(), 8000);
    EXPECT_NEAR(session.frames().back()["gain_db"].get<double>(), 0, 0.1);
}

TEST(SessionAuto, TheBrightnessAskedForIsTheTarget)
{
    Wall session(0.4, 1, 0);
    session.set("auto.brightness=0.7"); // two fifths of the way to 2.42 EV
    expectTarget(lastLevel(session), kMiddleGrey * std::exp2(0.4 * 2.42));
}

TEST(SessionAuto, StaysInsideTheLimitsWhenTheSceneIsTooDark)
{
    Wall session(0.005, 1, 0);
    EXPECT_LT(lastLevel(session), kMiddleGrey / 2);
    EXPECT_NEAR(session.frames().back()["exposure_us"].get<double>(), 20000, 20);
    EXPECT_NEAR(session.frames().back()["gain_db"].get<double>(), 12, 0.1);
}

TEST(SessionAuto, StaysInsideTheLimitsWhenTheSceneIsTooBright)
{
    Wall session(0.9, 100, 12);
    session.set("auto.exposure_min=4 ms");
    EXPECT_GT(lastLevel(session), 2 * kMiddleGrey);
    EXPECT_NEAR(session.frames().back()["exposure_us"].get<double>(), 4000, 20);
    EXPECT_NEAR(session.frames().back()["gain_db"].get<double>(), 0, 0.1);
}

TEST(SessionAuto, OnlyTheAutomaticOneMoves)
{
    Wall session(0.2, 1, 0);
    session.set("acquisition.gain=3 dB"); // manual with it
    session.set("acquisition.gain_mode=manual");
    expectTarget(lastLevel(session), kMiddleGrey);
    for (const Json& frame : session.frames()) {
        EXPECT_NEAR(frame["gain_db"].get<double>(), 3, 0.01);
    }
}

} // namespace
