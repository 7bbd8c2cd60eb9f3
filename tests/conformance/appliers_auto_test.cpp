// Appliers of the automatic functions: targets and limits, and the modes that are told only once.
#include "appliers_fixture.h"

#include <cmath>

using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr unsigned kSerial = 1000;

class AutoFuncParamsTest : public kxtest::AppliersTest {
protected:
    AutoFuncParamsTest()
    {
        fcsim::pokeRegister(kSerial, 0x10A0, 0x80000000);
        fcsim::pokeRegister(kSerial, 0x1098, 0x80000000);
    }
    void apply() { proc_->ProcParametrizeCamAutoFuncParams(cam_.get()); }
};

TEST_F(AutoFuncParamsTest, KeepsEachGroupByItself)
{
    apply();
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("AutoFunc params handler entry vals: bright -1.000000, glims "
                                 "[-100.000000, -100.000000], etlims [-1.000000, -1.000000]"),
                            info("  skipped for \"Brightness\""),
                            info("  skipped for \"GainLimits\""),
                            info("  skipped for \"ExpTimeLimits\"")));
    EXPECT_THAT(cameraCalls(), IsEmpty());
}

TEST_F(AutoFuncParamsTest, PassesOnAllThree)
{
    host().config.atbright = 0.25F;
    host().config.gainlimsLow = 1.0F;
    host().config.gainlimsHigh = 12.0F;
    host().config.etlimsLow = 100.0F;
    host().config.etlimsHigh = 20'000.0F;
    apply();
    EXPECT_EQ(journal().logs().front(),
              info("AutoFunc params handler entry vals: bright 0.250000, glims [1.000000, "
                   "12.000000], etlims [100.000000, 20000.000000]"));
    EXPECT_THAT(journal().lines({"Camera.SetProperty", "Camera.WriteRegister"}),
                ElementsAre("Camera.SetProperty(AUTO_EXPOSURE abs=-3.75 on)",
                            "Camera.WriteRegister(0x10A0 0x8200A078)",
                            "Camera.WriteRegister(0x1098 0x8000A7D0)"));
    EXPECT_THAT(journal().logsWith("skipped"), IsEmpty());
}

TEST_F(AutoFuncParamsTest, OnlyLowLimitsDecideWhatIsKept)
{
    host().config.gainlimsHigh = 12.0F;
    host().config.etlimsHigh = 20'000.0F;
    apply();
    EXPECT_THAT(journal().logsWith("skipped"), SizeIs(3));
    journal().clear();
    host().config.gainlimsLow = 1.0F;
    host().config.gainlimsHigh = -100.0F;
    host().config.etlimsLow = 100.0F;
    host().config.etlimsHigh = -1.0F;
    apply();
    EXPECT_THAT(journal().logsWith("skipped"), ElementsAre(HasSubstr("Brightness")));
    EXPECT_THAT(journal().lines({"Camera.WriteRegister"}), SizeIs(2));
}

TEST_F(AutoFuncParamsTest, OnlyTheExactValueKeeps)
{
    for (const bool up : {false, true}) {
        const float end = up ? 1e9F : -1e9F;
        host().config.atbright = std::nextafter(-1.0F, end);
        host().config.gainlimsLow = std::nextafter(-100.0F, end);
        host().config.etlimsLow = std::nextafter(-1.0F, end);
        journal().clear();
        apply();
        EXPECT_THAT(journal().logsWith("skipped"), IsEmpty());
        EXPECT_THAT(journal().logsWith("[w|"),
                    ElementsAre(HasSubstr("[w|ExSetAutoExpoVal]"), HasSubstr("AUTO_GAIN_RANGE"),
                                HasSubstr("AUTO_SHUTTER_RANGE")));
    }
}

TEST_F(AutoFuncParamsTest, GoesOnAfterAFailure)
{
    host().config.atbright = 0.5F;
    host().config.gainlimsLow = 1.0F;
    host().config.gainlimsHigh = 12.0F;
    host().config.etlimsLow = 100.0F;
    host().config.etlimsHigh = 20'000.0F;
    failCalls("GetPropertyInfo");
    failCalls("WriteRegister");
    apply();
    EXPECT_THAT(journal().logs(),
                Contains(warning("ExSetAutoExpoVal", "can't get property info (AUTO_EXPOSURE)")));
    EXPECT_THAT(journal().lines({"Camera.WriteRegister"}), SizeIs(2));
}

class AutoFuncTest : public kxtest::AppliersTest {
protected:
    void apply(unsigned profile, unsigned gainMode, unsigned expoMode)
    {
        proc_->ProcParametrizeCamAutoFunc(cam_.get(), profile, gainMode, expoMode);
    }
    /// The modes that were told since the last call.
    static std::vector<std::string> told()
    {
        auto lines = journal().logsWith("### set property");
        journal().clear();
        return lines;
    }
    static std::string gainLine(bool automatic)
    {
        return info(kxtest::format("### set property 13 (GAIN) to OnOff=1 Auto=%i OnePush=0 ###",
                                   automatic ? 1 : 0));
    }
    static std::string shutterLine(bool automatic)
    {
        return info(kxtest::format("### set property 12 (SHUTTER) to OnOff=1 Auto=%i OnePush=0 ###",
                                   automatic ? 1 : 0));
    }
};

TEST_F(AutoFuncTest, KeepsEachByItself)
{
    apply(0, 0, 0);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("AutoFunc settings handler entry vals: prof 0, gainm 0, etimem 0"),
                            info("  skipped for \"Profile\""), info("  skipped for \"GainMode\""),
                            info("  skipped for \"ExpTimeMode\"")));
    EXPECT_THAT(cameraCalls(), IsEmpty());
    EXPECT_EQ(proc_->gainModeApplied, 0U);
    EXPECT_EQ(proc_->expoModeApplied, 0U);
    journal().clear();
    apply(2, 0, 1);
    EXPECT_THAT(applierLogs(),
                ElementsAre(info("AutoFunc settings handler entry vals: prof 2, gainm 0, etimem 1"),
                            info("  skipped for \"GainMode\"")));
}

TEST_F(AutoFuncTest, ProfileOneSwitchesAutoExposureOn)
{
    const std::string on =
        info("### set property 1 (AUTO_EXPOSURE) to OnOff=1 Auto=0 OnePush=0 ###");
    apply(1, 0, 0);
    EXPECT_THAT(told(), ElementsAre(on));
    // Unlike the modes it is told each time, and never switched off.
    apply(1, 0, 0);
    EXPECT_THAT(told(), ElementsAre(on));
    for (const unsigned profile : {0U, 2U, 3U, 0xFFFFFFFFU}) {
        apply(profile, 0, 0);
        EXPECT_THAT(told(), IsEmpty()) << profile;
    }
}

TEST_F(AutoFuncTest, TellsTheCameraOnlyOfAChange)
{
    apply(0, 2, 1);
    EXPECT_THAT(told(), ElementsAre(gainLine(true), shutterLine(false)));
    EXPECT_EQ(proc_->gainModeApplied, 2U);
    EXPECT_EQ(proc_->expoModeApplied, 1U);
    apply(0, 2, 1);
    EXPECT_THAT(told(), IsEmpty());
    apply(0, 1, 2);
    EXPECT_THAT(told(), ElementsAre(gainLine(false), shutterLine(true)));
    // What is left alone stays remembered.
    apply(0, 0, 0);
    EXPECT_THAT(told(), IsEmpty());
    apply(0, 1, 2);
    EXPECT_THAT(told(), IsEmpty());
    apply(0, 2, 2);
    EXPECT_THAT(told(), ElementsAre(gainLine(true)));
    apply(0, 2, 1);
    EXPECT_THAT(told(), ElementsAre(shutterLine(false)));
}

TEST_F(AutoFuncTest, KnowsNoOtherModes)
{
    for (const unsigned mode : {3U, 0xFFFFFFFFU}) {
        apply(2, mode, mode);
        EXPECT_THAT(journal().logs(), ElementsAre(HasSubstr("handler entry")));
        EXPECT_THAT(cameraCalls(), IsEmpty());
        journal().clear();
    }
    EXPECT_EQ(proc_->gainModeApplied, 0U);
    EXPECT_EQ(proc_->expoModeApplied, 0U);
}

TEST_F(AutoFuncTest, NeverTriesAFailedSwitchAgainUntilTheModeChanges)
{
    failCalls("SetProperty", 0, 2);
    apply(0, 2, 2);
    EXPECT_THAT(
        journal().logsWith("[w|"),
        ElementsAre(warning("ExPropertySetEnaAutoPush", "can't set property 13 (GAIN)"),
                    warning("ExPropertySetEnaAutoPush", "can't set property 12 (SHUTTER)")));
    EXPECT_EQ(proc_->gainModeApplied, 2U);
    EXPECT_EQ(proc_->expoModeApplied, 2U);
    journal().clear();
    apply(0, 2, 2);
    EXPECT_THAT(cameraCalls(), IsEmpty());
    apply(0, 1, 1);
    EXPECT_THAT(told(), ElementsAre(gainLine(false), shutterLine(false)));
    apply(0, 2, 2);
    EXPECT_THAT(told(), ElementsAre(gainLine(true), shutterLine(true)));
}

TEST_F(AutoFuncTest, SaysWhatItKeepsBeforeItSwitchesTheRest)
{
    apply(1, 0, 2);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("AutoFunc settings handler entry vals: prof 1, gainm 0, etimem 2"),
                            info("  skipped for \"GainMode\""), HasSubstr("(AUTO_EXPOSURE)"),
                            shutterLine(true)));
}

TEST_F(AutoFuncTest, IsSwitchedInItsOrder)
{
    apply(1, 2, 2);
    EXPECT_THAT(journal().lines({"Camera.SetProperty"}),
                ElementsAre(HasSubstr("AUTO_EXPOSURE"), HasSubstr("GAIN"), HasSubstr("SHUTTER")));
}

} // namespace
