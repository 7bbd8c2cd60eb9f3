// Pixels that images show: shared, from a pool, their own or lent by somebody.
#ifndef FCSIM_IMAGE_STORE_H
#define FCSIM_IMAGE_STORE_H

#include "image/image_data.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace fcsim {

/// Where the pixels of one or several images lie. Written by one image at a time.
struct PixelStore {
    std::uint8_t* data = nullptr;
    std::size_t capacity = 0;             ///< bytes at `data`
    std::unique_ptr<std::uint8_t[]> own;  ///< set when the store has memory of its own
    std::shared_ptr<SlotOwner> slotOwner; ///< set when `data` is a camera's slot
    unsigned slot = 0;
    bool borrowed = false; ///< memory of the client
    std::atomic<unsigned> users{0};
};

/// A share in a store. The last share gives the store back: the slot to its camera, the store to
/// the pool. Different shares may be used on different threads.
class PixelShare {
public:
    PixelShare() = default; ///< of nothing
    /// Memory of the caller, which outlives the share.
    static PixelShare borrowed(std::uint8_t* data, std::size_t capacity);
    /// New zeroed memory.
    static PixelShare allocated(std::size_t capacity);
    /// A camera's slot. `owner` may be null.
    static PixelShare lent(std::uint8_t* data, std::size_t capacity,
                           std::shared_ptr<SlotOwner> owner, unsigned slot);

    PixelShare(const PixelShare& other);
    PixelShare(PixelShare&& other) noexcept : store_(std::exchange(other.store_, nullptr)) {}
    PixelShare& operator=(PixelShare other) noexcept
    {
        std::swap(store_, other.store_);
        return *this;
    }
    ~PixelShare();

    std::uint8_t* data() const { return store_ == nullptr ? nullptr : store_->data; }
    std::size_t capacity() const { return store_ == nullptr ? 0 : store_->capacity; }
    /// Memory given by the caller of `borrowed`.
    bool isBorrowed() const;
    /// Memory of its own that nobody else shares.
    bool isOwnAlone() const;

private:
    explicit PixelShare(PixelStore* store) : store_(store) {}

    PixelStore* store_ = nullptr;
};

} // namespace fcsim

#endif
