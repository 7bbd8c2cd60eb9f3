// The parts of the test chart that stand still.
#ifndef FCSIM_SCENE_CHART_TARGETS_H
#define FCSIM_SCENE_CHART_TARGETS_H

#include "scene/scene_canvas.h"
#include "scene/scene_chart_layout.h"

#include <string>

namespace fcsim {

constexpr Colour kChartBackground = colour8(46, 50, 56);
constexpr Colour kChartInset = colour8(20, 22, 26);
constexpr Colour kChartLettering = colour8(236, 238, 240);
constexpr Colour kChartSignal = colour8(255, 176, 32);

/// Paints the targets and the empty panels of the moving parts; `title` goes to the top.
void paintChartTargets(Canvas& canvas, const ChartLayout& layout, const std::string& title);

} // namespace fcsim

#endif
