// What the tests of look-up tables share: cameras, and how the calls and messages read.
#ifndef KX_TEST_LUT_FIXTURE_H
#define KX_TEST_LUT_FIXTURE_H

#include "camera_test.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kxtest {

/// A camera with look-up table.
class LutTest : public CameraTest {
protected:
    LutTest() { connect(); }

    /// Connects a camera with these further lines.
    void connectWith(const std::string& extra)
    {
        CameraText text;
        text.extra = extra;
        connect(text);
    }
    void connectColour()
    {
        CameraText text;
        text.sensor = "width = 160, height = 120, colour = true";
        connect(text);
    }
    void switchOn(bool on = true)
    {
        static_cast<void>(cam_->EnableLUT(on));
        journal().clear();
    }
    bool isOn()
    {
        FlyCapture2::LUTData state;
        static_cast<void>(cam_->GetLUTInfo(&state));
        return state.enabled;
    }
    /// The calls of the camera that have to do with its table.
    static std::vector<std::string> lutCalls()
    {
        return journal().lines([](const Event& event) {
            return event.kind == Kind::sdk && event.name.find("LUT") != std::string::npos;
        });
    }
    /// The messages that have to do with tables and with the signals that ask for one.
    static std::vector<std::string> lutMessages()
    {
        return journal().lines([](const Event& event) {
            const auto has = [&](const char* text) {
                return event.arguments.find(text) != std::string::npos;
            };
            return event.kind == Kind::log &&
                   (has("LUT") || has("CDF") || has("SIGUSR") || has("Switching"));
        });
    }
};

} // namespace kxtest

#endif
