// The simulation's clock: the host's time of day, or one that is moved by hand.
#ifndef FCSIM_SIM_CLOCK_H
#define FCSIM_SIM_CLOCK_H

#include <cstdint>

namespace fcsim {

/// True while the clock is driven by hand. Thread-safe, as all functions here.
bool clockIsManual();
/// Moves the hand-driven clock to `us`; it never goes back. REQUIRES: `clockIsManual()`.
void moveClockTo(std::uint64_t us);
/// Lets `us` microseconds pass: sleeps, or moves the hand-driven clock.
void passTime(std::uint64_t us);

/// When the camera clocks showed their offset: the last time that a bus was loaded or the kind of
/// clock was changed.
std::uint64_t clockEpochUs();
/// The simulation's time when the camera clocks' epoch is `hostUs` microseconds ago.
std::uint64_t wallTime(double hostUs);
/// Makes now that moment.
void restartCameraClocks();

} // namespace fcsim

#endif
