// Access to words that the grab thread and the control thread share: plain members, read and
// written without a race.
#ifndef KX_PG_SHARED_H
#define KX_PG_SHARED_H

#include <atomic>
#include <type_traits>

/// A word that stands for itself is read and written as it is; a flag that hands other words over
/// is raised after they were written, and looked at before they are read.
namespace KxPGrey::shared {

template <typename T>
T get(T& word)
{
    return std::atomic_ref<T>(word).load(std::memory_order_relaxed);
}

template <typename T>
void set(T& word, std::type_identity_t<T> value)
{
    std::atomic_ref<T>(word).store(value, std::memory_order_relaxed);
}

/// A flag's state; what was written before it was handed over can be read from here on.
template <typename T>
T look(T& flag)
{
    return std::atomic_ref<T>(flag).load(std::memory_order_acquire);
}

/// Changes a flag that hands over all that was written before.
template <typename T>
void handOver(T& flag, std::type_identity_t<T> state)
{
    std::atomic_ref<T>(flag).store(state, std::memory_order_release);
}

/// Changes a flag and looks at what it was, in one: whatever was handed over with it before can be
/// read, whatever is handed over later leaves it raised.
template <typename T>
T swap(T& flag, std::type_identity_t<T> state)
{
    return std::atomic_ref<T>(flag).exchange(state, std::memory_order_acq_rel);
}

} // namespace KxPGrey::shared

#endif
