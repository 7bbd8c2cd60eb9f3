// Bus descriptions for tests: small cameras that can do everything the plug-in uses.
#ifndef KX_TEST_TEST_BUS_H
#define KX_TEST_TEST_BUS_H

#include <string>
#include <vector>

namespace kxtest {

/// One camera, as far as tests choose.
struct CameraText {
    unsigned serial = 1000;
    std::string model = "Cricket C1";
    std::string interface = "usb3"; ///< "usb2", "usb3", "gige" or "ieee1394"
    /// Content of the sensor's table; small, so that pictures cost little.
    std::string sensor = "width = 160, height = 120, colour = false, frame_rate = 30.0";
    std::string extra{}; ///< further lines of the camera's table, tables last
};

/// The bus description with these cameras.
std::string busText(const std::vector<CameraText>& cameras);

} // namespace kxtest

#endif
