// What the tests of the camera's properties share: a camera with known properties.
#ifndef KX_TEST_PROPERTIES_FIXTURE_H
#define KX_TEST_PROPERTIES_FIXTURE_H

#include "camera_test.h"

#include <string>
#include <vector>

namespace kxtest {

/// Gain with a range in decibels, white balance in raw values, no iris.
class PropertyCameraTest : public CameraTest {
protected:
    PropertyCameraTest()
    {
        CameraText camera;
        camera.extra = R"(
[camera.properties.GAIN]
raw = [0, 680]
absolute = [-2.5, 24.0]
value = 3.5
units = "decibel"
abbreviation = "dB"
auto = true
one_push = true
on_off = true
[camera.properties.WHITE_BALANCE]
raw = [10, 1000]
absolute_values = false
value_a = 500
value_b = 600
[camera.properties.IRIS]
present = false
)";
        connect(camera);
        cam_->absValues.clear();
    }
    FlyCapture2::Property current(FlyCapture2::PropertyType type)
    {
        FlyCapture2::Property property(type);
        EXPECT_EQ(cam_->GetProperty(&property), FlyCapture2::PGRERROR_OK);
        journal().clear();
        return property;
    }
    static std::vector<std::string> sdkCalls()
    {
        return journal().lines([](const Event& event) { return event.kind == Kind::sdk; });
    }
};

} // namespace kxtest

#endif
