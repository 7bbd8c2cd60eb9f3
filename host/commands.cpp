// The verbs that need no grab: check and version, and what all verbs share.
#include "commands.h"

#include <cstdio>

namespace kxhost {

void complain(const std::string& sentence)
{
    std::fprintf(stderr, "kxhost: %s\n", sentence.c_str());
}

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

/// The plug-in's version does not depend on the camera library, so any that is there will do.
int commandVersion(const CommandLine& commandLine)
{
    std::printf("kxhost %s\n", KXHOST_VERSION);
    PluginChoice choice = commandLine.plugin;
    choice.simulate = choice.cameraLibrary.empty();
    try {
        std::printf("plug-in %s\n", Plugin(choice).version());
    } catch (const LoadError& error) {
        complain(error.what());
        return error.exitCode();
    }
    return kExitFine;
}

} // namespace kxhost
