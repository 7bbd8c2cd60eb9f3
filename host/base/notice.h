// What kxhost tells its user while it runs.
#ifndef KXHOST_NOTICE_H
#define KXHOST_NOTICE_H

#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

/// Writes one sentence to standard error, in place of a progress line that stands there. Any
/// thread.
void complain(const std::string& sentence);

/// A sentence that was told.
struct Notice {
    std::uint64_t number = 0; ///< from 1
    std::uint64_t timeUs = 0; ///< since 1970
    std::string sentence;
};

/// The latest of them, the newest last. Any thread.
std::vector<Notice> latestNotices();

} // namespace kxhost

#endif
