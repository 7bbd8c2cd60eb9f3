// The bounded queue between the grab thread, which hands frames over, and the threads that write
// them.
#ifndef KXHOST_EXPORT_QUEUE_H
#define KXHOST_EXPORT_QUEUE_H

#include "base/output_file.h"
#include "export/export_frame.h"
#include "export/export_picture.h"
#include "export/export_place.h"
#include "export/export_settings.h"
#include "export/export_tap.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace kxhost {

/// What became of the frames that were handed over; accepted = written + failed + still queued.
struct ExportTotals {
    std::uint64_t accepted = 0;      ///< frames committed to the queue
    std::uint64_t written = 0;       ///< frames whose pictures and metadata line are complete
    std::uint64_t failed = 0;        ///< committed frames that an export error lost
    std::uint64_t refusedFull = 0;   ///< frames refused because every place was taken
    std::uint64_t refusedFailed = 0; ///< frames refused because the export had failed before
    std::uint64_t refusedMemory = 0; ///< frames refused because there was no memory for a copy
    std::uint64_t pictures = 0;      ///< picture files written
    std::uint64_t bytes = 0;         ///< bytes of those files
    std::uint64_t waits = 0;         ///< times that the grab thread waited for a free place
    std::uint64_t waitUs = 0;        ///< how long it waited in all
    std::size_t deepest = 0;         ///< largest number of frames in the queue at one time
};

/// What became of a picture that was to be staged.
enum class Staging {
    kAccepted,
    kFull,     ///< every place was taken
    kNoMemory, ///< there is none for a copy of it
    kFailed,   ///< the export has failed before, or is over
};

struct Staged {
    Staging result = Staging::kAccepted;
    std::uint64_t waitedUs = 0; ///< for a place
};

/// Exports frames on threads of its own. A frame is staged picture by picture (the pixels are
/// copied into memory that was set aside beforehand) and then committed with its values; from there
/// on its writers own it. Pictures are complete or absent, metadata lines stand in the order of
/// commit.
///
/// After the first export error (no space, no permission) every further frame is refused; the error
/// is kept. All members may be called from any thread, `stage`, `commit` and `reserve` from one at
/// a time; `start` throws for want of memory, no other.
class ExportQueue {
public:
    explicit ExportQueue(ExportSettings settings);
    /// Finishes first, if nobody has.
    ~ExportQueue();
    ExportQueue(const ExportQueue&) = delete;
    ExportQueue& operator=(const ExportQueue&) = delete;

    /// Lets somebody look at the frames. REQUIRES: called before `start`; `tap` outlives the queue.
    void addTap(ExportTap& tap);

    /// Makes the folder ready and starts the writers. Returns an empty text, or why it cannot be
    /// done (one sentence). REQUIRES: called once, before frames are staged.
    std::string start();

    /// Sets aside memory for pictures of up to `bytes` in one instance, so that staging allocates
    /// nothing. Staging a larger picture is allowed; it then allocates once. When there is memory
    /// for some places only, the queue has no more from then on. Returns how many it has; 0 = there
    /// is memory for none, and staging tries again each time.
    std::size_t reserve(Instance instance, std::size_t bytes);

    /// Copies a picture of the frame with the time stamp `info.timestampUs`. Pictures of one frame
    /// share its time stamp; what was staged under another one and never committed is forgotten.
    /// Waits for a free place when the settings say so.
    Staged stage(const FrameInfo& info, const void* pixels);

    /// Hands the staged frame to the writers together with its values. Without pictures (nothing
    /// was staged under this time stamp) it does nothing. Does not block.
    void commit(std::uint64_t timestampUs, const ScenarioValues& values);

    /// Waits until everything committed is written, then ends the writers. May be called again.
    void finish();

    ExportTotals totals() const;
    /// The camera's numbers of the frames counted as `failed`; empty = the frame had none.
    std::vector<std::optional<std::uint32_t>> failedFrames() const;
    /// The first export error, as one sentence; empty = none so far.
    std::string firstError() const;

private:
    using Lock = std::unique_lock<std::mutex>;

    ExportPlace& place(std::uint64_t frame) { return places_[frame % places_.size()]; }
    std::string prepareFolderForGrab();
    bool writesPixels() const
    {
        return !settings_.folder.empty() && settings_.format != PictureFormat::kNone;
    }
    bool copiesPixels() const;
    Staged waitForPlace(Lock& lock);
    void fail(const std::string& error);

    // The writers' side.
    void runWriter();
    void writeFrameSafely(std::uint64_t frame, PictureWriter& writer);
    void writeFrame(std::uint64_t frame, PictureWriter& writer);
    void releaseDone(Lock& lock);
    std::string complete(const ExportPlace& oldest);
    void countReleased(const ExportPlace& oldest);
    void showLast();

    const ExportSettings settings_;
    std::vector<ExportTap*> taps_;
    std::vector<ExportPlace> places_;
    std::vector<std::thread> writers_;

    mutable std::mutex mutex_;
    std::condition_variable work_;  ///< a frame was committed, or the queue is finishing
    std::condition_variable freed_; ///< a place became free
    // Guarded by mutex_. Frames are numbered from 0 in the order of commit; released_ <= taken_ <=
    // committed_, and place(committed_) is the one being staged.
    std::uint64_t committed_ = 0;
    std::uint64_t taken_ = 0;
    std::uint64_t released_ = 0;
    bool finishing_ = false;
    bool releasing_ = false; ///< one writer at a time completes the metadata
    ExportTotals totals_;
    std::vector<std::optional<std::uint32_t>> failedFrames_; ///< no more than there are places
    std::string error_;

    LineFile metadata_; ///< opened before the writers start; then the releasing writer's alone
};

} // namespace kxhost

#endif
