// The live page of one grab: everything behind it put together.
#ifndef KXHOST_LIVE_SERVICE_H
#define KXHOST_LIVE_SERVICE_H

#include "live/live_routes.h"
#include "live/live_server.h"

#include <mutex>
#include <string>

namespace kxhost {

/// For the thread that looks after the grab. Nothing is served before `start`, and nobody is asked
/// for anything then, but the address is taken.
class LiveService {
public:
    /// Throws std::system_error when the address cannot be had.
    LiveService(const LiveAddress& address, const std::string& token);
    /// Ends first, if nobody has.
    ~LiveService();
    LiveService(const LiveService&) = delete;
    LiveService& operator=(const LiveService&) = delete;

    /// To be added to the export queue, which it outlives.
    ExportTap& tap() { return tap_; }
    /// Where the page is.
    std::string url() const { return urlOf(server_.address()); }
    /// Milliseconds within which `update` is to be called again.
    static int tickMs() { return 250; }

    void start(LiveFacts facts);
    void update(const ExportTotals& exported, std::uint64_t nowUs);
    /// Tells those who look that the grab has ended, and how, and ends the service.
    void end(int exitCode, const std::string& reason);

private:
    nlohmann::ordered_json status();
    std::optional<LiveEnd> ended();

    LiveTap tap_;
    LiveFacts facts_;

    // Of the thread that looks after the grab.
    std::uint64_t rateUs_ = 0; ///< when the rate was told last; 0 = never
    std::uint64_t rateFrames_ = 0;

    std::mutex mutex_; ///< guards the next two
    LiveTick tick_;
    std::optional<LiveEnd> end_;

    // Of the thread that serves.
    LiveLosses losses_;
    LivePicture picture_{tap_};
    LiveSteering steering_;
    LiveRoutes routes_;

    LiveServer server_; ///< last: its thread ends before the rest goes
};

} // namespace kxhost

#endif
