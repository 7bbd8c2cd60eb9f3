// The live page of one grab: everything behind it put together.
#include "live/live_service.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace kxhost {
namespace {

constexpr std::uint64_t kSecondUs = 1000000;

int raiseHere(int signal)
{
    return kill(getpid(), signal) == 0 ? 0 : errno;
}

} // namespace

LiveService::LiveService(const LiveAddress& address, const std::string& token)
    : steering_(services().signals, services().counts, raiseHere),
      routes_({address.isLoopback, token},
              {picture_, steering_, [this] { return status(); }, [this] { return ended(); }}),
      server_(address)
{
    tap_.whenCome([this] { server_.somethingHappened(); });
}

LiveService::~LiveService()
{
    server_.stop();
}

void LiveService::start(LiveFacts facts)
{
    facts_ = std::move(facts);
    server_.start([this](const HttpRequest& request) { return routes_.handle(request); });
}

void LiveService::update(const ExportTotals& exported, std::uint64_t nowUs)
{
    const std::lock_guard lock(mutex_);
    tick_.exported = exported;
    if (nowUs - rateUs_ < kSecondUs) {
        return;
    }
    const std::uint64_t frames = services().counts.retrieved;
    tick_.framesPerSecond = rateUs_ == 0 ? 0
                                         : static_cast<double>(frames - rateFrames_) * kSecondUs /
                                               static_cast<double>(nowUs - rateUs_);
    rateFrames_ = frames;
    rateUs_ = nowUs;
}

void LiveService::end(int exitCode, const std::string& reason)
{
    {
        const std::lock_guard lock(mutex_);
        end_ = LiveEnd{exitCode, reason};
    }
    server_.stop();
}

nlohmann::ordered_json LiveService::status()
{
    if (const std::unique_ptr<LiveLosses> news = tap_.takeLosses()) {
        losses_ = *news;
    }
    const HostServices& host = services();
    LiveTick tick;
    {
        const std::lock_guard lock(mutex_);
        tick = tick_;
    }
    return statusJson({facts_, host.counts, host.signals, tick, losses_, picture_.shown(),
                       latestNotices(), ended()});
}

std::optional<LiveEnd> LiveService::ended()
{
    const std::lock_guard lock(mutex_);
    return end_;
}

} // namespace kxhost
