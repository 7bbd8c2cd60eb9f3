// Texts in the spelling of TOML.
#include "config/toml_text.h"

#include <array>
#include <cstdio>

namespace kxhost {
namespace {

/// Control characters in the spelling of TOML, all others as they are.
std::string withoutControl(char character)
{
    switch (character) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        break;
    }
    const auto code = static_cast<unsigned char>(character);
    constexpr unsigned char kDelete = 0x7F;
    if (code >= ' ' && code != kDelete) {
        return {character};
    }
    std::array<char, 8> digits{};
    const int length = std::snprintf(digits.data(), digits.size(), "\\u%04X", unsigned{code});
    return {digits.data(), static_cast<std::size_t>(length)};
}

std::string escaped(char character)
{
    const bool isSpecial = character == '"' || character == '\\';
    return (isSpecial ? "\\" : "") + withoutControl(character);
}

} // namespace

std::string tomlText(std::string_view text)
{
    std::string result = "\"";
    for (const char character : text) {
        result += escaped(character);
    }
    return result + "\"";
}

std::string printable(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        result += withoutControl(character);
    }
    return result;
}

std::string onOneLine(const std::string& text)
{
    std::string line;
    for (const char character : text) {
        const bool isBlank = character == ' ' || character == '\n';
        if (!isBlank || !line.ends_with(' ')) {
            line += isBlank ? ' ' : character;
        }
    }
    constexpr std::size_t kMost = 60;
    return line.size() <= kMost ? line : line.substr(0, kMost) + "...";
}

} // namespace kxhost
