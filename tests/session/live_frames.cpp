// What must hold for the frames of any grab that was steered while it ran.
#include "live_frames.h"

#include <gtest/gtest.h>

namespace kxtest {

std::size_t expectNothingLost(const GrabSession& session)
{
    expectBalance(session);
    const auto summary = session.summary();
    EXPECT_EQ(summary["lost"]["total"], 0) << summary;
    std::size_t starts = 0;
    unsigned before = 0;
    std::size_t number = 0;
    for (const auto& frame : session.frames()) {
        EXPECT_EQ(frame["number"], ++number);
        const unsigned counter = frame["frame_counter"];
        if (counter == 1 && number > 1) { // frame 0 only starts the timing
            ++starts;
        } else {
            EXPECT_EQ(counter, before + 1) << "frame " << number;
        }
        before = counter;
    }
    return starts;
}

} // namespace kxtest
