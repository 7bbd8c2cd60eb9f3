// Bytes as text in base 64, as RFC 4648 has it.
#include "report/base64.h"

#include <algorithm>
#include <string_view>

namespace kxhost {

std::string base64(std::span<const std::uint8_t> bytes)
{
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t given = std::min<std::size_t>(bytes.size() - at, 3);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            group = (group << 8U) | (i < given ? bytes[at + i] : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            text += i <= given ? kDigits[(group >> (18U - 6U * i)) & 0x3FU] : '=';
        }
    }
    return text;
}

} // namespace kxhost
