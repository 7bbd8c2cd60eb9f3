// The ring of buffers that frames are written to: the camera's own or the user's.
#include "capture/frame_slots.h"

namespace fcsim {

FrameSlots::FrameSlots(std::size_t size, unsigned count)
    : own_(size * count), memory_(own_.data()), size_(size), count_(count),
      held_(std::make_unique<std::atomic<bool>[]>(count))
{}

FrameSlots::FrameSlots(std::uint8_t* memory, std::size_t size, unsigned count)
    : memory_(memory), size_(size), count_(count),
      held_(std::make_unique<std::atomic<bool>[]>(count))
{}

std::optional<unsigned> FrameSlots::take()
{
    for (unsigned tried = 0; tried < count_; ++tried) {
        const unsigned slot = next_;
        next_ = (next_ + 1) % count_;
        if (!held_[slot].exchange(true, std::memory_order_acquire)) {
            return slot;
        }
    }
    return std::nullopt;
}

void FrameSlots::releaseSlot(unsigned slot) noexcept
{
    held_[slot].store(false, std::memory_order_release);
}

} // namespace fcsim
