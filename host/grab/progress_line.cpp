// One line about how a grab is getting on: frames, rate, losses, what waits to be written.
#include "grab/progress_line.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>

namespace kxhost {
namespace {

constexpr std::uint64_t kSecondUs = 1'000'000;

/// What is not as it should be, for the end of the line.
std::string troubles(const GrabCounts& counts, std::uint64_t nowUs)
{
    std::string text;
    if (const std::uint64_t failed = counts.missing; failed != 0) {
        text += "  " + std::to_string(failed) + " failed retrievals";
    }
    if (counts.away) {
        const std::uint64_t since = counts.lastUs;
        const std::uint64_t awayUs = std::max(nowUs, since) - since;
        text += "  camera away " + std::to_string(awayUs / kSecondUs) + " s";
    }
    return text;
}

} // namespace

std::string ProgressLine::text(const ExportTotals& exported, std::uint64_t nowUs)
{
    const std::uint64_t retrieved = counts_.retrieved;
    if (retrieved == 0) {
        lastUs_ = nowUs;
        return counts_.capturing ? "capturing" : "waiting for a camera";
    }
    const double rate = static_cast<double>(retrieved - lastRetrieved_) *
                        static_cast<double>(kSecondUs) / static_cast<double>(nowUs - lastUs_);
    lastRetrieved_ = retrieved;
    lastUs_ = nowUs;
    const std::uint64_t queued = exported.accepted - exported.written - exported.failed;
    const std::uint64_t lost = counts_.lost + exported.failed;
    const std::string of = frames_ == 0 ? "" : " of " + std::to_string(frames_);
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(),
                  "%" PRIu64 "%s frames  %.1f fps  %" PRIu64 " lost  %" PRIu64 " queued",
                  counts_.exported.load(), of.c_str(), rate, lost, queued);
    return text.data() + troubles(counts_, nowUs);
}

} // namespace kxhost
