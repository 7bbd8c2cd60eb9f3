// The live page of a grab, where one was asked for.
#include "command/grab_page.h"

#include "base/notice.h"
#include "live/live_token.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

namespace kxhost {
namespace {

GrabResult refused(ExitCode code, const std::string& reason)
{
    complain(reason);
    return {code, reason};
}

} // namespace

GrabResult GrabPage::open(const LiveOptions& options)
{
    const std::optional<LiveAddress> address = parseLiveAddress(options.address);
    if (!address) {
        return {};
    }
    const LiveToken token = readLiveToken(options.tokenFile);
    if (!token.error.empty()) {
        return refused(kExitUsage, token.error);
    }
    if (!address->isLoopback && token.token.empty()) {
        return refused(kExitUsage, "A live page that other computers reach needs a token: give "
                                   "--live-token-file, or KXHOST_LIVE_TOKEN in the environment.");
    }
    try {
        service_ = std::make_unique<LiveService>(*address, token.token);
    } catch (const std::system_error& error) {
        return refused(kExitLive,
                       "There is no live page at " + urlOf(*address) + ": " + error.what() + ".");
    }
    return {};
}

void GrabPage::watch(ExportQueue& queue)
{
    if (service_) {
        queue.addTap(service_->tap());
    }
}

void GrabPage::start(LiveFacts facts)
{
    if (service_) {
        service_->start(std::move(facts));
        complain("The live page is at " + service_->url());
    }
}

int GrabPage::tickMs(int ms) const
{
    return service_ ? std::min(ms, LiveService::tickMs()) : ms;
}

void GrabPage::update(const ExportTotals& exported, std::uint64_t nowUs)
{
    if (service_) {
        service_->update(exported, nowUs);
    }
}

void GrabPage::end(int exitCode, const std::string& reason)
{
    if (service_) {
        service_->end(exitCode, reason);
    }
}

} // namespace kxhost
