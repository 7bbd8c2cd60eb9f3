// One object on its way from one thread to another, without a lock.
#ifndef KXHOST_HANDOVER_SLOT_H
#define KXHOST_HANDOVER_SLOT_H

#include <atomic>
#include <memory>

namespace kxhost {

/// Holds one object, the latest. Any thread may put, withdraw and take; whoever takes it owns it.
/// No lock: the object is complete before the pointer is handed over (release), and is read behind
/// that (acquire).
template <typename T>
class HandoverSlot {
public:
    HandoverSlot() = default;
    ~HandoverSlot() { take(); }
    HandoverSlot(const HandoverSlot&) = delete;
    HandoverSlot& operator=(const HandoverSlot&) = delete;

    /// Replaces what is there and has not been taken.
    void put(std::unique_ptr<T> object) { own(object_.exchange(object.release())); }
    /// Null = there is none, which is one load.
    std::unique_ptr<T> take()
    {
        return object_.load(std::memory_order_relaxed) == nullptr ? nullptr
                                                                  : own(object_.exchange(nullptr));
    }

private:
    static std::unique_ptr<T> own(T* object) { return std::unique_ptr<T>(object); }

    std::atomic<T*> object_ = nullptr;
};

} // namespace kxhost

#endif
