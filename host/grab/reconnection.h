// Decides whether a grab waits for a camera that was lost, and for how long.
#ifndef KXHOST_RECONNECTION_H
#define KXHOST_RECONNECTION_H

#include <chrono>
#include <cstdint>

namespace kxhost {

/// How a pass of the plug-in ended, as far as the camera is concerned.
enum class PassEnd {
    kDone,    ///< nothing is wrong with it
    kAbsent,  ///< it is not on the bus, or somebody else has it
    kRefused, ///< it is there, but could not be set up
    kBroken,  ///< it was there
};

/// What is decided. A camera counts as lost from when that shows, which may be long behind its last
/// frame, until its next one; so it is looked for at least once. Times are microseconds of a clock
/// that never steps. Not thread-safe.
class Reconnection {
public:
    enum class Verdict {
        kOff,     ///< nobody wants to wait, or there is nothing to wait for
        kWait,    ///< for `pause`, and then look again
        kTooLate, ///< it was waited long enough
        kRefused, ///< the camera is back and refused to be set up several times in a row
    };

    /// `seconds`: how long to wait; 0 = not at all, negative = without end.
    explicit Reconnection(double seconds) : seconds_(seconds) {}

    bool isOn() const { return seconds_ != 0; }
    /// A pass has ended. `lastFrameUs`: when the last frame of all arrived; 0 = there was none, and
    /// whether the camera can be used at all is not known.
    Verdict passEnded(PassEnd end, std::uint64_t lastFrameUs, std::uint64_t nowUs);
    /// Until the next look for the camera: half a second, or what is left of the time to wait.
    std::chrono::milliseconds pause(std::uint64_t nowUs) const;

private:
    double secondsAway(std::uint64_t nowUs) const;

    double seconds_;
    std::uint64_t lastFrameUs_ = 0;
    std::uint64_t lostUs_ = 0; ///< when the loss behind that frame showed
    unsigned refusals_ = 0;    ///< in a row
};

} // namespace kxhost

#endif
