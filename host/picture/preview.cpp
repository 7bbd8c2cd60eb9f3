// A small picture of a frame, to be shown to people.
#include "picture/preview.h"

#include "picture/picture_decode.h"

#include <algorithm>
#include <cstring>

namespace kxhost {
namespace {

constexpr std::uint32_t kStripLines = 2;
/// Lines of the preview take no more strips than this, or up to twice as many.
constexpr std::uint32_t kStripsPerLine = 4;

/// `size` in proportion, rounded and at least 1.
std::uint32_t scaled(std::uint32_t size, std::uint32_t longest, std::uint32_t longer)
{
    const std::uint64_t rounded = (std::uint64_t{size} * longest + longer / 2) / longer;
    return std::max(static_cast<std::uint32_t>(rounded), 1U);
}

std::uint32_t sampleAt(const Picture& picture, std::size_t index)
{
    if (picture.bitDepth == 8) {
        return picture.bytes[index];
    }
    std::uint16_t sample = 0;
    std::memcpy(&sample, picture.bytes.data() + index * 2, sizeof sample);
    return sample;
}

/// The place in the preview of a place in the frame.
std::uint32_t cell(std::uint32_t at, std::uint32_t size, std::uint32_t cells)
{
    return static_cast<std::uint32_t>(std::uint64_t{at} * cells / size);
}

} // namespace

/// Adds the pixels of the strip to the sums of those that cover them.
void PreviewMaker::add(std::uint32_t firstLine, std::uint32_t height, const Picture& out)
{
    std::size_t sample = 0;
    for (std::uint32_t y = 0; y < strip_.height; ++y) {
        const std::uint32_t line = cell(firstLine + y, height, out.height);
        ++lines_[line];
        std::uint64_t* const sums = sums_.data() + line * out.lineBytes();
        for (const std::uint32_t column : columnOf_) {
            for (std::uint32_t channel = 0; channel < out.channels; ++channel, ++sample) {
                sums[column * out.channels + channel] += sampleAt(strip_, sample);
            }
        }
    }
}

/// Shapes the preview as its width and height and the first strip say, and begins to count.
void PreviewMaker::begin(Picture& out)
{
    out.channels = strip_.channels;
    out.bitDepth = out.significantBits = 8;
    out.bytes.resize(out.lineBytes() * out.height);
    sums_.assign(out.bytes.size(), 0);
    lines_.assign(out.height, 0);
    columns_.assign(out.width, 0);
    columnOf_.resize(strip_.width);
    for (std::uint32_t x = 0; x < strip_.width; ++x) {
        columnOf_[x] = cell(x, strip_.width, out.width);
        ++columns_[columnOf_[x]];
    }
}

void PreviewMaker::end(Picture& out) const
{
    const unsigned surplus = strip_.bitDepth - 8;
    std::size_t sample = 0;
    for (const std::uint32_t lines : lines_) {
        for (const std::uint32_t columns : columns_) {
            const std::uint64_t count = std::uint64_t{lines} * columns;
            for (std::uint32_t channel = 0; channel < out.channels; ++channel, ++sample) {
                const std::uint64_t mean = (sums_[sample] + count / 2) / count;
                out.bytes[sample] = static_cast<std::uint8_t>(mean >> surplus);
            }
        }
    }
}

void PreviewMaker::make(const Codec& codec, std::uint32_t width, std::uint32_t height,
                        const std::uint8_t* pixels, std::uint32_t longest, Picture& out)
{
    const std::uint32_t longer = std::max(width, height);
    const std::uint32_t most = std::min(longest, longer);
    out.width = scaled(width, most, longer);
    out.height = scaled(height, most, longer);
    const std::uint32_t strips = (height + kStripLines - 1) / kStripLines;
    const std::uint32_t step = std::max(strips / (out.height * kStripsPerLine), 1U);
    for (std::uint32_t strip = 0; strip < strips; strip += step) {
        const std::uint32_t first = strip * kStripLines;
        decode(codec, width, std::min(kStripLines, height - first),
               pixels + first * lineBytes(codec, width), BayerPicture::kColour, strip_);
        if (strip == 0) {
            begin(out);
        }
        add(first, height, out);
    }
    end(out);
}

} // namespace kxhost
