// What a camera's metering sees: the mean level of a region before gamma and look-up table.
#include "scene/metering.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace fcsim {

namespace {

constexpr int kColumns = 64; ///< even: the points of a row alternate between both tile columns
constexpr int kRows = 48;

using Points = std::array<std::array<Level, kColumns>, 3>;

/// A place within cell `index` of the `count` that a length is divided into. It wanders from cell
/// to cell (by the golden section), so that no pattern of the scene runs along with the grid, and
/// is even in even cells, so that both halves of a colour tile have their share.
int placeInCell(int index, int count, int length, int phase)
{
    const double wander = 0.6180339887498949 * (index + phase);
    const double part = wander - static_cast<int>(wander);
    const int place = static_cast<int>((index + part) * length / count);
    return std::min((place & ~1) | (index & 1), length - 1);
}

/// The light at the points of row `y`, read into `points`.
RowView gather(const Canvas& light, const Rect& region, int y, int phase, Points& points)
{
    const RowView whole = light.row(region.x, y, region.width);
    RowView row{whole.space, kColumns, {}};
    for (unsigned plane = 0; plane < planeCount(whole.space); ++plane) {
        for (int column = 0; column < kColumns; ++column) {
            points[plane][static_cast<std::size_t>(column)] =
                whole.plane[plane][placeInCell(column, kColumns, region.width, phase)];
        }
        row.plane[plane] = points[plane].data();
    }
    return row;
}

} // namespace

double meteredMean(const Canvas& light, const Rect& region, SensorResponse& response)
{
    Points points{};
    double sum = 0;
    for (int index = 0; index < kRows; ++index) {
        const int y = region.y + placeInCell(index, kRows, region.height, 0);
        const RowView row = gather(light, region, y, 29 * index, points);
        const RowView grey = response.meter(row, region.x, y);
        sum += std::accumulate(grey.plane[0], grey.plane[0] + grey.width, 0.0);
    }
    return sum / (65535.0 * kColumns * kRows);
}

} // namespace fcsim
