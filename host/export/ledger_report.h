// What the summary and the metadata say of the ledger of frames.
#ifndef KXHOST_LEDGER_REPORT_H
#define KXHOST_LEDGER_REPORT_H

#include "export/frame_ledger.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace kxhost {

/// The word for a cause in sentences, "camera skipped".
std::string causeText(FrameCause cause);

/// The ledger of a whole grab: totals, stretches of the counter and ranges of lost frames.
/// docs/running-grab.md describes it.
nlohmann::ordered_json ledgerJson(const FrameLedger& ledger);

/// The same for people: one to three lines, each with a final newline.
std::string ledgerText(const FrameLedger& ledger);

/// The causes that took frames, by their words; negative where something was taken back.
nlohmann::ordered_json causesJson(const CauseCounts& counts);

/// Frames lost before one that is exported: without those that only started the timing. Null =
/// nothing.
nlohmann::ordered_json lostBeforeJson(CauseCounts counts);

} // namespace kxhost

#endif
