// The files in which Linux tells about itself, below a folder of one's choice.
#include "doctor/doctor_tree.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <sstream>

namespace kxhost {

std::filesystem::path Tree::at(std::string_view path) const
{
    return root_ + std::string(path);
}

bool Tree::has(std::string_view path) const
{
    std::error_code ignored;
    return std::filesystem::exists(at(path), ignored);
}

std::optional<std::string> Tree::text(std::string_view path) const
{
    std::ifstream file(at(path));
    std::string text;
    std::array<char, 4096> piece{};
    while (file.read(piece.data(), piece.size()) || file.gcount() > 0) {
        text.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    }
    // Some files of the kernel can be opened, but not be read.
    return file.is_open() && !file.bad() ? std::optional(text) : std::nullopt;
}

std::string Tree::line(std::string_view path) const
{
    const std::string all = text(path).value_or("");
    return all.substr(0, all.find('\n'));
}

FileNumber Tree::number(std::string_view path) const
{
    if (!has(path)) {
        return {FileNumber::State::kAbsent, 0};
    }
    const std::optional<std::uint64_t> value = wholeNumber(text(path).value_or(""));
    return value ? FileNumber{FileNumber::State::kThere, *value}
                 : FileNumber{FileNumber::State::kGarbled, 0};
}

std::optional<std::vector<std::string>> Tree::names(std::string_view path) const
{
    std::error_code error;
    std::filesystem::directory_iterator entries(at(path), error);
    if (error) {
        return std::nullopt;
    }
    std::vector<std::string> names;
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        names.push_back(entries->path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

std::string Tree::link(std::string_view path) const
{
    std::error_code ignored;
    return std::filesystem::read_symlink(at(path), ignored).string();
}

std::optional<std::uint64_t> wholeNumber(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    text = text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
    std::uint64_t value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && stop == text.data() + text.size() ? std::optional(value)
                                                                     : std::nullopt;
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

} // namespace kxhost
