// The plain pool: one flat block of equal, page-aligned slots that the camera's driver fills.
#ifndef KXHOST_FRAME_MEMORY_H
#define KXHOST_FRAME_MEMORY_H

#include <cstddef>
#include <cstdint>

namespace kxhost {

/// Owns the block. `init` and the first `setFrameSize` after it lay the pool out; a later frame
/// size leaves it alone, because the driver may be writing to it. Grab thread only.
class FrameMemory {
public:
    FrameMemory() = default;
    ~FrameMemory();
    FrameMemory(const FrameMemory&) = delete;
    FrameMemory& operator=(const FrameMemory&) = delete;

    /// Starts a new pool of `count` slots. Addresses given before are no longer valid once the
    /// frame size is set.
    void init(std::uint32_t count);
    /// Lays the slots out for frames of `bytes`, unless that is done already. The pages are in
    /// memory when it returns. Returns false when there is not enough of it.
    bool setFrameSize(std::uint32_t bytes);
    /// Address of a slot; null = there is none.
    void* slot(std::uint32_t index) const;
    /// True when there are slots.
    bool ready() const { return slotBytes_ != 0; }

private:
    void release();

    void* base_ = nullptr;
    std::size_t mappedBytes_ = 0; ///< kept over `init`, so that a pool of the same size stays
    std::size_t slotBytes_ = 0;   ///< 0 = not laid out
    std::uint32_t count_ = 0;
};

} // namespace kxhost

#endif
