// What the calling thread has used so far: processor time, heap, memory pages.
#ifndef KX_BENCH_USAGE_H
#define KX_BENCH_USAGE_H

#include <cstdint>

namespace kxbench {

struct Usage {
    double cpuUs = 0;
    double wallUs = 0;
    std::uint64_t allocations = 0; ///< of the whole process: malloc, calloc, realloc and the like
    std::uint64_t pageFaults = 0;

    Usage operator-(const Usage& earlier) const;
};

Usage usageNow();

} // namespace kxbench

#endif
