// kxhost grab: from the configuration to the summary.
#include "commands.h"
#include "config_change.h"
#include "config_hints.h"
#include "export_summary.h"
#include "grab_run.h"
#include "notify_socket.h"
#include "progress.h"
#include "real_time.h"
#include "service_status.h"
#include "services.h"

#include <algorithm>
#include <csignal>
#include <cstdio>

#include <unistd.h>

namespace kxhost {
namespace {

GrabSummary summarize(const GrabResult& result, const Settings& settings, const ExportQueue& queue)
{
    const GrabCounts& counts = services().counts;
    GrabSummary summary;
    summary.exitCode = result.exitCode;
    summary.reason = result.reason;
    summary.folder = settings.outputFolder;
    summary.passes = counts.passes;
    summary.retrieved = counts.retrieved;
    summary.missing = counts.missing;
    summary.timing = counts.timing;
    summary.refused = counts.refused;
    summary.exported = queue.totals();
    summary.ledger = services().fates.ledger();
    for (const std::optional<std::uint32_t>& frame : queue.failedFrames()) {
        summary.ledger.notWritten(frame);
    }
    if (!result.abandoned) { // the grab thread may still add to it
        summary.configurations = services().history.changes();
    }
    summary.seconds = static_cast<double>(counts.lastUs - counts.firstUs) / 1e6;
    summary.framePeriodUs = counts.framePeriodUs;
    summary.overBudget = counts.overBudget;
    summary.longestUs = counts.longestUs;
    summary.received = {.expected = std::ranges::any_of(settings.iobox, isDataInput),
                        .count = counts.words,
                        .frame = counts.wordFrame,
                        .data = counts.wordData,
                        .bits = counts.wordBits};
    return summary;
}

/// What the export and the losses make of a result: the first thing that went wrong counts.
void judge(GrabSummary& summary, std::int64_t maxLosses, const std::string& exportError)
{
    const std::uint64_t lost = lostFrames(summary);
    if (!exportError.empty()) {
        summary.exitCode = kExitExport;
        summary.reason = exportError;
    } else if (summary.exitCode == kExitFine && maxLosses >= 0 &&
               lost > static_cast<std::uint64_t>(maxLosses)) {
        summary.exitCode = kExitLosses;
        summary.reason = std::to_string(lost) + " frames were lost, " + std::to_string(maxLosses) +
                         " are allowed.";
    }
}

/// Writes the summary file if one is wanted; a grab that went well has failed if that fails.
void saveSummary(const CommandLine& commandLine, GrabSummary& summary)
{
    if (commandLine.summaryFile.empty()) {
        return;
    }
    const std::string error = writeSummary(summary, commandLine.summaryFile);
    if (error.empty()) {
        return;
    }
    if (summary.exitCode == kExitFine) {
        summary.exitCode = kExitExport;
        summary.reason = error;
    } else {
        complain(error);
    }
}

/// Ends a grab that never began, of which the user was told. There is nothing to count, but who
/// reads the summary file learns why.
int giveUp(const CommandLine& commandLine, const NotifySocket& manager, int exitCode,
           const std::string& reason)
{
    manager.send("STOPPING=1\n" + statusLine(reason));
    GrabSummary summary;
    summary.exitCode = exitCode;
    summary.reason = reason;
    summary.folder = services().settings.outputFolder;
    saveSummary(commandLine, summary);
    return summary.exitCode;
}

/// Writes the summary where it is wanted and returns the exit code.
int report(const CommandLine& commandLine, GrabSummary summary)
{
    saveSummary(commandLine, summary);
    if (!commandLine.quiet) {
        std::fputs(summaryText(summary).c_str(), stdout);
    }
    if (summary.exitCode != kExitFine) {
        complain(summary.reason);
    }
    return summary.exitCode;
}

int grab(const CommandLine& commandLine, const Configuration& configuration, const Plugin& plugin,
         const NotifySocket& manager)
{
    HostServices& host = services();
    const Settings& settings = configuration.settings;
    ExportQueue queue(exportSettings(settings));
    if (const std::string error = queue.start(); !error.empty()) {
        complain(error);
        return giveUp(commandLine, manager, kExitExport, error);
    }
    host.queue = &queue;
    host.plugin = &plugin;
    ConfigFollower follower({commandLine.configuration, commandLine.overrides}, configuration,
                            host.offers, complain);
    GrabResult result;
    ServiceStatus status(manager, watchdogOfEnvironment(), host.counts, host.signals,
                         ProgressLine(host.counts, settings.frames, steadyUs()));
    {
        Progress progress(host.counts, settings.frames, commandLine.quiet);
        const bool watch = settings.watchConfiguration && !commandLine.configuration.empty();
        result =
            runGrab(plugin, follower, watch, std::min(progress.tickMs(), status.tickMs()), [&] {
                const ExportTotals exported = queue.totals();
                progress.show(exported);
                status.update(exported, steadyUs());
            });
    }
    queue.finish();
    GrabSummary summary = summarize(result, settings, queue);
    judge(summary, settings.maxLosses, queue.firstError());
    status.end(summary.reason);
    const int exitCode = report(commandLine, summary);
    if (result.abandoned) {
        // The grab thread may still use all of this.
        std::fflush(nullptr);
        _exit(exitCode);
    }
    host.queue = nullptr;
    host.plugin = nullptr;
    return exitCode;
}

} // namespace

int commandGrab(const CommandLine& commandLine)
{
    blockSteeringSignals(); // first: who sends one does not know how far this process is
    const NotifySocket manager = managerOfEnvironment();
    Configuration configuration;
    if (!configure(commandLine, configuration)) {
        return giveUp(commandLine, manager, kExitConfiguration, "The configuration was refused.");
    }
    if (!commandLine.quiet) {
        for (const std::string& hint : hintsOn(configuration)) {
            complain("hint: " + hint);
        }
    }
    const Settings& settings = services().settings = configuration.settings;
    services().history.start(givenValues(configuration), wallUs());
    if (const std::string trouble = realTimeTrouble(settings); !trouble.empty()) {
        complain(trouble);
    }
    // A file that may not grow is an error of its write, as on a full disk, and no reason to die.
    std::signal(SIGXFSZ, SIG_IGN);
    // Nor is a reader of the log that went away.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const Plugin plugin(commandLine.plugin);
        plugin.setLogging(static_cast<std::uint32_t>(settings.logLevel),
                          static_cast<std::uint32_t>(settings.logSinks), settings.logId);
        return grab(commandLine, configuration, plugin, manager);
    } catch (const LoadError& error) {
        complain(error.what());
        return giveUp(commandLine, manager, error.exitCode(), error.what());
    }
}

} // namespace kxhost
