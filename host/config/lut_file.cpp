// Look-up tables from files.
#include "config/lut_file.h"

#include "config/settings.h"
#include "config/toml_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace kxhost {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBinaryBytes = kLutEntries * 2;
/// No table needs so much; what has more was named by mistake.
constexpr std::uintmax_t kMostBytes = 1U << 20;

bool isBinaryName(const std::string& path)
{
    std::string suffix = fs::path(path).extension().string();
    std::ranges::transform(suffix, suffix.begin(), [](unsigned char letter) {
        return static_cast<char>(std::tolower(letter));
    });
    constexpr std::array<std::string_view, 3> kBinary = {".bin", ".raw", ".u16"};
    return std::ranges::find(kBinary, suffix) != kBinary.end();
}

/// Reads the whole file; returns what is wrong.
std::string load(const std::string& path, std::string& content)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::is_directory(status)) {
        return path + ": is a folder";
    }
    if (!fs::exists(status)) {
        return path + ": does not exist";
    }
    if (!fs::is_regular_file(status)) {
        return path + ": is no ordinary file";
    }
    if (fs::file_size(path, error) > kMostBytes) {
        return path + ": is too large for a table";
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return path + ": cannot be read";
    }
    content.assign(std::istreambuf_iterator<char>(file), {});
    return {};
}

std::string wrongCount(const std::string& path, std::size_t count)
{
    return path + ": holds " + std::to_string(count) + " values, a table has " +
           std::to_string(kLutEntries);
}

std::string parseBinary(const std::string& content, const std::string& path, unsigned bits,
                        std::vector<std::uint16_t>& entries)
{
    if (content.size() != kBinaryBytes) {
        return path + ": is " + std::to_string(content.size()) + " bytes long, a binary table " +
               std::to_string(kBinaryBytes);
    }
    for (std::size_t index = 0; index < kLutEntries; ++index) {
        const unsigned low = static_cast<unsigned char>(content[2 * index]);
        const unsigned high = static_cast<unsigned char>(content[2 * index + 1]);
        const unsigned value = low | high << 8U;
        if (value >> bits != 0) {
            return path + " at byte " + std::to_string(2 * index) + ": " +
                   badLutEntry(index, std::to_string(value), bits);
        }
        entries.push_back(static_cast<std::uint16_t>(value));
    }
    return {};
}

/// Appends the numbers of one line; returns what is wrong.
std::string parseLine(std::string_view line, unsigned bits, std::vector<std::uint16_t>& entries)
{
    constexpr std::string_view kBetween = " \t\r,;";
    line = line.substr(0, line.find('#'));
    std::size_t at = line.find_first_not_of(kBetween);
    while (at != std::string_view::npos) {
        const std::size_t end = std::min(line.find_first_of(kBetween, at), line.size());
        const std::string_view word = line.substr(at, end - at);
        if (entries.size() == kLutEntries) {
            return tomlText(word) + " is one value too many, a table has " +
                   std::to_string(kLutEntries);
        }
        std::uint16_t value = 0;
        const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error != std::errc{} || stop != word.data() + word.size() || value >> bits != 0) {
            return badLutEntry(entries.size(), word, bits);
        }
        entries.push_back(value);
        at = line.find_first_not_of(kBetween, end);
    }
    return {};
}

std::string parseText(std::string_view content, const std::string& path, unsigned bits,
                      std::vector<std::uint16_t>& entries)
{
    if (content.find('\0') != std::string_view::npos) {
        return path + ": holds no text; the name of a binary table ends in .bin, .raw or .u16";
    }
    for (std::size_t number = 1; !content.empty(); ++number) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        const std::string problem = parseLine(content.substr(0, end), bits, entries);
        if (!problem.empty()) {
            return std::string(path).append(":" + std::to_string(number)).append(": " + problem);
        }
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    return entries.size() == kLutEntries ? "" : wrongCount(path, entries.size());
}

} // namespace

std::string readLutFile(const std::string& path, unsigned bits, std::vector<std::uint16_t>& entries)
{
    std::string content;
    if (std::string problem = load(path, content); !problem.empty()) {
        return problem;
    }
    std::vector<std::uint16_t> read;
    std::string problem = isBinaryName(path) ? parseBinary(content, path, bits, read)
                                             : parseText(content, path, bits, read);
    if (problem.empty()) {
        entries = std::move(read);
    }
    return problem;
}

std::string badLutEntry(std::size_t index, std::string_view value, unsigned bits)
{
    constexpr std::size_t kMost = 20;
    const std::string shown =
        tomlText(value.substr(0, kMost)) + (value.size() > kMost ? "..." : "");
    return "entry " + std::to_string(index) + " is " + shown +
           ", expected a whole number from 0 to " + std::to_string((1U << bits) - 1) +
           " (lut.bits is " + std::to_string(bits) + ")";
}

} // namespace kxhost
