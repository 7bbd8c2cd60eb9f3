// Whether this process may run the real-time thread that the I/O lines need.
#include "grab/real_time.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kxhost {
namespace {

/// Lets the calling thread, and those that it starts, have no real-time priority.
void dropTheRight()
{
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, 2> sets = {};
    ASSERT_EQ(syscall(SYS_capget, &header, sets.data()), 0) << std::strerror(errno);
    sets[0].effective &= ~(1U << CAP_SYS_NICE);
    ASSERT_EQ(syscall(SYS_capset, &header, sets.data()), 0) << std::strerror(errno);
}

/// What is said without the right to real time.
std::string troubleWithoutRight(const Settings& settings)
{
    rlimit before = {};
    getrlimit(RLIMIT_RTPRIO, &before);
    const rlimit none = {0, before.rlim_max};
    setrlimit(RLIMIT_RTPRIO, &none);
    std::string trouble;
    std::thread([&] {
        dropTheRight();
        trouble = realTimeTrouble(settings);
    }).join();
    setrlimit(RLIMIT_RTPRIO, &before);
    return trouble;
}

TEST(RealTime, WhoMayNotHaveItIsTold)
{
    Settings settings;
    settings.iobox.resize(1);
    EXPECT_EQ(troubleWithoutRight(settings),
              "The settings of [[iobox]] will have no effect: this process may not run a thread "
              "with real-time priority 98 (Operation not permitted). \"kxhost doctor\" says how "
              "to give it the limit rtprio 98; the grab goes on without.");
}

TEST(RealTime, WithoutLinesNobodyNeedsIt)
{
    EXPECT_EQ(troubleWithoutRight(Settings()), "");
}

} // namespace
} // namespace kxhost
