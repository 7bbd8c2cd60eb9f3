// Decides whether a grab waits for a camera that was lost, and for how long.
#include "grab/reconnection.h"

#include <algorithm>

namespace kxhost {
namespace {

/// A camera that leaves the bus again while it is set up looks like one that refuses. One that
/// does so several times in a row is always there.
constexpr unsigned kMostRefusals = 3;

constexpr std::chrono::milliseconds kLookAgain{500};
constexpr double kUsPerSecond = 1e6;

} // namespace

Reconnection::Verdict Reconnection::passEnded(PassEnd end, std::uint64_t lastFrameUs,
                                              std::uint64_t nowUs)
{
    if (lastFrameUs != lastFrameUs_) {
        lastFrameUs_ = lastFrameUs;
        lostUs_ = nowUs;
        refusals_ = 0;
    }
    if (!isOn() || lastFrameUs == 0 || end == PassEnd::kDone) {
        return Verdict::kOff;
    }
    refusals_ = end == PassEnd::kRefused ? refusals_ + 1 : 0;
    if (refusals_ == kMostRefusals) {
        return Verdict::kRefused;
    }
    return seconds_ >= 0 && secondsAway(nowUs) >= seconds_ ? Verdict::kTooLate : Verdict::kWait;
}

std::chrono::milliseconds Reconnection::pause(std::uint64_t nowUs) const
{
    if (seconds_ < 0) {
        return kLookAgain;
    }
    const auto limitUs = static_cast<std::int64_t>(seconds_ * kUsPerSecond);
    const auto awayUs = static_cast<std::int64_t>(nowUs - lostUs_);
    const std::chrono::microseconds left(std::max<std::int64_t>(0, limitUs - awayUs));
    return std::min(kLookAgain, std::chrono::ceil<std::chrono::milliseconds>(left));
}

double Reconnection::secondsAway(std::uint64_t nowUs) const
{
    return static_cast<double>(nowUs - lostUs_) / kUsPerSecond;
}

} // namespace kxhost
