// The C library's functions that the plug-in uses, replaced: they follow the simulation's clock and
// write into the journal.
#include "system_calls.h"

#include "control/sim_control.h"
#include "journal.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>
#include <utility>

#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>
#include <sys/time.h>
#include <syslog.h>
#include <unistd.h>

using kxtest::Kind;

namespace kxtest {

namespace {

std::atomic<unsigned> cpuQueries{0};
std::function<void()> syslogHook;
std::function<void(bool)> usleepHook;
std::atomic<bool> grantRealTime{false};
/// Real-time threads that have not ended yet, and whether this is one of them.
std::atomic<int> liveRealTimeThreads{0};
thread_local bool isRealTime = false;
/// How long real-time threads have slept so far, and whether one is stuck.
std::atomic<std::uint64_t> realTimeSleptUs{0};
std::atomic<bool> isStuck{false};

using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

/// What a thread is to run.
struct Job {
    void* (*body)(void*);
    void* argument;
};

/// Counts a thread until it returns or is cancelled.
struct Counted {
    ~Counted()
    {
        isStuck = false;
        --liveRealTimeThreads;
    }
};

void* runRealTime(void* job)
{
    const Counted counted;
    isRealTime = true;
    const std::unique_ptr<Job> own(static_cast<Job*>(job));
    return own->body(own->argument);
}

bool isRealTimeRequest(const pthread_attr_t* attributes)
{
    int policy = SCHED_OTHER;
    return attributes != nullptr && pthread_attr_getschedpolicy(attributes, &policy) == 0 &&
           policy == SCHED_FIFO;
}

void recordRequest(const pthread_attr_t* attributes)
{
    int inherit = 0;
    sched_param parameters = {};
    pthread_attr_getinheritsched(attributes, &inherit);
    pthread_attr_getschedparam(attributes, &parameters);
    journal().add({Kind::system, "pthread_create",
                   format("SCHED_FIFO %i, %s", parameters.sched_priority,
                          inherit == PTHREAD_EXPLICIT_SCHED ? "explicit" : "inherited"),
                   0});
}

int createRealTime(Create create, pthread_t* thread, const pthread_attr_t* attributes, Job job)
{
    recordRequest(attributes);
    if (!grantRealTime) {
        return EPERM;
    }
    ++liveRealTimeThreads;
    return create(thread, nullptr, runRealTime, new Job(job));
}

/// Part of its time that usleep really waits for while there is a real-time thread.
constexpr long kSleepPart = 20;

/// Lets the other threads go on meanwhile. May be cancelled.
void waitForPart(useconds_t us)
{
    const timespec time = {0, static_cast<long>(us) * 1000 / kSleepPart};
    nanosleep(&time, nullptr);
}

void sleepAsRealTime(useconds_t us)
{
    waitForPart(us);
    realTimeSleptUs += us;
}

/// Until the real-time thread has slept as long.
void sleepBesideRealTime(useconds_t us)
{
    const std::uint64_t end = realTimeSleptUs + us;
    do {
        waitForPart(us);
    } while (liveRealTimeThreads > 0 && realTimeSleptUs < end && !isStuck);
}

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

void setRealTime(RealTime answer)
{
    grantRealTime = answer == RealTime::granted;
}

void getStuck()
{
    isStuck = true;
    for (;;) {
        pause();
    }
}

int realTimeThreads()
{
    return liveRealTimeThreads;
}

void onUsleep(std::function<void(bool realTime)> hook)
{
    usleepHook = std::move(hook);
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
    if (kxtest::usleepHook) {
        kxtest::usleepHook(kxtest::isRealTime);
    }
    if (kxtest::isRealTime) {
        kxtest::sleepAsRealTime(us);
        return 0;
    }
    if (kxtest::liveRealTimeThreads > 0) {
        kxtest::sleepBesideRealTime(us);
    }
    pthread_testcancel();
    kxtest::journal().add({Kind::system, "usleep", std::to_string(us), 0});
    fcsim::advanceClock(us);
    return 0;
}

int sched_getcpu() noexcept
{
    ++kxtest::cpuQueries;
    return kxtest::kCpu;
}

int pthread_create(pthread_t* __restrict thread, const pthread_attr_t* __restrict attributes,
                   void* (*body)(void*), void* __restrict argument) noexcept
{
    static const auto create = reinterpret_cast<kxtest::Create>(dlsym(RTLD_NEXT, "pthread_create"));
    if (!kxtest::isRealTimeRequest(attributes)) {
        return create(thread, attributes, body, argument);
    }
    return kxtest::createRealTime(create, thread, attributes, {body, argument});
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
