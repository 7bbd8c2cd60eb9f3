// The ledger of frames, as the report shows it.
#include "export/ledger_report.h"
#include "report/report_html.h"
#include "report/report_sections.h"
#include "report/report_words.h"

#include <algorithm>
#include <array>

namespace kxhost {
namespace {

/// What the causes mean, in their order.
constexpr std::array<const char*, kFrameCauses> kMeanings = {
    "arrived, but only started the timing: the first frame of each capture",
    "never arrived: skipped by the camera, or lost on the bus or in the driver",
    "never arrived, and a failed retrieval was reported meanwhile",
    "came while the grab waited for a place in the queue, or there was no memory",
    "arrived when every place of the queue was taken",
    "arrived without readable pixels",
    "arrived, but the plug-in ended before it handed the frame over",
    "could not be written, or the export had failed before",
    "fell between two captures, the first of which the host ended",
    "fell between two captures, the camera having been lost"};

std::string words(FrameCause cause)
{
    std::string text = causeText(cause);
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

std::string shareOf(std::uint64_t count, std::uint64_t all)
{
    return all == 0 ? "–" : percentage(static_cast<double>(count) / static_cast<double>(all));
}

/// A bar of all frames, parted by what became of them.
std::string shareBar(const LedgerTotals& totals, std::uint64_t all)
{
    if (all == 0) {
        return "";
    }
    std::string parts;
    const auto part = [&](const std::string& cssClass, const std::string& title,
                          std::uint64_t count) {
        if (count != 0) {
            parts += element("span", "",
                             "class=\"" + cssClass + "\" title=\"" + title + ": " + grouped(count) +
                                 "\" style=\"flex-grow:" + std::to_string(count) + "\"");
        }
    };
    part("delivered", "Delivered", totals.delivered);
    for (std::size_t i = 0; i < kFrameCauses; ++i) {
        const auto cause = static_cast<FrameCause>(i);
        const bool own = cause == FrameCause::kTiming || cause == FrameCause::kStopped;
        part(own ? "own" : "missed", words(cause), totals.causes[cause]);
    }
    return element("div", parts, "class=\"shares\" aria-hidden=\"true\"");
}

std::string balance(const LedgerTotals& totals)
{
    if (totals.arrived == 0) {
        return element("p", "No frame arrived.", "class=\"about\"");
    }
    std::string text = totals.counted
                           ? "The camera numbered " + dataElement("ledger-values", totals.values) +
                                 (totals.values == 1 ? " frame" : " frames") +
                                 " from the first that came to the last"
                           : "The camera does not number its frames; these are the " +
                                 grouped(totals.offCounter) + " that arrived";
    if (totals.counted && totals.offCounter != 0) {
        text += ", and " + dataElement("ledger-off-counter", totals.offCounter) +
                " more arrived without a number of their own";
    }
    text += ". Each of them is delivered or has one cause below";
    text += totals.imbalance() == 0
                ? "; the balance is even."
                : "; the balance is off by " + std::to_string(totals.imbalance()) + ".";
    return element("p", text, "class=\"about\"");
}

std::string failures(const LedgerTotals& totals)
{
    const std::uint64_t failed = totals.failedWithoutFrame();
    if (failed == 0) {
        return "";
    }
    const std::string meaning =
        totals.failedTakenForLost() == 0
            ? " ended without a frame, though none is known to be lost by it: a wait for a slow or "
              "triggered camera, or for one that was gone."
            : " ended without a frame; each counts as lost, since without numbers nothing else "
              "tells.";
    return element("p",
                   dataElement("ledger-failed-without-frame", failed) +
                       (failed == 1 ? " retrieval" : " retrievals") + meaning,
                   "class=\"about\"");
}

std::string totalsTable(const LedgerTotals& totals, std::uint64_t all)
{
    std::vector<std::vector<std::string>> rows = {
        {"Delivered", dataElement("ledger-delivered", totals.delivered),
         shareOf(totals.delivered, all), "written, with its metadata"}};
    for (std::size_t i = 0; i < kFrameCauses; ++i) {
        const auto cause = static_cast<FrameCause>(i);
        if (totals.causes[cause] != 0) {
            const std::string id = std::string("ledger-") + causeWord(cause);
            rows.push_back({words(cause), dataElement(id, totals.causes[cause]),
                            shareOf(totals.causes[cause], all), kMeanings[i]});
        }
    }
    return table({"What became of it", "Frames", "Share", "Meaning"}, rows, false);
}

std::string rangeCauses(const CauseCounts& counts)
{
    std::string text;
    for (std::size_t i = 0; i < kFrameCauses; ++i) {
        const auto cause = static_cast<FrameCause>(i);
        if (counts[cause] != 0) {
            text += (text.empty() ? "" : ", ") + grouped(counts[cause]) + " " + causeText(cause);
        }
    }
    return text;
}

std::string rangesTable(const FrameLedger& ledger)
{
    if (ledger.ranges().empty()) {
        return "";
    }
    std::vector<std::vector<std::string>> rows;
    for (const LostRange& range : ledger.ranges()) {
        const std::string numbers =
            std::to_string(range.first) +
            (range.last == range.first ? "" : " to " + std::to_string(range.last));
        rows.push_back({std::to_string(range.stretch), numbers, rangeCauses(range.counts)});
    }
    const std::uint64_t more = ledger.totals().rangesNotListed;
    return foldedAway("Which frames: " + counted(rows.size(), "range") +
                          (more == 0 ? "" : ", and " + grouped(more) + " more that are not listed"),
                      table({"Stretch", "Camera's numbers", "Causes"}, rows, false));
}

std::string stretchesTable(const FrameLedger& ledger)
{
    constexpr std::array<const char*, 4> kBegins = {"the first frame of all",
                                                    "the capture began anew", "the camera was back",
                                                    "in the middle of a capture"};
    if (ledger.stretches().size() < 2) {
        return "";
    }
    std::vector<std::vector<std::string>> rows;
    std::uint64_t number = ledger.totals().stretchesNotListed;
    for (const CountStretch& each : ledger.stretches()) {
        rows.push_back({std::to_string(++number), kBegins[static_cast<std::size_t>(each.begin)],
                        std::to_string(each.first), std::to_string(each.last)});
    }
    return foldedAway("Where the camera began to count anew: " + grouped(number) + " stretches." +
                          " What fell between is not known",
                      table({"Stretch", "Begins", "First number", "Last number"}, rows, false));
}

} // namespace

std::string ledgerSection(const Report& report)
{
    const FrameLedger& ledger = report.summary.ledger;
    const LedgerTotals totals = ledger.totals();
    const std::uint64_t all = totals.values + totals.offCounter;
    return section("ledger", "Ledger of frames",
                   balance(totals) + shareBar(totals, all) + totalsTable(totals, all) +
                       failures(totals) + rangesTable(ledger) + stretchesTable(ledger));
}

} // namespace kxhost
