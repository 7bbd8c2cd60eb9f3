// Text for HTML: what comes from outside must not be taken for markup.
#include "report/html_escape.h"

#include <cstddef>
#include <cstdint>

namespace kxhost {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD"; // U+FFFD

/// Bytes of the character that begins with `first`, and the smallest code point that may take so
/// many; 0 bytes = none begins so.
struct Form {
    std::size_t bytes = 0;
    std::uint32_t smallest = 0;
    std::uint32_t bits = 0; ///< of the code point, in the first byte
};

Form formOf(unsigned char first)
{
    if (first < 0x80U) {
        return {1, 0, first};
    }
    if ((first & 0xE0U) == 0xC0U) {
        return {2, 0x80, first & 0x1FU};
    }
    if ((first & 0xF0U) == 0xE0U) {
        return {3, 0x800, first & 0x0FU};
    }
    if ((first & 0xF8U) == 0xF0U) {
        return {4, 0x10000, first & 0x07U};
    }
    return {};
}

bool isAllowed(std::uint32_t point)
{
    constexpr std::uint32_t kLast = 0x10FFFF;
    const bool control =
        (point < 0x20U && point != '\t' && point != '\n') || (point >= 0x7FU && point < 0xA0U);
    const bool surrogate = point >= 0xD800U && point < 0xE000U;
    return !control && !surrogate && point <= kLast;
}

/// Bytes of the character at the start of the text; 0 = there is none.
std::size_t character(std::string_view text)
{
    const Form form = formOf(static_cast<unsigned char>(text.front()));
    if (form.bytes == 0 || form.bytes > text.size()) {
        return 0;
    }
    std::uint32_t point = form.bits;
    for (std::size_t i = 1; i < form.bytes; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0U) != 0x80U) {
            return 0;
        }
        point = (point << 6U) | (byte & 0x3FU);
    }
    return point >= form.smallest && isAllowed(point) ? form.bytes : 0;
}

/// What stands for a character of one byte; empty = itself.
std::string_view reference(char byte)
{
    switch (byte) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return {};
    }
}

} // namespace

std::string htmlEscape(std::string_view text)
{
    std::string html;
    html.reserve(text.size());
    while (!text.empty()) {
        const std::size_t bytes = character(text);
        const std::string_view other = bytes == 0 ? kReplacement : reference(text.front());
        html += other.empty() ? text.substr(0, bytes) : other;
        text.remove_prefix(bytes == 0 ? 1 : bytes);
    }
    return html;
}

} // namespace kxhost
