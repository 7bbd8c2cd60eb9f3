// Look-up tables from files: text, or 16-bit binary.
//
// A file whose name ends in .bin, .raw or .u16 holds 512 values of 16 bits, little endian, and
// nothing else (1024 bytes). Every other file is text: 512 whole numbers parted by blanks, line
// ends, commas or semicolons; a # begins a comment that goes to the end of its line.
#ifndef KXHOST_LUT_FILE_H
#define KXHOST_LUT_FILE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

/// Reads the table in the file `path`, whose values may have `bits` bits (1 to 16). Returns an
/// empty text, or what is wrong beginning with the place ("table.txt:17: ..."); `entries` changes
/// only when nothing is.
std::string readLutFile(const std::string& path, unsigned bits,
                        std::vector<std::uint16_t>& entries);

/// What is wrong with entry `index` (counted from 0) that is written as `value`.
std::string badLutEntry(std::size_t index, std::string_view value, unsigned bits);

} // namespace kxhost

#endif
