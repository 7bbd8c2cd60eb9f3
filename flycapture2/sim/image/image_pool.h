// Objects that are used again instead of being allocated anew.
#ifndef FCSIM_IMAGE_POOL_H
#define FCSIM_IMAGE_POOL_H

#include <memory>
#include <mutex>
#include <vector>

namespace fcsim {

/// A pool that grows to the largest number of objects in use at a time. Thread-safe.
template <class Object>
class Pool {
public:
    /// An object as it was given back, or a new one.
    Object* take()
    {
        const std::lock_guard lock(mutex_);
        if (free_.empty()) {
            all_.push_back(std::make_unique<Object>());
            free_.reserve(all_.size()); // so that giving back never allocates
            return all_.back().get();
        }
        Object* object = free_.back();
        free_.pop_back();
        return object;
    }

    void give(Object* object) noexcept
    {
        const std::lock_guard lock(mutex_);
        free_.push_back(object);
    }

private:
    std::mutex mutex_;
    std::vector<std::unique_ptr<Object>> all_;
    std::vector<Object*> free_;
};

/// The process's pool of such objects. Lives for ever: images may outlast static destructors.
template <class Object>
Pool<Object>& poolOf()
{
    static auto& pool = *new Pool<Object>;
    return pool;
}

} // namespace fcsim

#endif
