// A plug-in that ends by an exception or by its thread: kxhost writes what it has and says so.
#include "grab_session.h"

#include <gtest/gtest.h>

namespace {

using kxtest::Finished;
using kxtest::GrabSession;

constexpr int kDefect = 1;
constexpr int kCamera = 5;

/// One way to end, and what becomes of it.
struct Ending {
    std::string how;
    int code = 0;
    std::string reason;
    std::size_t frames = 0;
    unsigned unfinished = 0;
};

class SessionEnding : public testing::TestWithParam<Ending> {};

TEST_P(SessionEnding, LeavesWhatWasGrabbed)
{
    const Ending& ending = GetParam();
    GrabSession session;
    session.set("camera.reconnect=no");
    session.arguments = {"--plugin", KX_TEST_ENDING_PLUGIN};
    session.environment = {"KX_TEST_ENDING=" + ending.how};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, ending.code) << finished.err;
    EXPECT_EQ(finished.err, "kxhost: " + ending.reason + "\n");
    EXPECT_EQ(session.summary()["reason"], ending.reason);
    EXPECT_EQ(session.frames().size(), ending.frames);
    EXPECT_EQ(session.summary()["lost"]["unfinished"], ending.unfinished);
    kxtest::expectBalance(session);
}

INSTANTIATE_TEST_SUITE_P(
    SessionEnding, SessionEnding,
    testing::Values(Ending{"throw", kCamera,
                           "The camera was lost: the camera library gave it up: an exception of an "
                           "unknown kind.",
                           1},
                    Ending{"before", kCamera,
                           "The camera library or the driver threw: an exception of an unknown "
                           "kind.",
                           0},
                    Ending{"exit", kDefect, "The plug-in ended its thread.", 1},
                    Ending{"midframe_throw", kCamera,
                           "The camera was lost: the camera library gave it up: an exception of an "
                           "unknown kind.",
                           1, 1},
                    Ending{"midframe_exit", kDefect, "The plug-in ended its thread.", 1, 1}),
    [](const auto& each) { return each.param.how; });

} // namespace
