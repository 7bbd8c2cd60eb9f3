// The line that shows how a grab is getting on.
#include "progress.h"

#include "services.h"

#include <array>
#include <cinttypes>
#include <cstdio>

#include <unistd.h>

namespace kxhost {
namespace {

constexpr std::uint64_t kSecondUs = 1000000;
constexpr std::uint64_t kTerminalUs = kSecondUs;
constexpr std::uint64_t kElsewhereUs = 5 * kSecondUs;

} // namespace

Progress::Progress(const GrabCounts& counts, std::uint32_t frames, bool silent)
    : counts_(counts), frames_(frames), silent_(silent), terminal_(isatty(STDERR_FILENO) != 0),
      startUs_(steadyUs()), nextUs_(startUs_ + kTerminalUs), lastUs_(startUs_)
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
    const std::string text = line(exported);
    std::fprintf(stderr, terminal_ ? "\r%s\033[K" : "%s\n", text.c_str());
    shown_ = true;
}

std::string Progress::line(const ExportTotals& exported)
{
    const std::uint64_t now = steadyUs();
    const std::uint64_t retrieved = counts_.retrieved;
    const auto seconds = static_cast<double>(now - startUs_) / kSecondUs;
    std::array<char, 200> text{};
    if (retrieved == 0) {
        std::snprintf(text.data(), text.size(), "%6.1f s  %s", seconds,
                      counts_.capturing ? "capturing" : "waiting for a camera");
        return text.data();
    }
    const double rate = static_cast<double>(retrieved - lastRetrieved_) * kSecondUs /
                        static_cast<double>(now - lastUs_);
    lastRetrieved_ = retrieved;
    lastUs_ = now;
    const std::uint64_t queued = exported.accepted - exported.written - exported.failed;
    const std::uint64_t lost = counts_.missing + counts_.gaps + counts_.refused + exported.failed +
                               exported.refusedFull + exported.refusedFailed;
    const std::string of = frames_ == 0 ? "" : " of " + std::to_string(frames_);
    std::snprintf(text.data(), text.size(),
                  "%6.1f s  %" PRIu64 "%s frames  %.1f fps  %" PRIu64 " lost  %" PRIu64 " queued",
                  seconds, counts_.exported.load(), of.c_str(), rate, lost, queued);
    return text.data();
}

} // namespace kxhost
