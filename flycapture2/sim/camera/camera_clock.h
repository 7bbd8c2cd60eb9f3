// The clock inside a camera and its 1394 cycle-time form.
#ifndef FCSIM_CAMERA_CLOCK_H
#define FCSIM_CAMERA_CLOCK_H

#include "description/bus_description.h"

#include <FlyCapture2.h>

#include <cstdint>

namespace fcsim {

/// A point in time in the form of the cycle-time register.
struct CycleTime {
    unsigned seconds = 0; ///< 0 to 127
    unsigned count = 0;   ///< 0 to 7999, 125 us each
    unsigned offset = 0;  ///< 0 to 3071, ticks of 24.576 MHz
};

/// The cycle time after `us` microseconds on a clock that starts again at 0 every `wrapSeconds`.
CycleTime cycleTimeOf(double us, unsigned wrapSeconds);
/// As the register at 0x1EA8 and the embedded time stamp carry it.
std::uint32_t packCycleTime(const CycleTime& time);
/// As images carry it. The fields of the PC's clock stay 0, as they do on Linux.
FlyCapture2::TimeStamp timeStampOf(const CycleTime& time);

/// Clock that starts at an offset, runs faster than the host's by its drift, and whose rate swings
/// about that.
class CameraClock {
public:
    explicit CameraClock(const ClockDescription& clock);

    /// What the clock shows when the host's clock, counted from the start, shows `hostUs`.
    CycleTime at(double hostUs) const;
    /// Jumps by `us`.
    void step(double us) { offsetUs_ += us; }
    /// Starts anew: it shows `offsetUs` when the host's clock shows `hostUs`.
    void restart(double hostUs, double offsetUs)
    {
        offsetUs_ = offsetUs - hostUs * rate_ - swungUs(hostUs);
    }
    /// How long `cameraUs` on this clock last on the host's, without the swing.
    double toHost(double cameraUs) const { return cameraUs / rate_; }

private:
    double swungUs(double hostUs) const;

    double offsetUs_;
    double rate_;
    double wander_;         ///< amplitude of the rate's swing
    double wanderPeriodUs_; ///< on the host's clock
    unsigned wrapSeconds_;
};

} // namespace fcsim

#endif
