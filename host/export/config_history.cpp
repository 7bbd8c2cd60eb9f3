// Which configuration made a frame: the configurations of a grab by number, and when each one is
// in force for certain.
#include "export/config_history.h"

#include <algorithm>
#include <array>

namespace kxhost {
namespace {

/// Changes that are waited for one by one; of more, the newest stands for those before it.
constexpr std::size_t kMostPending = 8;

} // namespace

const char* changeKindWord(ChangeKind kind)
{
    constexpr std::array<const char*, 5> kWords = {"start", "live", "reload", "fall_back", "again"};
    return kWords[static_cast<std::size_t>(kind)];
}

ConfigHistory::ConfigHistory()
{
    pending_.reserve(kMostPending);
    start({}, 0);
}

void ConfigHistory::start(std::vector<KeyValue> given, std::uint64_t atUs)
{
    changes_.clear();
    news_.clear();
    keys_.clear();
    newest_ = 0;
    taken(ChangeKind::kStart, std::move(given), atUs);
    captureStarted();
}

void ConfigHistory::captureStarted()
{
    pending_.clear();
    inForce_ = newest_;
}

void ConfigHistory::taken(ChangeKind kind, std::vector<KeyValue> changed, std::uint64_t atUs)
{
    ++newest_;
    const auto change = std::make_shared<const ConfigurationChange>(
        ConfigurationChange{newest_, kind, atUs, std::move(changed)});
    putInForce(*change);
    if (changes_.size() == kMostListed) {
        changes_.erase(changes_.begin());
    }
    changes_.push_back(change);
    if (news_.size() == kMostListed) {
        news_.erase(news_.begin());
    }
    news_.push_back(change);
    if (pending_.size() == kMostPending) {
        pending_.pop_back();
    }
    pending_.push_back({newest_, 0, exposureUs_, 0});
}

void ConfigHistory::putInForce(const ConfigurationChange& change)
{
    for (const auto& [key, value] : change.changed) {
        if (value.empty()) {
            keys_.erase(key);
        } else {
            keys_[key] = {value, change.number};
        }
    }
}

void ConfigHistory::retrievalEnded(std::uint64_t nowUs)
{
    for (Pending& each : pending_) {
        if (each.writtenUs == 0) {
            each.writtenUs = nowUs;
        }
    }
}

bool ConfigHistory::isCertain(const Pending& pending, const FrameMoment& frame)
{
    const std::uint64_t late = std::max(pending.exposureUs, frame.exposureUs) + 2 * frame.periodUs;
    return pending.frames > kMostOnTheWay ||
           (pending.writtenUs != 0 && frame.startUs >= pending.writtenUs + late);
}

ConfigurationMark ConfigHistory::mark(const FrameMoment& frame)
{
    exposureUs_ = frame.exposureUs;
    for (Pending& each : pending_) {
        ++each.frames;
    }
    while (!pending_.empty() && isCertain(pending_.front(), frame)) {
        inForce_ = pending_.front().number;
        pending_.erase(pending_.begin());
    }
    return {inForce_, newest_};
}

std::vector<ConfigurationChangePtr> ConfigHistory::takeNews()
{
    return std::exchange(news_, {});
}

} // namespace kxhost
