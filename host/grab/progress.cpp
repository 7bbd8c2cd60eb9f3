// The line that shows how a grab is getting on.
#include "grab/progress.h"

#include "grab/services.h"

#include <cstdio>

#include <unistd.h>

namespace kxhost {
namespace {

constexpr std::uint64_t kSecondUs = 1000000;
constexpr std::uint64_t kTerminalUs = kSecondUs;
constexpr std::uint64_t kElsewhereUs = 5 * kSecondUs;

} // namespace

Progress::Progress(const GrabCounts& counts, std::uint32_t frames, bool silent)
    : silent_(silent), terminal_(isatty(STDERR_FILENO) != 0), startUs_(steadyUs()),
      nextUs_(startUs_ + kTerminalUs), line_(counts, frames, startUs_)
{}

Progress::~Progress()
{
    if (shown_ && terminal_) {
        std::fputc('\n', stderr);
    }
}

void Progress::show(const ExportTotals& exported)
{
    const std::uint64_t now = steadyUs();
    if (silent_ || now < nextUs_) {
        return;
    }
    nextUs_ = now + (terminal_ ? kTerminalUs : kElsewhereUs);
    const std::string text = line_.text(exported, now);
    std::fprintf(stderr, terminal_ ? "\r%6.1f s  %s\033[K" : "%6.1f s  %s\n",
                 static_cast<double>(now - startUs_) / kSecondUs, text.c_str());
    shown_ = true;
}

} // namespace kxhost
