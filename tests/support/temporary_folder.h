// A folder for one test, removed with all that is in it.
#ifndef KX_TEST_TEMPORARY_FOLDER_H
#define KX_TEST_TEMPORARY_FOLDER_H

#include <filesystem>
#include <string>
#include <vector>

namespace kxtest {

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    /// Path of `name` within the folder.
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    /// Names in the folder, hidden ones too, sorted.
    std::vector<std::string> names() const;

private:
    std::filesystem::path path_;
};

/// Whole content of a file; empty when it cannot be read.
std::string readText(const std::filesystem::path& path);
/// Its lines without their newlines. A last line without newline is kept as it is.
std::vector<std::string> readLines(const std::filesystem::path& path);
void writeText(const std::filesystem::path& path, const std::string& text);

} // namespace kxtest

#endif
