// What happens when the camera is lost, and when it is back.
#ifndef KXHOST_CAMERA_ABSENCE_H
#define KXHOST_CAMERA_ABSENCE_H

#include <cstdint>
#include <optional>
#include <string>

namespace kxhost {

struct HostServices;

/// What frames look like; a camera that is back must deliver them as before.
struct FrameShape {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::string codec;

    bool operator==(const FrameShape&) const = default;
};

/// What is remembered of a camera that may be lost. For the grab thread.
struct CameraAbsence {
    bool isAway = false;                ///< from the end of its last pass until its next frame
    std::optional<float> secondsBefore; ///< the next exported frame, when it lies behind a gap
    std::string why;                    ///< the host ended the pass; part of a sentence
    std::string unfit;                  ///< it is back, but of no use; one sentence
    std::optional<FrameShape> shape;    ///< of the last capture; nothing = any will do
};

// All of these are for the grab thread.

/// "Camera 15322788", for the begin of a sentence.
std::string nameOfCamera(const HostServices& host);

/// The camera is lost; tells the user the first time. `why` is the end of a sentence.
void cameraLost(HostServices& host, const std::string& why);

/// The first frame of a capture has arrived. When the camera had been lost, it is back: the user is
/// told, and a look-up table that is lost with the power is asked for again. Throws CameraLost when
/// its frames are others than before.
void captureDelivers(HostServices& host, std::uint32_t width, std::uint32_t height);

/// Why the camera has to be taken for lost after a retrieval that failed; empty = it has not.
/// `answers`: it answers other questions.
std::string whyLost(HostServices& host, bool answers);

/// Brings back the pixel format that a pass of 12 bits has replaced and not restored.
void endWidePass(HostServices& host);

} // namespace kxhost

#endif
