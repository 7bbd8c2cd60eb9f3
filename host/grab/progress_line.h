// One line about how a grab is getting on: frames, rate, losses, what waits to be written.
#ifndef KXHOST_PROGRESS_LINE_H
#define KXHOST_PROGRESS_LINE_H

#include "export/export_queue.h"
#include "grab/grab_counts.h"

#include <cstdint>
#include <string>

namespace kxhost {

/// Makes the line. The rate is that since the line before. One thread; times are those of the
/// steady clock, in microseconds.
class ProgressLine {
public:
    /// `frames`: number of frames to export, 0 = no end known.
    ProgressLine(const GrabCounts& counts, std::uint32_t frames, std::uint64_t startUs)
        : counts_(counts), frames_(frames), lastUs_(startUs)
    {}

    /// Failed retrievals, and for how long the camera has been away, stand at its end when there is
    /// anything to say of them.
    std::string text(const ExportTotals& exported, std::uint64_t nowUs);

private:
    const GrabCounts& counts_;
    std::uint32_t frames_;
    std::uint64_t lastUs_;
    std::uint64_t lastRetrieved_ = 0;
};

} // namespace kxhost

#endif
