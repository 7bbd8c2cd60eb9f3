// Order and losses: frames never change places, and every loss is counted where it happened.
#include "grab_session.h"

#include <gtest/gtest.h>

namespace {

using kxtest::busWith;
using kxtest::busWithFault;
using kxtest::GrabSession;
using kxtest::TestSensor;
using Json = nlohmann::json;

std::vector<int> countersOf(const GrabSession& session)
{
    std::vector<int> counters;
    for (const Json& frame : session.frames()) {
        counters.push_back(frame["frame_counter"]);
    }
    return counters;
}

TEST(SessionOrder, NothingIsLostAndNothingChangesPlaces)
{
    GrabSession session;
    session.set("grab.frames=60");
    session.set("output.writers=4");
    session.set("output.queue=8");
    ASSERT_EQ(session.run().code, 0);
    kxtest::expectBalance(session);
    const std::vector<Json> frames = session.frames();
    ASSERT_EQ(frames.size(), 60U);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i]["number"], i + 1);
        EXPECT_EQ(frames[i]["frame_counter"], i + 1); // frame 0 only starts the timing
        if (i > 0) {
            EXPECT_GT(frames[i]["timestamp_us"], frames[i - 1]["timestamp_us"]);
        }
    }
    EXPECT_EQ(session.pictures().front(), "frame_000001.png");
    EXPECT_EQ(session.pictures().back(), "frame_000060.png");
    EXPECT_EQ(session.summary()["lost"]["total"], 0);
    EXPECT_EQ(session.summary()["retrieved"], 61);
}

TEST(SessionOrder, EveryParameterIsInTheMetadata)
{
    GrabSession session;
    ASSERT_EQ(session.run().code, 0);
    const Json frame = session.frames().at(2);
    EXPECT_EQ(frame["width"], 64);
    EXPECT_EQ(frame["height"], 48);
    EXPECT_EQ(frame["codec"], "MONO8T");
    EXPECT_EQ(frame["unit"], 1000);
    EXPECT_NEAR(frame["exposure_us"].get<double>(), 1000, 20);
    EXPECT_NEAR(frame["gain_db"].get<double>(), 3, 0.1);
    EXPECT_GT(frame["timestamp_us"].get<std::uint64_t>(), 1'600'000'000'000'000U);
    EXPECT_LT(frame["camera_time_us"].get<std::uint64_t>(), 128'000'000U);
    EXPECT_EQ(frame["pictures"][0]["bytes"],
              std::filesystem::file_size(session.output(frame["pictures"][0]["file"])));
}

TEST(SessionOrder, FramesLostOnTheWayLeaveAGapThatIsCounted)
{
    GrabSession session;
    session.bus = busWithFault("kind = \"lose\"\nframe = 3\ncount = 2");
    ASSERT_EQ(session.run().code, 0);
    kxtest::expectBalance(session);
    EXPECT_EQ(countersOf(session), (std::vector<int>{1, 2, 5, 6, 7}));
    EXPECT_EQ(session.summary()["lost"]["camera"], 2);
    EXPECT_EQ(session.summary()["lost"]["total"], 2);
}

TEST(SessionOrder, FailedRetrievalsAreCountedOnce)
{
    GrabSession session;
    session.bus = busWithFault("kind = \"error\"\nframe = 3\ncount = 2");
    ASSERT_EQ(session.run().code, 0);
    kxtest::expectBalance(session);
    EXPECT_EQ(countersOf(session), (std::vector<int>{1, 2, 5, 6, 7}));
    EXPECT_EQ(session.summary()["failed_retrievals"], 2);
    EXPECT_EQ(session.summary()["lost"]["camera"], 2);
}

TEST(SessionOrder, BrokenFramesAreNotExported)
{
    GrabSession session;
    session.bus = busWithFault("kind = \"corrupt\"\nframe = 2");
    ASSERT_EQ(session.run().code, 0);
    kxtest::expectBalance(session);
    EXPECT_EQ(countersOf(session), (std::vector<int>{1, 3, 4, 5, 6}));
    EXPECT_EQ(session.summary()["lost"]["total"], 1);
}

TEST(SessionOrder, AFullQueueDropsWhenToldToAndCounts)
{
    GrabSession session;
    session.bus = busWith(TestSensor{640, 480, "", 400});
    session.settings = {"grab.frames=40", "output.queue=1", "output.writers=1",
                        "output.when_full=drop", "output.compression=9"};
    ASSERT_EQ(session.run().code, 0);
    kxtest::expectBalance(session);
    const Json summary = session.summary();
    EXPECT_GT(summary["lost"]["queue_full"], 0);
    const std::vector<int> counters = countersOf(session);
    EXPECT_TRUE(std::is_sorted(counters.begin(), counters.end()));
}

TEST(SessionOrder, WithoutFolderFramesAreOnlyCounted)
{
    GrabSession session;
    session.arguments = {"--set", "output.format=none"};
    ASSERT_EQ(session.run().code, 0);
    EXPECT_TRUE(session.pictures().empty());
    EXPECT_EQ(session.frames().size(), 5U);
    EXPECT_EQ(session.summary()["exported"]["pictures"], 0);
}

} // namespace
