// Histogram equalisation: how often each grey level occurs in a frame, and the look-up table that
// spreads the levels out.
#include "grab/equalisation.h"

#include "config/lut_curve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace kxhost {
namespace {

constexpr unsigned kMostLevelBits = 12;
using Histogram = std::array<std::uint32_t, std::size_t{1} << kMostLevelBits>;

using LineCounter = void (*)(const std::uint8_t* line, std::uint32_t width, Histogram& histogram);

void count8(const std::uint8_t* line, std::uint32_t width, Histogram& histogram)
{
    for (std::uint32_t x = 0; x < width; ++x) {
        ++histogram[line[x]];
    }
}

/// Two pixels in three bytes.
void count12Packed(const std::uint8_t* line, std::uint32_t width, Histogram& histogram)
{
    for (std::uint32_t x = 0; x < width; x += 2, line += 3) {
        ++histogram[(unsigned{line[0]} << 4U) | (line[1] & 0x0FU)];
        if (x + 1 < width) {
            ++histogram[(unsigned{line[2]} << 4U) | (line[1] >> 4U)];
        }
    }
}

/// 12 bits at the top of 16.
void count16(const std::uint8_t* line, std::uint32_t width, Histogram& histogram)
{
    for (std::uint32_t x = 0; x < width; ++x, line += 2) {
        ++histogram[(unsigned{line[1]} << 4U) | (line[0] >> 4U)];
    }
}

/// U Y Y V Y Y: each group of three bytes is one of colour and two of luminance.
void countLuma411(const std::uint8_t* line, std::uint32_t width, Histogram& histogram)
{
    for (std::uint32_t x = 0; x < width; ++x) {
        ++histogram[line[std::size_t{x} / 2 * 3 + 1 + x % 2]];
    }
}

/// U Y V Y.
void countLuma422(const std::uint8_t* line, std::uint32_t width, Histogram& histogram)
{
    for (std::uint32_t x = 0; x < width; ++x) {
        ++histogram[line[std::size_t{x} * 2 + 1]];
    }
}

/// How to count the levels of one kind of pixel, and how many bits a level has.
struct Counter {
    LineCounter line;
    unsigned levelBits;
};

Counter counterOf(PixelKind kind)
{
    switch (kind) {
    case PixelKind::kMono12Packed:
        return {count12Packed, 12};
    case PixelKind::kMono16:
        return {count16, 12};
    case PixelKind::kYuv411:
        return {countLuma411, 8};
    case PixelKind::kYuv422:
        return {countLuma422, 8};
    case PixelKind::kMono8:
    case PixelKind::kBayer8:
        break;
    }
    return {count8, 8};
}

/// The distribution at the resolution of the table: how often the level of each entry occurs.
class Levels {
public:
    Levels(std::span<const std::uint32_t> cdf, std::size_t entries)
        : cdf_(cdf), step_(std::max<std::size_t>(cdf.size() / entries, 1)),
          repeat_(std::max<std::size_t>(entries / cdf.size(), 1)), entries_(entries)
    {}

    std::size_t entries() const { return entries_; }
    double pixels() const { return cdf_.back(); }
    double frequency(std::size_t entry) const { return upTo(entry + 1) - upTo(entry); }

private:
    /// Pixels below this entry; in proportion where the table is finer than the distribution.
    double upTo(std::size_t entry) const
    {
        const std::size_t level = entry * step_ / repeat_;
        const double below = level == 0 ? 0 : cdf_[level - 1];
        const auto part = static_cast<double>(entry % repeat_) / static_cast<double>(repeat_);
        return part == 0 ? below : below + part * (cdf_[level] - below);
    }

    std::span<const std::uint32_t> cdf_;
    std::size_t step_;   ///< levels for each entry
    std::size_t repeat_; ///< entries for each level
    std::size_t entries_;
};

/// What every frequency must be raised by, so that the limited ones add up to all pixels again.
double raiseUnderLimit(const Levels& levels, double limit)
{
    constexpr double kEnough = 1e-9;
    double raise = 0;
    for (std::size_t pass = 0; pass < levels.entries(); ++pass) {
        double sum = 0;
        std::size_t open = 0;
        for (std::size_t entry = 0; entry < levels.entries(); ++entry) {
            const double raised = levels.frequency(entry) + raise;
            sum += std::min(raised, limit);
            open += raised < limit ? 1U : 0U;
        }
        const double missing = levels.pixels() - sum;
        if (open == 0 || missing <= kEnough * levels.pixels()) {
            break;
        }
        raise += missing / static_cast<double>(open);
    }
    return raise;
}

void straightLine(unsigned top, std::span<std::uint16_t> table)
{
    const auto last = static_cast<double>(table.size() - 1);
    for (std::size_t entry = 0; entry < table.size(); ++entry) {
        table[entry] = static_cast<std::uint16_t>(
            std::lround(static_cast<double>(entry) * static_cast<double>(top) / last));
    }
}

} // namespace

void cumulate(const Codec& codec, const void* pixels, std::uint32_t width, std::uint32_t height,
              std::uint32_t pitch, std::span<std::uint32_t> cdf)
{
    const Counter counter = counterOf(codec.kind);
    Histogram histogram{};
    const auto* line = static_cast<const std::uint8_t*>(pixels);
    for (std::uint32_t y = 0; y < height; ++y, line += lineBytes(codec, pitch)) {
        counter.line(line, width, histogram);
    }
    const std::size_t each = cdf.size() >> counter.levelBits;
    std::uint32_t below = 0;
    for (std::size_t entry = 0; entry < cdf.size(); ++entry) {
        const std::uint32_t here = histogram[entry / each];
        const std::uint64_t part = std::uint64_t{here} * (entry % each + 1) / each;
        cdf[entry] = below + static_cast<std::uint32_t>(part);
        if (entry % each == each - 1) {
            below += here;
        }
    }
}

void equalise(std::span<const std::uint32_t> cdf, double clipLimit, unsigned valueBits,
              std::span<std::uint16_t> table)
{
    const unsigned top = largestLutValue(valueBits);
    const Levels levels(cdf, table.size());
    const double limit = clipLimit * levels.pixels() / static_cast<double>(table.size());
    const double raise = raiseUnderLimit(levels, limit);
    const auto limited = [&](std::size_t entry) {
        return std::min(levels.frequency(entry) + raise, limit);
    };
    double first = 0; // the lowest level that occurs becomes 0
    for (std::size_t entry = 0; entry < table.size() && first <= 0; ++entry) {
        first = limited(entry);
    }
    const double rest = levels.pixels() - first;
    if (rest <= 0) {
        straightLine(top, table);
        return;
    }
    double sum = 0;
    for (std::size_t entry = 0; entry < table.size(); ++entry) {
        sum += limited(entry);
        const double share = std::clamp((sum - first) / rest, 0.0, 1.0);
        table[entry] = static_cast<std::uint16_t>(std::lround(share * static_cast<double>(top)));
    }
}

} // namespace kxhost
