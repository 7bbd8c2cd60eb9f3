// The ledger: each way to lose a frame, with its cause in summary and metadata.
//
// That everything balances is checked for these tests, as for all others, when a session ends.
#include "grab_session.h"
#include "ledger_check.h"
#include "live_grab.h"

#include <gtest/gtest.h>

namespace {

using kxtest::busWith;
using kxtest::busWithFault;
using kxtest::GrabSession;
using kxtest::lostBy;
using kxtest::TestSensor;
using Json = nlohmann::json;

class SessionLedger : public testing::Test {
protected:
    /// Grabs five frames from a camera with this fault.
    void grabWithFault(const std::string& keys)
    {
        session_.bus = busWithFault(keys);
        ASSERT_EQ(session_.run().code, 0);
        summary_ = session_.summary();
        frames_ = session_.frames();
        ASSERT_EQ(frames_.size(), 5U);
    }

    /// The frames that say what was lost before them.
    std::vector<Json> told() const
    {
        std::vector<Json> told;
        for (const Json& frame : frames_) {
            if (frame.contains("lost_before")) {
                told.push_back(
                    {{"frame_counter", frame["frame_counter"]}, {"lost", frame["lost_before"]}});
            }
        }
        return told;
    }

    GrabSession session_;
    Json summary_;
    std::vector<Json> frames_;
};

TEST_F(SessionLedger, AGrabWithoutLossesCountsEveryValue)
{
    session_.quiet = false;
    const auto finished = session_.run();
    ASSERT_EQ(finished.code, 0);
    EXPECT_NE(finished.out.find("ledger    6 values of the camera's counter = 5 delivered + "
                                "1 timing\n"),
              std::string::npos)
        << finished.out;
    const Json ledger = session_.summary()["ledger"];
    EXPECT_EQ(ledger["causes"], Json::parse(R"({"timing": 1})"));
    EXPECT_EQ(ledger["stretches"],
              Json::parse(R"([{"stretch": 1, "begins": "start", "first": 0, "last": 5}])"));
    EXPECT_FALSE(session_.frames().front().contains("lost_before"));
}

TEST_F(SessionLedger, FramesLostOnTheWayAreTheCameras)
{
    grabWithFault("kind = \"lose\"\nframe = 3\ncount = 2");
    EXPECT_EQ(lostBy(summary_, "camera_skipped"), 2U);
    EXPECT_EQ(told(), (std::vector<Json>{
                          Json::parse(R"({"frame_counter": 5, "lost": {"camera_skipped": 2}})")}));
    EXPECT_EQ(summary_["ledger"]["ranges"][1], Json::parse(R"({"stretch": 1, "first": 3, "last": 4,
        "causes": {"camera_skipped": 2}})"));
}

TEST_F(SessionLedger, FailedRetrievalsAreTheirOwnCause)
{
    grabWithFault("kind = \"error\"\nframe = 2\n[[camera.fault]]\nkind = \"corrupt\"\nframe = 4");
    EXPECT_EQ(lostBy(summary_, "retrieval_failed"), 2U);
    EXPECT_EQ(lostBy(summary_, "camera_skipped"), 0U);
    EXPECT_EQ(told().size(), 2U);
    EXPECT_EQ(summary_["ledger"]["failed_retrievals_without_frame"], 0);
}

TEST_F(SessionLedger, ABothWaysGapIsDividedAsFarAsIsKnown)
{
    grabWithFault("kind = \"lose\"\nframe = 2\n[[camera.fault]]\nkind = \"error\"\nframe = 3");
    EXPECT_EQ(told(), (std::vector<Json>{Json::parse(R"({"frame_counter": 4,
        "lost": {"camera_skipped": 1, "retrieval_failed": 1}})")}));
}

TEST_F(SessionLedger, AWrongNumberIsTakenBackByTheNextFrame)
{
    grabWithFault("kind = \"counter\"\nframe = 3\namount = 1000");
    EXPECT_EQ(told(),
              (std::vector<Json>{
                  Json::parse(R"({"frame_counter": 1003, "lost": {"camera_skipped": 1000}})"),
                  Json::parse(R"({"frame_counter": 4, "lost": {"camera_skipped": -1000}})")}));
    EXPECT_EQ(lostBy(summary_, "camera_skipped"), 0U);
    EXPECT_EQ(summary_["ledger"]["stand_ins"], 1);
    EXPECT_EQ(summary_["lost"]["total"], 0);
}

TEST_F(SessionLedger, ACameraWithoutCounterIsNotCounted)
{
    session_.bus = busWith(TestSensor(), "embedded = [\"timestamp\"]\n\n[[camera.fault]]\n"
                                         "kind = \"lose\"\nframe = 3\n");
    session_.quiet = false;
    const auto finished = session_.run();
    ASSERT_EQ(finished.code, 0);
    EXPECT_NE(finished.out.find("6 frames (not counted by the camera) = 5 delivered + 1 timing"),
              std::string::npos)
        << finished.out;
    EXPECT_EQ(session_.summary()["ledger"]["counted_by_camera"], false);
    EXPECT_FALSE(session_.frames().front().contains("stretch"));
}

TEST_F(SessionLedger, WithoutCounterFailedRetrievalsAreWhatIsKnownOfLosses)
{
    session_.bus = busWith(TestSensor(), "embedded = [\"timestamp\"]\n\n[[camera.fault]]\n"
                                         "kind = \"error\"\nframe = 3\n");
    session_.set("grab.max_losses=0");
    session_.quiet = false;
    const auto finished = session_.run();
    EXPECT_EQ(finished.code, 7) << finished.err;
    EXPECT_NE(finished.out.find("1 failed retrieval taken for lost frames"), std::string::npos)
        << finished.out;
    EXPECT_EQ(session_.summary()["lost"]["camera"], 1);
    EXPECT_EQ(session_.summary()["lost"]["total"], 1);
}

TEST_F(SessionLedger, WaitsInVainAreNoFrames)
{
    session_.bus = busWithFault("kind = \"stall\"\nframe = 4");
    session_.set("grab.max_losses=0");
    kxtest::LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    EXPECT_EQ(grab.finish(), 0);
    const Json summary = session_.summary();
    EXPECT_EQ(summary["lost"]["total"], 0);
    EXPECT_GE(summary["ledger"]["failed_retrievals_without_frame"], 2);
    EXPECT_EQ(summary["ledger"]["values"], 4);
    EXPECT_EQ(lostBy(summary, "retrieval_failed"), 0U);
}

TEST_F(SessionLedger, ADetachedCameraLosesNoFrameThatIsKnown)
{
    session_.bus = busWithFault("kind = \"detach\"\nframe = 4");
    session_.set("grab.frames=100");
    session_.set("camera.reconnect=no");
    EXPECT_NE(session_.run().code, 0);
    const Json summary = session_.summary();
    EXPECT_EQ(summary["ledger"]["values"], 4);
    EXPECT_EQ(summary["ledger"]["delivered"], 3);
    EXPECT_GT(summary["ledger"]["failed_retrievals_without_frame"], 0);
}

TEST_F(SessionLedger, ACameraThatComesBackBeginsAnotherCount)
{
    session_.bus = busWithFault("kind = \"detach\"\nframe = 4\ncount = 1000\nback_after = 0.3");
    session_.settings = {"grab.frames=8", "grab.max_losses=0"};
    ASSERT_EQ(session_.run().code, 0);
    EXPECT_GT(session_.summary()["failed_retrievals"], 0);
    const Json stretches = session_.summary()["ledger"]["stretches"];
    EXPECT_EQ(stretches, Json::parse(R"([
        {"stretch": 1, "begins": "start", "first": 0, "last": 3},
        {"stretch": 2, "begins": "detached", "first": 0, "last": 5}])"));
    const std::vector<Json> frames = session_.frames();
    ASSERT_EQ(frames.size(), 8U);
    EXPECT_EQ(frames[2]["configuration"], 1);
    EXPECT_EQ(frames[3]["configuration"], 2) << "which was applied again";
    EXPECT_EQ(frames[3]["configuration_changes"][0]["kind"], "again");
    EXPECT_FALSE(frames[3].contains("configuration_next"));
}

/// A camera whose frames take far longer to write than to come.
void slowWriter(GrabSession& session, bool paced, unsigned frames)
{
    TestSensor sensor{640, 480, "", 100};
    sensor.paced = paced;
    session.bus = busWith(sensor);
    session.settings = {"grab.frames=" + std::to_string(frames), "output.queue=1",
                        "output.writers=1", "output.compression=9"};
}

TEST_F(SessionLedger, AFullQueueIsACauseWhenFramesAreDropped)
{
    slowWriter(session_, false, 20);
    session_.set("output.when_full=drop");
    ASSERT_EQ(session_.run().code, 0);
    EXPECT_GT(lostBy(session_.summary(), "queue_full"), 0U);
    EXPECT_EQ(lostBy(session_.summary(), "camera_skipped"), 0U);
}

TEST_F(SessionLedger, WhatComesWhileTheGrabWaitsForAPlaceHasNoBuffer)
{
    slowWriter(session_, true, 5);
    ASSERT_EQ(session_.run().code, 0);
    const Json summary = session_.summary();
    EXPECT_GT(lostBy(summary, "no_buffer"), 0U) << summary;
    EXPECT_EQ(lostBy(summary, "no_buffer"), summary["lost"]["no_buffer"]);
}

} // namespace
