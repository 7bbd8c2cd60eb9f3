// The verbs that need no grab: check and version, and what all verbs share.
#include "command/commands.h"

#include "base/standard_output.h"
#include "grab/installation.h"

namespace kxhost {

bool configure(const CommandLine& commandLine, Configuration& configuration)
{
    const ConfigErrors errors =
        loadConfiguration(commandLine.configuration, commandLine.overrides, configuration);
    for (const std::string& error : errors) {
        complain(error);
    }
    return errors.empty();
}

int commandCheck(const CommandLine& commandLine)
{
    Configuration configuration;
    if (!configure(commandLine, configuration)) {
        return kExitConfiguration;
    }
    return printReport(describeConfiguration(configuration), kExitFine);
}

/// The plug-in's version does not depend on the camera library, so any that is there will do. A
/// computer without any is no mistake of who asks for a version.
int commandVersion(const CommandLine& commandLine)
{
    const std::string own = "kxhost " KXHOST_VERSION "\n";
    PluginChoice choice = commandLine.plugin;
    const bool anyLibrary = !choice.simulate && choice.cameraLibrary.empty();
    if (anyLibrary) {
        choice.simulate = !findSimulation().empty();
    }
    try {
        const std::string plugin = Plugin(choice).version();
        return printReport(own + "plug-in " + plugin + "\n", kExitFine);
    } catch (const LoadError& error) {
        if (anyLibrary && error.exitCode() == kExitNoLibrary) {
            return printReport(own + "plug-in not loaded, as there is no camera library\n",
                               kExitFine);
        }
        complain(error.what());
        return printReport(own, error.exitCode());
    }
}

} // namespace kxhost
