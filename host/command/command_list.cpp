// kxhost list: the cameras on the buses as a table.
#include "base/standard_output.h"
#include "command/commands.h"
#include "grab/inventory_pass.h"

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
    } catch (const PluginThrew& error) {
        complain(error.what());
        return kExitCamera;
    }
}

} // namespace kxhost
