// Lettering for the test chart: capitals, digits and some signs of 5 x 7 dots.
#ifndef FCSIM_SCENE_GLYPHS_H
#define FCSIM_SCENE_GLYPHS_H

#include "scene/scene_canvas.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace fcsim {

constexpr int kGlyphWidth = 5;
constexpr int kGlyphHeight = 7;
constexpr int kGlyphAdvance = 6; ///< dots from one character to the next

/// Rows of a character's dots from the top, bit 4 the leftmost. Small letters look like capitals;
/// what is not known is blank.
const std::array<std::uint8_t, kGlyphHeight>& glyph(char character);

/// Writes `text` from (x, y), the upper left corner, in dots of `dot` x `dot` pixels that keep a
/// gap of `gap` pixels to their neighbours.
void drawText(Canvas& canvas, int x, int y, std::string_view text, int dot, int gap,
              const Colour& colour);

/// Width of `text` in dots, without the space behind its last character.
constexpr int textWidth(std::string_view text)
{
    return text.empty() ? 0 : static_cast<int>(text.size()) * kGlyphAdvance - 1;
}

} // namespace fcsim

#endif
