// The bounded queue between the grab thread, which hands frames over, and the threads that write
// them.
#include "export/export_queue.h"

#include "base/output_file.h"
#include "export/export_metadata.h"
#include "export/export_picture.h"
#include "picture/picture_codec.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <filesystem>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace kxhost {

namespace {

using Clock = std::chrono::steady_clock;

/// One picture of a frame, waiting in its place.
struct Waiting {
    bool present = false;
    bool copied = false; // its pixels are here
    FrameInfo info;
    std::vector<std::uint8_t> pixels; // only ever grows
};

/// One place of the queue. It belongs to the grab thread until the frame is committed, then to the
/// writer that takes it, then (with `done`) to whoever completes the metadata.
struct Place {
    std::uint64_t number = 0; // of the frame, from 1
    std::uint64_t timestampUs = 0;
    bool staging = false; // until the commit
    std::array<Waiting, 2> pictures;
    ScenarioValues values;
    std::string line; // metadata
    std::uint64_t fileCount = 0;
    std::uint64_t fileBytes = 0;
    bool whole = false; // every picture is written
    bool done = false;  // its writer has let go of it
    Clock::time_point committed;
    Clock::time_point taken;
    Clock::time_point written;
};

std::uint64_t microsecondsBetween(Clock::time_point start, Clock::time_point end)
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(end - start).count());
}

TappedFrame tapped(const Place& place)
{
    const Waiting& picture = place.pictures[0].present ? place.pictures[0] : place.pictures[1];
    std::span<const std::uint8_t> pixels;
    if (picture.copied) {
        const FrameInfo& info = picture.info;
        pixels = {picture.pixels.data(),
                  pictureBytes(*findCodec(info.codec), info.width, info.height)};
    }
    return {place.number, picture.info, pixels, place.values};
}

} // namespace

class ExportQueue::Impl {
public:
    explicit Impl(ExportSettings settings)
        : settings_(std::move(settings)), places_(std::max<std::size_t>(settings_.queueDepth, 1))
    {}

    void addTap(ExportTap& tap) { taps_.push_back(&tap); }
    std::string start();
    std::size_t reserve(Instance instance, std::size_t bytes);
    Staged stage(const FrameInfo& info, const void* pixels);
    void commit(std::uint64_t timestampUs, const ScenarioValues& values);
    void finish();
    ExportTotals totals() const;
    std::vector<std::optional<std::uint32_t>> failedFrames() const;
    std::string firstError() const;

private:
    using Lock = std::unique_lock<std::mutex>;

    Place& place(std::uint64_t frame) { return places_[frame % places_.size()]; }
    bool writesPixels() const
    {
        return !settings_.folder.empty() && settings_.format != PictureFormat::kNone;
    }
    bool copiesPixels() const;
    Staged waitForPlace(Lock& lock);
    static bool keep(Waiting& staged, const void* pixels, std::size_t bytes);
    void forgetStaged(std::uint64_t timestampUs);
    void fail(const std::string& error);
    void runWriter();
    void writeFrameSafely(std::uint64_t frame, PictureWriter& writer);
    void writeFrame(std::uint64_t frame, PictureWriter& writer);
    void releaseDone(Lock& lock);
    std::string complete(const Place& oldest);
    void showLast();

    const ExportSettings settings_;
    std::vector<ExportTap*> taps_;
    std::vector<Place> places_;
    std::vector<std::thread> writers_;

    mutable std::mutex mutex_;
    std::condition_variable work_;  // a frame was committed, or the queue is finishing
    std::condition_variable freed_; // a place became free
    // Guarded by mutex_. Frames are numbered from 0 in the order of commit; released_ <= taken_ <=
    // committed_, and place(committed_) is the one being staged.
    std::uint64_t committed_ = 0;
    std::uint64_t taken_ = 0;
    std::uint64_t released_ = 0;
    bool finishing_ = false;
    bool releasing_ = false; // one writer at a time completes the metadata
    ExportTotals totals_;
    std::vector<std::optional<std::uint32_t>> failedFrames_; // no more than there are places
    std::string error_;

    LineFile metadata_; // opened before the writers start; then the releasing writer's alone
};

std::string ExportQueue::Impl::start()
{
    if (!settings_.folder.empty()) {
        if (std::string error = prepareFolder(settings_.folder); !error.empty()) {
            return error;
        }
        const std::string earlier = settings_.overwrite ? "" : findEarlierFile(settings_);
        if (!earlier.empty()) {
            return "The folder " + settings_.folder + " holds frames of an earlier grab (" +
                   earlier +
                   "): name another folder, or overwrite them (--set output.overwrite=true).";
        }
        removeLeftovers(settings_.folder,
                        [this](const std::string& name) { return isPictureName(settings_, name); });
        if (settings_.metadata) {
            metadata_.open((std::filesystem::path(settings_.folder) / kMetadataName).string());
        }
    }
    for (unsigned i = 0; i < std::max(settings_.writerThreads, 1U); ++i) {
        writers_.emplace_back([this] { runWriter(); });
    }
    return "";
}

std::size_t ExportQueue::Impl::reserve(Instance instance, std::size_t bytes)
{
    Lock lock(mutex_);
    // Places that still wait to be written keep their memory until they are free.
    freed_.wait(lock, [this] { return released_ == committed_; });
    if (!writesPixels() && taps_.empty()) {
        return places_.size();
    }
    std::size_t ready = 0;
    try {
        for (Place& each : places_) {
            auto& pixels = each.pictures[static_cast<std::size_t>(instance)].pixels;
            if (pixels.size() < bytes) {
                pixels.resize(bytes);
            }
            ++ready;
        }
    } catch (const std::bad_alloc&) {
        places_.resize(std::max<std::size_t>(ready, 1));
    }
    return ready;
}

bool ExportQueue::Impl::copiesPixels() const
{
    bool wanted = writesPixels();
    for (ExportTap* tap : taps_) {
        wanted = tap->wantsPixels() || wanted;
    }
    return wanted;
}

void ExportQueue::Impl::forgetStaged(std::uint64_t timestampUs)
{
    Place& next = place(committed_);
    if (!next.staging || next.timestampUs != timestampUs) {
        next.staging = true;
        next.timestampUs = timestampUs;
        for (Waiting& staged : next.pictures) {
            staged.present = false;
        }
    }
}

Staged ExportQueue::Impl::waitForPlace(Lock& lock)
{
    Staged staged;
    if (finishing_) {
        return {Staging::kFailed}; // an abandoned grab that goes on
    }
    const auto isFree = [this] { return committed_ - released_ < places_.size(); };
    if (!isFree() && settings_.whenFull == WhenFull::kWait && error_.empty()) {
        const auto start = Clock::now();
        freed_.wait(lock, [&] { return isFree() || !error_.empty(); });
        staged.waitedUs = microsecondsBetween(start, Clock::now());
        totals_.waits += 1;
        totals_.waitUs += staged.waitedUs;
    }
    if (!error_.empty()) {
        totals_.refusedFailed += 1;
        staged.result = Staging::kFailed;
    } else if (!isFree()) {
        totals_.refusedFull += 1;
        staged.result = Staging::kFull;
    }
    return staged;
}

/// Returns false when there is no memory.
bool ExportQueue::Impl::keep(Waiting& staged, const void* pixels, std::size_t bytes)
{
    try {
        if (staged.pixels.size() < bytes) {
            staged.pixels.resize(bytes);
        }
    } catch (const std::exception&) { // no memory, or more than there can ever be
        return false;
    }
    std::memcpy(staged.pixels.data(), pixels, bytes);
    return true;
}

Staged ExportQueue::Impl::stage(const FrameInfo& info, const void* pixels)
{
    const Codec* codec = findCodec(info.codec);
    Staged result;
    {
        Lock lock(mutex_);
        if (codec == nullptr) {
            fail("Frames of the codec \"" + info.codec + "\" cannot be written.");
        }
        result = waitForPlace(lock);
        if (result.result != Staging::kAccepted) {
            return result;
        }
        forgetStaged(info.timestampUs);
    }
    // From here to the commit the place is this thread's alone.
    Waiting& staged = place(committed_).pictures[static_cast<std::size_t>(info.instance)];
    staged.copied = copiesPixels();
    if (staged.copied && !keep(staged, pixels, pictureBytes(*codec, info.width, info.height))) {
        const Lock lock(mutex_);
        totals_.refusedMemory += 1;
        result.result = Staging::kNoMemory;
        return result;
    }
    staged.present = true;
    staged.info = info;
    return result;
}

void ExportQueue::Impl::commit(std::uint64_t timestampUs, const ScenarioValues& values)
{
    const Lock lock(mutex_);
    if (committed_ - released_ >= places_.size()) {
        return; // nothing can have been staged
    }
    Place& next = place(committed_);
    const bool staged = next.pictures[0].present || next.pictures[1].present;
    if (!staged || !next.staging || next.timestampUs != timestampUs) {
        return;
    }
    committed_ += 1;
    next.staging = false;
    next.number = committed_;
    next.values = values;
    next.done = false;
    next.committed = Clock::now();
    totals_.accepted += 1;
    totals_.deepest = std::max(totals_.deepest, static_cast<std::size_t>(committed_ - released_));
    work_.notify_one();
}

void ExportQueue::Impl::fail(const std::string& error)
{
    if (error_.empty()) {
        error_ = error;
        freed_.notify_all();
    }
}

void ExportQueue::Impl::runWriter()
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
        Place& mine = place(frame);
        mine.whole = false;
        mine.fileCount = 0;
        mine.fileBytes = 0;
        mine.taken = Clock::now();
        if (!skip) {
            writeFrameSafely(frame, writer);
        }
        mine.written = Clock::now();
        if (mine.whole) {
            for (ExportTap* tap : taps_) {
                tap->look(tapped(mine));
            }
        }
        lock.lock();
        mine.done = true;
        releaseDone(lock);
    }
}

/// Want of memory is an export error like others.
void ExportQueue::Impl::writeFrameSafely(std::uint64_t frame, PictureWriter& writer)
{
    try {
        writeFrame(frame, writer);
    } catch (const std::exception& exception) {
        const Lock lock(mutex_);
        fail("Cannot write frame " + std::to_string(frame + 1) + ": " + exception.what() + ".");
    }
}

void ExportQueue::Impl::writeFrame(std::uint64_t frame, PictureWriter& writer)
{
    Place& mine = place(frame);
    std::vector<PictureRecord> records;
    for (const Waiting& staged : mine.pictures) {
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

std::string ExportQueue::Impl::complete(const Place& oldest)
{
    return oldest.whole && metadata_.isOpen() ? metadata_.append(oldest.line) : "";
}

/// Completes, in the order of commit, the frames whose pictures are written, and frees their
/// places.
void ExportQueue::Impl::releaseDone(Lock& lock)
{
    if (releasing_) {
        return; // that writer will see this frame too
    }
    releasing_ = true;
    while (released_ < taken_ && place(released_).done) {
        Place& oldest = place(released_);
        lock.unlock();
        const std::string error = complete(oldest);
        oldest.whole = oldest.whole && error.empty();
        for (ExportTap* tap : taps_) {
            tap->released({oldest.number, oldest.timestampUs, oldest.values, oldest.whole,
                           microsecondsBetween(oldest.committed, oldest.taken),
                           microsecondsBetween(oldest.taken, oldest.written)});
        }
        lock.lock();
        if (!error.empty()) {
            fail(error);
        }
        totals_.written += oldest.whole ? 1U : 0U;
        if (!oldest.whole) {
            totals_.failed += 1;
            failedFrames_.push_back(oldest.values.frameCounter);
        }
        totals_.pictures += oldest.fileCount;
        totals_.bytes += oldest.fileBytes;
        released_ += 1;
        freed_.notify_all();
    }
    releasing_ = false;
}

void ExportQueue::Impl::finish()
{
    {
        const Lock lock(mutex_);
        finishing_ = true;
        work_.notify_all();
    }
    for (std::thread& writer : writers_) {
        writer.join();
    }
    if (!writers_.empty()) {
        showLast();
    }
    writers_.clear();
    if (const std::string error = metadata_.close(); !error.empty()) {
        const Lock lock(mutex_);
        fail(error);
    }
}

/// Its place is only taken by another frame, or lost with the memory for places.
void ExportQueue::Impl::showLast()
{
    const Lock lock(mutex_);
    if (committed_ == 0) {
        return;
    }
    const Place& newest = place(committed_ - 1);
    if (newest.number == committed_ && !newest.staging && newest.whole) {
        for (ExportTap* tap : taps_) {
            tap->last(tapped(newest));
        }
    }
}

ExportTotals ExportQueue::Impl::totals() const
{
    const Lock lock(mutex_);
    return totals_;
}

std::vector<std::optional<std::uint32_t>> ExportQueue::Impl::failedFrames() const
{
    const Lock lock(mutex_);
    return failedFrames_;
}

std::string ExportQueue::Impl::firstError() const
{
    const Lock lock(mutex_);
    return error_;
}

ExportQueue::ExportQueue(ExportSettings settings)
    : impl_(std::make_unique<Impl>(std::move(settings)))
{}

ExportQueue::~ExportQueue()
{
    impl_->finish();
}

void ExportQueue::addTap(ExportTap& tap)
{
    impl_->addTap(tap);
}

std::string ExportQueue::start()
{
    return impl_->start();
}

std::size_t ExportQueue::reserve(Instance instance, std::size_t bytes)
{
    return impl_->reserve(instance, bytes);
}

Staged ExportQueue::stage(const FrameInfo& info, const void* pixels)
{
    return impl_->stage(info, pixels);
}

void ExportQueue::commit(std::uint64_t timestampUs, const ScenarioValues& values)
{
    impl_->commit(timestampUs, values);
}

void ExportQueue::finish()
{
    impl_->finish();
}

ExportTotals ExportQueue::totals() const
{
    return impl_->totals();
}

std::vector<std::optional<std::uint32_t>> ExportQueue::failedFrames() const
{
    return impl_->failedFrames();
}

std::string ExportQueue::firstError() const
{
    return impl_->firstError();
}

} // namespace kxhost
