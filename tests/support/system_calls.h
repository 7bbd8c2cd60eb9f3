// The C library's functions that the plug-in uses, replaced by the test executable's own.
//
// gettimeofday and time follow the simulation's clock; usleep moves it (and is recorded), and
// a thread can be cancelled in it; openlog and syslog write into the journal; sched_getcpu answers
// `kCpu` and is counted. Real-time threads are not created, or as ordinary ones: then all usleep
// really waits, for a part of its time, and that of such a thread neither moves the clock nor is
// recorded. Where the other threads sleep they wait for it to have slept as long, or to have ended:
// a real-time thread is never late, however busy the machine is.
//
// REQUIRES: the simulation's clock is driven by hand.
#ifndef KX_TEST_SYSTEM_CALLS_H
#define KX_TEST_SYSTEM_CALLS_H

#include <functional>

namespace kxtest {

/// The processor that the plug-in is told it runs on.
inline constexpr int kCpu = 5;

/// How often the processor was asked for since the last call.
unsigned takeCpuQueries();

/// What becomes of real-time threads that the plug-in creates; `PluginTest` starts with `refused`.
/// Both are recorded as "pthread_create" with the scheduling that was asked for.
enum class RealTime { refused, granted };
void setRealTime(RealTime answer);

/// What a real-time thread calls that is to get stuck: sleeps until it is cancelled. The others do
/// not wait for it then.
void getStuck();

/// How many real-time threads have not ended yet.
int realTimeThreads();

/// Called at the begin of each usleep, with whether it is that of a real-time thread; null =
/// nothing. REQUIRES: there is no such thread.
void onUsleep(std::function<void(bool realTime)> hook);

/// Called before each line that goes to the system log; null = nothing.
void onSyslog(std::function<void()> hook);

} // namespace kxtest

#endif
