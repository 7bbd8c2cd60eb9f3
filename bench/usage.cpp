// What the calling thread has used so far. The program's allocation functions count and pass on.
#include "usage.h"

#include <atomic>
#include <cstddef>
#include <ctime>

#include <sys/resource.h>

// The C library's own, under the names that it keeps for replacements like these.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);
}

namespace {

std::atomic<std::uint64_t> allocations = 0;

double microseconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) * 1e-3;
}

void count()
{
    allocations.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) void* malloc(std::size_t bytes)
{
    count();
    return __libc_malloc(bytes);
}

__attribute__((visibility("default"))) void* calloc(std::size_t number, std::size_t bytes)
{
    count();
    return __libc_calloc(number, bytes);
}

__attribute__((visibility("default"))) void* realloc(void* block, std::size_t bytes)
{
    count();
    return __libc_realloc(block, bytes);
}

__attribute__((visibility("default"))) void* aligned_alloc(std::size_t alignment, std::size_t bytes)
{
    count();
    return __libc_memalign(alignment, bytes);
}
}

namespace kxbench {

Usage Usage::operator-(const Usage& earlier) const
{
    return {cpuUs - earlier.cpuUs, wallUs - earlier.wallUs, allocations - earlier.allocations,
            pageFaults - earlier.pageFaults};
}

Usage usageNow()
{
    rusage resources = {};
    getrusage(RUSAGE_THREAD, &resources);
    return {microseconds(CLOCK_THREAD_CPUTIME_ID), microseconds(CLOCK_MONOTONIC),
            allocations.load(std::memory_order_relaxed),
            static_cast<std::uint64_t>(resources.ru_minflt + resources.ru_majflt)};
}

} // namespace kxbench
