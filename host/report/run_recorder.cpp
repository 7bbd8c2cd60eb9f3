// Looks at a grab while it runs, for the report at its end.
#include "report/run_recorder.h"

#include "picture/picture_encode.h"
#include "picture/preview.h"

#include <cmath>
#include <exception>
#include <utility>

namespace kxhost {
namespace {

constexpr std::uint32_t kLongestSide = 160;
constexpr int kCompression = 6;

/// Throws for want of memory only; a picture that cannot be encoded has no bytes.
Thumbnail thumbnailOf(const TappedFrame& frame)
{
    const FrameInfo& info = frame.info;
    Picture small;
    PreviewMaker().make(*findCodec(info.codec), info.width, info.height, frame.pixels.data(),
                        kLongestSide, small);
    Thumbnail thumbnail;
    thumbnail.number = frame.number;
    thumbnail.timestampUs = info.timestampUs;
    thumbnail.steadyUs = frame.values.times.steadyUs;
    thumbnail.width = small.width;
    thumbnail.height = small.height;
    encodePng(small, kCompression, thumbnail.png);
    return thumbnail;
}

FrameHistogram histogramOfFrame(const TappedFrame& frame)
{
    const FrameInfo& info = frame.info;
    Picture scratch;
    return {frame.number, histogramOf(*findCodec(info.codec), info.width, info.height,
                                      frame.pixels.data(), scratch)};
}

/// Frames that somebody may miss: not those that only started the timing, and not those between
/// two captures that the host had parted.
std::int64_t missedOf(const CauseCounts& causes)
{
    return static_cast<std::int64_t>(causes.sum() - causes[FrameCause::kTiming] -
                                     causes[FrameCause::kStopped]);
}

/// Whether another capture begins with the frame, so that it is not compared with the one before:
/// the camera stood still between them, and its clock may have begun anew. The first frame of each
/// capture only starts the timing.
bool beginsAnew(const ScenarioValues& values)
{
    const CauseCounts& causes = values.ledger.lostBefore;
    return values.awaySeconds || causes[FrameCause::kTiming] != 0 ||
           causes[FrameCause::kStopped] != 0 || causes[FrameCause::kDetached] != 0;
}

/// Whether the configuration is another one than that before.
bool isOther(ChangeKind kind)
{
    return kind != ChangeKind::kStart && kind != ChangeKind::kAgain;
}

std::int64_t difference(std::uint64_t later, std::uint64_t earlier)
{
    return static_cast<std::int64_t>(later - earlier);
}

} // namespace

/// A report is worth less than the grab: what there is no memory for is left out.
void RunRecorder::look(const TappedFrame& frame) noexcept
{
    try {
        if (frame.number == 1) {
            record_.first = histogramOfFrame(frame);
            record_.shape = frame.info;
        }
        if (sheet_.wants(frame.number)) {
            sheet_.add(thumbnailOf(frame));
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): see above
    }
}

void RunRecorder::last(const TappedFrame& frame) noexcept
{
    try {
        record_.last = histogramOfFrame(frame);
        record_.shape = frame.info;
        sheet_.addLast(thumbnailOf(frame));
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): as above
    }
}

void RunRecorder::released(const ReleasedFrame& frame) noexcept
{
    if (!frame.written) { // its pictures may be, but its metadata is not
        sheet_.remove(frame.number);
        if (frame.number == record_.first.number) {
            record_.first = {};
        }
        return;
    }
    const FrameTimes& times = frame.values.times;
    if (record_.frames++ == 0) {
        record_.firstSteadyUs = times.steadyUs;
        record_.firstTimestampUs = frame.timestampUs;
    }
    record_.lastTimestampUs = frame.timestampUs;
    const std::int64_t atUs = difference(times.steadyUs, record_.firstSteadyUs);
    try {
        noteMarks(frame, atUs);
    } catch (const std::exception&) {
        ++record_.marksNotListed;
    }
    noteTimes(frame, atUs);
}

void RunRecorder::noteMarks(const ReleasedFrame& frame, std::int64_t atUs)
{
    const auto list = [this](auto& marks, const auto& mark) {
        if (marks.size() == RunRecord::kMostMarks) {
            ++record_.marksNotListed;
        } else {
            marks.push_back(mark);
        }
    };
    for (const ConfigurationChangePtr& change : frame.values.changes) {
        record_.changes += isOther(change->kind) ? 1U : 0U;
        list(record_.configurations, ConfigurationMoment{atUs, change->number});
    }
    if (frame.values.awaySeconds) {
        const std::int64_t awayUs = std::llround(double{*frame.values.awaySeconds} * 1e6);
        ++record_.timesAway;
        record_.awayUs += awayUs;
        list(record_.gaps, CameraGap{atUs - awayUs, atUs});
    }
}

void RunRecorder::noteTimes(const ReleasedFrame& frame, std::int64_t atUs)
{
    const ScenarioValues& values = frame.values;
    Before now{frame.timestampUs, values.cameraTimeUs, std::nullopt, values.ledger.stretch};
    if (values.cameraTimeUs) {
        const std::int64_t full = fullCameraTime(static_cast<std::int64_t>(*values.cameraTimeUs));
        now.placedUs = timeline_.place(full, static_cast<std::int64_t>(values.times.steadyUs));
    }
    RunPoint point;
    point.atUs = atUs;
    point.deliveryUs = difference(values.times.arrivedUs, frame.timestampUs);
    point.lost = missedOf(values.ledger.lostBefore);
    if (before_ && before_->stretch == now.stretch && !beginsAnew(values)) {
        point.intervalUs = difference(now.timestampUs, before_->timestampUs);
        // A clock that stands still is none: frames without a time embedded have that of none.
        if (before_->placedUs && now.placedUs && before_->cameraUs != now.cameraUs) {
            point.stampErrorUs = *point.intervalUs - (*now.placedUs - *before_->placedUs);
        }
    }
    before_ = now;
    record_.series.add(point);
    record_.delivery.add(point.deliveryUs);
    record_.processing.add(static_cast<std::int64_t>(values.times.handedUs));
    record_.handOver.add(static_cast<std::int64_t>(values.times.handOverUs));
    record_.queued.add(static_cast<std::int64_t>(frame.queuedUs));
    record_.writing.add(static_cast<std::int64_t>(frame.writingUs));
}

RunRecord RunRecorder::record() const
{
    RunRecord record = record_;
    record.thumbnails = sheet_.chosen();
    return record;
}

} // namespace kxhost
