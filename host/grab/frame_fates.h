// Follows each frame from its arrival to what becomes of it, and tells the ledger.
#ifndef KXHOST_FRAME_FATES_H
#define KXHOST_FRAME_FATES_H

#include "export/frame_ledger.h"
#include "grab/grab_counts.h"
#include "grab/scenario.h"

#include <cstdint>
#include <mutex>
#include <optional>

namespace kxhost {

/// The plug-in says step by step what happens: a frame arrives, its values are published, its
/// pixels are handed over, its values are exported. Where that ends shows with the next frame at
/// the latest. Grab thread only, but for `ledger`.
class FrameFates {
public:
    /// Both outlive this object. `counts.lost` is kept up to date.
    FrameFates(const Scenario& scenario, GrabCounts& counts);

    void captureStarted();
    void captureEnded() { settle(); }
    /// The camera is gone; the next capture is that of a camera that came back.
    void cameraLost();
    bool cameraWasLost() const { return cameraWasLost_; }
    void retrievalFailed();
    void frameArrived();
    /// The plug-in has published the number of the frame at hand.
    void numberPublished() { numbered_ = true; }
    /// The hand-over of the frame at hand waited for a place of the export queue.
    void waited(std::uint64_t us);
    /// Pixels of the frame at hand were taken, or were not.
    void accepted() { accepted_ = true; }
    void refused(FrameCause cause) { refused_ = cause; }
    /// Whether the frame at hand has come without pixels: none were taken, and none refused.
    bool lacksPixels() const { return atHand_ && !accepted_ && !refused_; }
    /// The frame at hand is exported. Returns what its record says; nothing = its pixels were
    /// refused, so there is no record.
    std::optional<LedgerMark> exported();

    /// A copy as it stands. Any thread.
    FrameLedger ledger() const;

private:
    std::optional<std::uint32_t> number() const;
    void settle();
    void show();

    const Scenario& scenario_;
    GrabCounts& counts_;

    // The frame at hand.
    bool atHand_ = false;
    bool first_ = false;    ///< of its capture
    bool numbered_ = false; ///< what is published is its own number
    bool accepted_ = false;
    std::optional<FrameCause> refused_;
    std::uint64_t waitedFrames_ = 0; ///< that may have come while it waited for a place

    bool cameraWasLost_ = false; ///< since the last capture began
    CauseCounts atLastExport_;

    mutable std::mutex mutex_; ///< held for a moment each
    FrameLedger ledger_;
};

} // namespace kxhost

#endif
