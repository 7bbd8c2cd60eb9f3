// What the process holds: threads, descriptors, heap.
#include "process_resources.h"

#include <cstdlib>
#include <filesystem>
#include <iterator>

#include <malloc.h>

namespace kxtest {

namespace {

std::size_t entriesOf(const char* folder)
{
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

ProcessResources processResources()
{
    return {.threads = entriesOf("/proc/self/task"),
            .descriptors = entriesOf("/proc/self/fd"),
            .heapBytes = mallinfo2().uordblks};
}

unsigned sessionsToRun(unsigned usual)
{
    const char* const asked = std::getenv("KX_TEST_SESSIONS");
    return asked == nullptr ? usual : static_cast<unsigned>(std::strtoul(asked, nullptr, 10));
}

} // namespace kxtest
