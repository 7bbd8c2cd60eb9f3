// The simulation's clock: the host's time of day, or one that is moved by hand.
#include "base/sim_clock.h"

#include "control/sim_control.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

namespace fcsim {

namespace {

std::atomic<bool> manual{false};
std::atomic<std::uint64_t> manualUs{0};
std::atomic<std::uint64_t> epochUs{0};

} // namespace

std::uint64_t nowUs()
{
    if (manual.load(std::memory_order_acquire)) {
        return manualUs.load(std::memory_order_acquire);
    }
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(sinceEpoch).count());
}

void useManualClock(std::uint64_t startUs)
{
    manualUs.store(startUs, std::memory_order_release);
    manual.store(true, std::memory_order_release);
    restartCameraClocks();
}

void advanceClock(std::uint64_t us)
{
    manualUs.fetch_add(us, std::memory_order_acq_rel);
}

void useHostClock()
{
    manual.store(false, std::memory_order_release);
    restartCameraClocks();
}

bool clockIsManual()
{
    return manual.load(std::memory_order_acquire);
}

void moveClockTo(std::uint64_t us)
{
    std::uint64_t current = manualUs.load(std::memory_order_acquire);
    while (current < us &&
           !manualUs.compare_exchange_weak(current, us, std::memory_order_acq_rel)) {
    }
}

void passTime(std::uint64_t us)
{
    if (us == 0) {
        return;
    }
    if (clockIsManual()) {
        advanceClock(us);
        return;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(us));
}

std::uint64_t clockEpochUs()
{
    return epochUs.load(std::memory_order_acquire);
}

std::uint64_t wallTime(double hostUs)
{
    return clockEpochUs() + static_cast<std::uint64_t>(std::llround(hostUs));
}

void restartCameraClocks()
{
    epochUs.store(nowUs(), std::memory_order_release);
}

} // namespace fcsim
