// The summary of a grab: what was retrieved, exported and lost, as one JSON object and as text.
#ifndef KXHOST_EXPORT_SUMMARY_H
#define KXHOST_EXPORT_SUMMARY_H

#include "export/config_history.h"
#include "export/export_queue.h"
#include "export/frame_ledger.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

/// The words that came on an I/O line, each with an exported frame.
struct ReceivedWords {
    bool expected = false; ///< a pin is configured to take them
    std::uint64_t count = 0;
    std::uint64_t frame = 0; ///< number of the frame that brought the last one
    std::uint32_t data = 0;  ///< the last one
    std::uint32_t bits = 0;  ///< its length
};

/// All counts are over the whole run, passes of the plug-in taken together.
struct GrabSummary {
    int exitCode = 0;            ///< of the process
    std::string reason;          ///< why it ended, one sentence
    std::string folder;          ///< where the frames went; empty = nowhere
    unsigned passes = 0;         ///< times that the plug-in was called
    std::uint64_t retrieved = 0; ///< frames that arrived from the camera
    std::uint64_t missing =
        0;                    ///< failed retrievals: a frame that did not arrive, or a wait in vain
    std::uint64_t timing = 0; ///< retrieved frames that only started the timing (first of a pass)
    std::uint64_t refused = 0; ///< retrieved frames refused for other reasons than the export's
    ExportTotals exported;     ///< what became of the frames after that
    FrameLedger ledger;        ///< every frame, those that never arrived included
    std::vector<ConfigurationChangePtr> configurations; ///< of the grab, by number, the latest
    KeysInForce keysInForce;                            ///< at the end
    double seconds = 0;              ///< from the first to the last retrieved frame
    std::uint32_t framePeriodUs = 0; ///< in force; 0 = not known
    std::uint64_t overBudget = 0;    ///< frames whose hand-over took longer than that period
    std::uint64_t longestUs = 0;     ///< longest hand-over of one frame
    ReceivedWords received;
};

/// Frames lost between camera and disk, wherever it happened.
std::uint64_t lostFrames(const GrabSummary& summary);
/// One JSON object over several lines, with a final newline.
std::string summaryJson(const GrabSummary& summary);
/// The same for people: a few lines, each with a final newline.
std::string summaryText(const GrabSummary& summary);

/// Writes the JSON object to a file (whole or not at all). Returns an empty text or the error.
std::string writeSummary(const GrabSummary& summary, const std::string& path);

} // namespace kxhost

#endif
