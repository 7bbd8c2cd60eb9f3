// kxhost: a small host for the camera driver plug-in.
#include "base/standard_output.h"
#include "command/commands.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv)
{
    using namespace kxhost;
    keepStandardOutput();
    // The plug-in logs through this stream; its lines shall be readable as they come.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    try {
        const CommandLineResult parsed = parseCommandLine(argc, argv);
        if (!parsed.commandLine) {
            return parsed.exitCode;
        }
        switch (parsed.commandLine->verb) {
        case Verb::kGrab:
            return commandGrab(*parsed.commandLine);
        case Verb::kList:
            return commandList(*parsed.commandLine);
        case Verb::kCheck:
            return commandCheck(*parsed.commandLine);
        case Verb::kVersion:
            return commandVersion(*parsed.commandLine);
        case Verb::kClock:
            return commandClock(*parsed.commandLine);
        case Verb::kCtl:
            return commandCtl(*parsed.commandLine);
        case Verb::kDoctor:
            return commandDoctor(*parsed.commandLine);
        }
    } catch (const std::exception& error) {
        complain(error.what());
    }
    return kExitInternal;
}
