// Look-up tables: what the camera is given of a table of the host's or of one calculated from a
// frame.
//
// Each conversion is one loop of a fixed length without a branch: they run between two frames, and
// the compiler makes vectors of them.
#include "kx_pg_lut.h"

#include <algorithm>

namespace KxPGrey {

namespace {

constexpr unsigned int kCameraBits = 9;
/// Entries of a table that was calculated for 8-bit pixels.
constexpr std::size_t kByteEntries = 256;

/// A calculated value of 12 bits as one of 9 bits.
constexpr unsigned int roundToCamera(unsigned int value)
{
    return (value + 4U) >> 3U;
}

void scaleUp(const std::uint16_t* source, unsigned int shift, LutValues& values)
{
    for (std::size_t entry = 0; entry < kLutEntries; ++entry) {
        values[entry] = static_cast<unsigned int>(source[entry]) << shift;
    }
}

void scaleDown(const std::uint16_t* source, unsigned int shift, LutValues& values)
{
    const unsigned int half = 1U << (shift - 1U);
    for (std::size_t entry = 0; entry < kLutEntries; ++entry) {
        values[entry] = (source[entry] + half) >> shift;
    }
}

/// Doubles the number of entries; the last one has no successor but itself.
void interpolate(const std::uint16_t* source, LutValues& values)
{
    std::array<std::uint16_t, kByteEntries + 1> entries;
    std::copy_n(source, kByteEntries, entries.begin());
    entries.back() = source[kByteEntries - 1];
    for (std::size_t entry = 0; entry < kByteEntries; ++entry) {
        const unsigned int here = entries[entry];
        const unsigned int next = entries[entry + 1];
        values[2 * entry] = roundToCamera(here);
        values[2 * entry + 1] = roundToCamera((here + next) >> 1U);
    }
}

/// Takes every `step`th entry. Reading them one by one first leaves the rest to vectors.
void thinOut(const std::uint16_t* source, std::size_t step, LutValues& values)
{
    std::array<std::uint16_t, kLutEntries> taken;
    for (std::size_t entry = 0; entry < kLutEntries; ++entry) {
        taken[entry] = source[step * entry];
    }
    for (std::size_t entry = 0; entry < kLutEntries; ++entry) {
        values[entry] = roundToCamera(taken[entry]);
    }
}

} // namespace

void scaleLut(std::span<const std::uint16_t, kLutEntries> source, unsigned int bits,
              LutValues& values)
{
    // Further bits change nothing: all values have become 0.
    constexpr unsigned int kLargestShift = 31;
    if (bits <= kCameraBits) {
        scaleUp(source.data(), kCameraBits - bits, values);
    } else {
        scaleDown(source.data(), std::min(bits - kCameraBits, kLargestShift), values);
    }
}

void resampleLut(std::span<const std::uint16_t> source, LutValues& values)
{
    if (source.size() == kByteEntries) {
        interpolate(source.data(), values);
    } else {
        thinOut(source.data(), source.size() / kLutEntries, values);
    }
}

} // namespace KxPGrey
