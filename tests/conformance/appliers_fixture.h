// What the tests of the appliers share: a colour camera whose ranges are set as a test needs them.
#ifndef KX_TEST_APPLIERS_FIXTURE_H
#define KX_TEST_APPLIERS_FIXTURE_H

#include "camera_test.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kxtest {

/// The values that the camera reads are those that were written, or a test's own; the ranges are
/// `absRanges` and `relRange`. The session has printed values of its own.
class AppliersTest : public CameraTest {
protected:
    AppliersTest()
    {
        CameraText camera;
        camera.sensor = "width = 160, height = 120, colour = true, bayer_tile = \"RGGB\", "
                        "frame_rate = 100.0";
        camera.extra = "[camera.properties.AUTO_EXPOSURE]\n"
                       "absolute = [-10.0, 10.0]\n"
                       "value = 0.0\n";
        connect(camera);
        cam_->absValues.clear();
        cam_->onGetPropertyInfo = [this](FlyCapture2::PropertyInfo& info) { giveRange(info); };
        journal().clear();
    }
    void giveRange(FlyCapture2::PropertyInfo& info) const
    {
        const auto found = absRanges.find(info.type);
        if (found != absRanges.end()) {
            info.absMin = found->second.first;
            info.absMax = found->second.second;
        }
        if (info.type == FlyCapture2::WHITE_BALANCE) {
            info.min = relRange.first;
            info.max = relRange.second;
        }
    }
    /// Calls into the camera, each as "operation(first word of its arguments)".
    static std::vector<std::string> cameraCalls()
    {
        std::vector<std::string> calls;
        for (const Event& event : journal().events()) {
            if (event.kind == Kind::sdk) {
                calls.push_back(event.name.substr(event.name.find('.') + 1) + "(" +
                                event.arguments.substr(0, event.arguments.find(' ')) + ")");
            }
        }
        return calls;
    }
    /// The messages of the appliers themselves, without those of the camera's object.
    static std::vector<std::string> applierLogs()
    {
        return journal().lines([](const Event& event) {
            return event.kind == Kind::log && event.arguments.find("###") == std::string::npos;
        });
    }

    std::map<FlyCapture2::PropertyType, std::pair<float, float>> absRanges = {
        {FlyCapture2::FRAME_RATE, {5.0F, 60.0F}}, {FlyCapture2::SATURATION, {0.5F, 200.5F}},
        {FlyCapture2::GAIN, {-2.5F, 24.0F}},      {FlyCapture2::SHUTTER, {0.02F, 30.0F}},
        {FlyCapture2::GAMMA, {0.5F, 4.0F}},       {FlyCapture2::AUTO_EXPOSURE, {-7.5F, 2.5F}},
    };
    std::pair<unsigned, unsigned> relRange = {10, 1000};
};

} // namespace kxtest

#endif
