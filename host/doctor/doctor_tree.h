// The files in which Linux tells about itself, below a folder of one's choice.
#ifndef KXHOST_DOCTOR_TREE_H
#define KXHOST_DOCTOR_TREE_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

/// A number that a file holds.
struct FileNumber {
    enum class State {
        kThere,
        kAbsent,  ///< there is no such file
        kGarbled, ///< it cannot be read, or holds something else
    };
    State state = State::kAbsent;
    std::uint64_t value = 0; ///< valid when there
};

/// Reads only. Paths are written as on the running system, "/proc/self/status".
class Tree {
public:
    /// `root` is the folder that stands for "/"; empty = the running system.
    explicit Tree(std::string root = "") : root_(std::move(root)) {}

    std::filesystem::path at(std::string_view path) const;
    bool has(std::string_view path) const;
    /// Content of a file; nothing when it cannot be read.
    std::optional<std::string> text(std::string_view path) const;
    /// First line of a file; empty when there is none.
    std::string line(std::string_view path) const;
    FileNumber number(std::string_view path) const;
    /// Names in a folder, sorted; nothing when it cannot be read.
    std::optional<std::vector<std::string>> names(std::string_view path) const;
    /// What a symbolic link says; empty when it is none.
    std::string link(std::string_view path) const;

private:
    std::string root_;
};

/// The text as a decimal number, blanks around it allowed; nothing when it is another thing.
std::optional<std::uint64_t> wholeNumber(std::string_view text);

/// The lines of a text, without their ends.
std::vector<std::string> linesOf(const std::string& text);

} // namespace kxhost

#endif
