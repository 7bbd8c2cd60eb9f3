// The newest entries of a log that never grows: a ring.
#ifndef FCSIM_NEWEST_RING_H
#define FCSIM_NEWEST_RING_H

#include <cstddef>
#include <vector>

namespace fcsim {

/// Keeps the newest `kCapacity` entries. Its memory is made in one go, by `prepare` or by the first
/// `add`. Not thread-safe.
template <class Entry, std::size_t kCapacity>
class NewestRing {
public:
    /// Makes the memory, once; after it `add` allocates nothing.
    void prepare() { ring_.resize(kCapacity); }
    void add(const Entry& entry);
    /// All entries, oldest first, and forgets them.
    std::vector<Entry> take();

private:
    std::vector<Entry> ring_;
    std::size_t first_ = 0;
    std::size_t count_ = 0;
};

template <class Entry, std::size_t kCapacity>
void NewestRing<Entry, kCapacity>::add(const Entry& entry)
{
    prepare();
    ring_[(first_ + count_) % kCapacity] = entry;
    if (count_ < kCapacity) {
        ++count_;
    } else {
        first_ = (first_ + 1) % kCapacity;
    }
}

template <class Entry, std::size_t kCapacity>
std::vector<Entry> NewestRing<Entry, kCapacity>::take()
{
    std::vector<Entry> all;
    all.reserve(count_);
    for (std::size_t i = 0; i < count_; ++i) {
        all.push_back(ring_[(first_ + i) % kCapacity]);
    }
    first_ = 0;
    count_ = 0;
    return all;
}

} // namespace fcsim

#endif
