// What kxhost does: one function per verb, each returning the exit code of the process.
#ifndef KXHOST_COMMANDS_H
#define KXHOST_COMMANDS_H

#include "base/notice.h"
#include "command/command_line.h"
#include "config/config.h"

namespace kxhost {

int commandGrab(const CommandLine& commandLine);
int commandList(const CommandLine& commandLine);
int commandCheck(const CommandLine& commandLine);
int commandVersion(const CommandLine& commandLine);
int commandClock(const CommandLine& commandLine);
int commandCtl(const CommandLine& commandLine);
int commandDoctor(const CommandLine& commandLine);

/// Reads the configuration that the command line asks for; writes its problems, one per line.
/// Returns false when there are any.
bool configure(const CommandLine& commandLine, Configuration& configuration);

} // namespace kxhost

#endif
