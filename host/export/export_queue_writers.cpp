// The bounded queue between the grab thread and those that write: the writers' side.
#include "export/export_metadata.h"
#include "export/export_queue.h"

#include <exception>

namespace kxhost {

void ExportQueue::runWriter()
{
    PictureWriter writer(settings_);
    Lock lock(mutex_);
    for (;;) {
        work_.wait(lock, [this] { return taken_ < committed_ || finishing_; });
        if (taken_ == committed_) {
            return;
        }
        const std::uint64_t frame = taken_++;
        const bool skip = !error_.empty();
        lock.unlock();
        ExportPlace& mine = place(frame);
        mine.take();
        if (!skip) {
            writeFrameSafely(frame, writer);
        }
        mine.written = ExportPlace::Clock::now();
        if (mine.whole) {
            for (ExportTap* tap : taps_) {
                tap->look(mine.shown());
            }
        }
        lock.lock();
        mine.done = true;
        releaseDone(lock);
    }
}

/// Want of memory is an export error like others.
void ExportQueue::writeFrameSafely(std::uint64_t frame, PictureWriter& writer)
{
    try {
        writeFrame(frame, writer);
    } catch (const std::exception& exception) {
        const Lock lock(mutex_);
        fail("Cannot write frame " + std::to_string(frame + 1) + ": " + exception.what() + ".");
    }
}

void ExportQueue::writeFrame(std::uint64_t frame, PictureWriter& writer)
{
    ExportPlace& mine = place(frame);
    std::vector<PictureRecord> records;
    for (const WaitingPicture& staged : mine.pictures) {
        if (!staged.present) {
            continue;
        }
        PictureRecord& record = records.emplace_back();
        record.info = staged.info;
        if (std::string error = writer.write(frame + 1, staged.pixels, record); !error.empty()) {
            const Lock lock(mutex_);
            fail(error);
            return;
        }
        mine.fileCount += record.file.empty() ? 0U : 1U;
        mine.fileBytes += record.fileBytes;
    }
    if (metadata_.isOpen()) {
        mine.line = metadataLine(frame + 1, mine.values, records);
    }
    mine.whole = true;
}

std::string ExportQueue::complete(const ExportPlace& oldest)
{
    return oldest.whole && metadata_.isOpen() ? metadata_.append(oldest.line) : "";
}

/// Completes, in the order of commit, the frames whose pictures are written, and frees their
/// places.
void ExportQueue::releaseDone(Lock& lock)
{
    if (releasing_) {
        return; // that writer will see this frame too
    }
    releasing_ = true;
    while (released_ < taken_ && place(released_).done) {
        ExportPlace& oldest = place(released_);
        lock.unlock();
        const std::string error = complete(oldest);
        oldest.whole = oldest.whole && error.empty();
        for (ExportTap* tap : taps_) {
            tap->released(oldest.released());
        }
        lock.lock();
        if (!error.empty()) {
            fail(error);
        }
        countReleased(oldest);
        released_ += 1;
        freed_.notify_all();
    }
    releasing_ = false;
}

void ExportQueue::countReleased(const ExportPlace& oldest)
{
    if (oldest.whole) {
        totals_.written += 1;
    } else {
        totals_.failed += 1;
        failedFrames_.push_back(oldest.values.frameCounter);
    }
    totals_.pictures += oldest.fileCount;
    totals_.bytes += oldest.fileBytes;
}

/// Its place is only taken by another frame, or lost with the memory for places.
void ExportQueue::showLast()
{
    const Lock lock(mutex_);
    if (committed_ == 0) {
        return;
    }
    const ExportPlace& newest = place(committed_ - 1);
    if (newest.number == committed_ && !newest.staging && newest.whole) {
        for (ExportTap* tap : taps_) {
            tap->last(newest.shown());
        }
    }
}

} // namespace kxhost
