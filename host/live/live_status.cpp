// What the live page says of a grab, as JSON.
#include "live/live_status.h"

#include "export/ledger_report.h"
#include "live/steering_words.h"

#include <nlohmann/json.hpp>

namespace kxhost {
namespace {

using Json = nlohmann::ordered_json;

/// Null where there is no value.
template <typename T>
Json orNull(const std::optional<T>& value)
{
    return value ? Json(*value) : Json();
}

const char* stateOf(const LiveView& view)
{
    if (view.end) {
        return "ended";
    }
    if (view.signals.finishAsked() || view.counts.over) {
        return "finishing";
    }
    if (view.counts.away) {
        return "lost";
    }
    if (view.counts.capturing) {
        return "grabbing";
    }
    return view.counts.retrieved == 0 ? "waiting" : "starting";
}

Json framesJson(const LiveView& view)
{
    const ExportTotals& exported = view.tick.exported;
    return {{"exported", view.counts.exported.load()},
            {"wanted", view.facts.frames == 0 ? Json() : Json(view.facts.frames)},
            {"arrived", view.counts.retrieved.load()},
            {"per_second", view.tick.framesPerSecond},
            {"period_us", view.counts.framePeriodUs.load()},
            {"lost", view.counts.lost + exported.failed},
            {"failed_retrievals", view.counts.missing.load()},
            {"over_budget", view.counts.overBudget.load()},
            {"longest_us", view.counts.longestUs.load()}};
}

Json queueJson(const LiveView& view)
{
    const ExportTotals& exported = view.tick.exported;
    return {{"waiting", exported.accepted - exported.written - exported.failed},
            {"deepest", exported.deepest},
            {"places", view.facts.queuePlaces},
            {"written", exported.written},
            {"not_written", exported.failed},
            {"bytes", exported.bytes}};
}

Json lossesJson(const LiveLosses& losses)
{
    Json latest = Json::array();
    for (const LossBefore& each : losses.latest) {
        latest.push_back({{"before_frame", each.frame},
                          {"timestamp_us", each.timestampUs},
                          {"frame_counter", orNull(each.counter)},
                          {"causes", causesJson(each.causes)}});
    }
    return {{"causes", causesJson(losses.causes)}, {"latest", latest}};
}

Json pictureJson(const LiveFrame& frame)
{
    if (frame.number == 0) {
        return {};
    }
    return {{"frame", frame.number},
            {"width", frame.info.width},
            {"height", frame.info.height},
            {"codec", frame.info.codec},
            {"timestamp_us", frame.info.timestampUs},
            {"frame_counter", orNull(frame.values.frameCounter)},
            {"gain_db", orNull(frame.values.gainDb)},
            {"exposure_us", orNull(frame.values.exposureUs)},
            {"configuration", orNull(frame.values.configuration)}};
}

Json pendingJson(const PendingSignals& signals)
{
    Json words = Json::array();
    for (const SteeringWord& each : kSteeringWords) {
        if (signals.holds(each.code)) {
            words.push_back(each.word);
        }
    }
    return words;
}

Json noticesJson(const std::vector<Notice>& notices)
{
    Json all = Json::array();
    for (const Notice& each : notices) {
        all.push_back({{"number", each.number}, {"time_us", each.timeUs}, {"text", each.sentence}});
    }
    return all;
}

} // namespace

nlohmann::ordered_json statusJson(const LiveView& view)
{
    return {{"state", stateOf(view)},
            {"process", view.facts.process},
            {"configuration", view.facts.configuration},
            {"folder", view.facts.folder},
            {"frames", framesJson(view)},
            {"queue", queueJson(view)},
            {"losses", lossesJson(view.losses)},
            {"picture", pictureJson(view.frame)},
            {"pending", pendingJson(view.signals)},
            {"tables", view.counts.tables.load()},
            {"notices", noticesJson(view.notices)},
            {"end", view.end ? endJson(view.end) : Json()}};
}

nlohmann::ordered_json endJson(const std::optional<LiveEnd>& end)
{
    if (!end) {
        return {{"ended", false}};
    }
    return {{"ended", true}, {"exit_code", end->exitCode}, {"reason", end->reason}};
}

} // namespace kxhost
