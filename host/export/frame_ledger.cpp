// The ledger of frames: every value of the camera's counter is delivered or has a cause.
#include "export/frame_ledger.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace kxhost {
namespace {

/// With one of so many values a count begins, since its first frames may be missed.
constexpr std::uint32_t kFirstValues = 16;

/// How far a counter of 32 bits went on, wrap included; 0 = it did not.
std::uint32_t ahead(std::uint32_t counter, std::uint64_t last)
{
    constexpr std::uint32_t kHalf = 1U << 31U;
    const std::uint32_t distance = counter - static_cast<std::uint32_t>(last);
    return distance < kHalf ? distance : 0;
}

CauseCounts all(FrameCause cause, std::uint64_t count)
{
    CauseCounts counts;
    counts[cause] = count;
    return counts;
}

} // namespace

const char* causeWord(FrameCause cause)
{
    constexpr std::array<const char*, kFrameCauses> kWords = {
        "timing",   "camera_skipped", "retrieval_failed", "no_buffer", "queue_full",
        "unusable", "unfinished",     "export_failed",    "stopped",   "detached"};
    return kWords[static_cast<std::size_t>(cause)];
}

const char* countBeginWord(CountBegin begin)
{
    constexpr std::array<const char*, 4> kWords = {"start", "restart", "detached", "reset"};
    return kWords[static_cast<std::size_t>(begin)];
}

std::uint64_t CauseCounts::sum() const
{
    return std::accumulate(counts_.begin(), counts_.end(), std::uint64_t{0});
}

CauseCounts& CauseCounts::operator+=(const CauseCounts& other)
{
    for (std::size_t i = 0; i < counts_.size(); ++i) {
        counts_[i] += other.counts_[i];
    }
    return *this;
}

CauseCounts& CauseCounts::operator-=(const CauseCounts& other)
{
    for (std::size_t i = 0; i < counts_.size(); ++i) {
        counts_[i] -= other.counts_[i];
    }
    return *this;
}

std::uint64_t LedgerTotals::lostByCamera() const
{
    return causes[FrameCause::kCameraSkipped] + causes[FrameCause::kRetrievalFailed] +
           failedTakenForLost();
}

std::uint64_t LedgerTotals::lost() const
{
    return causes.sum() - causes[FrameCause::kTiming] - causes[FrameCause::kStopped] +
           failedTakenForLost();
}

FrameLedger::FrameLedger()
{
    ranges_.reserve(kMostRanges);
    stretches_.reserve(kMostStretches);
}

void FrameLedger::captureStarted()
{
    captureIsNew_ = true;
    failedSince_ = 0;
    heldSince_ = 0;
    straysSince_ = 0;
    back_.reset();
    jump_.reset();
}

void FrameLedger::cameraLost()
{
    cameraWasLost_ = true;
}

void FrameLedger::retrievalFailed()
{
    ++totals_.failedRetrievals;
    ++failedSince_;
}

void FrameLedger::heldUp(std::uint64_t frames)
{
    heldSince_ += frames;
}

void FrameLedger::delivered(std::optional<std::uint32_t> counter)
{
    ++totals_.delivered;
    arrived(counter, {});
}

void FrameLedger::lost(std::optional<std::uint32_t> counter, FrameCause cause)
{
    ++totals_.causes[cause];
    arrived(counter, cause);
}

void FrameLedger::arrived(std::optional<std::uint32_t> counter, std::optional<FrameCause> cause)
{
    ++totals_.arrived;
    const std::optional<std::uint64_t> value = counter ? place(*counter) : std::nullopt;
    if (!value) {
        ++totals_.offCounter;
        ++straysSince_;
        back_.reset();
        if (counter) {
            back_ = Back{*counter, cause, failedSince_, heldSince_};
        }
        return;
    }
    failedSince_ = 0;
    heldSince_ = 0;
    straysSince_ = 0;
    back_.reset();
    captureIsNew_ = false;
    cameraWasLost_ = false;
    if (cause) {
        listFrame(stretch(), *value, *cause);
    }
}

std::optional<std::uint64_t> FrameLedger::place(std::uint32_t counter)
{
    if (captureIsNew_) {
        return placeFirst(counter);
    }
    if (ahead(counter, open().last) != 0) {
        return stepTo(counter);
    }
    if (provesJumpWrong(counter)) {
        takeJumpBack();
        return stepTo(counter);
    }
    if (back_ && ahead(counter, back_->counter) != 0) {
        return startAgainAt(*back_, counter);
    }
    return {};
}

/// The frame before was the first of a new count.
std::uint64_t FrameLedger::startAgainAt(const Back& first, std::uint32_t counter)
{
    --totals_.offCounter;
    straysSince_ = 0;
    failedSince_ -= first.failedThen;
    heldSince_ -= first.heldThen;
    const std::uint64_t value = beginStretch(CountBegin::kReset, first.counter);
    if (first.cause) {
        listFrame(stretch(), value, *first.cause);
    }
    return stepTo(counter);
}

std::uint64_t FrameLedger::placeFirst(std::uint32_t counter)
{
    if (stretches_.empty()) {
        return beginStretch(CountBegin::kStart, counter);
    }
    const bool goesOn =
        counter >= kFirstValues && counter > static_cast<std::uint32_t>(open().last);
    if (!goesOn) {
        return beginStretch(cameraWasLost_ ? CountBegin::kDetached : CountBegin::kRestart, counter);
    }
    return stepTo(counter);
}

std::uint64_t FrameLedger::beginStretch(CountBegin begin, std::uint32_t counter)
{
    if (stretches_.size() == kMostStretches) {
        const CountStretch& oldest = stretches_.front();
        closedValues_ += oldest.last - oldest.first + 1;
        ++closedStretches_;
        stretches_.erase(stretches_.begin());
    }
    stretches_.push_back({begin, counter, counter});
    jump_.reset();
    return counter;
}

std::uint64_t FrameLedger::stepTo(std::uint32_t counter)
{
    const std::uint32_t distance = counter - static_cast<std::uint32_t>(open().last);
    if (distance > 1) {
        bookGap(distance - 1);
    } else if (jump_) {
        ++jump_->frames;
    }
    open().last += distance;
    return open().last;
}

/// Frames off the counter come first, since they arrived; then as many failed retrievals as were
/// reported, then what a wait for a place explains.
void FrameLedger::bookGap(std::uint64_t gap)
{
    Jump jump{
        open().last, 1, std::min(gap, straysSince_), {}, ranges_.size(), totals_.rangesNotListed};
    std::uint64_t left = gap - jump.standIns;
    const auto book = [&](FrameCause cause, std::uint64_t most) {
        const std::uint64_t part = std::min(left, most);
        jump.booked[cause] += part;
        left -= part;
    };
    if (captureIsNew_) {
        book(cameraWasLost_ ? FrameCause::kDetached : FrameCause::kStopped, left);
    }
    book(FrameCause::kRetrievalFailed, failedSince_);
    book(FrameCause::kNoBuffer, heldSince_);
    book(FrameCause::kCameraSkipped, left);
    totals_.causes += jump.booked;
    totals_.offCounter -= jump.standIns;
    totals_.standIns += jump.standIns;
    if (jump.booked.sum() != 0) {
        list({stretch(), jump.before + 1, jump.before + gap, jump.booked});
    }
    jump_ = jump;
}

/// Whether the frames since the last jump, and this one, fit in where the jump left off.
bool FrameLedger::provesJumpWrong(std::uint32_t counter) const
{
    return jump_ && counter != static_cast<std::uint32_t>(open().last) &&
           ahead(counter, jump_->before) > jump_->frames;
}

void FrameLedger::takeJumpBack()
{
    const Jump jump = *jump_;
    jump_.reset();
    totals_.causes -= jump.booked;
    totals_.offCounter += jump.standIns + jump.frames;
    totals_.standIns -= jump.standIns;
    straysSince_ += jump.standIns + jump.frames;
    ranges_.resize(jump.rangesThen);
    totals_.rangesNotListed = jump.notListed;
    open().last = jump.before;
}

/// Frames of one cause in a row share a range.
void FrameLedger::listFrame(std::uint64_t stretch, std::uint64_t value, FrameCause cause)
{
    if (!ranges_.empty()) {
        LostRange& before = ranges_.back();
        if (before.stretch == stretch && before.last + 1 == value &&
            before.counts == all(cause, before.last - before.first + 1)) {
            before.last = value;
            ++before.counts[cause];
            return;
        }
    }
    list({stretch, value, value, all(cause, 1)});
}

void FrameLedger::list(const LostRange& range)
{
    if (ranges_.size() == kMostRanges) {
        ++totals_.rangesNotListed;
    } else {
        ranges_.push_back(range);
    }
}

void FrameLedger::notWritten(std::optional<std::uint32_t> counter)
{
    --totals_.delivered;
    ++totals_.causes[FrameCause::kExportFailed];
    if (!counter) {
        return;
    }
    if (const auto found = find(*counter)) {
        listFrame(found->first, found->second, FrameCause::kExportFailed);
    }
}

/// The latest stretch with this counter, and the value there.
std::optional<std::pair<std::uint64_t, std::uint64_t>>
FrameLedger::find(std::uint32_t counter) const
{
    for (std::size_t i = stretches_.size(); i-- > 0;) {
        const CountStretch& stretch = stretches_[i];
        const std::uint64_t back = static_cast<std::uint32_t>(stretch.last) - counter;
        if (back <= stretch.last - stretch.first) {
            return std::pair(closedStretches_ + i + 1, stretch.last - back);
        }
    }
    return {};
}

LedgerTotals FrameLedger::totals() const
{
    LedgerTotals totals = totals_;
    totals.counted = !stretches_.empty();
    totals.values = closedValues_;
    for (const CountStretch& stretch : stretches_) {
        totals.values += stretch.last - stretch.first + 1;
    }
    totals.stretchesNotListed = closedStretches_;
    return totals;
}

} // namespace kxhost
