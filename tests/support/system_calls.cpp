// The C library's functions that the plug-in uses, replaced: they follow the simulation's clock and
// write into the journal.
#include "system_calls.h"

#include "journal.h"
#include "sim_control.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <string>
#include <utility>

#include <sched.h>
#include <sys/time.h>
#include <syslog.h>
#include <unistd.h>

using kxtest::Kind;

namespace kxtest {

namespace {

std::atomic<unsigned> cpuQueries{0};
std::function<void()> syslogHook;

[[gnu::format(printf, 2, 0)]] void recordSyslog(int priority, const char* format, va_list arguments)
{
    if (syslogHook) {
        syslogHook();
    }
    char text[8192];
    std::vsnprintf(text, sizeof(text), format, arguments);
    std::string line = text;
    if (line.ends_with('\n')) {
        line.pop_back();
    } else {
        line += kNoLineEnd;
    }
    journal().add({Kind::log, format, std::move(line), priority});
}

} // namespace

unsigned takeCpuQueries()
{
    return cpuQueries.exchange(0);
}

void onSyslog(std::function<void()> hook)
{
    syslogHook = std::move(hook);
}

} // namespace kxtest

extern "C" {

int gettimeofday(struct timeval* __restrict time, void* __restrict /*zone*/) noexcept
{
    const std::uint64_t now = fcsim::nowUs();
    time->tv_sec = static_cast<time_t>(now / 1'000'000);
    time->tv_usec = static_cast<suseconds_t>(now % 1'000'000);
    return 0;
}

time_t time(time_t* seconds) noexcept
{
    const auto now = static_cast<time_t>(fcsim::nowUs() / 1'000'000);
    if (seconds != nullptr) {
        *seconds = now;
    }
    return now;
}

int usleep(useconds_t us)
{
    kxtest::journal().add({Kind::system, "usleep", std::to_string(us), 0});
    fcsim::advanceClock(us);
    return 0;
}

int sched_getcpu() noexcept
{
    ++kxtest::cpuQueries;
    return kxtest::kCpu;
}

void openlog(const char* identity, int options, int facility)
{
    kxtest::journal().add(
        {Kind::system, "openlog", kxtest::format("%s, %i, %i", identity, options, facility), 0});
}

void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    kxtest::recordSyslog(priority, format, arguments);
    va_end(arguments);
}

[[gnu::format(printf, 3, 4)]] void __syslog_chk(int priority, int /*flag*/, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    kxtest::recordSyslog(priority, format, arguments);
    va_end(arguments);
}
}
