// Signals that end a grab, and codes that mean nothing to it.
#include "camera_test.h"

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class SignalsTest : public kxtest::CameraTest {
protected:
    SignalsTest() { connect(); }

    /// The host has `code` at the poll with this number, 1 based.
    static void signalAt(int poll, int code)
    {
        auto polls = std::make_shared<int>(0);
        host().checkSignal = [polls, poll, code] { return ++*polls == poll ? code : 0; };
    }
};

class FinishingSignalTest : public SignalsTest, public testing::WithParamInterface<int> {};

TEST_P(FinishingSignalTest, EndsAfterTheFrameAtHand)
{
    signalAt(4, GetParam());
    EXPECT_EQ(grab(0), 0);
    EXPECT_THAT(host().exports, SizeIs(3));
    EXPECT_THAT(journal().logs(),
                Contains(info("Grabbed 4 images, finishing with signal...")).Times(1));
    EXPECT_THAT(journal().lines({"Camera.StopCapture", "KxGi__SetNewCfgVendor",
                                 "KxGi__SetNewCfgPlugin", "KxGi__SetSignalAction",
                                 "KxGi__SetTermSigProc", "Camera.SetEmbeddedImageInfo"}),
                ElementsAre(HasSubstr("SetEmbeddedImageInfo"), HasSubstr("StopCapture"),
                            "KxGi__SetNewCfgVendor()", "KxGi__SetNewCfgPlugin()",
                            format("KxGi__SetSignalAction(%i)", GetParam()),
                            "KxGi__SetTermSigProc()", HasSubstr("SetEmbeddedImageInfo")));
    EXPECT_EQ(proc_->pendingSig, 0U);
}

INSTANTIATE_TEST_SUITE_P(Signals, FinishingSignalTest, testing::Values(1, 5),
                         [](const auto& one) { return format("Code%i", one.param); });

TEST_F(SignalsTest, AreToldTwiceAtTheEndOfAFiniteGrab)
{
    signalAt(2, 1);
    EXPECT_EQ(grab(10), 0);
    // Once by the signal and once because a grab of a frame count has ended well.
    EXPECT_EQ(journal().count("KxGi__SetNewCfgVendor"), 2U);
}

TEST_F(SignalsTest, ThatMeanNothingAreIgnored)
{
    host().checkSignal = [] { return 99; };
    EXPECT_EQ(grab(5), 0);
    EXPECT_THAT(host().exports, SizeIs(4));
    EXPECT_EQ(journal().count("KxGi__SetSignalAction"), 0U);
    EXPECT_EQ(proc_->pendingSig, 99U);
}

TEST_F(SignalsTest, AreLostWithAFrameThatDoesNotArrive)
{
    signalAt(2, 1);
    EXPECT_EQ(grab({{0, 1000, false}, {0, 0, true}, {0, 35'000, false}, {0, 68'000, false}}), 0);
    EXPECT_THAT(host().exports, SizeIs(2));
    EXPECT_EQ(journal().count("KxGi__SetSignalAction"), 0U);
}

TEST_F(SignalsTest, AreLookedForAtEachIteration)
{
    proc_->pendingSig = 7;
    proc_->ProcLookSignal();
    EXPECT_EQ(proc_->pendingSig, 0U);
    host().checkSignal = [] { return 5; };
    proc_->ProcLookSignal();
    EXPECT_EQ(proc_->pendingSig, 5U);
    EXPECT_EQ(journal().count("KxUtl__CheckSignal"), 2U);
}

TEST_F(SignalsTest, LeaveTheStopFlagAloneWhenNoneIsPending)
{
    bool stop = true;
    EXPECT_EQ(proc_->ProcSignal(cam_.get(), 1, &stop), 0);
    EXPECT_TRUE(stop);
    proc_->pendingSig = 99;
    EXPECT_EQ(proc_->ProcSignal(cam_.get(), 1, &stop), 0);
    EXPECT_FALSE(stop);
    EXPECT_EQ(proc_->pendingSig, 99U);
    proc_->pendingSig = 1;
    EXPECT_EQ(proc_->ProcSignal(cam_.get(), 1, nullptr), 0);
    EXPECT_EQ(proc_->pendingSig, 0U);
}

TEST_F(SignalsTest, IgnoreAFailedStop)
{
    signalAt(2, 5);
    failCalls("StopCapture");
    EXPECT_EQ(grab(0), 0);
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

} // namespace
