// Pixels that images show: shared, from a pool, their own or lent by somebody.
#include "image/image_store.h"

#include "image/image_pool.h"

namespace fcsim {

namespace {

PixelStore* takeStore(std::uint8_t* data, std::size_t capacity)
{
    PixelStore* store = poolOf<PixelStore>().take();
    store->data = data;
    store->capacity = capacity;
    store->users.store(1, std::memory_order_relaxed);
    return store;
}

void giveStore(PixelStore* store)
{
    const std::shared_ptr<SlotOwner> owner = std::move(store->slotOwner);
    const unsigned slot = store->slot;
    store->own.reset();
    store->data = nullptr;
    store->capacity = 0;
    store->borrowed = false;
    poolOf<PixelStore>().give(store);
    if (owner != nullptr) {
        owner->releaseSlot(slot);
    }
}

} // namespace

PixelShare PixelShare::borrowed(std::uint8_t* data, std::size_t capacity)
{
    PixelStore* store = takeStore(data, capacity);
    store->borrowed = true;
    return PixelShare(store);
}

PixelShare PixelShare::allocated(std::size_t capacity)
{
    auto memory = std::make_unique<std::uint8_t[]>(capacity);
    PixelStore* store = takeStore(memory.get(), capacity);
    store->own = std::move(memory);
    return PixelShare(store);
}

PixelShare PixelShare::lent(std::uint8_t* data, std::size_t capacity,
                            std::shared_ptr<SlotOwner> owner, unsigned slot)
{
    PixelStore* store = takeStore(data, capacity);
    store->slotOwner = std::move(owner);
    store->slot = slot;
    return PixelShare(store);
}

PixelShare::PixelShare(const PixelShare& other) : store_(other.store_)
{
    if (store_ != nullptr) {
        store_->users.fetch_add(1, std::memory_order_relaxed);
    }
}

PixelShare::~PixelShare()
{
    // The release orders this share's accesses before the last one's reuse of the memory.
    if (store_ != nullptr && store_->users.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        giveStore(store_);
    }
}

bool PixelShare::isBorrowed() const
{
    return store_ != nullptr && store_->borrowed;
}

bool PixelShare::isOwnAlone() const
{
    return store_ != nullptr && store_->own != nullptr &&
           store_->users.load(std::memory_order_acquire) == 1;
}

} // namespace fcsim
