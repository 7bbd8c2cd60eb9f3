// A whole pass over the configured parameters: who is called when, in a full pass and in a live
// one.
#include "appliers_fixture.h"

using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::Kind;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr bool kLive = true;
constexpr bool kFull = false;

class ParametersSequenceTest : public kxtest::AppliersTest {
protected:
    ParametersSequenceTest()
    {
        fcsim::pokeRegister(1000, 0x10A0, 0x80000000);
        fcsim::pokeRegister(1000, 0x1098, 0x80000000);
        auto& config = host().config;
        config.fps = 25;
        config.rotate = 2;
        config.satur = 100;
        config.wbred = 500;
        config.wbblu = 600;
        config.atbright = 0.25F;
        config.gainlimsLow = 1;
        config.gainlimsHigh = 12;
        config.etlimsLow = 100;
        config.etlimsHigh = 20'000;
        config.gainMan = 6;
        config.exptMan = 10'000;
        config.gamma = 2;
    }
    /// The modes of profile, gain and exposure.
    static void sweep(int profile, int gain, int exposure)
    {
        host().config.sweepProf = profile;
        host().config.sweepGainMod = gain;
        host().config.sweepEtimeMod = exposure;
    }
    /// The first word of each applier's first message, after one pass.
    std::vector<std::string> appliersOf(bool live)
    {
        journal().clear();
        EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), live), 0);
        std::vector<std::string> begun;
        const std::string prefix = info("");
        for (const std::string& line : journal().logsWith("handler entry")) {
            begun.push_back(line.substr(prefix.size(), line.find(" settings") - prefix.size()));
            if (line.find("params") != std::string::npos) {
                begun.back() = "AutoFunc params";
            }
        }
        return begun;
    }
    /// What one pass writes to the camera, without messages.
    std::vector<std::string> writesOf(bool live)
    {
        gKxLogLevelLib = 0;
        journal().clear();
        EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), live), 0);
        return journal().lines({"Camera.SetProperty", "Camera.WriteRegister"});
    }
};

constexpr const char* kRegion = "Acquisition set handler entry: OffsX -1 OffsY -1 Width -1 Height "
                                "-1";

TEST_F(ParametersSequenceTest, FullPassOfMonochromePictures)
{
    sweep(1, 1, 1);
    auto begun = appliersOf(kFull);
    ASSERT_THAT(begun, Not(IsEmpty()));
    EXPECT_THAT(journal().logs(), Contains(info(kRegion)));
    begun.erase(begun.begin());
    EXPECT_THAT(begun,
                ElementsAre("Fps", "Rotate", "AutoFunc", "Gain", "ExpoTime", "Gamma", "IoBox"));
}

TEST_F(ParametersSequenceTest, FullPassOfColourPictures)
{
    proc_->isColor = true;
    sweep(0, 2, 1);
    auto begun = appliersOf(kFull);
    ASSERT_THAT(begun, Not(IsEmpty()));
    begun.erase(begun.begin());
    EXPECT_THAT(begun, ElementsAre("Fps", "Rotate", "Saturation", "WhiteBalance", "AutoFunc params",
                                   "AutoFunc", "ExpoTime", "Gamma", "IoBox"));
}

TEST_F(ParametersSequenceTest, LivePass)
{
    sweep(1, 1, 1);
    EXPECT_THAT(appliersOf(kLive), ElementsAre("AutoFunc", "Gain", "ExpoTime", "Gamma", "IoBox"));
    proc_->isColor = true;
    sweep(0, 1, 2);
    EXPECT_THAT(appliersOf(kLive),
                ElementsAre("Saturation", "WhiteBalance", "AutoFunc", "Gain", "Gamma", "IoBox"));
    sweep(0, 2, 1);
    EXPECT_THAT(appliersOf(kLive), ElementsAre("Saturation", "WhiteBalance", "AutoFunc", "ExpoTime",
                                               "Gamma", "IoBox"));
    sweep(0, 0, 0);
    EXPECT_THAT(appliersOf(kLive),
                ElementsAre("Saturation", "WhiteBalance", "AutoFunc", "Gamma", "IoBox"));
}

struct Modes {
    const char* name;
    int gain;
    int exposure;
    bool params; ///< limits and target are told
    bool manualGain;
    bool manualExposure;
};

class ParametersModesTest : public ParametersSequenceTest,
                            public testing::WithParamInterface<Modes> {};

TEST_P(ParametersModesTest, DecideWhatIsApplied)
{
    const Modes& modes = GetParam();
    sweep(0, modes.gain, modes.exposure);
    const auto full = appliersOf(kFull);
    EXPECT_THAT(full, Contains("AutoFunc params").Times(modes.params ? 1 : 0));
    EXPECT_THAT(full, Contains("AutoFunc").Times(1));
    EXPECT_THAT(full, Contains("Gain").Times(modes.manualGain ? 1 : 0));
    EXPECT_THAT(full, Contains("ExpoTime").Times(modes.manualExposure ? 1 : 0));
    EXPECT_THAT(appliersOf(kLive), Not(Contains("AutoFunc params")));
}

INSTANTIATE_TEST_SUITE_P(Parameters, ParametersModesTest,
                         testing::Values(Modes{"Kept", 0, 0, false, false, false},
                                         Modes{"Manual", 1, 1, false, true, true},
                                         Modes{"AutoGain", 2, 0, true, false, false},
                                         Modes{"AutoExposure", 0, 2, true, false, false},
                                         Modes{"Both", 2, 2, true, false, false},
                                         Modes{"GainAlone", 1, 2, true, true, false},
                                         Modes{"ExposureAlone", 2, 1, true, false, true},
                                         Modes{"NoMode", 3, -1, false, false, false}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(ParametersSequenceTest, SweepModesAreAskedAfterColour)
{
    proc_->isColor = true;
    sweep(0, 1, 2);
    host().config.sweepLutMod = 0;
    EXPECT_THAT(appliersOf(kFull), Not(IsEmpty()));
    EXPECT_THAT(
        journal().lines(Kind::getter),
        ElementsAreArray({"KxGiMainCtx__GetOffsetX()",      "KxGiMainCtx__GetOffsetY()",
                          "KxGiMainCtx__GetWidth()",        "KxGiMainCtx__GetHeight()",
                          "KxGiMainCtx__GetFps()",          "KxGiMainCtx__GetRotate()",
                          "KxGiMainCtx__GetSatur()",        "KxGiMainCtx__GetWbred()",
                          "KxGiMainCtx__GetWbblu()",        "KxGiMainCtx__GetSweepProf()",
                          "KxGiMainCtx__GetSweepGainMod()", "KxGiMainCtx__GetSweepEtimeMod()",
                          "KxGiMainCtx__GetSweepLutMod()",  "KxGiMainCtx__GetAtbright()",
                          "KxGiMainCtx__GetGainlimsLow()",  "KxGiMainCtx__GetGainlimsHigh()",
                          "KxGiMainCtx__GetEtlimsLow()",    "KxGiMainCtx__GetEtlimsHigh()",
                          "KxGiMainCtx__GetGainMan()",      "KxGiMainCtx__GetGamma()",
                          "KxGiMainCtx__GetIoboxNum()",     "KxGiMainCtx__GetTsadjns()"}));
}

TEST_F(ParametersSequenceTest, LookUpTableComesBetweenExposureAndGamma)
{
    sweep(0, 1, 1);
    for (const bool live : {kLive, kFull}) {
        host().config.sweepLutMod = 1;
        EXPECT_THAT(appliersOf(live), Not(IsEmpty()));
        const auto asked = journal().lines(
            {"KxGiMainCtx__GetExptMan", "KxGiMainCtx__GetLutDataU16", "KxGiMainCtx__GetGamma"});
        ASSERT_THAT(asked, testing::SizeIs(testing::Ge(3)));
        EXPECT_EQ(asked.front(), "KxGiMainCtx__GetExptMan()");
        EXPECT_EQ(asked[1], "KxGiMainCtx__GetLutDataU16()");
        EXPECT_EQ(asked.back(), "KxGiMainCtx__GetGamma()");
        for (const int mode : {0, 2}) {
            host().config.sweepLutMod = mode;
            EXPECT_THAT(appliersOf(live), Not(IsEmpty()));
            EXPECT_EQ(journal().count("KxGiMainCtx__GetLutDataU16"), 0U);
        }
    }
}

TEST_F(ParametersSequenceTest, WritesOfAFullPass)
{
    proc_->isColor = true;
    sweep(1, 2, 1);
    EXPECT_THAT(
        writesOf(kFull),
        ElementsAre(
            "Camera.SetProperty(FRAME_RATE abs=25 on)", "Camera.SetProperty(SATURATION abs=100 on)",
            "Camera.SetProperty(WHITE_BALANCE raw=500,600 on)",
            "Camera.SetProperty(AUTO_EXPOSURE abs=-3.75 on)",
            "Camera.WriteRegister(0x10A0 0x8200A078)", "Camera.WriteRegister(0x1098 0x8000A7D0)",
            HasSubstr("AUTO_EXPOSURE"), HasSubstr("(GAIN "), HasSubstr("(SHUTTER "),
            "Camera.SetProperty(SHUTTER abs=10 on)", "Camera.SetProperty(GAMMA abs=2 on)"));
    EXPECT_TRUE(proc_->swRotate);
}

TEST_F(ParametersSequenceTest, CallsOfALivePass)
{
    sweep(0, 1, 1);
    gKxLogLevelLib = 0;
    EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), kLive), 0);
    EXPECT_THAT(cameraCalls(),
                ElementsAreArray(
                    {"IsConnected()",
                     // Gain lets go of the automatic function, then exposure.
                     "GetPropertyInfo(GAIN)", "GetProperty(GAIN)", "SetProperty(GAIN)",
                     "GetPropertyInfo(SHUTTER)", "GetProperty(SHUTTER)", "SetProperty(SHUTTER)",
                     // Gain: range, write.
                     "GetPropertyInfo(GAIN)", "GetProperty(GAIN)", "GetPropertyInfo(GAIN)",
                     "GetProperty(GAIN)", "SetProperty(GAIN)",
                     // Exposure: range, write, what became of it.
                     "GetPropertyInfo(SHUTTER)", "GetProperty(SHUTTER)", "GetPropertyInfo(SHUTTER)",
                     "GetProperty(SHUTTER)", "SetProperty(SHUTTER)", "GetPropertyInfo(SHUTTER)",
                     "GetProperty(SHUTTER)",
                     // Gamma: range, write.
                     "GetPropertyInfo(GAMMA)", "GetProperty(GAMMA)", "GetPropertyInfo(GAMMA)",
                     "GetProperty(GAMMA)", "SetProperty(GAMMA)"}));
    // The next one knows ranges and modes.
    journal().clear();
    EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), kLive), 0);
    EXPECT_THAT(cameraCalls(),
                ElementsAreArray(
                    {"IsConnected()", "GetPropertyInfo(GAIN)", "GetProperty(GAIN)",
                     "SetProperty(GAIN)", "GetPropertyInfo(SHUTTER)", "GetProperty(SHUTTER)",
                     "SetProperty(SHUTTER)", "GetPropertyInfo(SHUTTER)", "GetProperty(SHUTTER)",
                     "GetPropertyInfo(GAMMA)", "GetProperty(GAMMA)", "SetProperty(GAMMA)"}));
}

TEST_F(ParametersSequenceTest, LivePassTouchesNeitherGeometryNorRateNorLimits)
{
    proc_->isColor = true;
    proc_->swRotate = false;
    sweep(1, 2, 2);
    host().config.width = 80;
    EXPECT_THAT(appliersOf(kLive), Not(IsEmpty()));
    EXPECT_THAT(cameraCalls(), Each(Not(HasSubstr("Format7"))));
    EXPECT_THAT(cameraCalls(), Each(Not(HasSubstr("FRAME_RATE"))));
    EXPECT_THAT(cameraCalls(), Each(Not(HasSubstr("Register"))));
    EXPECT_FALSE(proc_->swRotate);
    EXPECT_THAT(journal().lines(Kind::host), IsEmpty());
    EXPECT_THAT(journal().logsWith("New Settings"), IsEmpty());
}

TEST_F(ParametersSequenceTest, FullPassEndsWhereTheSizeDoesNotFit)
{
    host().config.width = 80;
    sweep(1, 1, 1);
    EXPECT_NE(proc_->ProcParametrizeCam(cam_.get(), kFull), 0);
    EXPECT_THAT(cam_->written, IsEmpty());
    EXPECT_THAT(journal().logsWith("Fps settings"), IsEmpty());
    EXPECT_THAT(journal().lines(Kind::host), IsEmpty());
}

TEST_F(ParametersSequenceTest, RateInForceIsReadAfterAllParameters)
{
    sweep(0, 1, 1);
    gKxLogLevelLib = 0;
    EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), kFull), 0);
    const auto calls = cameraCalls();
    const std::vector<std::string> tail(calls.end() - 5, calls.end());
    EXPECT_THAT(tail, ElementsAre("SetProperty(GAMMA)", "GetPropertyInfo(FRAME_RATE)",
                                  "GetProperty(FRAME_RATE)", "GetFormat7Info(mode=0)",
                                  "GetFormat7Configuration()"));
}

TEST_F(ParametersSequenceTest, GoesOnWhenTheCameraStopsAnswering)
{
    proc_->isColor = true;
    sweep(1, 1, 2);
    failCalls("GetPropertyInfo", 7, 0);
    failCalls("SetProperty", 1, 0);
    failCalls("WriteRegister", 0, 0);
    const auto begun = appliersOf(kFull);
    EXPECT_EQ(begun.size(), 10U);
    EXPECT_EQ(begun.back(), "IoBox");
    EXPECT_THAT(journal().logsWith("New Settings"), testing::SizeIs(1));
}

TEST_F(ParametersSequenceTest, NewConfigurationForgetsTheModes)
{
    sweep(0, 2, 2);
    ASSERT_EQ(proc_->ProcSetCamConfig(cam_.get(), &info_, 4), 0);
    EXPECT_EQ(proc_->gainModeApplied, 2U);
    EXPECT_EQ(proc_->expoModeApplied, 2U);
    journal().clear();
    ASSERT_EQ(proc_->ProcSetCamConfig(cam_.get(), &info_, 4), 0);
    EXPECT_THAT(journal().logsWith("### set property 13 (GAIN) to OnOff=1 Auto=1"),
                testing::SizeIs(1));
    sweep(0, 0, 0);
    host().config.rotate = 0;
    ASSERT_EQ(proc_->ProcSetCamConfig(cam_.get(), &info_, 4), 0);
    EXPECT_EQ(proc_->gainModeApplied, 0U);
    EXPECT_EQ(proc_->expoModeApplied, 0U);
    EXPECT_FALSE(proc_->swRotate);
}

} // namespace
