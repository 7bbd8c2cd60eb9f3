// kxhost list: the cameras on the buses as a table.
#include "commands.h"
#include "inventory_pass.h"
#include "standard_output.h"

namespace kxhost {

int commandList(const CommandLine& commandLine)
{
    try {
        const Plugin plugin(commandLine.plugin);
        const auto cameras = takeInventory(plugin);
        if (cameras.empty()) {
            complain("There is no camera on the buses.");
            return kExitNoCamera;
        }
        return printReport(inventoryText(cameras), kExitFine);
    } catch (const LoadError& error) {
        complain(error.what());
        return error.exitCode();
    }
}

} // namespace kxhost
