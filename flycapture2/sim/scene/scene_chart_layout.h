// Where the parts of the test chart sit on a sensor of any size.
#ifndef FCSIM_SCENE_CHART_LAYOUT_H
#define FCSIM_SCENE_CHART_LAYOUT_H

#include "scene/scene_canvas.h"

#include <string_view>

namespace fcsim {

/// Digits of the frame number shown.
constexpr int kNumberDigits = 7;
/// Squares of the frame number's code.
constexpr int kCodeBits = 32;
/// The longest text in the exposure line.
constexpr std::string_view kExposureSample = "SHUTTER 99999.999 MS  GAIN -99.99 DB";

/// Places for a sensor of the given size. The drawing board is 320 x 256 units, stretched to the
/// sensor; letters and lines keep whole pixels.
struct ChartLayout {
    ChartLayout(int width, int height);

    Rect sensor;
    int dot;       ///< pixels per dot of small lettering
    int numberDot; ///< pixels per dot of the frame number
    Rect title;
    Rect number;   ///< moving: digits, and the code below them
    Rect code;     ///< the 32 squares of the frame number; inside `number`
    Rect exposure; ///< moving: shutter and gain
    Rect star;
    Rect clock; ///< moving: the hand; square
    Rect patches;
    Rect gratings;
    Rect ramp;
    Rect steps;
    Rect track; ///< moving: bar and ball
    Rect footer;
};

} // namespace fcsim

#endif
