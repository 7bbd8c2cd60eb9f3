// The ring of buffers that frames are written to: the camera's own or the user's.
#ifndef FCSIM_FRAME_SLOTS_H
#define FCSIM_FRAME_SLOTS_H

#include "image/image_data.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace fcsim {

/// Buffers of one capture. Images keep it alive, so frames outlive the capture. `take` belongs to
/// the retrieving thread; slots come back from any.
class FrameSlots : public SlotOwner {
public:
    /// Allocates `count` buffers of `size` bytes.
    FrameSlots(std::size_t size, unsigned count);
    /// Uses `count` buffers of `size` bytes that follow each other from `memory` on.
    FrameSlots(std::uint8_t* memory, std::size_t size, unsigned count);

    /// The next slot in ring order that no image holds; none when all are held.
    std::optional<unsigned> take();
    std::uint8_t* address(unsigned slot) const { return memory_ + slot * size_; }
    unsigned count() const { return count_; }

    void releaseSlot(unsigned slot) noexcept override;

private:
    std::vector<std::uint8_t> own_;
    std::uint8_t* memory_;
    std::size_t size_;
    unsigned count_;
    unsigned next_ = 0;
    std::unique_ptr<std::atomic<bool>[]> held_;
};

} // namespace fcsim

#endif
