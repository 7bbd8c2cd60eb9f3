// Small pictures of a grab, evenly chosen from all of its frames.
#ifndef KXHOST_CONTACT_SHEET_H
#define KXHOST_CONTACT_SHEET_H

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace kxhost {

/// A frame as a small PNG.
struct Thumbnail {
    std::uint64_t number = 0;      ///< of the frame, from 1
    std::uint64_t timestampUs = 0; ///< since 1970
    std::uint64_t steadyUs = 0;    ///< arrival
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> png;
};

/// Keeps each n-th frame; n doubles whenever there are too many, so that they stay few and even
/// however long the grab is. Thread-safe.
class ContactSheet {
public:
    static constexpr std::size_t kShown = 24; ///< and the last one
    static constexpr std::size_t kKept = 2 * kShown;

    /// Whether a picture of this frame would be kept now.
    bool wants(std::uint64_t number) const;
    /// In any order. One that is not wanted any more is dropped.
    void add(Thumbnail thumbnail);
    /// The last frame, which is shown in any case.
    void addLast(Thumbnail thumbnail);
    /// Forgets a frame, of which it showed that it is none of the run's.
    void remove(std::uint64_t number);
    /// By number: the first, others at the same distance each, and the last.
    std::vector<Thumbnail> chosen() const;

private:
    void thin();

    mutable std::mutex mutex_;
    std::uint64_t every_ = 1;
    std::vector<Thumbnail> kept_;
};

} // namespace kxhost

#endif
