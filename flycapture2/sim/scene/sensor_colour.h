// What a camera does to colours: white balance, saturation, hue.
#ifndef FCSIM_SENSOR_COLOUR_H
#define FCSIM_SENSOR_COLOUR_H

#include "scene/pixel_row.h"
#include "scene/sensor_state.h"

#include <array>

namespace fcsim {

/// Factors on red, green and blue. The state's values count in 512ths; green stays.
std::array<float, 3> balanceOf(const SensorState& state);

/// Multiplies pixels at even places by `even`, the others by `odd`, up to full scale. A plane of
/// one colour has the same factor at both.
void balanceRow(Level* levels, unsigned width, float even, float odd);

/// Turning and stretching of the plane of blueness and redness (Cb and Cr of BT.601) around grey.
struct ColourTurn {
    float along = 1;  ///< saturation times the cosine of the hue's angle
    float across = 0; ///< saturation times its sine
    bool neutral() const { return along == 1 && across == 0; }
};

ColourTurn colourTurnOf(const SensorState& state);

/// Turns the colours of an RGB row. Luma stays as far as no colour leaves its range.
void turnColours(Row& rgb, unsigned width, const ColourTurn& by);

} // namespace fcsim

#endif
