// Look-up tables: what the camera is given of a table of the host's or of one calculated from a
// frame.
#ifndef KX_PG_LUT_H
#define KX_PG_LUT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace KxPGrey {

/// Entries of a camera's table: 9 bits in, 9 bits out.
inline constexpr std::size_t kLutEntries = 512;
/// A camera's table, in the form in which the SDK takes it.
using LutValues = std::array<unsigned int, kLutEntries>;

/// Scales a configured table, whose values have `bits` bits (1 to 16), to 9 bits; what is lost
/// rounds half up, so that the largest values of more than 9 bits become 512.
void scaleLut(std::span<const std::uint16_t, kLutEntries> source, unsigned int bits,
              LutValues& values);

/// Resamples a calculated table, whose values have 12 bits, to the camera's entries, and rounds the
/// values half up to 9 bits. REQUIRES: `source` has 256 entries, between which is interpolated, or
/// a multiple of 512, of which every 8th (of 4096) is taken.
void resampleLut(std::span<const std::uint16_t> source, LutValues& values);

} // namespace KxPGrey

#endif
