// What the process holds: threads, descriptors, heap.
#ifndef KX_TEST_PROCESS_RESOURCES_H
#define KX_TEST_PROCESS_RESOURCES_H

#include <cstddef>

namespace kxtest {

struct ProcessResources {
    std::size_t threads = 0;
    std::size_t descriptors = 0;
    std::size_t heapBytes = 0; ///< in use; 0 under a sanitizer, which keeps an account of its own
};

ProcessResources processResources();

/// How often a test that is made for long runs repeats itself: `usual`, or what the environment
/// says in KX_TEST_SESSIONS.
unsigned sessionsToRun(unsigned usual);

} // namespace kxtest

#endif
