// Tells whether the machine stood still while a test ran.
#include "stall_watch.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <sched.h>

namespace kxtest {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kPause = std::chrono::milliseconds(1);
constexpr int kPriority = 98; // as the plug-in's control thread has it, so it is allowed

cpu_set_t processors()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    EXPECT_EQ(sched_getaffinity(0, sizeof set, &set), 0);
    return set;
}

/// The calling thread runs there alone, before all others.
void rule(unsigned processor)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor, &set);
    EXPECT_EQ(pthread_setaffinity_np(pthread_self(), sizeof set, &set), 0);
    const sched_param parameters{kPriority};
    EXPECT_EQ(pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters), 0);
}

} // namespace

StallWatch::StallWatch()
{
    const cpu_set_t allowed = processors();
    for (unsigned processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (CPU_ISSET(processor, &allowed)) {
            threads_.emplace_back([this, processor] { watch(processor); });
        }
    }
}

StallWatch::~StallWatch()
{
    ends_ = true;
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

std::chrono::microseconds StallWatch::longest() const
{
    return std::chrono::microseconds(longestUs_.load());
}

void StallWatch::watch(unsigned processor)
{
    rule(processor);
    while (!ends_) {
        const Clock::time_point due = Clock::now() + kPause;
        std::this_thread::sleep_until(due);
        const auto late =
            std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - due).count();
        auto longest = longestUs_.load();
        while (late > longest && !longestUs_.compare_exchange_weak(longest, late)) {
        }
    }
}

} // namespace kxtest
