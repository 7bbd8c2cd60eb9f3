// The C library's functions that the plug-in uses, replaced by the test executable's own.
//
// gettimeofday and time follow the simulation's clock; usleep moves it (and is recorded); openlog
// and syslog write into the journal; sched_getcpu answers `kCpu` and is counted.
// REQUIRES: the simulation's clock is driven by hand.
#ifndef KX_TEST_SYSTEM_CALLS_H
#define KX_TEST_SYSTEM_CALLS_H

#include <functional>

namespace kxtest {

/// The processor that the plug-in is told it runs on.
inline constexpr int kCpu = 5;

/// How often the processor was asked for since the last call.
unsigned takeCpuQueries();

/// Called before each line that goes to the system log; null = nothing.
void onSyslog(std::function<void()> hook);

} // namespace kxtest

#endif
