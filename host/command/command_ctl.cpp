// kxhost ctl: sends a signal to a grab, after a look at who would get it.
#include "command/commands.h"
#include "grab/grab_process.h"

#include <cerrno>
#include <csignal>
#include <system_error>

namespace kxhost {

int commandCtl(const CommandLine& commandLine)
{
    if (const std::string reason = whyNoGrab(commandLine.pid, commandLine.signal);
        !reason.empty()) {
        complain(reason);
        return kExitNoGrab;
    }
    if (kill(commandLine.pid, commandLine.signal) != 0) {
        complain("Cannot send to process " + std::to_string(commandLine.pid) + ": " +
                 std::generic_category().message(errno) + ".");
        return kExitNoGrab;
    }
    return kExitFine;
}

} // namespace kxhost
