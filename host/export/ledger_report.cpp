// What the summary and the metadata say of the ledger of frames.
#include "export/ledger_report.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace kxhost {
namespace {

using Json = nlohmann::ordered_json;

Json stretchesJson(const FrameLedger& ledger)
{
    Json stretches = Json::array();
    std::uint64_t number = ledger.totals().stretchesNotListed;
    for (const CountStretch& each : ledger.stretches()) {
        stretches.push_back({{"stretch", ++number},
                             {"begins", countBeginWord(each.begin)},
                             {"first", each.first},
                             {"last", each.last}});
    }
    return stretches;
}

Json rangesJson(const FrameLedger& ledger)
{
    std::vector<LostRange> ranges = ledger.ranges();
    std::ranges::stable_sort(
        ranges, {}, [](const LostRange& each) { return std::pair(each.stretch, each.first); });
    Json all = Json::array();
    for (const LostRange& each : ranges) {
        all.push_back({{"stretch", each.stretch},
                       {"first", each.first},
                       {"last", each.last},
                       {"causes", causesJson(each.counts)}});
    }
    return all;
}

std::string plural(std::uint64_t count, const std::string& word)
{
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

/// " + 2 camera skipped + 1 queue full"
std::string causesText(const CauseCounts& counts)
{
    std::string text;
    for (std::size_t i = 0; i < kFrameCauses; ++i) {
        const auto cause = static_cast<FrameCause>(i);
        if (counts[cause] != 0) {
            text += " + " + std::to_string(counts[cause]) + " " + causeText(cause);
        }
    }
    return text;
}

/// The left side of the balance.
std::string countedText(const LedgerTotals& totals)
{
    if (!totals.counted) {
        return plural(totals.offCounter, "frame") + " (not counted by the camera)";
    }
    return plural(totals.values, "value") + " of the camera's counter" +
           (totals.offCounter == 0 ? "" : " + " + std::to_string(totals.offCounter) + " off it");
}

/// The failed retrievals that are not among the causes.
std::string failuresText(const LedgerTotals& totals)
{
    const std::uint64_t failed = totals.failedWithoutFrame();
    if (failed == 0) {
        return "";
    }
    return "          " + plural(failed, "failed retrieval") +
           (totals.failedTakenForLost() == 0
                ? " without a lost frame that is known of\n"
                : " taken for lost frames, as the camera does not number them\n");
}

} // namespace

std::string causeText(FrameCause cause)
{
    std::string text = causeWord(cause);
    std::ranges::replace(text, '_', ' ');
    return text;
}

nlohmann::ordered_json causesJson(const CauseCounts& counts)
{
    Json causes = Json::object();
    for (std::size_t i = 0; i < kFrameCauses; ++i) {
        const auto cause = static_cast<FrameCause>(i);
        if (counts[cause] != 0) {
            causes[causeWord(cause)] = static_cast<std::int64_t>(counts[cause]);
        }
    }
    return causes;
}

nlohmann::ordered_json lostBeforeJson(CauseCounts counts)
{
    counts[FrameCause::kTiming] = 0;
    return counts == CauseCounts() ? Json() : causesJson(counts);
}

nlohmann::ordered_json ledgerJson(const FrameLedger& ledger)
{
    const LedgerTotals totals = ledger.totals();
    return {{"counted_by_camera", totals.counted},
            {"arrived", totals.arrived},
            {"values", totals.values},
            {"off_counter", totals.offCounter},
            {"stand_ins", totals.standIns},
            {"delivered", totals.delivered},
            {"causes", causesJson(totals.causes)},
            {"imbalance", totals.imbalance()},
            {"failed_retrievals_without_frame", totals.failedWithoutFrame()},
            {"stretches", stretchesJson(ledger)},
            {"stretches_not_listed", totals.stretchesNotListed},
            {"ranges", rangesJson(ledger)},
            {"ranges_not_listed", totals.rangesNotListed}};
}

std::string ledgerText(const FrameLedger& ledger)
{
    const LedgerTotals totals = ledger.totals();
    std::string text = "ledger    " + countedText(totals) + " = " +
                       std::to_string(totals.delivered) + " delivered" + causesText(totals.causes) +
                       "\n";
    const std::uint64_t breaks = totals.stretchesNotListed + ledger.stretches().size();
    if (breaks > 1) {
        text += "          the counter began anew " + plural(breaks - 1, "time") +
                "; what fell between is not known\n";
    }
    return text + failuresText(totals);
}

} // namespace kxhost
