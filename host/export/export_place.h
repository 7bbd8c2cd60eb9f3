// One place of the export queue: a frame with its pictures and values, on its way to disk.
#ifndef KXHOST_EXPORT_PLACE_H
#define KXHOST_EXPORT_PLACE_H

#include "export/export_frame.h"
#include "export/export_tap.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

/// One picture of a frame.
struct WaitingPicture {
    bool present = false;
    bool copied = false; ///< its pixels are here
    FrameInfo info;
    std::vector<std::uint8_t> pixels; ///< only ever grows

    /// Makes room for pictures of so many bytes. Throws for want of memory.
    void reserve(std::size_t bytes);
    /// Copies the pixels here. Returns false when there is no memory.
    bool keep(const void* from, std::size_t bytes);
};

/// It belongs to the grab thread until the frame is committed, then to the writer that takes it,
/// then (with `done`) to whoever completes the metadata.
struct ExportPlace {
    using Clock = std::chrono::steady_clock;

    std::uint64_t number = 0; ///< of the frame, from 1
    std::uint64_t timestampUs = 0;
    bool staging = false; ///< until the commit
    std::array<WaitingPicture, 2> pictures;
    ScenarioValues values;
    std::string line; ///< metadata
    std::uint64_t fileCount = 0;
    std::uint64_t fileBytes = 0;
    bool whole = false; ///< every picture is written
    bool done = false;  ///< its writer has let go of it
    Clock::time_point committed;
    Clock::time_point taken;
    Clock::time_point written;

    WaitingPicture& picture(Instance instance)
    {
        return pictures[static_cast<std::size_t>(instance)];
    }
    /// Begins the frame with this time stamp, unless it is being staged; another one is forgotten.
    void stageFor(std::uint64_t frameTimestampUs);
    /// Whether pictures of the frame with this time stamp are staged.
    bool holdsStaged(std::uint64_t frameTimestampUs) const;
    /// The frame is handed over.
    void commit(std::uint64_t frameNumber, const ScenarioValues& frameValues);
    /// A writer takes it.
    void take();

    /// The frame as who looks at it sees it, and when it is through.
    TappedFrame shown() const;
    ReleasedFrame released() const;
};

} // namespace kxhost

#endif
