// Files of the export: pictures that are whole or absent, and a file that grows by whole lines.
#ifndef KXHOST_OUTPUT_FILE_H
#define KXHOST_OUTPUT_FILE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace kxhost {

/// Writes `bytes` under a temporary name in the same folder and then renames it to `path`, so that
/// nobody ever sees half a file. A file that stood there is replaced, one that a symbolic link
/// names as well. What is no file (a pipe, a device) is opened and written, which waits for the
/// reader of a pipe. Returns an empty text, or one sentence that names the file and the system's
/// reason; nothing is left behind then. Thread-safe.
std::string writeWholeFile(const std::string& path, std::span<const std::uint8_t> bytes);

/// Why `writeWholeFile` could not write there now, one sentence; empty = it could. Leaves nothing
/// behind.
std::string whyNotWritable(const std::string& path);

/// Removes what processes that were killed inside of `writeWholeFile` have left in `folder`: the
/// temporary files for which `isOurs` says yes to the name of the file that they were to become.
/// One that cannot be removed is left. REQUIRES: nobody else writes such files there.
void removeLeftovers(const std::string& folder,
                     const std::function<bool(const std::string& name)>& isOurs);

/// Makes `folder` (and what is above it) and checks that files can be created in it. Returns an
/// empty text or the reason.
std::string prepareFolder(const std::string& folder);

/// Writes everything. Returns 0 or the error number.
int writeAll(int descriptor, const void* data, std::size_t size);

/// "Cannot <what> <path>: <the system's reason for `code`>."
std::string cannot(std::string_view what, const std::string& path, int code);

/// A text file that only ever holds whole lines. One thread at a time.
class LineFile {
public:
    LineFile() = default;
    ~LineFile();
    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    /// Names the file. The first line creates it, or empties what is there: a grab without frames
    /// leaves the metadata of an earlier one alone.
    void open(const std::string& path);
    bool isOpen() const { return !path_.empty(); }
    /// Appends `line` (which brings its newline). A line that does not fit is taken back whole.
    /// REQUIRES: open. Returns an empty text or the reason.
    std::string append(std::string_view line);
    /// Closes the file; the next line opens it anew. Returns an empty text, or why what was written
    /// may not be there.
    std::string close();

private:
    std::string path_;
    int fd_ = -1;
    std::size_t length_ = 0;
};

} // namespace kxhost

#endif
