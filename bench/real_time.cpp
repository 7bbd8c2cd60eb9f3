// What the benchmarks of the control thread share: real-time threads like it, a load beside them,
// and what many times come to.
#include "real_time.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>

#include <sched.h>

namespace kxbench {

namespace {

constexpr int kPriority = 98;
constexpr std::size_t kCopyBytes = std::size_t{64} << 20U;

double microseconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) * 1e-3;
}

void* runBody(void* body)
{
    (*static_cast<const std::function<void()>*>(body))();
    return nullptr;
}

void copyUntil(const std::atomic<bool>& stop)
{
    std::vector<unsigned char> from(kCopyBytes, 1);
    std::vector<unsigned char> to(kCopyBytes);
    while (!stop) {
        std::memcpy(to.data(), from.data(), kCopyBytes);
        ++from[to[kCopyBytes - 1]]; // or the copies might be left out
    }
}

} // namespace

bool isShortForm(int argc, char** argv)
{
    return argc > 1 && std::string_view(argv[1]).starts_with("--benchmark_min_time");
}

double nowUs()
{
    return microseconds(CLOCK_MONOTONIC);
}

double cpuUsOf(pthread_t thread)
{
    clockid_t clock = {};
    return pthread_getcpuclockid(thread, &clock) == 0 ? microseconds(clock) : 0;
}

bool runRealTime(const std::function<void()>& body)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    sched_param parameters = {};
    parameters.sched_priority = kPriority;
    pthread_attr_setschedpolicy(&attributes, SCHED_FIFO);
    pthread_attr_setinheritsched(&attributes, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedparam(&attributes, &parameters);
    pthread_t thread = {};
    void* const argument = const_cast<std::function<void()>*>(&body);
    const bool created = pthread_create(&thread, &attributes, runBody, argument) == 0;
    pthread_attr_destroy(&attributes);
    if (created) {
        pthread_join(thread, nullptr);
    }
    return created;
}

CopyLoad::CopyLoad()
{
    for (int thread = 0; thread < 2; ++thread) {
        threads_.emplace_back([this] { copyUntil(stop_); });
    }
}

CopyLoad::~CopyLoad()
{
    stop_ = true;
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

void Times::add(const Times& more)
{
    times_.insert(times_.end(), more.times_.begin(), more.times_.end());
}

double Times::quantile(double share) const
{
    std::vector<double> sorted = times_;
    std::sort(sorted.begin(), sorted.end());
    const auto last = static_cast<double>(sorted.size() - 1);
    return sorted[static_cast<std::size_t>(std::ceil(share * last))];
}

Times Times::distancesFrom(double middle) const
{
    Times distances;
    for (const double time : times_) {
        distances.add(std::abs(time - middle));
    }
    return distances;
}

} // namespace kxbench
