// Who looks at frames on their way to disk.
#ifndef KXHOST_EXPORT_TAP_H
#define KXHOST_EXPORT_TAP_H

#include "export/export_frame.h"

#include <cstdint>
#include <span>

namespace kxhost {

/// A frame as those who write it see it. Valid for the time of the call.
struct TappedFrame {
    std::uint64_t number; ///< from 1, in the order of commit
    const FrameInfo& info;
    std::span<const std::uint8_t> pixels; ///< as `info` says; empty = nobody wanted them
    const ScenarioValues& values;
};

/// A frame that is through.
struct ReleasedFrame {
    std::uint64_t number;
    std::uint64_t timestampUs; ///< start of the exposure, us since 1970
    const ScenarioValues& values;
    bool written;            ///< its pictures and its metadata are on disk, or nobody wants them
    std::uint64_t queuedUs;  ///< from its commit until a writer took it
    std::uint64_t writingUs; ///< from then until its pictures were written
};

/// Of a frame's pictures it is shown the one that came from the camera, or else the converted one.
/// Must outlive the queue that it looks at.
class ExportTap {
public:
    virtual ~ExportTap() = default;

    /// Whether the pixels at hand are to be kept, even where no pictures are written. Grab thread:
    /// must neither wait nor allocate.
    virtual bool wantsPixels() noexcept = 0;
    /// The pictures of a frame are written. Writer threads, several at a time, in any order.
    virtual void look(const TappedFrame& frame) noexcept = 0;
    /// A frame is through, well or not. Writer threads, one at a time, in the order of commit.
    virtual void released(const ReleasedFrame& frame) noexcept = 0;
    /// The last frame of all, if it was written well; when all writers have ended.
    virtual void last(const TappedFrame& frame) noexcept = 0;
};

} // namespace kxhost

#endif
