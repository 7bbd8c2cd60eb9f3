// The command line: what was asked for.
#ifndef KXHOST_COMMAND_LINE_H
#define KXHOST_COMMAND_LINE_H

#include "grab/plugin.h"

#include <optional>
#include <string>
#include <vector>

namespace kxhost {

enum class Verb { kGrab, kList, kCheck, kVersion, kCtl, kDoctor, kClock };

/// Options of the verb clock.
struct ClockOptions {
    int seconds = 60;  ///< how long to look at the camera
    bool json = false; ///< for programs
};

/// Options of the verb doctor.
struct DoctorOptions {
    std::string root;  ///< folder that stands for "/"; empty = this computer
    bool json = false; ///< for programs
    bool usb = false;  ///< USB cameras are meant, plugged in or not
    bool gige = false; ///< GigE cameras are meant
};

/// Options of the verb grab for its live page.
struct LiveOptions {
    std::string address;   ///< see parseLiveAddress; empty = there is no page
    std::string tokenFile; ///< empty = none
};

struct CommandLine {
    Verb verb = Verb::kGrab;
    std::string configuration;          ///< file; empty = none
    std::vector<std::string> overrides; ///< "section.key=value", in the order in which they apply
    PluginChoice plugin;
    std::string summaryFile; ///< empty = none
    std::string reportFile;  ///< empty = none
    LiveOptions live;
    bool quiet = false; ///< neither progress nor summary
    int pid = 0;        ///< ctl: the process of a grab
    int signal = 0;     ///< ctl: what to send it
    ClockOptions clock;
    DoctorOptions doctor;
};

/// Reads the command line. On help and on mistakes it writes what there is to say and returns the
/// exit code instead.
struct CommandLineResult {
    std::optional<CommandLine> commandLine;
    int exitCode = 0; ///< when there is no command line
};
CommandLineResult parseCommandLine(int argc, const char* const* argv);

} // namespace kxhost

#endif
