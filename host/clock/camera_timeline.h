// The camera's clock as one that runs on: its wraps and the shortened cycles of its time stamps
// undone.
#ifndef KXHOST_CAMERA_TIMELINE_H
#define KXHOST_CAMERA_TIMELINE_H

#include <cstdint>

namespace kxhost {

/// The camera's clock starts anew after this many microseconds.
inline constexpr std::int64_t kCameraWrapUs = 128'000'000;

/// The plug-in decodes the offset within a cycle of 125 us as if it counted to 4095, while cameras
/// count to 3071, so that its times reach 93 us and then go on at 125. This gives the true time
/// of such a one, to two microseconds or so. A time that no such camera shows stays as it is.
std::int64_t fullCameraTime(std::int64_t decodedUs);

/// Places the camera's times one after the other on a line without wraps. Not thread-safe.
class CameraTimeline {
public:
    /// The place of a frame's time `cameraUs` (0 to 128 s), which was known at `steadyUs` of a
    /// clock that never steps. However long the gap to the frame before was, that clock tells how
    /// often the camera's has wrapped; a jump of the camera's clock of less than 64 s stays a jump.
    std::int64_t place(std::int64_t cameraUs, std::int64_t steadyUs);

private:
    bool begun_ = false;
    std::int64_t lastUs_ = 0; ///< on the line
    std::int64_t lastSteadyUs_ = 0;
};

} // namespace kxhost

#endif
