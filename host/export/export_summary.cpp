// The summary of a grab: what was retrieved, exported and lost, as one JSON object and as text.
#include "export/export_summary.h"

#include "base/output_file.h"
#include "export/change_report.h"
#include "export/ledger_report.h"

#include <nlohmann/json.hpp>

#include <iomanip>
#include <span>
#include <sstream>

namespace kxhost {

namespace {

using Json = nlohmann::ordered_json;

double perSecond(std::uint64_t count, double seconds)
{
    return seconds > 0 ? static_cast<double>(count) / seconds : 0;
}

/// Frames a second between the first and the last one.
double retrievedRate(const GrabSummary& summary)
{
    return perSecond(summary.retrieved > 0 ? summary.retrieved - 1 : 0, summary.seconds);
}

Json lossesJson(const GrabSummary& summary)
{
    const LedgerTotals totals = summary.ledger.totals();
    const CauseCounts& causes = totals.causes;
    return {{"total", totals.lost()},
            {"camera", totals.lostByCamera()},
            {"detached", causes[FrameCause::kDetached]},
            {"no_buffer", causes[FrameCause::kNoBuffer]},
            {"queue_full", summary.exported.refusedFull},
            {"after_export_error", summary.exported.refusedFailed},
            {"refused", summary.refused},
            {"unfinished", causes[FrameCause::kUnfinished]},
            {"export", summary.exported.failed}};
}

Json exportJson(const GrabSummary& summary)
{
    const ExportTotals& exported = summary.exported;
    return {{"frames", exported.accepted},       {"written", exported.written},
            {"pictures", exported.pictures},     {"bytes", exported.bytes},
            {"deepest_queue", exported.deepest}, {"waits", exported.waits},
            {"wait_us", exported.waitUs}};
}

/// The last word has the names of the metadata.
Json receivedJson(const ReceivedWords& received)
{
    Json last;
    if (received.count > 0) {
        last = {{"number", received.frame}, {"rx_data", received.data}, {"rx_bits", received.bits}};
    }
    return {{"words", received.count}, {"last", last}};
}

std::string receivedText(const ReceivedWords& received)
{
    if (received.count == 0) {
        return received.expected ? "received  no words\n" : "";
    }
    std::ostringstream text;
    text << "received  " << received.count
         << (received.count == 1 ? " word, " : " words, the last ") << "0x" << std::uppercase
         << std::hex << received.data << std::dec << " (" << received.bits << " bits) with frame "
         << received.frame << "\n";
    return text.str();
}

} // namespace

std::uint64_t lostFrames(const GrabSummary& summary)
{
    return summary.ledger.totals().lost();
}

std::string summaryJson(const GrabSummary& summary)
{
    const Json object = {
        {"exit_code", summary.exitCode},
        {"reason", summary.reason},
        {"folder", summary.folder},
        {"passes", summary.passes},
        {"retrieved", summary.retrieved},
        {"timing_only", summary.timing},
        {"failed_retrievals", summary.missing},
        {"exported", exportJson(summary)},
        {"lost", lossesJson(summary)},
        {"ledger", ledgerJson(summary.ledger)},
        {"configurations", changesJson(summary.configurations)},
        {"seconds", summary.seconds},
        {"frame_rate", retrievedRate(summary)},
        {"write_rate", perSecond(summary.exported.written, summary.seconds)},
        {"frame_period_us", summary.framePeriodUs},
        {"over_budget", summary.overBudget},
        {"longest_hand_over_us", summary.longestUs},
        {"received", receivedJson(summary.received)},
    };
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string summaryText(const GrabSummary& summary)
{
    const ExportTotals& exported = summary.exported;
    std::ostringstream text;
    text << std::fixed << std::setprecision(1);
    text << "retrieved " << summary.retrieved << " frames in " << summary.seconds << " s ("
         << retrievedRate(summary) << " a second), " << summary.timing
         << " only to start the timing\n";
    text << "exported  " << exported.written << " frames, " << exported.pictures << " pictures, "
         << static_cast<double>(exported.bytes) / 1e6 << " MB"
         << (summary.folder.empty() ? "" : " into " + summary.folder) << "\n";
    const LedgerTotals totals = summary.ledger.totals();
    text << "lost      " << totals.lost() << " (camera " << totals.lostByCamera() << ", queue full "
         << exported.refusedFull << ", refused " << summary.refused << ", export "
         << exported.refusedFailed + exported.failed;
    for (const FrameCause cause :
         {FrameCause::kNoBuffer, FrameCause::kDetached, FrameCause::kUnfinished}) {
        if (totals.causes[cause] != 0) {
            text << ", " << causeText(cause) << " " << totals.causes[cause];
        }
    }
    text << ")\n" << ledgerText(summary.ledger);
    if (summary.framePeriodUs != 0) {
        text << "time      longest hand-over " << summary.longestUs << " us of a period of "
             << summary.framePeriodUs << " us, " << summary.overBudget << " frames over it\n";
    }
    return text.str() + receivedText(summary.received);
}

std::string writeSummary(const GrabSummary& summary, const std::string& path)
{
    const std::string text = summaryJson(summary);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    return writeWholeFile(path, {bytes, text.size()});
}

} // namespace kxhost
