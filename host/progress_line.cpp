// One line about how a grab is getting on: frames, rate, losses, what waits to be written.
#include "progress_line.h"

#include <array>
#include <cinttypes>
#include <cstdio>

namespace kxhost {

std::string ProgressLine::text(const ExportTotals& exported, std::uint64_t nowUs)
{
    constexpr double kSecondUs = 1e6;
    const std::uint64_t retrieved = counts_.retrieved;
    if (retrieved == 0) {
        lastUs_ = nowUs;
        return counts_.capturing ? "capturing" : "waiting for a camera";
    }
    const double rate = static_cast<double>(retrieved - lastRetrieved_) * kSecondUs /
                        static_cast<double>(nowUs - lastUs_);
    lastRetrieved_ = retrieved;
    lastUs_ = nowUs;
    const std::uint64_t queued = exported.accepted - exported.written - exported.failed;
    const std::uint64_t lost = counts_.lost + exported.failed;
    const std::string of = frames_ == 0 ? "" : " of " + std::to_string(frames_);
    const std::uint64_t failed = counts_.missing;
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(),
                  "%" PRIu64 "%s frames  %.1f fps  %" PRIu64 " lost  %" PRIu64 " queued",
                  counts_.exported.load(), of.c_str(), rate, lost, queued);
    return text.data() + (failed == 0 ? "" : "  " + std::to_string(failed) + " failed retrievals");
}

} // namespace kxhost
