// Files of the export: pictures that are whole or absent, and a file that grows by whole lines.
#include "base/output_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace kxhost {

namespace {

int openForWriting(const std::string& path)
{
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}

constexpr std::string_view kTemporaryBegin = ".";
constexpr std::string_view kTemporaryEnd = ".part";

/// "folder/.name.part": hidden, and on the same file system as the file it will become.
std::string temporaryName(const std::string& path)
{
    const std::filesystem::path final(path);
    return (final.parent_path() / std::string(kTemporaryBegin))
        .concat(final.filename().string())
        .concat(kTemporaryEnd)
        .string();
}

/// The name that a temporary file was to get; empty = it is none.
std::string finalName(const std::string& temporary)
{
    const std::size_t around = kTemporaryBegin.size() + kTemporaryEnd.size();
    const bool isTemporary = temporary.size() > around && temporary.starts_with(kTemporaryBegin) &&
                             temporary.ends_with(kTemporaryEnd);
    return isTemporary ? temporary.substr(kTemporaryBegin.size(), temporary.size() - around) : "";
}

/// Where the bytes meant for a path go.
struct Target {
    std::string path;
    bool isReplaced = true; ///< by a file with another name; otherwise it is opened as it is
};

/// Pipes, devices and the like are to stay what they are. Else what a link names is meant, and not
/// the link.
Target targetOf(const std::string& path)
{
    constexpr int kMostLinks = 40; // as the system has it
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        return {path, false};
    }
    std::filesystem::path real = path;
    for (int links = 0; links < kMostLinks && std::filesystem::is_symlink(real, ignored); ++links) {
        real = real.parent_path() / std::filesystem::read_symlink(real, ignored);
    }
    return {real.string(), true};
}

/// Of a pipe that somebody who has it, too, has set not to wait.
void waitForReader(int fd)
{
    pollfd ready{fd, POLLOUT, 0};
    ::poll(&ready, 1, -1);
}

} // namespace

std::string cannot(std::string_view what, const std::string& path, int code)
{
    return "Cannot " + std::string(what) + " " + path + ": " +
           std::generic_category().message(code) + ".";
}

int writeAll(int fd, const void* data, std::size_t size)
{
    const char* at = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t count = ::write(fd, at, size);
        if (count < 0 && errno == EAGAIN) {
            waitForReader(fd);
        } else if (count < 0 && errno != EINTR) {
            return errno;
        }
        if (count > 0) {
            at += count;
            size -= static_cast<std::size_t>(count);
        }
    }
    return 0;
}

std::string writeWholeFile(const std::string& path, std::span<const std::uint8_t> bytes)
{
    const Target target = targetOf(path);
    const std::string written = target.isReplaced ? temporaryName(target.path) : target.path;
    const int fd = openForWriting(written);
    if (fd < 0) {
        return cannot("write", path, errno);
    }
    int code = writeAll(fd, bytes.data(), bytes.size());
    if (::close(fd) != 0 && code == 0) {
        code = errno;
    }
    if (!target.isReplaced) {
        return code == 0 ? "" : cannot("write", path, code);
    }
    if (code == 0 && ::rename(written.c_str(), target.path.c_str()) != 0) {
        code = errno;
    }
    if (code != 0) {
        ::unlink(written.c_str());
        return cannot("write", path, code);
    }
    return "";
}

std::string whyNotWritable(const std::string& path)
{
    std::error_code code;
    if (std::filesystem::is_directory(path, code)) {
        return cannot("write", path, EISDIR);
    }
    const Target target = targetOf(path);
    if (!target.isReplaced) {
        // Not opened: a pipe would take that for what it waits for.
        return ::access(path.c_str(), W_OK) == 0 ? "" : cannot("write", path, errno);
    }
    const std::string temporary = temporaryName(target.path);
    const int fd = openForWriting(temporary);
    if (fd < 0) {
        return cannot("write", path, errno);
    }
    ::close(fd);
    ::unlink(temporary.c_str());
    return "";
}

void removeLeftovers(const std::string& folder,
                     const std::function<bool(const std::string& name)>& isOurs)
{
    std::error_code code;
    for (const auto& entry : std::filesystem::directory_iterator(folder, code)) {
        const std::string name = finalName(entry.path().filename().string());
        if (!name.empty() && isOurs(name)) {
            ::unlink(entry.path().c_str());
        }
    }
}

std::string prepareFolder(const std::string& folder)
{
    std::error_code code;
    std::filesystem::create_directories(folder, code);
    if (code) {
        return cannot("create the folder", folder, code.value());
    }
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        return cannot("write into the folder", folder, errno);
    }
    return "";
}

LineFile::~LineFile()
{
    static_cast<void>(close()); // who wants to hear of errors closes before
}

void LineFile::open(const std::string& path)
{
    static_cast<void>(close());
    path_ = path;
    length_ = 0;
}

std::string LineFile::append(std::string_view line)
{
    if (fd_ < 0) {
        fd_ = openForWriting(path_);
    }
    if (fd_ < 0) {
        return cannot("write", path_, errno);
    }
    const int code = writeAll(fd_, line.data(), line.size());
    if (code == 0) {
        length_ += line.size();
        return "";
    }
    // Nothing more can be done when taking back fails as well; the error is reported either way.
    [[maybe_unused]] const int cut = ::ftruncate(fd_, static_cast<off_t>(length_));
    return cannot("write", path_, code);
}

std::string LineFile::close()
{
    if (fd_ < 0) {
        return "";
    }
    const int fd = std::exchange(fd_, -1);
    return ::close(fd) == 0 ? "" : cannot("write", path_, errno);
}

} // namespace kxhost
