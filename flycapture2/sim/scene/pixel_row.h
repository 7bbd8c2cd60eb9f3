// One row of samples between decoding and packing, and the ways between its colour spaces.
//
// Levels are 16 bits wide and left-aligned: an 8-bit level v is v << 8, a 12-bit level v << 4.
//
// Colour follows BT.601 over the full range, in integers (r, g, b, y, u, v here 8 bits):
//   y = (77 r + 150 g + 29 b) >> 8
//   u = ((-43 r - 85 g + 128 b + 128) >> 8) + 128      limited to 0..255
//   v = ((128 r - 107 g - 21 b + 128) >> 8) + 128      limited to 0..255
//   r = y + ((359 (v - 128) + 128) >> 8)               limited to 0..255, as g and b
//   g = y - ((88 (u - 128) + 183 (v - 128) + 128) >> 8)
//   b = y + ((454 (u - 128) + 128) >> 8)
// Luma of 16-bit levels is the first line on all 16 bits.
#ifndef FCSIM_PIXEL_ROW_H
#define FCSIM_PIXEL_ROW_H

#include <array>
#include <cstdint>
#include <vector>

namespace fcsim {

using Level = std::uint16_t;

/// What the planes of a row mean.
enum class Space {
    grey, ///< plane 0 only
    rgb,
    yuv ///< U and V carry 128 << 8 where there is no colour
};

/// Number of planes that a row in `space` has.
constexpr unsigned planeCount(Space space)
{
    return space == Space::grey ? 1 : 3;
}

/// A row that somebody else owns.
struct RowView {
    Space space = Space::grey;
    unsigned width = 0;
    std::array<const Level*, 3> plane{}; ///< the first `planeCount(space)` are set
};

/// A row with memory of its own; keeps it when it gets narrower.
class Row {
public:
    /// Makes it `width` pixels in `space`, with unspecified levels.
    void reset(Space space, unsigned width);
    Level* plane(unsigned index) { return planes_[index].data(); }
    RowView view() const;

private:
    Space space_ = Space::grey;
    unsigned width_ = 0;
    std::array<std::vector<Level>, 3> planes_;
};

/// Luma of one pixel.
constexpr Level luma(Level red, Level green, Level blue)
{
    return static_cast<Level>((77U * red + 150U * green + 29U * blue) >> 8);
}

/// `row` in `space`: itself when it is there already, else converted in `scratch`, which must not
/// be where `row` lives.
RowView rowInSpace(const RowView& row, Space space, Row& scratch);

} // namespace fcsim

#endif
