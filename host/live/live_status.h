// What the live page says of a grab, as JSON.
#ifndef KXHOST_LIVE_STATUS_H
#define KXHOST_LIVE_STATUS_H

#include "base/notice.h"
#include "export/export_queue.h"
#include "grab/services.h"
#include "live/live_tap.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kxhost {

/// What does not change while the grab runs.
struct LiveFacts {
    std::string configuration;   ///< file; empty = none
    std::string folder;          ///< where frames go; empty = nowhere
    std::uint32_t frames = 0;    ///< to export; 0 = no end known
    std::size_t queuePlaces = 0; ///< of the export queue
    int process = 0;             ///< id
};

/// What the thread that looks after the grab tells now and then.
struct LiveTick {
    ExportTotals exported;
    double framesPerSecond = 0; ///< that arrived, over about the last second
};

/// How a grab has ended.
struct LiveEnd {
    int exitCode = 0;
    std::string reason; ///< one sentence
};

/// Everything that the page shows but the picture.
struct LiveView {
    const LiveFacts& facts;
    const GrabCounts& counts;
    const PendingSignals& signals;
    const LiveTick& tick;
    const LiveLosses& losses;
    const LiveFrame& frame; ///< shown last; number 0 = none
    std::vector<Notice> notices;
    std::optional<LiveEnd> end;
};

/// docs/live-page.md describes it.
nlohmann::ordered_json statusJson(const LiveView& view);

/// Whether the grab has ended and how, {"ended": ...}.
nlohmann::ordered_json endJson(const std::optional<LiveEnd>& end);

} // namespace kxhost

#endif
