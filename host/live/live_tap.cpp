// What the live page takes off the frames that are exported: a picture now and then, and losses.
#include "live/live_tap.h"

#include <exception>

namespace kxhost {

void LiveTap::look(const TappedFrame& frame) noexcept
{
    if (frame.pixels.empty() || !wantsPixels()) {
        return;
    }
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock.owns_lock() || !isWanted_.exchange(false, std::memory_order_relaxed)) {
        return;
    }
    try {
        keep(frame);
        come_();
    } catch (const std::exception&) {
        frame_.number = 0; // no memory: nobody sees this frame
    }
}

void LiveTap::keep(const TappedFrame& frame)
{
    frame_.info = frame.info;
    frame_.values = frame.values;
    frame_.pixels.assign(frame.pixels.begin(), frame.pixels.end());
    frame_.come = now();
    frame_.number = frame.number;
}

bool LiveTap::take(LiveFrame& frame)
{
    const std::lock_guard lock(mutex_);
    if (frame_.number == 0) {
        return false;
    }
    std::swap(frame, frame_);
    frame_.number = 0;
    return true;
}

void LiveTap::released(const ReleasedFrame& frame) noexcept
{
    CauseCounts causes = frame.values.ledger.lostBefore;
    causes[FrameCause::kTiming] = 0;
    if (causes == CauseCounts()) {
        return;
    }
    try {
        note({frame.number, frame.timestampUs, frame.values.frameCounter, causes});
        told_.put(std::make_unique<LiveLosses>(losses_));
    } catch (const std::exception&) {
        // No memory: it is told with the next loss.
    }
}

void LiveTap::note(const LossBefore& loss)
{
    losses_.causes += loss.causes;
    if (losses_.latest.size() == LiveLosses::kMostListed) {
        losses_.latest.erase(losses_.latest.begin());
    }
    losses_.latest.push_back(loss);
}

} // namespace kxhost
