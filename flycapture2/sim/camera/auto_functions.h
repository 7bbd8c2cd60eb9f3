// The automatic functions of one camera: they look at its frames and move its properties.
#ifndef FCSIM_AUTO_FUNCTIONS_H
#define FCSIM_AUTO_FUNCTIONS_H

#include "camera/auto_exposure.h"
#include "camera/property_bank.h"
#include "camera/register_file.h"
#include "capture/frame_schedule.h"

namespace fcsim {

/// Automatic shutter and gain, continuous or started by one push. Not thread-safe.
class AutoFunctions {
public:
    /// Both stay where they are as long as this lives.
    AutoFunctions(PropertyBank& properties, RegisterFile& registers)
        : properties_(properties), registers_(registers)
    {}

    /// Puts the registers of the limits to all that the properties allow and 12 bits can say; they
    /// are present where the property is.
    void defineLimits();

    /// True while frames have to be metered.
    bool active() const;
    /// Moves the properties after a frame taken with `frame` that had the mean level `level`, 0 to
    /// 1. `longestUs`: the longest exposure that the frame rate leaves. A push ends when nothing
    /// moves any more. Returns whether anything moved.
    bool follow(const FrameSettings& frame, double level, double longestUs);

private:
    ExposureControl control(double longestUs) const;
    double targetEv() const;
    bool move(FlyCapture2::PropertyType type, double value);

    PropertyBank& properties_;
    RegisterFile& registers_;
};

} // namespace fcsim

#endif
