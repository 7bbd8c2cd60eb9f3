// What must hold for the frames of any grab that was steered while it ran.
#include "live_frames.h"

#include <gtest/gtest.h>

namespace kxtest {

std::size_t expectNothingLostBehindTheCamera(const GrabSession& session)
{
    expectBalance(session);
    const auto summary = session.summary();
    EXPECT_EQ(summary["lost"]["total"], summary["lost"]["camera"]) << summary;
    std::size_t starts = 0;
    unsigned missing = 0;
    unsigned before = 0; // frame 0 only starts the timing
    std::size_t number = 0;
    for (const auto& frame : session.frames()) {
        EXPECT_EQ(frame["number"], ++number);
        const unsigned counter = frame["frame_counter"];
        if (counter <= before) {
            ++starts;
            before = 0;
        }
        missing += counter - before - 1;
        before = counter;
    }
    EXPECT_LE(missing, summary["lost"]["camera"]) << summary;
    return starts;
}

std::size_t expectNothingLost(const GrabSession& session)
{
    const auto summary = session.summary();
    EXPECT_EQ(summary["lost"]["total"], 0) << summary;
    return expectNothingLostBehindTheCamera(session);
}

} // namespace kxtest
