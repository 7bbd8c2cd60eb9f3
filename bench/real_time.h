// What the benchmarks of the control thread share: real-time threads like it, a load beside them,
// and what many times come to.
#ifndef KX_BENCH_REAL_TIME_H
#define KX_BENCH_REAL_TIME_H

#include <atomic>
#include <cstddef>
#include <functional>
#include <string_view>
#include <thread>
#include <vector>

#include <pthread.h>

namespace kxbench {

/// Whether the program was asked for a short form: that of ./dev bench --smoke.
bool isShortForm(int argc, char** argv);

/// Monotonic time in microseconds.
double nowUs();

/// Processor time that a thread has used, in microseconds. REQUIRES: it has not been joined.
double cpuUsOf(pthread_t thread);

/// Runs `body` on a thread of the control thread's policy and priority, and waits for its end.
/// False when such threads are not allowed: then nothing runs.
bool runRealTime(const std::function<void()>& body);

/// Two threads that copy memory from construction to destruction, each more than caches hold.
class CopyLoad {
public:
    CopyLoad();
    ~CopyLoad();
    CopyLoad(const CopyLoad&) = delete;
    CopyLoad& operator=(const CopyLoad&) = delete;

private:
    std::atomic<bool> stop_ = false;
    std::vector<std::thread> threads_;
};

/// Many times or differences of them, in microseconds.
class Times {
public:
    void add(double us) { times_.push_back(us); }
    void add(const Times& more);
    bool isEmpty() const { return times_.empty(); }
    /// Time that this share of them does not exceed; 0 = the shortest, 1 = the longest.
    /// REQUIRES: there is one.
    double quantile(double share) const;
    double median() const { return quantile(0.5); }
    /// How far each is from `middle`.
    Times distancesFrom(double middle) const;

private:
    std::vector<double> times_;
};

} // namespace kxbench

#endif
