// Which camera a grab takes: what the plug-in is told to look for.
#include "grab/camera_choice.h"

#include <cstdlib>

namespace kxhost {
namespace {

/// A serial number as the plug-in reads it: decimal, 0x hexadecimal or 0 octal.
unsigned long numberOf(const std::string& serial)
{
    return std::strtoul(serial.c_str(), nullptr, 0);
}

/// The plug-in takes any model when it is told an empty one, but none when it is told only where to
/// look.
bool fits(const CameraChoice& choice, const InventoryCamera& camera)
{
    const bool maskAlone = choice.model.empty() && choice.serial.empty() && choice.busMask != 0;
    const bool isNamed =
        !maskAlone && camera.model.starts_with(choice.model) &&
        (choice.serial.empty() || numberOf(choice.serial) == numberOf(camera.serial));
    return isNamed || (choice.busMask >> (camera.index % 32U) & 1U) != 0;
}

} // namespace

CameraChoice choiceOf(const Settings& settings)
{
    return {settings.model, settings.serial, settings.busMask};
}

bool isOneCamera(const CameraChoice& choice)
{
    return !choice.serial.empty() && choice.busMask == 0;
}

std::optional<CameraChoice> narrowed(const CameraChoice& choice,
                                     const std::vector<InventoryCamera>& cameras)
{
    for (const InventoryCamera& camera : cameras) {
        const bool canBeHad = !camera.model.empty();
        if (canBeHad && fits(choice, camera)) {
            return CameraChoice{camera.model, camera.serial, 0};
        }
    }
    return std::nullopt;
}

std::string cameraName(const CameraChoice& choice)
{
    return isOneCamera(choice) ? "Camera " + std::to_string(numberOf(choice.serial)) : "The camera";
}

} // namespace kxhost
