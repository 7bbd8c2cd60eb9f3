// Camera properties: what is written to the camera, and what is said about it.
#include "properties_fixture.h"

#include <limits>

using FlyCapture2::GAIN;
using kxtest::format;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

class PropertiesWriteTest : public kxtest::PropertyCameraTest {};

struct Absolute {
    const char* name;
    float asked;
    float written;
};

class PropertySetAbsTest : public PropertiesWriteTest,
                           public testing::WithParamInterface<Absolute> {};

TEST_P(PropertySetAbsTest, WritesWhatIsInRangeElseTheCurrentValue)
{
    // The camera runs in every mode that has to go.
    cam_->onGetProperty = [](FlyCapture2::Property& property) {
        property.absControl = false;
        property.onOff = false;
        property.onePush = true;
        property.autoManualMode = true;
    };
    EXPECT_EQ(cam_->ExPropertySetAbs(GAIN, GetParam().asked), 0);
    ASSERT_THAT(cam_->written, SizeIs(1));
    const FlyCapture2::Property& written = cam_->written[0];
    EXPECT_FLOAT_EQ(written.absValue, GetParam().written);
    EXPECT_EQ(written.type, GAIN);
    EXPECT_TRUE(written.absControl);
    EXPECT_TRUE(written.onOff);
    EXPECT_FALSE(written.onePush);
    EXPECT_FALSE(written.autoManualMode);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info(format("### set property 13 (GAIN) to %f ###",
                                        static_cast<double>(GetParam().written)))));
    EXPECT_THAT(sdkCalls(), ElementsAre(HasSubstr("GetPropertyInfo"), HasSubstr("GetProperty("),
                                        HasSubstr("SetProperty")));
}

INSTANTIATE_TEST_SUITE_P(Properties, PropertySetAbsTest,
                         testing::Values(Absolute{"Inside", 10, 10},
                                         Absolute{"Lowest", -2.5F, -2.5F},
                                         Absolute{"Highest", 24, 24},
                                         Absolute{"Under", -2.6F, 3.5F},
                                         Absolute{"Over", 24.1F, 3.5F}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(PropertiesWriteTest, WritesTheCurrentValueForWhatIsNoNumber)
{
    EXPECT_EQ(cam_->ExPropertySetAbs(GAIN, std::numeric_limits<float>::quiet_NaN()), 0);
    ASSERT_THAT(cam_->written, SizeIs(1));
    EXPECT_EQ(cam_->written[0].absValue, 3.5F);
}

TEST_F(PropertiesWriteTest, NamesARefusedTypeByItsEntry)
{
    // Type 32 has the entry of 13; this camera lets it be asked for, but not set.
    const auto type = static_cast<FlyCapture2::PropertyType>(32);
    for (const char* const operation : {"GetPropertyInfo", "GetProperty"}) {
        fcsim::Fault fault;
        fault.operation = operation;
        fault.skipEffect = true;
        fault.count = 0;
        fcsim::addFault(fault);
    }
    cam_->onGetPropertyInfo = [](FlyCapture2::PropertyInfo& info) { info.present = true; };
    failCalls("SetProperty", 0, 0);
    EXPECT_EQ(cam_->ExPropertySetAbs(type, 1), -4);
    EXPECT_EQ(cam_->ExPropertySetRel(type, 1, 1), -4);
    EXPECT_EQ(cam_->ExPropertySetEna(type, true), -4);
    EXPECT_EQ(cam_->ExPropertySetAutoOff(type), -4);
    EXPECT_THAT(journal().logs(),
                ElementsAre(warning("ExPropertySetAbs", "can't set property 13 (GAIN)"),
                            warning("ExPropertySetRel", "can't set property 13 (GAIN)"),
                            warning("ExPropertySetEna", "can't set property 13 (GAIN)"),
                            warning("ExPropertySetEnaAutoPush", "can't set property 13 (GAIN)")));
}

TEST_F(PropertiesWriteTest, WritesToThisCameraAlone)
{
    EXPECT_EQ(cam_->ExPropertySetAbs(GAIN, 1), 0);
    EXPECT_EQ(cam_->ExPropertySetRel(FlyCapture2::WHITE_BALANCE, 100, 100), 0);
    EXPECT_EQ(cam_->ExPropertySetEna(GAIN, true), -2);
    EXPECT_EQ(cam_->ExPropertySetAutoOff(GAIN), 0);
    const auto writes = journal().lines({"Camera.SetProperty"});
    EXPECT_THAT(writes, SizeIs(4));
    EXPECT_THAT(writes, testing::Each(testing::Not(HasSubstr("broadcast"))));
}

TEST_F(PropertiesWriteTest, SwitchesToManualAbsoluteControl)
{
    EXPECT_EQ(cam_->ExPropertySetEnaAutoPush(GAIN, true, true, false), 0);
    EXPECT_TRUE(current(GAIN).autoManualMode);
    EXPECT_EQ(cam_->ExPropertySetAbs(GAIN, 99), 0);
    EXPECT_FALSE(current(GAIN).autoManualMode);
}

struct Relative {
    const char* name;
    unsigned askedA;
    unsigned askedB;
    unsigned writtenA;
    unsigned writtenB;
};

class PropertySetRelTest : public PropertiesWriteTest,
                           public testing::WithParamInterface<Relative> {};

TEST_P(PropertySetRelTest, ChecksEachValueByItself)
{
    cam_->onGetProperty = [](FlyCapture2::Property& property) {
        property.absControl = true;
        property.onOff = false;
        property.onePush = true;
        property.autoManualMode = true;
    };
    EXPECT_EQ(
        cam_->ExPropertySetRel(FlyCapture2::WHITE_BALANCE, GetParam().askedA, GetParam().askedB),
        0);
    ASSERT_THAT(cam_->written, SizeIs(1));
    const FlyCapture2::Property& written = cam_->written[0];
    EXPECT_EQ(written.valueA, GetParam().writtenA);
    EXPECT_EQ(written.valueB, GetParam().writtenB);
    EXPECT_FALSE(written.absControl);
    EXPECT_TRUE(written.onOff);
    EXPECT_FALSE(written.onePush);
    EXPECT_FALSE(written.autoManualMode);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info(format("### new property 3 (WHITE_BALANCE) values: valA=%u "
                                        "valB=%u ###",
                                        GetParam().writtenA, GetParam().writtenB))));
}

INSTANTIATE_TEST_SUITE_P(Properties, PropertySetRelTest,
                         testing::Values(Relative{"Inside", 100, 200, 100, 200},
                                         Relative{"Limits", 10, 1000, 10, 1000},
                                         Relative{"AUnder", 9, 200, 500, 200},
                                         Relative{"BOver", 100, 1001, 100, 600},
                                         Relative{"Both", 0, 0xFFFFFFFF, 500, 600}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(PropertiesWriteTest, SwitchesPowerOnlyAndAnswersAsForAbsent)
{
    EXPECT_EQ(cam_->ExPropertySetEnaAutoPush(GAIN, true, true, false), 0);
    const FlyCapture2::Property before = current(GAIN);
    cam_->written.clear();
    EXPECT_EQ(cam_->ExPropertySetEna(GAIN, false), -2);
    ASSERT_THAT(cam_->written, SizeIs(1));
    EXPECT_FALSE(cam_->written[0].onOff);
    EXPECT_EQ(cam_->written[0].autoManualMode, before.autoManualMode);
    EXPECT_EQ(cam_->written[0].absControl, before.absControl);
    EXPECT_EQ(cam_->written[0].absValue, before.absValue);
    EXPECT_EQ(cam_->ExPropertySetEna(GAIN, true), -2);
    EXPECT_THAT(journal().logs(), ElementsAre(info("### set property 13 (GAIN) on/off to 0 ###"),
                                              info("### set property 13 (GAIN) on/off to 1 ###")));
}

struct Modes {
    const char* name;
    int (*call)(KxPGrey::CExCam&);
    bool onOff;
    bool automatic;
    bool onePush;
};

class PropertyModesTest : public PropertiesWriteTest, public testing::WithParamInterface<Modes> {};

TEST_P(PropertyModesTest, AreSetTogether)
{
    const Modes& modes = GetParam();
    const FlyCapture2::Property before = current(GAIN);
    EXPECT_EQ(modes.call(*cam_), 0);
    ASSERT_THAT(cam_->written, SizeIs(1));
    EXPECT_EQ(cam_->written[0].onOff, modes.onOff);
    EXPECT_EQ(cam_->written[0].autoManualMode, modes.automatic);
    EXPECT_EQ(cam_->written[0].onePush, modes.onePush);
    EXPECT_EQ(cam_->written[0].absControl, before.absControl);
    EXPECT_EQ(cam_->written[0].absValue, before.absValue);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info(format("### set property 13 (GAIN) to OnOff=%i Auto=%i "
                                        "OnePush=%i ###",
                                        modes.onOff, modes.automatic, modes.onePush))));
}

using Cam = KxPGrey::CExCam;

INSTANTIATE_TEST_SUITE_P(
    Properties, PropertyModesTest,
    testing::Values(
        Modes{"Off", [](Cam& cam) { return cam.ExPropertySetAutoOff(GAIN); }, true, false, false},
        Modes{"Once", [](Cam& cam) { return cam.ExPropertySetAutoOnce(GAIN); }, true, false, true},
        Modes{"Continuous", [](Cam& cam) { return cam.ExPropertySetAutoCont(GAIN); }, true, true,
              false},
        Modes{"NoPower",
              [](Cam& cam) { return cam.ExPropertySetEnaAutoPush(GAIN, false, true, true); }, false,
              true, true}),
    [](const auto& one) { return std::string(one.param.name); });

} // namespace
