// The line that shows how a grab is getting on.
#ifndef KXHOST_PROGRESS_H
#define KXHOST_PROGRESS_H

#include "grab/progress_line.h"

#include <cstdint>

namespace kxhost {

/// Writes to standard error: one line that renews itself on a terminal, now and then a new line
/// elsewhere. One thread.
class Progress {
public:
    /// `frames`: number of frames to export, 0 = no end known. A silent one writes nothing.
    Progress(const GrabCounts& counts, std::uint32_t frames, bool silent);
    /// Leaves the cursor at the start of a line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Milliseconds between two calls of `show`.
    int tickMs() const { return terminal_ ? 250 : 1000; }
    /// Shows where the grab stands, when enough time has passed since the last time.
    void show(const ExportTotals& exported);

private:
    bool silent_;
    bool terminal_;
    bool shown_ = false;
    std::uint64_t startUs_;
    std::uint64_t nextUs_;
    ProgressLine line_;
};

} // namespace kxhost

#endif
