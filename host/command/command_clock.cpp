// kxhost clock: runs the camera for a while and reports on its clock.
#include "base/standard_output.h"
#include "clock/clock_fit.h"
#include "clock/clock_recorder.h"
#include "clock/clock_report.h"
#include "command/commands.h"
#include "grab/grab_run.h"
#include "grab/progress.h"
#include "grab/services.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#include <unistd.h>

namespace kxhost {
namespace {

/// While it lives, what is written to standard output goes to standard error.
class OutputToError {
public:
    OutputToError() : output_(dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        if (output_ < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
            throw std::system_error(errno, std::generic_category(), "cannot divert the output");
        }
    }
    ~OutputToError()
    {
        std::fflush(stdout);
        dup2(output_, STDOUT_FILENO);
        close(output_);
    }
    OutputToError(const OutputToError&) = delete;
    OutputToError& operator=(const OutputToError&) = delete;

private:
    int output_;
};

/// The configuration of a grab that goes on until it is told to end, or the camera is lost: its
/// clock would begin anew.
CommandLine withoutEnd(CommandLine commandLine)
{
    commandLine.overrides.emplace_back("grab.frames=0");
    commandLine.overrides.emplace_back("camera.reconnect=no");
    return commandLine;
}

/// Memory for an hour at most is set aside; a page of it is only taken when it is used.
std::size_t framesExpected(int seconds)
{
    constexpr int kHour = 3600;
    constexpr std::size_t kFastest = 1000; // frames a second
    return static_cast<std::size_t>(std::min(seconds, kHour)) * kFastest;
}

/// Asks for the end of the grab once the time since the first frame is over, and says so.
bool endsInTime(HostServices& host, int seconds)
{
    const std::uint64_t limitUs = static_cast<std::uint64_t>(seconds) * 1'000'000;
    const bool begun = host.counts.retrieved > 0;
    if (!begun || host.signals.finishAsked() || steadyUs() - host.counts.firstUs < limitUs) {
        return false;
    }
    host.signals.post(kFinishTerminate);
    return true;
}

GrabResult collect(const CommandLine& commandLine, const Configuration& configuration)
{
    constexpr int kTickMs = 100;
    HostServices& host = services();
    const OutputToError diverted;
    ConfigFollower follower({commandLine.configuration, commandLine.overrides}, configuration,
                            host.offers, complain);
    Progress progress(host.counts, 0, commandLine.quiet);
    bool inTime = false;
    GrabResult result = runGrab(*host.plugin, follower, false, kTickMs, [&] {
        inTime = endsInTime(host, commandLine.clock.seconds) || inTime;
        progress.show({});
    });
    if (inTime && result.exitCode == kExitFine) {
        result.reason = "Finished.";
    }
    return result;
}

/// Writes the report where it is wanted and returns the exit code.
int report(const CommandLine& commandLine, const std::optional<ClockFit>& fit, int exitCode,
           const std::string& reason)
{
    if (exitCode != kExitFine) {
        complain(reason);
    }
    if (commandLine.clock.json) {
        return printReport(clockJson(fit, exitCode, reason), exitCode);
    }
    return fit ? printReport(clockText(*fit), exitCode) : exitCode;
}

/// What the run and the fit make of it: a grab that failed counts first.
int judge(const CommandLine& commandLine, const GrabResult& result,
          std::span<const ClockSample> samples)
{
    std::string problem;
    const std::optional<ClockFit> fit = fitClock(samples, problem);
    if (result.exitCode != kExitFine) {
        return report(commandLine, fit, result.exitCode, result.reason);
    }
    if (!fit) {
        return report(commandLine, fit, kExitNoClock,
                      "There is no clock to report: " + problem + ".");
    }
    return report(commandLine, fit, kExitFine, result.reason);
}

int measure(const CommandLine& commandLine, const Configuration& configuration,
            const Plugin& plugin)
{
    HostServices& host = services();
    ClockRecorder recorder(framesExpected(commandLine.clock.seconds));
    host.clock = &recorder;
    host.plugin = &plugin;
    const GrabResult result = collect(commandLine, configuration);
    if (result.abandoned) {
        // The grab thread may still use all of this.
        const int exitCode = report(commandLine, std::nullopt, kExitNoClock, result.reason);
        std::fflush(nullptr);
        _exit(exitCode);
    }
    host.clock = nullptr;
    host.plugin = nullptr;
    return judge(commandLine, result, recorder.samples());
}

} // namespace

int commandClock(const CommandLine& asked)
{
    blockSteeringSignals(); // first: who sends one does not know how far this process is
    const CommandLine commandLine = withoutEnd(asked);
    Configuration configuration;
    if (!configure(commandLine, configuration)) {
        if (commandLine.clock.json) {
            return printReport(clockJson({}, kExitConfiguration, "The configuration was refused."),
                               kExitConfiguration);
        }
        return kExitConfiguration; // of which the user was told
    }
    const Settings& settings = services().settings = configuration.settings;
    std::signal(SIGPIPE, SIG_IGN); // a reader of the log that went away is no reason to die
    try {
        const Plugin plugin(commandLine.plugin);
        plugin.setLogging(static_cast<std::uint32_t>(settings.logLevel),
                          static_cast<std::uint32_t>(settings.logSinks), settings.logId);
        return measure(commandLine, configuration, plugin);
    } catch (const LoadError& error) {
        return report(commandLine, std::nullopt, error.exitCode(), error.what());
    }
}

} // namespace kxhost
