// Signals: those that end a grab, what each does in each mode, and what becomes of the others.
#include "camera_test.h"

using kxtest::CameraText;
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

TEST_P(FinishingSignalTest, EndsATwelveBitPass)
{
    for (const std::uint32_t mode : {0U, 6U, 7U}) {
        for (const std::uint32_t state : {0U, 1U, 4U, 5U, 8U}) {
            proc_->pendingSig = static_cast<std::uint32_t>(GetParam());
            proc_->dynLutState = state;
            proc_->dynLutMode = mode;
            bool stop = false;
            EXPECT_EQ(proc_->ProcSignal(cam_.get(), 1, &stop), 0);
            EXPECT_TRUE(stop);
            EXPECT_EQ(proc_->dynLutState, 0U);
            EXPECT_EQ(proc_->dynLutMode, 0U);
        }
    }
}

TEST_P(FinishingSignalTest, EndsAPassThatIsStuck)
{
    CameraText text;
    text.extra = "[camera.lut]\nsupported = false\n";
    connect(text);
    // The pass is asked for at the third frame, in the second loop it never gets anywhere.
    auto polls = std::make_shared<int>(0);
    host().checkSignal = [polls, code = GetParam()] {
        ++*polls;
        return *polls == 3 ? 4 : *polls == 9 ? code : 0;
    };
    host().config.fnum = 4;
    EXPECT_EQ(proc_->ProcOnce(cam_.get(), &info_, &factory_), 0);
    // It is started again at its frame count: 3, 4 and 2 frames.
    EXPECT_THAT(
        journal().logsWith("GRABBING IS DONE"),
        ElementsAre(HasSubstr("captured 3"), HasSubstr("captured 4"), HasSubstr("captured 2")));
    EXPECT_THAT(journal().lines({"KxGi__SetSignalAction"}),
                ElementsAre(format("KxGi__SetSignalAction(%i)", GetParam())));
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
    for (const int code : {1, 2, 3, 4, 5}) {
        host().exports.clear();
        journal().clear();
        signalAt(2, code);
        EXPECT_EQ(grab({{0, 1000, false}, {0, 0, true}, {0, 35'000, false}, {0, 68'000, false}}),
                  0);
        EXPECT_THAT(host().exports, SizeIs(2));
        EXPECT_EQ(journal().count("KxGi__SetSignalAction"), 0U);
        EXPECT_EQ(journal().count("KxGi__DoReconfig"), 0U);
        EXPECT_EQ(journal().count("KxGiMainCtx__SetFormat"), 0U);
        EXPECT_THAT(journal().logsWith("images, "), IsEmpty());
        EXPECT_EQ(proc_->dynLutState, 0U);
    }
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

// ---- Each code in each mode of the dynamic look-up table.

/// What becomes of a code.
struct Effect {
    std::uint32_t pending = 0;
    bool stop = false;
    std::uint32_t state = 0;
    std::uint32_t mode = 0;
    int format = 1;
};

/// With state 5 and format code 9 before.
Effect effectOf(std::uint32_t code, std::uint32_t mode, unsigned dataBits)
{
    switch (code) {
    case 1:
    case 5:
        return {0, true, 0, 0, 9};
    case 2:
        return {0, false, 5, mode, 9};
    case 4:
        if (mode == 7) {
            return {0, true, 5, 7, 1};
        }
        if (mode == 0) {
            return dataBits == 8 ? Effect{0, true, 1, 6, 2} : Effect{0, false, 1, 0, 9};
        }
        return {0, false, 5, mode, 9};
    default:
        return {code, false, 5, mode, 9};
    }
}

TEST_F(SignalsTest, HaveTheirEffectInEachMode)
{
    proc_->ProcSetCamConfig(cam_.get(), &info_, 4);
    for (const std::uint32_t code : {1U, 2U, 3U, 4U, 5U, 6U, 99U, 0xFFFFFFFFU}) {
        for (const std::uint32_t mode : {0U, 5U, 6U, 7U}) {
            for (const unsigned char bits : std::vector<unsigned char>{8, 12, 16}) {
                SCOPED_TRACE(format("code %u, mode %u, %u bits", code, mode, bits));
                proc_->pendingSig = code;
                proc_->dynLutState = 5;
                proc_->dynLutMode = mode;
                proc_->dataBits = bits;
                host().config.format = 9;
                bool stop = !effectOf(code, mode, bits).stop;
                EXPECT_EQ(proc_->ProcSignal(cam_.get(), 1, &stop), 0);
                const Effect expected = effectOf(code, mode, bits);
                EXPECT_EQ(proc_->pendingSig, expected.pending);
                EXPECT_EQ(stop, expected.stop);
                EXPECT_EQ(proc_->dynLutState, expected.state);
                EXPECT_EQ(proc_->dynLutMode, expected.mode);
                EXPECT_EQ(host().config.format, expected.format);
            }
        }
    }
}

TEST_F(SignalsTest, IgnoreAFailedStop)
{
    signalAt(2, 5);
    failCalls("StopCapture");
    EXPECT_EQ(grab(0), 0);
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

} // namespace
