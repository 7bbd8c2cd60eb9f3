// kxhost grab: from the configuration to the summary.
#include "commands.h"
#include "config_hints.h"
#include "export_summary.h"
#include "grab_run.h"
#include "progress.h"
#include "services.h"

#include <csignal>
#include <cstdio>

namespace kxhost {
namespace {

GrabSummary summarize(const GrabResult& result, const ExportTotals& exported)
{
    const HostServices& host = services();
    const GrabCounts& counts = host.counts;
    GrabSummary summary;
    summary.exitCode = result.exitCode;
    summary.reason = result.reason;
    summary.folder = host.settings.outputFolder;
    summary.passes = result.passes;
    summary.retrieved = counts.retrieved;
    summary.missing = counts.missing;
    summary.timing = counts.timing;
    summary.gaps = counts.gaps;
    summary.refused = counts.refused;
    summary.exported = exported;
    summary.seconds = static_cast<double>(counts.lastUs - counts.firstUs) / 1e6;
    summary.framePeriodUs = counts.framePeriodUs;
    summary.overBudget = counts.overBudget;
    summary.longestUs = counts.longestUs;
    return summary;
}

/// What the export and the losses make of a result: the first thing that went wrong counts.
void judge(GrabSummary& summary, const std::string& exportError)
{
    const std::int64_t maxLosses = services().settings.maxLosses;
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
int giveUp(const CommandLine& commandLine, int exitCode, const std::string& reason)
{
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

int grab(const CommandLine& commandLine, const Plugin& plugin)
{
    HostServices& host = services();
    ExportQueue queue(exportSettings(host.settings));
    if (const std::string error = queue.start(); !error.empty()) {
        complain(error);
        return giveUp(commandLine, kExitExport, error);
    }
    host.queue = &queue;
    GrabResult result;
    {
        Progress progress(host.counts, host.settings.frames, commandLine.quiet);
        result = runGrab(plugin, progress.tickMs(), [&] { progress.show(queue.totals()); });
    }
    host.queue = nullptr;
    queue.finish();
    GrabSummary summary = summarize(result, queue.totals());
    judge(summary, queue.firstError());
    return report(commandLine, summary);
}

} // namespace

int commandGrab(const CommandLine& commandLine)
{
    Configuration configuration;
    if (!configure(commandLine, configuration)) {
        return giveUp(commandLine, kExitConfiguration, "The configuration was refused.");
    }
    if (!commandLine.quiet) {
        for (const std::string& hint : hintsOn(configuration)) {
            complain("hint: " + hint);
        }
    }
    const Settings& settings = services().settings = configuration.settings;
    blockTerminationSignals();
    // A file that may not grow is an error of its write, as on a full disk, and no reason to die.
    std::signal(SIGXFSZ, SIG_IGN);
    // Nor is a reader of the log that went away.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const Plugin plugin(commandLine.plugin);
        plugin.setLogging(static_cast<std::uint32_t>(settings.logLevel),
                          static_cast<std::uint32_t>(settings.logSinks), settings.logId);
        return grab(commandLine, plugin);
    } catch (const LoadError& error) {
        complain(error.what());
        return giveUp(commandLine, error.exitCode(), error.what());
    }
}

} // namespace kxhost
