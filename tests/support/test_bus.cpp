// Bus descriptions for tests.
#include "test_bus.h"

namespace kxtest {

std::string busText(const std::vector<CameraText>& cameras)
{
    // An empty bus is a text without cameras.
    std::string text;
    for (const CameraText& camera : cameras) {
        text += "[[camera]]\n";
        text += "model = \"" + camera.model + "\"\n";
        text += "serial = " + std::to_string(camera.serial) + "\n";
        text += "interface = \"" + camera.interface + "\"\n";
        text += "firmware = \"1.2.3.4\"\n";
        text += "register_time_us = 0\n";
        text += "sensor = { " + camera.sensor + " }\n";
        text += camera.extra + "\n";
    }
    return text;
}

} // namespace kxtest
