// What the live page takes off the frames that are exported: a picture now and then, and losses.
#ifndef KXHOST_LIVE_TAP_H
#define KXHOST_LIVE_TAP_H

#include "base/handover_slot.h"
#include "export/export_tap.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace kxhost {

/// One frame, with its pixels.
struct LiveFrame {
    std::uint64_t number = 0; ///< from 1; 0 = there is none
    FrameInfo info;
    ScenarioValues values;
    std::vector<std::uint8_t> pixels;           ///< at least as many as `info` says
    std::chrono::steady_clock::time_point come; ///< when it came
};

/// Frames lost ahead of an exported one.
struct LossBefore {
    std::uint64_t frame = 0;              ///< number of that one
    std::uint64_t timestampUs = 0;        ///< and when it was taken, us since 1970
    std::optional<std::uint32_t> counter; ///< the camera's number of it
    CauseCounts causes;
};

/// What exported frames have told of losses so far.
struct LiveLosses {
    static constexpr std::size_t kMostListed = 20;

    CauseCounts causes;             ///< of all of them
    std::vector<LossBefore> latest; ///< the newest last
};

/// Looks at frames in the export queue, and is asked by the thread that serves the page. While
/// nobody asks for a picture a frame costs two loads, and one without losses before it no more than
/// that.
class LiveTap : public ExportTap {
public:
    using Clock = std::chrono::steady_clock;
    /// Tells the time, on any thread.
    using Now = Clock::time_point (*)();

    explicit LiveTap(Now clock = Clock::now) : now_(clock) {}
    Clock::time_point now() const { return now_(); }

    /// `come` is called on a writer's thread when a frame that was asked for has come. Set it
    /// before frames come.
    void whenCome(std::function<void()> come) { come_ = std::move(come); }

    bool wantsPixels() noexcept override { return isWanted_.load(std::memory_order_relaxed); }
    /// Copies a frame that is wanted, unless the last one is being taken away at the moment.
    void look(const TappedFrame& frame) noexcept override;
    void released(const ReleasedFrame& frame) noexcept override;
    void last(const TappedFrame&) noexcept override {}

    /// Asks for the pixels of a next frame.
    void ask() { isWanted_.store(true, std::memory_order_relaxed); }
    /// Exchanges `frame` for the one that has come since the last call. False = there is none.
    bool take(LiveFrame& frame);
    /// What has changed since the last call; null = nothing. One thread.
    std::unique_ptr<LiveLosses> takeLosses() { return told_.take(); }

private:
    void keep(const TappedFrame& frame);
    void note(const LossBefore& loss);

    Now now_;
    std::atomic<bool> isWanted_ = false;
    std::function<void()> come_ = [] {};

    std::mutex mutex_; ///< writers do not wait for it
    LiveFrame frame_;

    LiveLosses losses_; ///< of the writer that releases frames
    HandoverSlot<LiveLosses> told_;
};

} // namespace kxhost

#endif
