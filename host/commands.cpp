// The verbs that need no grab: check and version, and what all verbs share.
#include "commands.h"

#include "installation.h"

#include <cstdio>

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
    std::fputs(describeConfiguration(configuration).c_str(), stdout);
    return kExitFine;
}

/// The plug-in's version does not depend on the camera library, so any that is there will do. A
/// computer without any is no mistake of who asks for a version.
int commandVersion(const CommandLine& commandLine)
{
    std::printf("kxhost %s\n", KXHOST_VERSION);
    PluginChoice choice = commandLine.plugin;
    const bool anyLibrary = !choice.simulate && choice.cameraLibrary.empty();
    if (anyLibrary) {
        choice.simulate = !findSimulation().empty();
    }
    try {
        std::printf("plug-in %s\n", Plugin(choice).version());
    } catch (const LoadError& error) {
        if (anyLibrary && error.exitCode() == kExitNoLibrary) {
            std::printf("plug-in not loaded, as there is no camera library\n");
            return kExitFine;
        }
        complain(error.what());
        return error.exitCode();
    }
    return kExitFine;
}

} // namespace kxhost
