// Follows each frame from its arrival to what becomes of it, and tells the ledger.
#include "grab/frame_fates.h"

namespace kxhost {

FrameFates::FrameFates(const Scenario& scenario, GrabCounts& counts)
    : scenario_(scenario), counts_(counts)
{}

void FrameFates::captureStarted()
{
    settle();
    first_ = true;
    cameraWasLost_ = false;
    const std::lock_guard lock(mutex_);
    ledger_.captureStarted();
}

void FrameFates::cameraLost()
{
    settle();
    cameraWasLost_ = true;
    const std::lock_guard lock(mutex_);
    ledger_.cameraLost();
}

void FrameFates::retrievalFailed()
{
    settle();
    const std::lock_guard lock(mutex_);
    ledger_.retrievalFailed();
    show();
}

void FrameFates::frameArrived()
{
    settle();
    atHand_ = true;
    numbered_ = false;
    accepted_ = false;
    refused_.reset();
    waitedFrames_ = 0;
}

/// The frames of that time came and found the grab busy; the camera's driver keeps the newest.
void FrameFates::waited(std::uint64_t us)
{
    const std::uint64_t periodUs = counts_.framePeriodUs; // 0 = the camera tells no rate
    if (periodUs != 0) {
        waitedFrames_ += us / periodUs;
    }
}

std::optional<std::uint32_t> FrameFates::number() const
{
    return numbered_ ? scenario_.frameCounter() : std::nullopt;
}

std::optional<LedgerMark> FrameFates::exported()
{
    if (!atHand_ || !accepted_ || refused_) {
        settle();
        return {};
    }
    atHand_ = false;
    first_ = false;
    const std::optional<std::uint32_t> own = number();
    const std::lock_guard lock(mutex_);
    ledger_.delivered(own);
    ledger_.heldUp(waitedFrames_);
    const CauseCounts now = ledger_.totals().causes;
    LedgerMark mark{own ? ledger_.stretch() : 0, now};
    mark.lostBefore -= atLastExport_;
    atLastExport_ = now;
    show();
    return mark;
}

/// A frame that is not exported by now will not be.
void FrameFates::settle()
{
    if (!atHand_) {
        return;
    }
    atHand_ = false;
    const FrameCause cause =
        refused_.value_or(first_ ? FrameCause::kTiming : FrameCause::kUnfinished);
    first_ = false;
    const std::lock_guard lock(mutex_);
    ledger_.lost(number(), cause);
    ledger_.heldUp(waitedFrames_);
    show();
}

void FrameFates::show()
{
    counts_.lost = ledger_.totals().lost();
}

FrameLedger FrameFates::ledger() const
{
    const std::lock_guard lock(mutex_);
    return ledger_;
}

} // namespace kxhost
