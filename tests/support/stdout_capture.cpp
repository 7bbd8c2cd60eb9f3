// Catches what goes to standard output.
#include "stdout_capture.h"

#include <array>
#include <cstdio>
#include <sstream>

#include <sys/mman.h>
#include <unistd.h>

namespace kxtest {

StdoutCapture::StdoutCapture()
    : saved_(dup(STDOUT_FILENO)), memory_(memfd_create("stdout", MFD_CLOEXEC))
{
    std::fflush(stdout);
    dup2(memory_, STDOUT_FILENO);
}

StdoutCapture::~StdoutCapture()
{
    stop();
}

std::vector<std::string> StdoutCapture::lines()
{
    std::istringstream text(stop());
    std::vector<std::string> found;
    for (std::string line; std::getline(text, line);) {
        found.push_back(line);
    }
    return found;
}

std::size_t StdoutCapture::size() const
{
    return static_cast<std::size_t>(lseek(memory_, 0, SEEK_END));
}

std::string StdoutCapture::stop()
{
    std::string text;
    if (saved_ < 0) {
        return text;
    }
    std::fflush(stdout);
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
    saved_ = -1;
    lseek(memory_, 0, SEEK_SET);
    std::array<char, 65536> block{};
    for (ssize_t got = 0; (got = read(memory_, block.data(), block.size())) > 0;) {
        text.append(block.data(), static_cast<std::size_t>(got));
    }
    close(memory_);
    return text;
}

} // namespace kxtest
