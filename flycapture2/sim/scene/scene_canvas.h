// A surface to paint scenes on, and its primitives.
#ifndef FCSIM_SCENE_CANVAS_H
#define FCSIM_SCENE_CANVAS_H

#include "scene/pixel_row.h"

#include <array>
#include <vector>

namespace fcsim {

/// Levels of a colour, 16 bits.
struct Colour {
    Level red = 0;
    Level green = 0;
    Level blue = 0;
};

/// A colour by its 8-bit values.
constexpr Colour colour8(unsigned red, unsigned green, unsigned blue)
{
    return {static_cast<Level>(red << 8), static_cast<Level>(green << 8),
            static_cast<Level>(blue << 8)};
}

constexpr Colour grey(Level level)
{
    return {level, level, level};
}

/// A region in pixels; may lie partly outside of a canvas.
struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    int right() const { return x + width; }
    int bottom() const { return y + height; }
    bool empty() const { return width <= 0 || height <= 0; }
};

/// The part that two regions share; empty when there is none.
Rect intersection(const Rect& first, const Rect& second);

/// A surface of grey levels, or of colours. Painting colours on a grey one paints their luma.
/// Whatever lies outside is cut off.
class Canvas {
public:
    Canvas(int width, int height, Space space);

    Space space() const { return space_; }
    Rect bounds() const { return {0, 0, width_, height_}; }
    /// `width` pixels from (x, y). REQUIRES: inside.
    RowView row(int x, int y, int width) const;
    /// Memory of a plane's row `y`, for filling it from elsewhere. REQUIRES: inside.
    Level* plane(unsigned index, int y);

    void fill(const Rect& area, const Colour& colour);
    /// Covers a pixel by `coverage` (0 to 1) with `colour`.
    void blend(int x, int y, const Colour& colour, float coverage);
    /// A disc with a smooth edge.
    void disc(float centreX, float centreY, float radius, const Colour& colour);
    /// A line with round ends and smooth edges.
    void line(float fromX, float fromY, float toX, float toY, float thickness,
              const Colour& colour);

private:
    std::array<Level, 3> levels(const Colour& colour) const;
    std::size_t index(int x, int y) const;

    int width_;
    int height_;
    Space space_;
    std::array<std::vector<Level>, 3> planes_;
};

/// A region of a canvas as it was, to bring it back.
class SavedArea {
public:
    /// Remembers the part of `area` that lies on the canvas.
    SavedArea(const Canvas& canvas, const Rect& area);
    const Rect& area() const { return area_; }
    void restore(Canvas& canvas) const;

private:
    Rect area_;
    Canvas copy_;
};

} // namespace fcsim

#endif
