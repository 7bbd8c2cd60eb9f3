// How automatic shutter and gain answer to what the metering sees: arithmetic only.
#ifndef FCSIM_AUTO_EXPOSURE_H
#define FCSIM_AUTO_EXPOSURE_H

namespace fcsim {

/// From `min` to `max`, both included. REQUIRES: min <= max.
struct Span {
    double min = 0;
    double max = 0;
};

/// What a frame is exposed with.
struct Exposure {
    double shutterUs = 0;
    double gainDb = 0;
    bool operator==(const Exposure&) const = default;
};

/// What the camera may change to bring the picture to its target.
struct ExposureControl {
    bool shutter = false; ///< automatic
    bool gain = false;    ///< automatic
    Span shutterUs;       ///< of the automatic shutter
    Span gainDb;          ///< of the automatic gain
    double target = 0;    ///< mean level, above 0
};

/// Mean level, 0 to 1, that AUTO_EXPOSURE stands for at `ev`: 0.18 at 0 EV, twice as much for each
/// step more, at most 0.9, above which a picture is all white.
double targetLevel(double ev);

/// What the frame that follows is exposed with when one with `exposure` had the mean level `level`.
///
/// Half of what is missing is made good per frame, at most two stops, and nothing within 0.05 EV of
/// the target. Light is gained by the shutter first and then by the gain, and given up the other
/// way round. What is automatic ends inside its limits, what is not keeps its value.
Exposure nextExposure(const ExposureControl& control, const Exposure& exposure, double level);

} // namespace fcsim

#endif
