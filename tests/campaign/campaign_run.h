// One run of a reference session: what came of it, and which phase each call of the SDK fell into.
#ifndef KX_CAMPAIGN_RUN_H
#define KX_CAMPAIGN_RUN_H

#include "journal.h"
#include "sessions.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kxcampaign {

/// What the plug-in is about when it makes a call.
enum class Phase {
    inventory,       ///< what is on the bus
    rejection,       ///< cameras that are not chosen
    selection,       ///< the chosen one
    powerUp,         ///< its power
    streamChannel,   ///< the second connection to a GigE camera
    configuration,   ///< format, region, capture, embedded information
    parameters,      ///< the configured parameters, for the first time
    captureStart,    ///< buffers and start
    capture,         ///< frames
    liveChange,      ///< parameters between two frames
    reconfiguration, ///< all of them, by a signal
    dynamicLut,      ///< look-up table from frames, 12-bit pass included
    ioBox,           ///< the control thread
    teardown,        ///< from the end of capture on
};
inline constexpr std::size_t kPhases = 14;
const char* nameOf(Phase phase);

/// A call of the SDK.
struct TracedCall {
    Phase phase = Phase::inventory;
    std::string object;    ///< "BusManager", "Camera", "GigECamera" or "Image"
    std::string operation; ///< member function
    std::string detail;    ///< what it is about: register, property, index; may be empty
    unsigned before = 0;   ///< earlier calls that a fault with this operation and detail hits too
    bool inLoop = false;   ///< on the grab thread between the begin and the end of the frame loop

    /// Object, operation and detail.
    std::string key() const;
};

/// What came of a run.
struct Outcome {
    std::optional<int> code; ///< nothing: an exception came out instead
    std::string thrown;      ///< its text; "?" for one of no standard type
    std::size_t exports = 0;
    std::vector<kxtest::Event> events;

    /// As a message shows it.
    std::string text() const;
};

/// Runs the plug-in once on the bus as it is, with the session's host; `adjust` changes that before
/// the run.
Outcome runSession(const Session& session, const std::function<void()>& adjust = nullptr);

/// Whether the log has a line of the level that the message begins with ('e', 'w', 'i' or 'd'), and
/// the rest of the message in it.
bool logShows(const Outcome& outcome, const std::string& message);

/// The SDK's calls of a run, in their order.
std::vector<TracedCall> trace(const Outcome& outcome);

} // namespace kxcampaign

#endif
