// What a service manager is told of a grab: ready, reloading, stopping, alive, and a line of
// status.
#include "grab/service_status.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>

#include <unistd.h>

namespace kxhost {
namespace {

constexpr std::uint64_t kSecondUs = 1000000;
constexpr std::uint64_t kMinuteUs = 60 * kSecondUs;

/// The whole number that the environment gives to `name`; nothing = none, or another thing.
std::optional<std::uint64_t> numberOfEnvironment(const char* name)
{
    const char* const value = std::getenv(name);
    const std::string_view text = value != nullptr ? value : "";
    std::uint64_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && stop == text.data() + text.size() ? std::optional(number)
                                                                     : std::nullopt;
}

} // namespace

std::optional<std::uint64_t> watchdogOfEnvironment()
{
    const auto period = numberOfEnvironment("WATCHDOG_USEC");
    const auto process = numberOfEnvironment("WATCHDOG_PID");
    const bool isOurs = !process || *process == static_cast<std::uint64_t>(getpid());
    return period && *period > 0 && isOurs ? period : std::nullopt;
}

int ServiceStatus::tickMs() const
{
    constexpr std::uint64_t kMs = 1000;
    // Two may be late before the time is over.
    constexpr std::uint64_t kSignsPerPeriod = 4;
    const std::uint64_t us =
        std::min(kSecondUs, watchdogUs_.value_or(kSecondUs * kSignsPerPeriod) / kSignsPerPeriod);
    return static_cast<int>(std::max(us / kMs, std::uint64_t{1}));
}

void ServiceStatus::update(const ExportTotals& exported, std::uint64_t nowUs)
{
    if (!manager_.isThere()) {
        return;
    }
    if (!stopping_) {
        tellReload(nowUs);
        tellReady();
    }
    if (signals_.finishAsked()) {
        tellStopping();
    }
    tellAlive(exported);
    tellStatus(exported, nowUs);
}

void ServiceStatus::end(const std::string& reason)
{
    if (!stopping_) {
        tellReady(); // a short grab is over before the first update
        tellStopping();
    }
    manager_.send(statusLine(reason));
}

void ServiceStatus::tellReady()
{
    if (!ready_ && !takingOver_ && counts_.retrieved > readyAbove_) {
        ready_ = manager_.send("READY=1");
    }
}

void ServiceStatus::tellReload(std::uint64_t nowUs)
{
    const std::uint32_t asked = signals_.reloadsAsked();
    const bool isNew = asked != reloadsTold_;
    reloadsTold_ = asked;
    // Who waits for the first frame hears of that anyway.
    if (isNew && ready_) {
        manager_.send("RELOADING=1\nMONOTONIC_USEC=" + std::to_string(nowUs));
        ready_ = false;
    }
    if (isNew || takingOver_) {
        takingOver_ = signals_.reloadPending();
        readyAbove_ = counts_.retrieved;
    }
}

void ServiceStatus::tellAlive(const ExportTotals& exported)
{
    const std::uint64_t moves =
        counts_.passes + counts_.retrieved + counts_.missing + exported.written + exported.failed;
    if (moves == movesTold_) {
        return;
    }
    if (stopping_) {
        manager_.send("EXTEND_TIMEOUT_USEC=" + std::to_string(kMinuteUs));
    }
    if (!watchdogUs_ || manager_.send("WATCHDOG=1")) {
        movesTold_ = moves;
    }
}

void ServiceStatus::tellStatus(const ExportTotals& exported, std::uint64_t nowUs)
{
    if (nowUs < nextStatusUs_) {
        return;
    }
    nextStatusUs_ = nowUs + kSecondUs;
    manager_.send(statusLine((stopping_ ? "finishing  " : "") + line_.text(exported, nowUs)));
}

void ServiceStatus::tellStopping()
{
    stopping_ = stopping_ || manager_.send("STOPPING=1");
}

} // namespace kxhost
