// kxhost grab: from the configuration to the summary.
#include "base/output_file.h"
#include "base/standard_output.h"
#include "command/commands.h"
#include "command/grab_page.h"
#include "config/config.h"
#include "config/config_change.h"
#include "config/config_hints.h"
#include "export/export_summary.h"
#include "grab/grab_run.h"
#include "grab/notify_socket.h"
#include "grab/progress.h"
#include "grab/real_time.h"
#include "grab/service_status.h"
#include "grab/services.h"
#include "report/report_page.h"
#include "report/run_recorder.h"

#include <climits>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>

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
        summary.keysInForce = services().history.keysInForce();
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

/// What could not be written is an error of a grab that went well; otherwise it is told.
void saved(const std::string& error, GrabSummary& summary)
{
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

/// The camera as far as it is known, by what it was chosen.
std::string cameraText(const CameraChoice& choice)
{
    const char* const comma = choice.model.empty() || choice.serial.empty() ? "" : ", ";
    return choice.model + comma + (choice.serial.empty() ? "" : "serial " + choice.serial);
}

std::string libraryText(const PluginChoice& choice)
{
    if (choice.simulate) {
        return choice.bus.empty() ? "simulated cameras" : "simulated cameras of " + choice.bus;
    }
    return choice.cameraLibrary.empty() ? "the installed one" : choice.cameraLibrary;
}

std::string nameOfComputer()
{
    std::array<char, HOST_NAME_MAX + 1> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

/// What is written at the end of a grab, where it is wanted.
class Outputs {
public:
    explicit Outputs(const CommandLine& commandLine)
        : reportFile_(commandLine.reportFile), summaryFile_(commandLine.summaryFile)
    {
        report_.facts.computer = nameOfComputer();
        report_.facts.hostVersion = KXHOST_VERSION;
        report_.facts.configuration = commandLine.configuration;
        report_.facts.library = libraryText(commandLine.plugin);
    }

    ReportFacts& facts() { return report_.facts; }

    /// Why something cannot be written; empty = all can. What cannot is not tried again.
    std::string whyNotAll()
    {
        for (std::string* const file : {&reportFile_, &summaryFile_}) {
            std::string why = file->empty() ? "" : whyNotWritable(*file);
            if (!why.empty()) {
                file->clear();
                return why;
            }
        }
        return "";
    }
    /// Lets the report see the frames. REQUIRES: the queue has not started.
    void watch(ExportQueue& queue)
    {
        if (!reportFile_.empty()) {
            queue.addTap(recorder_);
        }
    }
    /// The report comes first: the summary shows if it fails. REQUIRES: no writer is at work.
    void write(GrabSummary& summary)
    {
        if (!reportFile_.empty()) {
            report_.summary = summary;
            report_.record = recorder_.record();
            report_.writtenUs = wallUs();
            saved(writeReport(report_, reportFile_), summary);
        }
        if (!summaryFile_.empty()) {
            saved(writeSummary(summary, summaryFile_), summary);
        }
    }

private:
    std::string reportFile_; ///< empty = it is not wanted, or cannot be written
    std::string summaryFile_;
    RunRecorder recorder_;
    Report report_;
};

/// The folder for frames, which shall not stay empty when this grab has made it: one that finds no
/// camera is started again and again.
class OutputFolder {
public:
    /// REQUIRES: the queue has not started.
    explicit OutputFolder(std::string path) : path_(std::move(path))
    {
        std::error_code ignored;
        isNew_ = !path_.empty() && !std::filesystem::exists(path_, ignored);
    }
    /// REQUIRES: nothing will be written there any more.
    void removeIfEmpty() const
    {
        if (isNew_) {
            std::error_code notEmpty;
            std::filesystem::remove(path_, notEmpty);
        }
    }

private:
    std::string path_;
    bool isNew_ = false;
};

/// Ends a grab that never began, of which the user was told. There is nothing to count, but who
/// reads the summary file learns why.
int giveUp(Outputs& outputs, const NotifySocket& manager, int exitCode, const std::string& reason)
{
    manager.send("STOPPING=1\n" + statusLine(reason));
    GrabSummary summary;
    summary.exitCode = exitCode;
    summary.reason = reason;
    summary.folder = services().settings.outputFolder;
    outputs.write(summary);
    return summary.exitCode;
}

/// Whether there is nothing to count, as the grab failed before its first frame.
bool isWithoutFrames(const GrabSummary& summary)
{
    return summary.exitCode != kExitFine && summary.retrieved == 0 && lostFrames(summary) == 0;
}

/// Writes and prints what is wanted, and returns the exit code.
int report(bool quiet, Outputs& outputs, GrabSummary& summary)
{
    outputs.write(summary);
    if (!quiet && !isWithoutFrames(summary)) {
        saved(printReport(summaryText(summary)), summary);
    }
    if (summary.exitCode != kExitFine) {
        complain(summary.reason);
    }
    return summary.exitCode;
}

LiveFacts liveFacts(const CommandLine& commandLine, const Settings& settings)
{
    return {.configuration = commandLine.configuration,
            .folder = settings.outputFolder,
            .frames = settings.frames,
            .queuePlaces = settings.outputQueue,
            .process = getpid()};
}

/// A frame that is handed over shows the error at once; while the camera is away there is none.
void endAfterExportError(const ExportQueue& queue, PendingSignals& signals)
{
    if (!queue.firstError().empty()) {
        signals.post(kFinishTerminate);
    }
}

int grab(const CommandLine& commandLine, const Configuration& configuration, const Plugin& plugin,
         const NotifySocket& manager, Outputs& outputs, GrabPage& page)
{
    HostServices& host = services();
    const Settings& settings = configuration.settings;
    ExportQueue queue(exportSettings(settings));
    outputs.watch(queue);
    page.watch(queue);
    const OutputFolder folder(settings.outputFolder);
    std::string error = queue.start();
    if (error.empty()) { // they may go into the folder that was made
        error = outputs.whyNotAll();
    }
    if (!error.empty()) {
        complain(error);
        const int exitCode = giveUp(outputs, manager, kExitExport, error);
        folder.removeIfEmpty();
        return exitCode;
    }
    host.queue = &queue;
    host.plugin = &plugin;
    ConfigFollower follower({commandLine.configuration, commandLine.overrides}, configuration,
                            host.offers, complain);
    page.start(liveFacts(commandLine, settings));
    GrabResult result;
    ServiceStatus status(manager, watchdogOfEnvironment(), host.counts, host.signals,
                         ProgressLine(host.counts, settings.frames, steadyUs()));
    {
        Progress progress(host.counts, settings.frames, commandLine.quiet);
        const bool watch = settings.watchConfiguration && !commandLine.configuration.empty();
        const int tickMs = page.tickMs(std::min(progress.tickMs(), status.tickMs()));
        result = runGrab(plugin, follower, watch, tickMs, [&] {
            endAfterExportError(queue, host.signals);
            const ExportTotals exported = queue.totals();
            progress.show(exported);
            status.update(exported, steadyUs());
            page.update(exported, steadyUs());
        });
    }
    queue.finish();
    GrabSummary summary = summarize(result, settings, queue);
    judge(summary, settings.maxLosses, queue.firstError());
    status.end(summary.reason);
    if (!result.abandoned && host.choice) {
        outputs.facts().camera = cameraText(*host.choice);
    }
    const int exitCode = report(commandLine.quiet, outputs, summary);
    page.end(exitCode, summary.reason);
    folder.removeIfEmpty();
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
    Outputs outputs(commandLine);
    if (!configure(commandLine, configuration)) {
        return giveUp(outputs, manager, kExitConfiguration, "The configuration was refused.");
    }
    if (!commandLine.quiet) {
        for (const std::string& hint : hintsOn(configuration)) {
            complain("hint: " + hint);
        }
    }
    GrabPage page;
    if (const GrabResult opened = page.open(commandLine.live); opened.exitCode != kExitFine) {
        return giveUp(outputs, manager, opened.exitCode, opened.reason);
    }
    const Settings& settings = services().settings = configuration.settings;
    outputs.facts().camera = cameraText(choiceOf(settings));
    outputs.facts().inForce = describeConfiguration(configuration);
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
        outputs.facts().pluginVersion = plugin.version();
        return grab(commandLine, configuration, plugin, manager, outputs, page);
    } catch (const LoadError& error) {
        complain(error.what());
        return giveUp(outputs, manager, error.exitCode(), error.what());
    }
}

} // namespace kxhost
