// Ranges and target of the automatic functions: registers, values, status codes, messages.
#include "appliers_fixture.h"

#include <cmath>

using FlyCapture2::AUTO_EXPOSURE;
using FlyCapture2::GAIN;
using FlyCapture2::SHUTTER;
using kxtest::info;
using kxtest::journal;
using kxtest::kNoLineEnd;
using kxtest::warning;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr unsigned kSerial = 1000;
constexpr unsigned kGainRegister = 0x10A0;
constexpr unsigned kShutterRegister = 0x1098;

class AutoRangesTest : public kxtest::AppliersTest {
protected:
    AutoRangesTest()
    {
        fcsim::pokeRegister(kSerial, kGainRegister, 0x80ABCDEF);
        fcsim::pokeRegister(kSerial, kShutterRegister, 0xC4ABCDEF);
    }
    static std::vector<std::string> registerWrites()
    {
        return journal().lines({"Camera.WriteRegister"});
    }
};

TEST_F(AutoRangesTest, GainLimitsGoIntoTheirRegister)
{
    absRanges[GAIN] = {0.0F, 24.0F};
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 12), 0);
    EXPECT_THAT(registerWrites(), ElementsAre("Camera.WriteRegister(0x10A0 0x82000078)"));
    EXPECT_THAT(journal().logs(),
                ElementsAre(StartsWith(info("### get property 13 (GAIN) range:")),
                            info("### set AUTO_GAIN_RANGE abs (min 0.000000, max 12.000000) rel "
                                 "(min 0, max 120) ###")));
    EXPECT_THAT(cameraCalls(), ElementsAre("GetPropertyInfo(GAIN)", "GetProperty(GAIN)",
                                           "ReadRegister(0x10A0)", "WriteRegister(0x10A0)"));
}

TEST_F(AutoRangesTest, ShutterLimitsGoIntoTheirRegister)
{
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(100, 20'000), 0);
    // The upper byte is what was read, with no bit added.
    EXPECT_THAT(registerWrites(), ElementsAre("Camera.WriteRegister(0x1098 0xC400A7D0)"));
    EXPECT_THAT(journal().logs(),
                ElementsAre(StartsWith(info("### get property 12 (SHUTTER) range:")),
                            info("### set AUTO_SHUTTER_RANGE abs (min 100.000000, max 20000.000000 "
                                 ") rel (min 10, max 2000) ###")));
    EXPECT_THAT(cameraCalls(), ElementsAre("GetPropertyInfo(SHUTTER)", "GetProperty(SHUTTER)",
                                           "ReadRegister(0x1098)", "WriteRegister(0x1098)"));
}

TEST_F(AutoRangesTest, GainLimitsIncludeTheEndsOfItsRange)
{
    const auto [min, max] = absRanges[GAIN];
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(min, max), 0);
    EXPECT_THAT(registerWrites(), ElementsAre("Camera.WriteRegister(0x10A0 0x82FE70F0)"));
    journal().clear();
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(std::nextafter(min, -9.0F), max), -5);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(min, std::nextafter(max, 99.0F)), -5);
    const std::string refusal =
        warning("ExPropertySetAutoRangeGain", "AUTO_GAIN_RANGE is out of bounds");
    EXPECT_THAT(journal().logs(), ElementsAre(refusal + kNoLineEnd, refusal + kNoLineEnd));
    EXPECT_THAT(cameraCalls(), IsEmpty());
}

TEST_F(AutoRangesTest, ShutterLimitsAreHeldAgainstMillisecondsInDoublePrecision)
{
    // As a single precision number 0.02 ms lie just under 20 us, 0.7 ms just under 700 us.
    absRanges[SHUTTER] = {0.02F, 0.7F};
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(20.0F, std::nextafter(700.0F, 0.0F)), 0);
    EXPECT_THAT(registerWrites(), SizeIs(1));
    journal().clear();
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(20.0F, 700.0F), -5);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(std::nextafter(20.0F, 0.0F), 600.0F), -5);
    const std::string refusal =
        warning("ExPropertySetAutoRangeExpo", "AUTO_SHUTTER_RANGE is out of bounds");
    EXPECT_THAT(journal().logs(), ElementsAre(refusal + kNoLineEnd, refusal + kNoLineEnd));
    EXPECT_THAT(cameraCalls(), IsEmpty());
}

TEST_F(AutoRangesTest, ShutterRangeIsNotRoundedToTheLimitsThatItIsHeldAgainst)
{
    // As a single precision number 0.1 ms lie just over 100 us.
    absRanges[SHUTTER] = {0.1F, 30.0F};
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(100.0F, 20'000.0F), -5);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(std::nextafter(100.0F, 200.0F), 20'000.0F), 0);
}

TEST_F(AutoRangesTest, LimitsBelowARangeFromZeroAreRefused)
{
    absRanges[GAIN] = {0.0F, 24.0F};
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(-1, 12), -5);
    EXPECT_THAT(registerWrites(), IsEmpty());
}

TEST_F(AutoRangesTest, LimitsThatAreNoNumbersAreRefused)
{
    const float noNumber = std::nanf("");
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(noNumber, 12), -5);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, noNumber), -5);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(noNumber, 20'000), -5);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(100, noNumber), -5);
    EXPECT_THAT(registerWrites(), IsEmpty());
}

TEST_F(AutoRangesTest, ShowNegativeStepsAsTheirLower32Bits)
{
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(-2.5F, 1), 0);
    EXPECT_EQ(journal().logs().back(),
              info("### set AUTO_GAIN_RANGE abs (min -2.500000, max 1.000000) rel (min 4294967271, "
                   "max 10) ###"));
}

TEST_F(AutoRangesTest, LongLimitsWrap)
{
    absRanges[GAIN] = {0.0F, 500.0F};
    absRanges[SHUTTER] = {0.0F, 100.0F};
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 409.55F), 0);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 409.65F), 0);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(0, 40'950), 0);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(0, 40'960), 0);
    EXPECT_THAT(registerWrites(), ElementsAre("Camera.WriteRegister(0x10A0 0x82000FFF)",
                                              "Camera.WriteRegister(0x10A0 0x82000000)",
                                              "Camera.WriteRegister(0x1098 0xC4000FFF)",
                                              "Camera.WriteRegister(0x1098 0xC4000000)"));
    // The message shows the steps before they are cut.
    EXPECT_THAT(journal().logs(), Contains(HasSubstr("rel (min 0, max 4096)")).Times(2));
    EXPECT_THAT(journal().logs(), Each(Not(HasSubstr("[w|"))));
}

TEST_F(AutoRangesTest, RegistersThatAreNotPresentAreLeftAlone)
{
    fcsim::pokeRegister(kSerial, kGainRegister, 0x7FFFFFFF);
    fcsim::pokeRegister(kSerial, kShutterRegister, 0x7FFFFFFF);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 12), -2);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(100, 20'000), -2);
    EXPECT_THAT(registerWrites(), IsEmpty());
    EXPECT_THAT(journal().logs(), Each(HasSubstr("### get property")));
}

TEST_F(AutoRangesTest, RegistersThatCannotBeReadAreNotPresent)
{
    failCalls("ReadRegister", 0, 0);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 12), -2);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(100, 20'000), -2);
    EXPECT_THAT(registerWrites(), IsEmpty());
}

TEST_F(AutoRangesTest, FailedWritesStayUnnoticed)
{
    failCalls("WriteRegister", 0, 0);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 12), 0);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(100, 20'000), 0);
    EXPECT_THAT(registerWrites(), SizeIs(2));
    EXPECT_THAT(journal().logs(), Each(Not(HasSubstr("[w|"))));
}

TEST_F(AutoRangesTest, WithoutARangeOnlyZeroIsInBounds)
{
    failCalls("GetPropertyInfo", 0, 0);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 1), -5);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 0), 0);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(0, 10), -5);
    EXPECT_EQ(cam_->ExPropertySetAutoRangeExpo(0, 0), 0);
    EXPECT_THAT(journal().logs(),
                Contains(warning("ExPropertyGetAbsRange", "can't get property info 13 (GAIN)")));
}

TEST_F(AutoRangesTest, UseTheRangeThatWasReadBefore)
{
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(GAIN, nullptr, nullptr), 0);
    absRanges[GAIN] = {0.0F, 1.0F};
    EXPECT_EQ(cam_->ExPropertySetAutoRangeGain(0, 12), 0);
}

class AutoExposureTest : public kxtest::AppliersTest {};

struct Level {
    const char* name;
    float level;
    float target;
};

class AutoExposureLevelTest : public AutoExposureTest, public testing::WithParamInterface<Level> {};

TEST_P(AutoExposureLevelTest, BecomesATarget)
{
    // The camera runs in every mode that has to go.
    cam_->onGetProperty = [](FlyCapture2::Property& property) {
        property.absControl = false;
        property.onOff = false;
        property.onePush = true;
        property.autoManualMode = true;
    };
    EXPECT_EQ(cam_->ExSetAutoExpoVal(GetParam().level), 0);
    ASSERT_THAT(cam_->written, SizeIs(1));
    const FlyCapture2::Property& written = cam_->written[0];
    EXPECT_EQ(written.type, AUTO_EXPOSURE);
    EXPECT_FLOAT_EQ(written.absValue, GetParam().target);
    EXPECT_TRUE(written.absControl);
    EXPECT_TRUE(written.onOff);
    EXPECT_FALSE(written.onePush);
    EXPECT_FALSE(written.autoManualMode);
    EXPECT_THAT(journal().logs(),
                ElementsAre(StartsWith(info("### get property 1 (AUTO_EXPOSURE) range:")),
                            info(kxtest::format("### set property (AUTO_EXPOSURE) val to %f ###",
                                                static_cast<double>(written.absValue)))));
}

INSTANTIATE_TEST_SUITE_P(AutoRanges, AutoExposureLevelTest,
                         testing::Values(Level{"Middle", 0.5F, 0.0F}, Level{"Dark", 0.25F, -3.75F},
                                         Level{"Bright", 0.75F, 1.25F},
                                         Level{"Darkest", 1e-30F, -7.5F},
                                         Level{"Brightest", std::nextafter(1.0F, 0.0F), 2.5F}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(AutoExposureTest, CallsTheCameraInItsOrder)
{
    EXPECT_EQ(cam_->ExSetAutoExpoVal(0.5F), 0);
    const std::vector<std::string> known = {"GetPropertyInfo(AUTO_EXPOSURE)",
                                            "GetProperty(AUTO_EXPOSURE)",
                                            "SetProperty(AUTO_EXPOSURE)"};
    EXPECT_THAT(cameraCalls(),
                ElementsAre("GetPropertyInfo(AUTO_EXPOSURE)", "GetPropertyInfo(AUTO_EXPOSURE)",
                            "GetProperty(AUTO_EXPOSURE)", "GetProperty(AUTO_EXPOSURE)",
                            "SetProperty(AUTO_EXPOSURE)"));
    journal().clear();
    EXPECT_EQ(cam_->ExSetAutoExpoVal(0.5F), 0);
    EXPECT_EQ(cameraCalls(), known);
}

TEST_F(AutoExposureTest, TargetFollowsTheRangeThatTheCameraHasNow)
{
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(AUTO_EXPOSURE, nullptr, nullptr), 0);
    absRanges[AUTO_EXPOSURE] = {-4.0F, 2.0F};
    EXPECT_EQ(cam_->ExSetAutoExpoVal(0.25F), 0);
    EXPECT_EQ(cam_->written.at(0).absValue, -2.0F);
}

TEST_F(AutoExposureTest, LevelsAtBothEndsAreOutOfBounds)
{
    for (const float level : {0.0F, 1.0F, -0.5F, 1.5F, std::nanf("")}) {
        journal().clear();
        EXPECT_EQ(cam_->ExSetAutoExpoVal(level), -5);
        EXPECT_THAT(
            journal().logs(),
            ElementsAre(warning("ExSetAutoExpoVal", kxtest::format("the value %f is out of bounds "
                                                                   "(0.000000;1.000000)",
                                                                   static_cast<double>(level))) +
                        kNoLineEnd));
        EXPECT_THAT(cameraCalls(), IsEmpty());
    }
}

TEST_F(AutoExposureTest, EachFailureHasACodeAndAMessage)
{
    failCalls("GetPropertyInfo");
    EXPECT_EQ(cam_->ExSetAutoExpoVal(0.5F), -1);
    EXPECT_EQ(journal().logs().back(),
              warning("ExSetAutoExpoVal", "can't get property info (AUTO_EXPOSURE)"));
    // The first read belongs to the range, whose failure is no failure here.
    failCalls("GetProperty", 0, 2);
    EXPECT_EQ(cam_->ExSetAutoExpoVal(0.5F), -3);
    EXPECT_THAT(journal().logs(),
                Contains(warning("ExPropertyGetAbsRange", "can't get property 1 (AUTO_EXPOSURE)")));
    EXPECT_EQ(journal().logs().back(),
              warning("ExSetAutoExpoVal", "can't get property (AUTO_EXPOSURE)"));
    failCalls("SetProperty");
    EXPECT_EQ(cam_->ExSetAutoExpoVal(0.5F), -4);
    EXPECT_EQ(journal().logs().back(),
              warning("ExSetAutoExpoVal", "can't set property (AUTO_EXPOSURE)"));
}

TEST_F(AutoExposureTest, WorksWithoutARememberedRange)
{
    failCalls("GetProperty");
    EXPECT_EQ(cam_->ExSetAutoExpoVal(0.25F), 0);
    EXPECT_EQ(cam_->written.at(0).absValue, -3.75F);
}

TEST_F(AutoExposureTest, SaysNothingOfCamerasWithoutIt)
{
    cam_->onGetPropertyInfo = [](FlyCapture2::PropertyInfo& info) { info.present = false; };
    EXPECT_EQ(cam_->ExSetAutoExpoVal(0.5F), -2);
    EXPECT_EQ(cam_->ExSetAutoExpoEna(true), -2);
    EXPECT_THAT(journal().logs(), IsEmpty());
    EXPECT_THAT(cam_->written, IsEmpty());
}

TEST_F(AutoExposureTest, IsSwitchedInManualMode)
{
    EXPECT_EQ(cam_->ExSetAutoExpoEna(true), 0);
    EXPECT_EQ(cam_->ExSetAutoExpoEna(false), 0);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("### set property 1 (AUTO_EXPOSURE) to OnOff=1 Auto=0 OnePush=0 "
                                 "###"),
                            info("### set property 1 (AUTO_EXPOSURE) to OnOff=0 Auto=0 OnePush=0 "
                                 "###")));
    failCalls("SetProperty");
    EXPECT_EQ(cam_->ExSetAutoExpoEna(true), -4);
    EXPECT_EQ(journal().logs().back(),
              warning("ExPropertySetEnaAutoPush", "can't set property 1 (AUTO_EXPOSURE)"));
}

} // namespace
