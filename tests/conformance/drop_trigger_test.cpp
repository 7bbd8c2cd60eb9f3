// Drop trigger: a camera that stops delivering ends the grab, one that only loses frames does not.
#include "camera_test.h"

using kxtest::info;
using kxtest::journal;
using kxtest::ScriptedFrame;
using kxtest::warning;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class DropTriggerTest : public kxtest::CameraTest {
protected:
    DropTriggerTest() { connect(); }

    /// Retrievals 1 to `count`; those in `good` deliver.
    static std::vector<ScriptedFrame> retrievals(unsigned count, const std::vector<unsigned>& good)
    {
        std::vector<ScriptedFrame> frames(count, ScriptedFrame{0, 0, true});
        for (const unsigned number : good) {
            frames[number - 1] = {0, number, false};
        }
        return frames;
    }
    int grabForever(std::vector<ScriptedFrame> frames)
    {
        cam_->frames = std::move(frames);
        return grab(0);
    }
};

TEST_F(DropTriggerTest, EndsAGrabThatNeverDelivers)
{
    // The simulated camera's own time-outs of two seconds each.
    fcsim::Fault fault;
    fault.operation = "RetrieveBuffer";
    fault.count = 0;
    fault.error = FlyCapture2::PGRERROR_TIMEOUT;
    fault.description = "nothing came";
    fcsim::addFault(fault);
    EXPECT_EQ(grab(10), -10);
    EXPECT_THAT(
        journal().logsWith("Frames Drop trigger"),
        ElementsAre(warning("ProcLoop", "Frames Drop trigger: Loop_1000(ok_0 dropCntr_1000)"),
                    warning("ProcLoop", "Frames Drop trigger: Loop_2000(ok_0 dropCntr_2000)"),
                    warning("ProcLoop", "Frames Drop trigger: Loop_3000(ok_0 dropCntr_3000)"),
                    warning("ProcLoop", "Frames Drop trigger: Loop_4000(ok_0 dropCntr_4000)"),
                    warning("ProcLoop", "Frames Drop trigger: Loop_5000(ok_0 dropCntr_5000)")));
    EXPECT_THAT(journal().logsWith("error description"),
                ElementsAre(warning("ProcLoop", "error description: simulated: nothing came")));
    EXPECT_EQ(journal().count("Camera.RetrieveBuffer"), 5000U);
    EXPECT_EQ(journal().count("KxGi__HaltUpdate"), 5000U);
    EXPECT_EQ(journal().count("KxUtl__CheckSignal"), 5000U);
    EXPECT_EQ(journal().count("Camera.StopCapture"), 1U);
    EXPECT_EQ(journal().count("KxGi__HaltStop"), 0U);
}

TEST_F(DropTriggerTest, EndsWithoutRestoringTheCamera)
{
    EXPECT_EQ(grabForever(retrievals(5000, {})), -10);
    const auto ends = journal().lines({"Camera.StopCapture", "KxGi__SetTermSigProc",
                                       "KxGi__SetNewCfgVendor", "KxGi__SetNewCfgPlugin"});
    EXPECT_THAT(ends, ElementsAre(HasSubstr("StopCapture"), "KxGi__SetTermSigProc()"));
    EXPECT_THAT(journal().logsWith("Restore some changed"), IsEmpty());
    EXPECT_THAT(journal().logs(),
                Contains(info("...GRABBING IS DONE (captured 0 frames of 5000 loops)")));
    EXPECT_EQ(journal().logs().back(),
              info("grabbing loop is completed with exitCode =4294967286"));
}

TEST_F(DropTriggerTest, AsksForTheTemperatureOfEachMissingFrame)
{
    grabForever(retrievals(5000, {}));
    EXPECT_THAT(
        journal().lines({"KxGi__HaltUpdate"}),
        Contains(testing::MatchesRegex("KxGi__HaltUpdate\\([0-9]+, 42\\.[0-9]+\\)")).Times(5000));
}

TEST_F(DropTriggerTest, SparesACameraThatDeliversInTheJudgedWindow)
{
    // One frame between the 4000th and the 5000th failure, and none after it: the grab ends at the
    // 10,000th, which is the 10,001st retrieval.
    EXPECT_EQ(grabForever(retrievals(10'001, {4500})), -10);
    EXPECT_THAT(journal().logsWith("Frames Drop trigger"), SizeIs(10));
    EXPECT_THAT(
        journal().logs(),
        Contains(warning("ProcLoop", "Frames Drop trigger: Loop_10001(ok_1 dropCntr_10000)")));
    EXPECT_THAT(journal().logsWith("error description"), SizeIs(2));
}

TEST_F(DropTriggerTest, JudgesOnlyTheLastThousand)
{
    // Frames came, but none between the 4000th and the 5000th failure.
    EXPECT_EQ(grabForever(retrievals(5003, {1, 500, 3900})), -10);
    EXPECT_THAT(
        journal().logs(),
        Contains(warning("ProcLoop", "Frames Drop trigger: Loop_5003(ok_3 dropCntr_5000)")));
}

TEST_F(DropTriggerTest, CountsFailuresThatDoNotFollowEachOther)
{
    // Every second retrieval fails: 1000 drops take 2000 iterations.
    std::vector<ScriptedFrame> frames;
    for (unsigned index = 0; index < 2400; ++index) {
        frames.push_back({0, index, index % 2 == 1});
    }
    EXPECT_EQ(grab(frames), 0);
    EXPECT_THAT(
        journal().logsWith("Frames Drop trigger"),
        ElementsAre(warning("ProcLoop", "Frames Drop trigger: Loop_2000(ok_1000 dropCntr_1000)")));
}

TEST_F(DropTriggerTest, StartsCountingAnewWithEachGrab)
{
    EXPECT_EQ(grabForever(retrievals(5000, {})), -10);
    journal().clear();
    EXPECT_EQ(grabForever(retrievals(5000, {})), -10);
    EXPECT_EQ(journal().count("Camera.RetrieveBuffer"), 5000U);
}

TEST_F(DropTriggerTest, ActsWithoutLogToo)
{
    gKxLogLevelLib = 0;
    EXPECT_EQ(grabForever(retrievals(5000, {})), -10);
}

TEST_F(DropTriggerTest, EndsAGrabThatCouldNotStart)
{
    failCalls("StartCapture");
    EXPECT_EQ(grab(10), -10);
    EXPECT_THAT(journal().logsWith("Frames Drop trigger"), SizeIs(5));
}

TEST_F(DropTriggerTest, TakesNoFrameWithAFailure)
{
    EXPECT_EQ(grab({{0, 1'000'000, false}, {0, 0, true}, {0, 0, true}, {0, 1'033'000, false}}), 0);
    EXPECT_THAT(kxtest::host().exports, SizeIs(1));
    EXPECT_EQ(journal().count("KxGi__HaltUpdate"), 2U);
    EXPECT_EQ(journal().count("KxGi__HaltStop"), 2U);
    EXPECT_THAT(journal().logs(),
                Contains(info("...GRABBING IS DONE (captured 2 frames of 4 loops)")));
}

} // namespace
