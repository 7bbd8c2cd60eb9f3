// The last step before a camera sends its levels: gamma, then the look-up table.
#ifndef FCSIM_SENSOR_TONE_H
#define FCSIM_SENSOR_TONE_H

#include "scene/pixel_row.h"
#include "scene/sensor_state.h"

#include <array>
#include <memory>

namespace fcsim {

/// Levels in, levels out. Gamma is out = in ^ (1 / gamma) of full scale. The look-up table takes
/// the top bits of a level (`inputBits`) and gives the top bits of another (`outputBits`), the rest
/// is 0; without a table levels keep their depth. Not thread-safe.
class ToneCurve {
public:
    /// Takes over gamma and look-up table; quick when they are what they were. No allocation.
    void set(const SensorState& state);
    /// True when levels stay as they are.
    bool straight() const { return gamma_ == 1 && lut_ == nullptr; }
    /// Sends `width` levels of colour plane `plane` through the curve, by steps of 12 bits.
    void apply(unsigned plane, Level* levels, unsigned width) const;

private:
    using Table = std::array<Level, 4096>;

    void fill();

    float gamma_ = 1;
    std::shared_ptr<const SensorLut> lut_;
    std::array<Table, 3> tables_{}; ///< by colour plane; unused while the curve is straight
};

} // namespace fcsim

#endif
