// Signals on their way to the grab: which codes wait, which comes next, when one is done with.
#include "grab/pending_signals.h"

namespace kxhost {
namespace {

constexpr unsigned kCodeBits = 4;
constexpr std::uint32_t kCodeMask = (1U << kCodeBits) - 1;

bool isFinish(int code)
{
    return code == kFinishInterrupt || code == kFinishTerminate;
}

/// Where the code stands in the queue; the number of bits in use when it does not.
unsigned placeOf(std::uint32_t queue, int code)
{
    unsigned place = 0;
    while ((queue >> place) != 0 && ((queue >> place) & kCodeMask) != static_cast<unsigned>(code)) {
        place += kCodeBits;
    }
    return place;
}

std::uint32_t with(std::uint32_t queue, int code)
{
    const auto number = static_cast<std::uint32_t>(code);
    return isFinish(code) ? (queue << kCodeBits) | number
                          : queue | (number << placeOf(queue, code));
}

std::uint32_t without(std::uint32_t queue, int code)
{
    const unsigned place = placeOf(queue, code);
    const std::uint32_t before = queue & ((1U << place) - 1);
    return before | ((queue >> place >> kCodeBits) << place);
}

} // namespace

void PendingSignals::post(SignalCode code)
{
    if (isFinish(code) && finishAsked_.exchange(true, std::memory_order_acq_rel)) {
        return;
    }
    if (code == kReload) {
        reloadsAsked_.fetch_add(1, std::memory_order_relaxed);
    }
    std::uint32_t queue = queue_.load(std::memory_order_relaxed);
    do {
        if ((queue >> placeOf(queue, code)) != 0) {
            break; // it waits already
        }
    } while (!queue_.compare_exchange_weak(queue, with(queue, code), std::memory_order_acq_rel,
                                           std::memory_order_relaxed));
    const std::lock_guard lock(mutex_);
    ++posts_;
    posted_.notify_all();
}

bool PendingSignals::holds(SignalCode code) const
{
    const std::uint32_t queue = queue_.load(std::memory_order_acquire);
    return (queue >> placeOf(queue, code)) != 0;
}

int PendingSignals::pollInLoop()
{
    polled_ = static_cast<int>(queue_.load(std::memory_order_acquire) & kCodeMask);
    return polled_;
}

int PendingSignals::pollOutside() const
{
    return holds(kReload) ? kReload : kNoSignal;
}

void PendingSignals::frameArrived()
{
    if (polled_ == kLut || polled_ == kLut12) {
        acted(polled_);
    }
    polled_ = kNoSignal;
}

void PendingSignals::frameMissing()
{
    polled_ = kNoSignal;
}

void PendingSignals::acted(int code)
{
    std::uint32_t queue = queue_.load(std::memory_order_relaxed);
    while (!queue_.compare_exchange_weak(queue, without(queue, code), std::memory_order_acq_rel,
                                         std::memory_order_relaxed)) {
    }
}

bool PendingSignals::finishPending() const
{
    return holds(kFinishInterrupt) || holds(kFinishTerminate);
}

void PendingSignals::sleep(std::chrono::milliseconds time)
{
    std::unique_lock lock(mutex_);
    const std::uint32_t before = posts_;
    posted_.wait_for(lock, time, [&] { return posts_ != before || finishAsked(); });
}

} // namespace kxhost
