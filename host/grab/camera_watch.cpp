// Tells from the plug-in's reports whether the camera is still there.
#include "grab/camera_watch.h"

namespace kxhost {
namespace {

/// A busy bus may swallow an answer, but hardly so many in a row, and each with a frame.
constexpr unsigned kMostUnanswered = 3;

} // namespace

void CameraWatch::start(std::uint64_t nowUs)
{
    lastUs_ = nowUs;
    unansweredInRow_ = 0;
}

void CameraWatch::frameArrived(std::uint64_t nowUs, bool answers)
{
    lastUs_ = nowUs;
    hasAnswered_ = hasAnswered_ || answers;
    unansweredInRow_ = 0;
}

CameraWatch::Finding CameraWatch::frameMissing(std::uint64_t nowUs, bool answers,
                                               std::uint64_t silenceUs)
{
    hasAnswered_ = hasAnswered_ || answers;
    unansweredInRow_ = answers ? 0 : unansweredInRow_ + 1;
    if (hasAnswered_ && unansweredInRow_ >= kMostUnanswered) {
        return Finding::kGone;
    }
    return silenceUs != 0 && silentUs(nowUs) >= silenceUs ? Finding::kSilent : Finding::kThere;
}

} // namespace kxhost
