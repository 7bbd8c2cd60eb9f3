// Which camera a grab takes: what the plug-in is told to look for.
#ifndef KXHOST_CAMERA_CHOICE_H
#define KXHOST_CAMERA_CHOICE_H

#include "config/settings.h"
#include "grab/inventory.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kxhost {

/// What the getters answer: beginning of the model name, serial number as text, places on the bus.
struct CameraChoice {
    std::string model;
    std::string serial;
    std::uint32_t busMask = 0;
};

/// The choice that the settings make.
CameraChoice choiceOf(const Settings& settings);

/// Whether a choice holds for one camera only, wherever it is plugged in.
bool isOneCamera(const CameraChoice& choice);

/// The camera that the plug-in takes of those on the buses, chosen so that it takes no other one;
/// nothing = it takes none.
std::optional<CameraChoice> narrowed(const CameraChoice& choice,
                                     const std::vector<InventoryCamera>& cameras);

/// "Camera 15322788", or "The camera" when nothing says which.
std::string cameraName(const CameraChoice& choice);

} // namespace kxhost

#endif
