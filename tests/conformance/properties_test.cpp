// Camera properties: reading, writing, ranges and their cache, status codes and messages.
#include "properties_fixture.h"

#include <limits>

using FlyCapture2::GAIN;
using FlyCapture2::PropertyType;
using kxtest::format;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr float kAbsent = std::numeric_limits<float>::max();

class PropertiesTest : public kxtest::PropertyCameraTest {};

TEST_F(PropertiesTest, ReadsTheAbsoluteValue)
{
    EXPECT_FLOAT_EQ(cam_->ExPropertyGetAbs(GAIN), 3.5F);
    EXPECT_THAT(sdkCalls(),
                ElementsAre(HasSubstr("GetPropertyInfo(GAIN"), HasSubstr("GetProperty(GAIN")));
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(PropertiesTest, AnswersForAbsentPropertiesWithoutAWord)
{
    const PropertyType absent = FlyCapture2::IRIS;
    float low = 7;
    unsigned raw = 7;
    EXPECT_EQ(cam_->ExPropertyGetAbs(absent), kAbsent);
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(absent, &low, nullptr), -2);
    EXPECT_EQ(cam_->ExPropertyGetRelRange(absent, &raw, nullptr), -2);
    EXPECT_EQ(cam_->ExPropertyGetRel(absent, &raw, nullptr), -2);
    EXPECT_EQ(cam_->ExPropertySetAbs(absent, 1), -2);
    EXPECT_EQ(cam_->ExPropertySetRel(absent, 1, 1), -2);
    EXPECT_EQ(cam_->ExPropertySetEna(absent, true), -2);
    EXPECT_EQ(cam_->ExPropertySetEnaAutoPush(absent, true, true, true), -2);
    EXPECT_EQ(low, 7);
    EXPECT_EQ(raw, 7U);
    EXPECT_THAT(journal().logs(), IsEmpty());
    EXPECT_THAT(cam_->written, IsEmpty());
    EXPECT_EQ(journal().count("Camera.GetProperty"), 0U);
}

/// One operation on GAIN, and the name under which it warns.
struct Operation {
    const char* name;
    int (*call)(KxPGrey::CExCam&, PropertyType);
    bool writes;
};

int getAbs(KxPGrey::CExCam& cam, PropertyType type)
{
    const float value = cam.ExPropertyGetAbs(type);
    return value == -1.0F ? -1 : 0;
}

const Operation kOperations[] = {
    {"ExPropertyGetAbs", getAbs, false},
    {"ExPropertyGetAbsRange",
     [](KxPGrey::CExCam& cam, PropertyType type) {
         return cam.ExPropertyGetAbsRange(type, nullptr, nullptr);
     },
     false},
    {"ExPropertyGetRelRange",
     [](KxPGrey::CExCam& cam, PropertyType type) {
         return cam.ExPropertyGetRelRange(type, nullptr, nullptr);
     },
     false},
    {"ExPropertyGetRel",
     [](KxPGrey::CExCam& cam, PropertyType type) {
         return cam.ExPropertyGetRel(type, nullptr, nullptr);
     },
     false},
    {"ExPropertySetAbs",
     [](KxPGrey::CExCam& cam, PropertyType type) { return cam.ExPropertySetAbs(type, 5); }, true},
    {"ExPropertySetRel",
     [](KxPGrey::CExCam& cam, PropertyType type) { return cam.ExPropertySetRel(type, 5, 5); },
     true},
    {"ExPropertySetEna",
     [](KxPGrey::CExCam& cam, PropertyType type) { return cam.ExPropertySetEna(type, true); },
     true},
    {"ExPropertySetEnaAutoPush",
     [](KxPGrey::CExCam& cam, PropertyType type) {
         return cam.ExPropertySetEnaAutoPush(type, true, false, false);
     },
     true},
};

class PropertyFailureTest : public PropertiesTest, public testing::WithParamInterface<Operation> {};

TEST_P(PropertyFailureTest, HasACodeAndOneWarningForEachStep)
{
    const Operation& operation = GetParam();
    const bool onlyMinusOne = operation.call == getAbs;
    failCalls("GetPropertyInfo");
    EXPECT_EQ(operation.call(*cam_, GAIN), -1);
    failCalls("GetProperty");
    EXPECT_EQ(operation.call(*cam_, GAIN), onlyMinusOne ? -1 : -3);
    std::vector<std::string> expected = {
        warning(operation.name, "can't get property info 13 (GAIN)"),
        warning(operation.name, "can't get property 13 (GAIN)")};
    if (operation.writes) {
        failCalls("SetProperty");
        EXPECT_EQ(operation.call(*cam_, GAIN), -4);
        expected.push_back(warning(operation.name, "can't set property 13 (GAIN)"));
    }
    EXPECT_EQ(journal().logs(), expected);
}

INSTANTIATE_TEST_SUITE_P(Properties, PropertyFailureTest, testing::ValuesIn(kOperations),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(PropertiesTest, AsksForRangesOnce)
{
    float low = 0;
    float high = 0;
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(GAIN, &low, &high), 0);
    EXPECT_FLOAT_EQ(low, -2.5F);
    EXPECT_FLOAT_EQ(high, 24.0F);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("### get property 13 (GAIN) range: units=dB(decibel) "
                                 "min=-2.500000 max=24.000000 ###")));
    journal().clear();
    failCalls("GetPropertyInfo", 0, 0);
    low = 0;
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(GAIN, &low, nullptr), 0);
    EXPECT_FLOAT_EQ(low, -2.5F);
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(GAIN, nullptr, nullptr), 0);
    EXPECT_THAT(sdkCalls(), IsEmpty());
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(PropertiesTest, AsksForRawRangesOnce)
{
    unsigned low = 0;
    unsigned high = 0;
    EXPECT_EQ(cam_->ExPropertyGetRelRange(GAIN, &low, &high), 0);
    EXPECT_EQ(low, 0U);
    EXPECT_EQ(high, 680U);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("### get property 13 (GAIN) range: units=dB(decibel) min=0 "
                                 "max=680 ###")));
    journal().clear();
    high = 0;
    EXPECT_EQ(cam_->ExPropertyGetRelRange(GAIN, nullptr, &high), 0);
    EXPECT_EQ(high, 680U);
    EXPECT_THAT(sdkCalls(), IsEmpty());
    // The absolute range is a matter of its own.
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(GAIN, nullptr, nullptr), 0);
    EXPECT_THAT(sdkCalls(), SizeIs(2));
}

TEST_F(PropertiesTest, AsksAgainAfterAFailedRange)
{
    failCalls("GetProperty");
    float high = 0;
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(GAIN, nullptr, &high), -3);
    EXPECT_EQ(high, 0);
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(GAIN, nullptr, &high), 0);
    EXPECT_FLOAT_EQ(high, 24.0F);
}

TEST_F(PropertiesTest, RemembersRangesPerCamera)
{
    EXPECT_EQ(cam_->ExPropertyGetAbsRange(GAIN, nullptr, nullptr), 0);
    EXPECT_TRUE(cam_->propNames[GAIN].absRangeValid);
    const KxPGrey::CExCam other;
    EXPECT_FALSE(other.propNames[GAIN].absRangeValid);
    EXPECT_STREQ(other.propNames[GAIN].name, "GAIN");
}

TEST_F(PropertiesTest, ReadsRawValues)
{
    unsigned red = 0;
    unsigned blue = 0;
    EXPECT_EQ(cam_->ExPropertyGetRel(FlyCapture2::WHITE_BALANCE, &red, &blue), 0);
    EXPECT_EQ(red, 500U);
    EXPECT_EQ(blue, 600U);
    blue = 0;
    EXPECT_EQ(cam_->ExPropertyGetRel(FlyCapture2::WHITE_BALANCE, nullptr, &blue), 0);
    EXPECT_EQ(blue, 600U);
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(PropertiesTest, NamesEveryTypeModuloTheirNumber)
{
    failCalls("GetPropertyInfo", 0, 0);
    const char* const names[] = {"BRIGHTNESS",
                                 "AUTO_EXPOSURE",
                                 "SHARPNESS",
                                 "WHITE_BALANCE",
                                 "HUE",
                                 "SATURATION",
                                 "GAMMA",
                                 "IRIS",
                                 "FOCUS",
                                 "ZOOM",
                                 "PAN",
                                 "TILT",
                                 "SHUTTER",
                                 "GAIN",
                                 "TRIGGER_MODE",
                                 "TRIGGER_DELAY",
                                 "FRAME_RATE",
                                 "TEMPERATURE",
                                 "UNSPECIFIED_PROPERTY_TYPE"};
    for (unsigned type = 0; type < 40; ++type) {
        journal().clear();
        EXPECT_EQ(cam_->ExPropertyGetRel(static_cast<PropertyType>(type), nullptr, nullptr), -1);
        EXPECT_THAT(journal().logs(), ElementsAre(warning("ExPropertyGetRel",
                                                          format("can't get property info %u (%s)",
                                                                 type, names[type % 19]))));
    }
}

TEST_F(PropertiesTest, ReadsTheBayerTile)
{
    fcsim::pokeRegister(1000, 0x1040, 0x47524247);
    EXPECT_EQ(cam_->ExGetBayerFormat(), 0x47524247U);
    EXPECT_THAT(sdkCalls(), ElementsAre(HasSubstr("ReadRegister(0x1040")));
    failCalls("ReadRegister");
    EXPECT_EQ(cam_->ExGetBayerFormat(), 0U);
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(PropertiesTest, StartsWithoutExposure)
{
    const KxPGrey::CExCam other;
    EXPECT_EQ(other.expoTimeUs, 0U);
}

} // namespace
