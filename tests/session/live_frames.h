// What must hold for the frames of any grab that was steered while it ran.
#ifndef KX_TEST_LIVE_FRAMES_H
#define KX_TEST_LIVE_FRAMES_H

#include "live_grab.h"

namespace kxtest {

/// Checks that every frame that was retrieved is exported and on disk, numbered without a gap, and
/// that the camera's counter has no gaps but where capture started again. Returns how often it did.
/// REQUIRES: kxhost has ended.
std::size_t expectNothingLost(const GrabSession& session);

/// The same where the camera keeps a pace of its own: a machine that stalls for longer than a frame
/// makes it skip some, which the summary has to tell.
std::size_t expectNothingLostBehindTheCamera(const GrabSession& session);

} // namespace kxtest

#endif
