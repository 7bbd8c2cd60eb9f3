// Reference sessions: whole runs of the plug-in that together reach every call it makes.
#ifndef KX_CAMPAIGN_SESSIONS_H
#define KX_CAMPAIGN_SESSIONS_H

#include "recording_host.h"
#include "test_bus.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kxcampaign {

/// One run: the cameras on the bus and how the host behaves. Polls are those of the signal, which
/// the plug-in makes once per retrieval, counted from 1 over all loops of the run.
struct Session {
    std::string name;
    std::vector<kxtest::CameraText> cameras;
    kxtest::HostConfig config;
    std::map<unsigned, int> signals;        ///< code by poll
    std::vector<unsigned> liveChanges = {}; ///< polls at which the host holds a live change
    /// Changes the configuration at the live change with this number, counted from 1.
    std::function<void(unsigned number, kxtest::HostConfig& config)> onLiveChange = nullptr;
    /// With a control thread; `loopsAfter` says how many of its pauses the host waits for when it
    /// exports the frame with this number, counted from 1, and with 0 when it sets up its memory.
    bool controlThread = false;
    std::map<unsigned, unsigned> loopsAfter = {};
};

/// All of them.
const std::vector<Session>& sessions();

/// Puts the session's cameras on the bus. REQUIRES: none is connected.
void putOnBus(const Session& session);

/// Makes the host of this process behave as the session wants, from the run's first poll on. A run
/// that does not end by itself is finished by a signal.
void prepareHost(const Session& session);

/// Polls after which a run is finished by a signal.
inline constexpr unsigned kMostPolls = 6000;

} // namespace kxcampaign

#endif
