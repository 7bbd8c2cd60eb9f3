// The noise of a frame: normal deviates that are the same each time that they are asked for.
#ifndef FCSIM_SENSOR_NOISE_H
#define FCSIM_SENSOR_NOISE_H

#include <cstdint>

namespace fcsim {

/// Widest sensor that there is noise for, in pixels.
constexpr int kMaxNoiseWidth = 16384;

/// Deviates of one frame, a pure function of seed, frame number and position on the sensor.
///
/// They are rows cut at pseudo-random places from one long table, which is quick and looks no
/// different from deviates of their own. Thread-safe; the first use in a process fills the table.
class FrameNoise {
public:
    FrameNoise(std::uint64_t seed, std::uint64_t frame);

    /// Deviates with mean 0 and variance 1 for plane `plane` of row `y`, from pixel `x` up to the
    /// widest sensor's edge. Valid for ever. REQUIRES: 0 <= x < kMaxNoiseWidth, plane < 3.
    const float* row(unsigned plane, int x, int y) const;

private:
    const float* table_;
    std::uint64_t key_;
};

} // namespace fcsim

#endif
