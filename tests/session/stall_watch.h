// Tells whether the machine stood still while a test ran.
#ifndef KX_TEST_STALL_WATCH_H
#define KX_TEST_STALL_WATCH_H

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace kxtest {

/// A thread per processor, of the priority of the plug-in's control thread, that wants to run each
/// millisecond. What keeps it from that (a virtual machine whose host is busy) keeps every other
/// thread, too: what a program then does too late is not its fault. Needs the right to that
/// priority.
class StallWatch {
public:
    StallWatch();
    ~StallWatch();
    StallWatch(const StallWatch&) = delete;
    StallWatch& operator=(const StallWatch&) = delete;

    /// The longest time so far that a processor ran nothing of what it was to run.
    std::chrono::microseconds longest() const;

private:
    void watch(unsigned processor);

    std::atomic<bool> ends_{false};
    std::atomic<std::chrono::microseconds::rep> longestUs_{0};
    std::vector<std::thread> threads_;
};

} // namespace kxtest

#endif
