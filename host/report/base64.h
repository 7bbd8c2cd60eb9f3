// Bytes as text in base 64, as RFC 4648 has it.
#ifndef KXHOST_BASE64_H
#define KXHOST_BASE64_H

#include <cstdint>
#include <span>
#include <string>

namespace kxhost {

/// Padded, without line ends. Thread-safe.
std::string base64(std::span<const std::uint8_t> bytes);

} // namespace kxhost

#endif
