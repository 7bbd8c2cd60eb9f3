// The cameras on the buses, read from what the plug-in logs about them.
#ifndef KXHOST_INVENTORY_H
#define KXHOST_INVENTORY_H

#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

struct InventoryCamera {
    unsigned index = 0; ///< place on the bus
    std::string serial;
    std::string interface; ///< "USB2", "USB3", "GigE" or "Not supported"
    std::string model;     ///< empty = the camera could not be asked, most likely it is in use
};

/// A model name that no camera has; the plug-in compares it with every camera and logs the names.
constexpr const char* kNoSuchModel = "(none)";

/// Reads the plug-in's log (standard output form) of a pass that was configured with
/// `kNoSuchModel`. Cameras come in bus order.
std::vector<InventoryCamera> readInventory(std::string_view log);

/// A table for people, one camera per line below a heading.
std::string inventoryText(const std::vector<InventoryCamera>& cameras);

} // namespace kxhost

#endif
