// Looks at a grab while it runs, for the report at its end.
#ifndef KXHOST_RUN_RECORDER_H
#define KXHOST_RUN_RECORDER_H

#include "clock/camera_timeline.h"
#include "export/export_tap.h"
#include "picture/histogram.h"
#include "report/contact_sheet.h"
#include "report/duration_profile.h"
#include "report/run_series.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kxhost {

/// The histogram of one frame.
struct FrameHistogram {
    std::uint64_t number = 0; ///< of the frame; 0 = there is none
    Histogram histogram;
};

/// A configuration that came into force; `atUs` is the arrival of the first frame behind it, since
/// that of the first of all.
struct ConfigurationMoment {
    std::int64_t atUs = 0;
    std::uint32_t number = 1;
};

/// A time without a camera, before the frame that arrived at `toUs`.
struct CameraGap {
    std::int64_t fromUs = 0;
    std::int64_t toUs = 0;
};

/// What there is to tell of a run, in bounded memory.
struct RunRecord {
    static constexpr std::size_t kMostMarks = 256; ///< of each kind; the first ones

    std::uint64_t frames = 0;           ///< that were written
    std::uint64_t firstTimestampUs = 0; ///< since 1970
    std::uint64_t lastTimestampUs = 0;
    FrameInfo shape; ///< of the last frame
    RunSeries series;
    DurationProfile delivery;   ///< from the time stamp to the arrival
    DurationProfile processing; ///< from there to the begin of the hand-over
    DurationProfile handOver;   ///< into the queue
    DurationProfile queued;     ///< until a writer took it
    DurationProfile writing;
    std::vector<ConfigurationMoment> configurations;
    std::vector<CameraGap> gaps;
    std::uint64_t marksNotListed = 0;
    std::uint64_t changes = 0;   ///< to other configurations, listed or not
    std::uint64_t timesAway = 0; ///< gaps, listed or not
    std::int64_t awayUs = 0;     ///< all of them together
    std::vector<Thumbnail> thumbnails;
    std::uint64_t firstSteadyUs = 0; ///< arrival of the first frame
    FrameHistogram first;
    FrameHistogram last;
};

/// Looks at frames from the writers' threads: the grab thread only copies their pixels, which it
/// does anyway where pictures are written. Thumbnails are made of chosen frames only.
class RunRecorder : public ExportTap {
public:
    bool wantsPixels() noexcept override { return true; }
    void look(const TappedFrame& frame) noexcept override;
    void released(const ReleasedFrame& frame) noexcept override;
    void last(const TappedFrame& frame) noexcept override;

    /// All of it. REQUIRES: the queue has finished.
    RunRecord record() const;

private:
    /// What the next frame is compared with.
    struct Before {
        std::uint64_t timestampUs = 0;
        std::optional<std::uint64_t> cameraUs; ///< as it was told
        std::optional<std::int64_t> placedUs;  ///< the same on a line without wraps
        std::uint64_t stretch = 0;
    };

    void noteMarks(const ReleasedFrame& frame, std::int64_t atUs);
    void noteTimes(const ReleasedFrame& frame, std::int64_t atUs);

    ContactSheet sheet_;
    RunRecord record_; ///< `first` by the writer that has the first frame, else by `released`
    CameraTimeline timeline_;
    std::optional<Before> before_;
};

} // namespace kxhost

#endif
