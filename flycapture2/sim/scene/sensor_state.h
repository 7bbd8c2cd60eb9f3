// What a camera has set when it takes a frame, as far as the picture shows it.
#ifndef FCSIM_SENSOR_STATE_H
#define FCSIM_SENSOR_STATE_H

#include <cstdint>
#include <memory>
#include <vector>

namespace fcsim {

/// Look-up tables, one for each channel. Never changed once frames may use them: a frame in flight
/// keeps the tables that it was exposed with.
struct SensorLut {
    unsigned inputBits = 9;  ///< 1 to 16: so many top bits of a level choose the entry
    unsigned outputBits = 9; ///< 1 to 16: entries have so many bits
    /// Red, green, blue; at least one, and none is empty. Pictures without colour and RAW ones go
    /// through the first, which also serves colours that have none of their own. Levels beyond the
    /// end of a table take its last entry.
    std::vector<std::vector<std::uint16_t>> channels;
};

/// Raw values of SHARPNESS and WHITE_BALANCE that leave the picture as it is.
constexpr unsigned kNeutralSharpness = 1024;
constexpr unsigned kNeutralWhiteBalance = 512;

/// What one frame is taken with. Features that are switched off have their neutral value, which is
/// the default of each. Cheap to copy.
struct SensorState {
    float shutterUs = 8000;                 ///< exposure in microseconds, 0 or more
    float gainDb = 0;                       ///< of the amplifier, decibels
    float brightnessPercent = 0;            ///< black level in percent of the largest level
    float gamma = 1;                        ///< above 0; above 1 lifts the shadows
    unsigned sharpness = kNeutralSharpness; ///< raw: softer below neutral, crisper above
    float saturationPercent = 100;          ///< 0 = grey
    float hueDegrees = 0;                   ///< turns red towards yellow
    unsigned whiteBalanceRed = kNeutralWhiteBalance;  ///< raw: factor in 512ths
    unsigned whiteBalanceBlue = kNeutralWhiteBalance; ///< raw: factor in 512ths
    std::shared_ptr<const SensorLut> lut;             ///< null = look-up table off

    bool operator==(const SensorState&) const = default;
};

} // namespace fcsim

#endif
