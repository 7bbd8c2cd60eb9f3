// Asks the plug-in which cameras are on the buses.
#ifndef KXHOST_INVENTORY_PASS_H
#define KXHOST_INVENTORY_PASS_H

#include "grab/inventory.h"
#include "grab/plugin.h"

#include <vector>

namespace kxhost {

/// Runs one pass of the plug-in that chooses no camera, and reads what it logs meanwhile, which
/// nobody else sees. Connects each camera for a moment. Afterwards the choice of a camera and the
/// logging are those of the settings of `services()`, however it ends. Throws std::system_error
/// when there is no memory to catch the log, and what Plugin::run throws. For the grab thread,
/// outside of a pass.
std::vector<InventoryCamera> takeInventory(const Plugin& plugin);

} // namespace kxhost

#endif
