// A small picture of a frame, to be shown to people.
#ifndef KXHOST_PREVIEW_H
#define KXHOST_PREVIEW_H

#include "picture/picture.h"
#include "picture/picture_codec.h"

#include <cstdint>
#include <vector>

namespace kxhost {

/// Shrinks frames; keeps its working memory from one to the next. One object per thread.
class PreviewMaker {
public:
    /// Makes `out` an 8-bit picture, grey or RGB, of `pictureBytes(codec, width, height)` bytes,
    /// whose longer side has `longest` pixels, or as many as the frame when that is smaller. Each
    /// of its pixels is the rounded mean of those that it covers; of a frame that is much larger,
    /// some lines are left out, so that the time it takes does not grow with the frame's height.
    /// REQUIRES: a width, a height and `longest` of at least 1.
    void make(const Codec& codec, std::uint32_t width, std::uint32_t height,
              const std::uint8_t* pixels, std::uint32_t longest, Picture& out);

private:
    void begin(Picture& out);
    void add(std::uint32_t firstLine, std::uint32_t height, const Picture& out);
    void end(Picture& out) const;

    Picture strip_;                       ///< two decoded lines: a Bayer mosaic needs pairs
    std::vector<std::uint64_t> sums_;     ///< for each sample of the preview
    std::vector<std::uint32_t> lines_;    ///< of the frame that went into each line
    std::vector<std::uint32_t> columns_;  ///< of the frame that go into each column
    std::vector<std::uint32_t> columnOf_; ///< where each column of the frame goes
};

} // namespace kxhost

#endif
