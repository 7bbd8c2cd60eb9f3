// The live page of a grab, where one was asked for.
#ifndef KXHOST_GRAB_PAGE_H
#define KXHOST_GRAB_PAGE_H

#include "command/command_line.h"
#include "grab/grab_passes.h"
#include "live/live_service.h"

#include <memory>
#include <string>

namespace kxhost {

/// Does nothing where no page was asked for. For the thread that looks after the grab.
class GrabPage {
public:
    /// Takes the address; nobody is served yet. The exit code of the result is not `kExitFine` when
    /// the page cannot be had; its reason was told to the user.
    GrabResult open(const LiveOptions& options);

    /// Lets the page see the frames. REQUIRES: the queue has not started, and ends first.
    void watch(ExportQueue& queue);
    /// Serves from now on, and tells the user where.
    void start(LiveFacts facts);
    /// `ms`, or less when the page wants `update` to be called sooner.
    int tickMs(int ms) const;
    void update(const ExportTotals& exported, std::uint64_t nowUs);
    /// Tells those who look how the grab has ended, and serves no more.
    void end(int exitCode, const std::string& reason);

private:
    std::unique_ptr<LiveService> service_; ///< null = there is no page
};

} // namespace kxhost

#endif
