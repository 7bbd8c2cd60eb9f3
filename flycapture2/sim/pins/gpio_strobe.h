// The strobes of a camera: one record for each GPIO pin, and what they do to a line.
#ifndef FCSIM_GPIO_STROBE_H
#define FCSIM_GPIO_STROBE_H

#include <FlyCapture2.h>

#include <array>
#include <cstdint>
#include <vector>

namespace fcsim {

/// Most pins that a camera can have.
inline constexpr unsigned kMostPins = 4;

/// The strobe of one pin as a frame meets it.
struct StrobeSetting {
    bool on = false;
    bool activeHigh = false;
    double delayUs = 0;    ///< from the start of the exposure
    double durationUs = 0; ///< 0: as long as the exposure
};

/// Strobes by pin.
using StrobeSettings = std::array<StrobeSetting, kMostPins>;

/// A pulse, in microseconds after the start of the exposure.
struct StrobeSpan {
    double startUs = 0;
    double endUs = 0;
};
StrobeSpan strobeSpan(const StrobeSetting& strobe, double exposureUs);

/// The strobe records behind GetStrobe and SetStrobe. Not thread-safe.
class StrobeUnit {
public:
    explicit StrobeUnit(unsigned pins) : records_(pins) {}

    FlyCapture2::StrobeInfo info(unsigned source) const;
    FlyCapture2::Error get(FlyCapture2::StrobeControl& control) const;
    /// Delay and duration end at what `info` says.
    FlyCapture2::Error set(const FlyCapture2::StrobeControl& control);
    StrobeSetting setting(unsigned pin) const;

private:
    FlyCapture2::Error check(unsigned source) const;

    std::vector<FlyCapture2::StrobeControl> records_; ///< by pin
};

} // namespace fcsim

#endif
