// A camera that is lost and comes back, through the services that the plug-in calls.
#include "grab/camera_absence.h"
#include "grab/services.h"
#include "services/service_exports.h"

#include <gtest/gtest.h>

#include <kx_scenario.h>

namespace kxhost {
namespace {

constexpr float kWarm = 40;
constexpr float kUnknown = -321;

class CameraAbsenceTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::destroy_at(&services());
        std::construct_at(&services());
        host().settings.serial = "17";
        KxSc__SetParamVal(kKxScCodec, "MONO8T");
    }
    void TearDown() override { services().scenario = {}; }

    static HostServices& host() { return services(); }

    /// What a call wrote to standard error.
    template <typename Call>
    static std::string said(const Call& call)
    {
        testing::internal::CaptureStderr();
        call();
        return testing::internal::GetCapturedStderr();
    }
    static std::string saidByCapture(int width = 64, int height = 48)
    {
        return said([&] {
            KxGi__ResetTermSigProc();
            KxGi__HaltStop(width, height, kWarm);
            KxGi__HaltStop(width, height, kWarm);
            KxGi__SetTermSigProc();
        });
    }
    static void lose()
    {
        said([] { cameraLost(host(), "it is not on the bus"); });
    }
    /// The text of the exception that the failed retrieval ends the loop with; empty = none.
    static std::string endOfLoop(float celsius)
    {
        try {
            KxGi__HaltUpdate(64, celsius);
        } catch (const CameraLost& lost) {
            return lost.what();
        }
        return {};
    }
};

TEST_F(CameraAbsenceTest, TheLossIsToldOnce)
{
    const std::string text = said([] { cameraLost(host(), "it is not on the bus"); });
    EXPECT_TRUE(text.starts_with("kxhost: 2")) << text;
    EXPECT_TRUE(text.ends_with(
        " Camera 17 is lost: it is not on the bus. The grab waits until it is back.\n"))
        << text;
    EXPECT_EQ(said([] { cameraLost(host(), "it is not on the bus"); }), "");
}

TEST_F(CameraAbsenceTest, TheReturnIsToldWithItsFirstFrame)
{
    EXPECT_EQ(saidByCapture(), "");
    lose();
    host().counts.lastUs -= 3'050'000;
    host().counts.exported = 41;
    const std::string text = saidByCapture();
    EXPECT_NE(text.find(" Camera 17 is back after 3."), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with(" s: the grab goes on with frame 42.\n")) << text;
    EXPECT_EQ(saidByCapture(), "");
    EXPECT_NE(said([] { cameraLost(host(), "it is not on the bus"); }), "") << "a second time";
}

TEST_F(CameraAbsenceTest, OtherThreadsSeeThatItIsAway)
{
    saidByCapture();
    EXPECT_FALSE(host().counts.away);
    lose();
    EXPECT_TRUE(host().counts.away);
    saidByCapture();
    EXPECT_FALSE(host().counts.away);
}

TEST_F(CameraAbsenceTest, TimeAwayAddsUpUntilAFrameIsExported)
{
    saidByCapture();
    lose();
    host().counts.lastUs -= 3'000'000;
    saidByCapture(); // which exports nothing
    lose();
    host().counts.lastUs -= 4'000'000;
    saidByCapture();
    ASSERT_TRUE(host().absence.secondsBefore.has_value());
    EXPECT_GE(*host().absence.secondsBefore, 7);
    EXPECT_LT(*host().absence.secondsBefore, 60);
}

TEST_F(CameraAbsenceTest, FramesOfAnotherShapeEndTheLoop)
{
    EXPECT_EQ(saidByCapture(), "");
    lose();
    KxGi__ResetTermSigProc();
    EXPECT_THROW(KxGi__HaltStop(32, 48, kWarm), CameraLost);
    EXPECT_EQ(host().absence.unfit,
              "Camera 17 came back with frames of 32 x 48 MONO8T instead of 64 x 48 MONO8T.");
}

TEST_F(CameraAbsenceTest, FramesOfAnotherCodecEndTheLoop)
{
    EXPECT_EQ(saidByCapture(), "");
    lose();
    KxSc__SetParamVal(kKxScCodec, "MONO12T");
    KxGi__ResetTermSigProc();
    EXPECT_THROW(KxGi__HaltStop(64, 48, kWarm), CameraLost);
}

TEST_F(CameraAbsenceTest, WithoutALossFramesMayTakeAnotherShape)
{
    EXPECT_EQ(saidByCapture(), "");
    EXPECT_EQ(saidByCapture(32, 32), "");
}

TEST_F(CameraAbsenceTest, AReloadMayChangeTheShapeMeanwhile)
{
    EXPECT_EQ(saidByCapture(), "");
    lose();
    auto offer = std::make_unique<ConfigOffer>();
    offer->settings = host().settings;
    offer->settings.width = 32;
    host().offers.reload.put(std::move(offer));
    int restart = 0;
    said([&] { KxGi__DoReconfig(&restart); });
    ASSERT_EQ(restart, 1);
    EXPECT_NE(saidByCapture(32, 48).find("is back"), std::string::npos);
}

TEST_F(CameraAbsenceTest, AWidePassIsNotTheShapeToComeBackWith)
{
    EXPECT_EQ(saidByCapture(), "");
    KxGiMainCtx__SetFormat(2);
    KxSc__SetParamVal(kKxScCodec, "MONO12PT");
    EXPECT_EQ(saidByCapture(), "");
    lose();
    endWidePass(host());
    EXPECT_EQ(host().settings.pixelFormat, 1);
    KxSc__SetParamVal(kKxScCodec, "MONO8T");
    EXPECT_NE(saidByCapture().find("is back"), std::string::npos);
    EXPECT_EQ(host().signals.pollInLoop(), kLut12) << "what was asked for is not forgotten";
}

TEST_F(CameraAbsenceTest, AComputedTableIsAskedForAgain)
{
    std::vector<std::uint32_t> cdf(256);
    std::vector<std::uint16_t> table(256);
    KxGi__GetLutDynam(8, cdf.data(), 12, table.data());
    EXPECT_EQ(saidByCapture(), "");
    EXPECT_EQ(host().signals.pollInLoop(), kNoSignal);
    lose();
    saidByCapture();
    EXPECT_EQ(host().signals.pollInLoop(), kLut);
}

TEST_F(CameraAbsenceTest, AConfiguredTableCountsMoreThanAComputedOne)
{
    std::vector<std::uint32_t> cdf(256);
    std::vector<std::uint16_t> table(256);
    KxGi__GetLutDynam(8, cdf.data(), 12, table.data());
    auto offer = std::make_unique<ConfigOffer>();
    offer->settings = host().settings;
    offer->settings.lutMode = kSweepManual;
    host().offers.live.put(std::move(offer));
    said([] { KxGi__CheckDynConfig(); });
    host().settings.lutMode = kSweepKeep;
    saidByCapture();
    lose();
    saidByCapture();
    EXPECT_EQ(host().signals.pollInLoop(), kNoSignal);
}

TEST_F(CameraAbsenceTest, ACameraThatDoesNotAnswerEndsTheLoop)
{
    EXPECT_EQ(saidByCapture(), "");
    EXPECT_EQ(endOfLoop(kUnknown), "");
    EXPECT_EQ(endOfLoop(kUnknown), "");
    EXPECT_EQ(endOfLoop(kUnknown), "it does not answer any more");
    EXPECT_EQ(host().absence.why, "it does not answer any more");
}

TEST_F(CameraAbsenceTest, ASilentCameraEndsTheLoop)
{
    host().settings.silenceSeconds = 1e-6;
    EXPECT_EQ(saidByCapture(), "");
    host().watch.start(steadyUs() - 2'050'000);
    EXPECT_TRUE(endOfLoop(kWarm).starts_with("it has delivered no frame for 2."))
        << host().absence.why;
}

TEST_F(CameraAbsenceTest, SlowFramesAreNoSilence)
{
    host().settings.silenceSeconds = 1;
    host().watch.start(steadyUs() - 2'000'000);
    host().counts.framePeriodUs = 1'000'000; // three of them may pass
    EXPECT_EQ(endOfLoop(kWarm), "");
    host().counts.framePeriodUs = 600'000;
    EXPECT_NE(endOfLoop(kWarm), "");
    host().settings.exposureUs = 1e6F;
    EXPECT_NE(endOfLoop(kWarm), "") << "the camera sets the exposure";
    host().settings.exposureMode = kSweepManual;
    EXPECT_EQ(endOfLoop(kWarm), "");
}

TEST_F(CameraAbsenceTest, SilenceMayBeAllowed)
{
    host().settings.silenceSeconds = kWithoutEnd;
    host().watch.start(0);
    EXPECT_EQ(endOfLoop(kWarm), "");
}

TEST_F(CameraAbsenceTest, TheChoiceGoesBeforeTheSettings)
{
    host().settings.model = "A";
    host().settings.busMask = 3;
    host().choice = CameraChoice{"B", "99", 0};
    EXPECT_STREQ(KxGiMainCtx__GetModelStr(), "B");
    EXPECT_STREQ(KxGiMainCtx__GetIdStr(), "99");
    EXPECT_EQ(KxGiMainCtx__GetActiveCamMask(), 0U);
    EXPECT_EQ(nameOfCamera(host()), "Camera 99");
}

} // namespace
} // namespace kxhost
