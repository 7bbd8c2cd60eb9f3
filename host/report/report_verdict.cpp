// The head of the report: how the grab went, in words.
#include "export/ledger_report.h"
#include "report/html_escape.h"
#include "report/report_html.h"
#include "report/report_sections.h"
#include "report/report_words.h"

namespace kxhost {
namespace {

/// "7 camera skipped, 5 queue full"
std::string causesText(const GrabSummary& summary)
{
    const LedgerTotals totals = summary.ledger.totals();
    std::string text;
    const auto add = [&](std::uint64_t count, const std::string& words) {
        text += count == 0 ? "" : (text.empty() ? "" : ", ") + grouped(count) + " " + words;
    };
    for (std::size_t i = 0; i < kFrameCauses; ++i) {
        const auto cause = static_cast<FrameCause>(i);
        if (cause != FrameCause::kTiming && cause != FrameCause::kStopped) {
            add(totals.causes[cause], causeText(cause));
        }
    }
    add(totals.failedTakenForLost(), "known by failed retrieval only");
    return text;
}

std::string headline(const GrabSummary& summary)
{
    const std::uint64_t lost = lostFrames(summary);
    if (summary.exitCode != 0) {
        return "Failed: " + exitCodeText(summary.exitCode);
    }
    if (lost != 0) {
        return "Finished, with " + counted(lost, "frame") + " lost";
    }
    return summary.exported.written == 0 ? "Finished without a frame" : "Finished, no frame lost";
}

const char* mood(const GrabSummary& summary)
{
    if (summary.exitCode != 0) {
        return "bad";
    }
    return lostFrames(summary) == 0 && summary.exported.written != 0 ? "good" : "fair";
}

std::string deliveredText(const GrabSummary& summary)
{
    const std::uint64_t delivered = summary.exported.written;
    std::string text = element("b", counted(delivered, "frame")) +
                       (delivered == 1 ? " was" : " were") + " delivered";
    if (summary.seconds > 0 && delivered > 1) { // since the frame that only started the timing
        const double rate = static_cast<double>(delivered) / summary.seconds;
        text += " in " + element("b", lengthOfTime(summary.seconds)) + ", " + fixedText(rate, 1) +
                " a second";
    }
    return text + ".";
}

std::string lostText(const GrabSummary& summary)
{
    const std::uint64_t lost = lostFrames(summary);
    if (lost == 0) {
        return summary.retrieved == 0 ? "" : " None was lost.";
    }
    return " " + element("b", grouped(lost)) + (lost == 1 ? " was" : " were") +
           " lost: " + causesText(summary) + ".";
}

std::string eventsText(const RunRecord& record)
{
    std::string text;
    if (record.timesAway != 0) {
        text += " The camera was away " + timesText(record.timesAway) + ", for " +
                lengthOfTime(static_cast<double>(record.awayUs) / 1e6) + ".";
    }
    if (record.changes != 0) {
        text += " The configuration changed " + timesText(record.changes) + ".";
    }
    return text;
}

std::string fact(const char* name, const std::string& value)
{
    return value.empty() ? "" : element("div", element("dt", name) + element("dd", value)) + "\n";
}

std::string shapeText(const RunRecord& record)
{
    if (record.shape.width == 0) {
        return "";
    }
    return std::to_string(record.shape.width) + " × " + std::to_string(record.shape.height) +
           " pixels, " + htmlEscape(record.shape.codec);
}

std::string periodText(std::uint32_t periodUs)
{
    return periodUs == 0
               ? ""
               : microseconds(periodUs) + " (" + fixedText(1e6 / periodUs, 1) + " frames a second)";
}

std::string exportText(const GrabSummary& summary)
{
    if (summary.folder.empty()) {
        return "not written to disk";
    }
    const ExportTotals& exported = summary.exported;
    const std::string what = exported.pictures == 0
                                 ? "none"
                                 : counted(exported.pictures, "picture") + ", " +
                                       fixedText(static_cast<double>(exported.bytes) / 1e6, 1) +
                                       " MB";
    return what + " in " + element("code", htmlEscape(summary.folder));
}

std::string timeText(std::uint64_t us)
{
    return us == 0 ? "" : utcText(us);
}

std::string factsList(const Report& report)
{
    const ReportFacts& facts = report.facts;
    const GrabSummary& summary = report.summary;
    std::string versions = "kxhost " + htmlEscape(facts.hostVersion);
    if (!facts.pluginVersion.empty()) {
        versions += ", plug-in " + htmlEscape(facts.pluginVersion);
    }
    const std::string list =
        fact("Camera", htmlEscape(facts.camera)) + fact("Computer", htmlEscape(facts.computer)) +
        fact("First frame", timeText(report.record.firstTimestampUs)) +
        fact("Last frame", timeText(report.record.lastTimestampUs)) +
        fact("Frames", shapeText(report.record)) +
        fact("Frame period", periodText(summary.framePeriodUs)) +
        fact("Pictures", exportText(summary)) +
        fact("Configuration", facts.configuration.empty()
                                  ? "no file"
                                  : element("code", htmlEscape(facts.configuration))) +
        fact("Camera library", htmlEscape(facts.library)) + fact("Versions", versions);
    return element("dl", "\n" + list, "class=\"facts\"");
}

} // namespace

std::string verdictSection(const Report& report)
{
    const GrabSummary& summary = report.summary;
    const std::string code = "Exit code <data id=\"exit-code\" value=\"" +
                             std::to_string(summary.exitCode) + "\">" +
                             std::to_string(summary.exitCode) + "</data>.";
    const std::string lead = deliveredText(summary) + lostText(summary) +
                             eventsText(report.record) + " " + htmlEscape(summary.reason) + " " +
                             code;
    return element("header",
                   "\n" + element("p", "Grab report", "class=\"kicker\"") + "\n" +
                       element("h1", headline(summary)) + "\n" +
                       element("p", lead, "class=\"lead\"") + "\n" + factsList(report) + "\n",
                   "class=\"" + std::string(mood(summary)) + "\"") +
           "\n";
}

} // namespace kxhost
