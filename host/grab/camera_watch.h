// Tells from the plug-in's reports whether the camera is still there.
#ifndef KXHOST_CAMERA_WATCH_H
#define KXHOST_CAMERA_WATCH_H

#include <cstdint>

namespace kxhost {

/// Follows one capture after the other. The plug-in itself gives a silent camera up after hours
/// only: it waits for 5000 failed retrievals, each of which may take 2 s. But it tells of each of
/// them, and with each whether the camera has answered otherwise (its temperature was read).
///
/// Times are microseconds of a clock that never steps. Not thread-safe.
class CameraWatch {
public:
    enum class Finding {
        kThere,
        kGone,   ///< it has answered before, and does not any more
        kSilent, ///< it delivered nothing for too long
    };

    /// A capture begins.
    void start(std::uint64_t nowUs);
    /// A retrieval ended with a frame; `answers`: the camera answers other questions, too.
    void frameArrived(std::uint64_t nowUs, bool answers);
    /// A retrieval failed. `silenceUs`: how long there may be no frame; 0 = for ever.
    Finding frameMissing(std::uint64_t nowUs, bool answers, std::uint64_t silenceUs);
    /// How long there has been no frame.
    std::uint64_t silentUs(std::uint64_t nowUs) const { return nowUs - lastUs_; }

private:
    std::uint64_t lastUs_ = 0; ///< of the last frame, or of the begin
    bool hasAnswered_ = false; ///< some cameras never do
    unsigned unansweredInRow_ = 0;
};

} // namespace kxhost

#endif
