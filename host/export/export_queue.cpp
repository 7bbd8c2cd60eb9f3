// The bounded queue between the grab thread, which hands frames over, and the threads that write
// them: the grab thread's side, begin and end.
#include "export/export_queue.h"

#include "picture/picture_codec.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <new>
#include <utility>

namespace kxhost {

ExportQueue::ExportQueue(ExportSettings settings)
    : settings_(std::move(settings)), places_(std::max<std::size_t>(settings_.queueDepth, 1))
{
    failedFrames_.reserve(places_.size()); // whoever counts them may lack memory
}

ExportQueue::~ExportQueue()
{
    finish();
}

void ExportQueue::addTap(ExportTap& tap)
{
    taps_.push_back(&tap);
}

std::string ExportQueue::start()
{
    if (!settings_.folder.empty()) {
        if (std::string error = prepareFolderForGrab(); !error.empty()) {
            return error;
        }
        if (settings_.metadata) {
            metadata_.open((std::filesystem::path(settings_.folder) / kMetadataName).string());
        }
    }
    for (unsigned i = 0; i < std::max(settings_.writerThreads, 1U); ++i) {
        writers_.emplace_back([this] { runWriter(); });
    }
    return "";
}

std::string ExportQueue::prepareFolderForGrab()
{
    if (std::string error = prepareFolder(settings_.folder); !error.empty()) {
        return error;
    }
    const std::string earlier = settings_.overwrite ? "" : findEarlierFile(settings_);
    if (!earlier.empty()) {
        return "The folder " + settings_.folder + " holds frames of an earlier grab (" + earlier +
               "): name another folder, or overwrite them (--set output.overwrite=true).";
    }
    removeLeftovers(settings_.folder,
                    [this](const std::string& name) { return isPictureName(settings_, name); });
    return "";
}

std::size_t ExportQueue::reserve(Instance instance, std::size_t bytes)
{
    Lock lock(mutex_);
    // Places that still wait to be written keep their memory until they are free.
    freed_.wait(lock, [this] { return released_ == committed_; });
    if (!writesPixels() && taps_.empty()) {
        return places_.size();
    }
    std::size_t ready = 0;
    try {
        for (ExportPlace& each : places_) {
            each.picture(instance).reserve(bytes);
            ++ready;
        }
    } catch (const std::bad_alloc&) {
        places_.resize(std::max<std::size_t>(ready, 1));
    }
    return ready;
}

bool ExportQueue::copiesPixels() const
{
    bool wanted = writesPixels();
    for (ExportTap* tap : taps_) {
        wanted = tap->wantsPixels() || wanted;
    }
    return wanted;
}

Staged ExportQueue::waitForPlace(Lock& lock)
{
    using Clock = std::chrono::steady_clock;
    Staged staged;
    if (finishing_) {
        totals_.refusedFailed += 1;
        return {Staging::kFailed}; // an abandoned grab that goes on
    }
    const auto isFree = [this] { return committed_ - released_ < places_.size(); };
    if (!isFree() && settings_.whenFull == WhenFull::kWait && error_.empty()) {
        const auto start = Clock::now();
        freed_.wait(lock, [&] { return isFree() || !error_.empty(); });
        const auto waited =
            std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
        staged.waitedUs = static_cast<std::uint64_t>(waited.count());
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

Staged ExportQueue::stage(const FrameInfo& info, const void* pixels)
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
        place(committed_).stageFor(info.timestampUs);
    }
    // From here to the commit the place is this thread's alone.
    WaitingPicture& staged = place(committed_).picture(info.instance);
    staged.copied = copiesPixels();
    if (staged.copied && !staged.keep(pixels, pictureBytes(*codec, info.width, info.height))) {
        const Lock lock(mutex_);
        totals_.refusedMemory += 1;
        result.result = Staging::kNoMemory;
        return result;
    }
    staged.present = true;
    staged.info = info;
    return result;
}

void ExportQueue::commit(std::uint64_t timestampUs, const ScenarioValues& values)
{
    const Lock lock(mutex_);
    if (committed_ - released_ >= places_.size()) {
        return; // nothing can have been staged
    }
    ExportPlace& next = place(committed_);
    if (!next.holdsStaged(timestampUs)) {
        return;
    }
    totals_.accepted += 1;
    if (finishing_) { // an abandoned grab that goes on: nobody would write it
        next.staging = false;
        totals_.failed += 1;
        failedFrames_.push_back(values.frameCounter);
        return;
    }
    committed_ += 1;
    next.commit(committed_, values);
    totals_.deepest = std::max(totals_.deepest, static_cast<std::size_t>(committed_ - released_));
    work_.notify_one();
}

void ExportQueue::fail(const std::string& error)
{
    if (error_.empty()) {
        error_ = error;
        freed_.notify_all();
    }
}

void ExportQueue::finish()
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

ExportTotals ExportQueue::totals() const
{
    const Lock lock(mutex_);
    return totals_;
}

std::vector<std::optional<std::uint32_t>> ExportQueue::failedFrames() const
{
    const Lock lock(mutex_);
    return failedFrames_;
}

std::string ExportQueue::firstError() const
{
    const Lock lock(mutex_);
    return error_;
}

} // namespace kxhost
