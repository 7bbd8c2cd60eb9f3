// Properties of simulated cameras: presence, ranges, values, and how the frame rate is limited.
#include "sim_fixture.h"

using namespace FlyCapture2;

namespace {

class SimProperty : public SimTest {
protected:
    Property get(PropertyType type)
    {
        Property property(type);
        EXPECT_EQ(camera.GetProperty(&property).GetType(), PGRERROR_OK);
        return property;
    }
    PropertyInfo info(PropertyType type)
    {
        PropertyInfo info(type);
        EXPECT_EQ(camera.GetPropertyInfo(&info).GetType(), PGRERROR_OK);
        return info;
    }
    ErrorType setAbsolute(PropertyType type, float value)
    {
        Property property = get(type);
        property.absControl = true;
        property.onOff = true;
        property.autoManualMode = false;
        property.absValue = value;
        return camera.SetProperty(&property).GetType();
    }
};

TEST_F(SimProperty, ReportsWhatTheDescriptionSays)
{
    connect("[camera.properties.GAIN]\nraw = [16, 480]\nabsolute = [-2.0, 18.0]\nvalue = 3.0\n"
            "units = \"decibels\"\nabbreviation = \"dB\"\n");
    const PropertyInfo gain = info(GAIN);
    EXPECT_TRUE(gain.present);
    EXPECT_EQ(gain.min, 16U);
    EXPECT_EQ(gain.max, 480U);
    EXPECT_FLOAT_EQ(gain.absMin, -2.0F);
    EXPECT_FLOAT_EQ(gain.absMax, 18.0F);
    EXPECT_STREQ(gain.pUnits, "decibels");
    EXPECT_STREQ(gain.pUnitAbbr, "dB");
    EXPECT_FLOAT_EQ(get(GAIN).absValue, 3.0F);
    EXPECT_EQ(get(GAIN).valueA, 132U); // 16 + (3 + 2) / 20 * 464
}

TEST_F(SimProperty, AnAbsentPropertyIsReportedAsAbsentAndCannotBeRead)
{
    connect("[camera.properties.GAMMA]\npresent = false\n");
    EXPECT_FALSE(info(GAMMA).present);
    Property gamma(GAMMA);
    EXPECT_EQ(camera.GetProperty(&gamma).GetType(), PGRERROR_PROPERTY_NOT_PRESENT);
    EXPECT_EQ(camera.SetProperty(&gamma).GetType(), PGRERROR_PROPERTY_NOT_PRESENT);
}

TEST_F(SimProperty, APropertyTypeThatDoesNotExistIsRefused)
{
    connect();
    PropertyInfo nothing(UNSPECIFIED_PROPERTY_TYPE);
    EXPECT_EQ(camera.GetPropertyInfo(&nothing).GetType(), PGRERROR_INVALID_PARAMETER);
}

TEST_F(SimProperty, ValuesAtBothEndsOfTheRangeAreTaken)
{
    connect();
    EXPECT_EQ(setAbsolute(GAIN, 24.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(GAIN).absValue, 24.0F);
    EXPECT_EQ(setAbsolute(GAIN, 0.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(GAIN).absValue, 0.0F);
}

TEST_F(SimProperty, AValueOutOfRangeIsRefusedAndChangesNothing)
{
    connect();
    ASSERT_EQ(setAbsolute(GAIN, 6.0F), PGRERROR_OK);
    EXPECT_EQ(setAbsolute(GAIN, 25.0F), PGRERROR_INVALID_PARAMETER);
    EXPECT_FLOAT_EQ(get(GAIN).absValue, 6.0F);
}

TEST_F(SimProperty, ValuesAreRoundedToTheStep)
{
    connect("[camera.properties.GAIN]\nstep = 0.5\n");
    ASSERT_EQ(setAbsolute(GAIN, 3.3F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(GAIN).absValue, 3.5F);
}

TEST_F(SimProperty, RawAndAbsoluteValueBelongTogether)
{
    connect();
    Property gain = get(GAIN);
    gain.absControl = false;
    gain.valueA = 1023;
    ASSERT_EQ(camera.SetProperty(&gain).GetType(), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(GAIN).absValue, 24.0F);
    EXPECT_FALSE(get(GAIN).absControl);
}

TEST_F(SimProperty, ModesThatThePropertyLacksStayAsTheyAre)
{
    connect("[camera.properties.GAIN]\nauto = false\non_off = false\n");
    Property gain = get(GAIN);
    gain.autoManualMode = true;
    gain.onOff = false;
    ASSERT_EQ(camera.SetProperty(&gain).GetType(), PGRERROR_OK);
    EXPECT_FALSE(get(GAIN).autoManualMode);
    EXPECT_TRUE(get(GAIN).onOff);
}

TEST_F(SimProperty, TheShutterLimitsTheFrameRate)
{
    connect();
    ASSERT_EQ(setAbsolute(SHUTTER, 40.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(info(FRAME_RATE).absMax, 25.0F);
    EXPECT_EQ(info(FRAME_RATE).max, 99U); // 25 of 1 to 1000 as 1 to 4095
    EXPECT_EQ(setAbsolute(FRAME_RATE, 26.0F), PGRERROR_INVALID_PARAMETER);
    ASSERT_EQ(setAbsolute(SHUTTER, 20.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(info(FRAME_RATE).absMax, 50.0F);
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 25.0F);
    EXPECT_EQ(setAbsolute(FRAME_RATE, 26.0F), PGRERROR_OK);
}

TEST_F(SimProperty, AFrameRateThatIsSetLimitsTheShutter)
{
    connect();
    EXPECT_FLOAT_EQ(info(SHUTTER).absMax, 40.0F);
    EXPECT_EQ(info(SHUTTER).max, 165U); // 40 of 0.01 to 1000 as 1 to 4095
    EXPECT_EQ(setAbsolute(SHUTTER, 40.1F), PGRERROR_INVALID_PARAMETER);
    EXPECT_EQ(setAbsolute(SHUTTER, 40.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 25.0F);
    ASSERT_EQ(setAbsolute(FRAME_RATE, 10.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(info(SHUTTER).absMax, 100.0F);
    EXPECT_EQ(setAbsolute(SHUTTER, 100.0F), PGRERROR_OK);
}

TEST_F(SimProperty, AnAutomaticFrameRateFollowsTheShutter)
{
    connect("automatic = true\n");
    EXPECT_TRUE(get(FRAME_RATE).autoManualMode);
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 60.0F); // the sensor's
    EXPECT_FLOAT_EQ(info(SHUTTER).absMax, 1000.0F);
    ASSERT_EQ(setAbsolute(SHUTTER, 100.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 10.0F);
    ASSERT_EQ(setAbsolute(SHUTTER, 20.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 50.0F);
}

TEST_F(SimProperty, AFrameRateThatIsSwitchedOffFollowsTheShutter)
{
    connect("switched_on = false\n");
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 60.0F);
    EXPECT_FLOAT_EQ(info(SHUTTER).absMax, 1000.0F);
    ASSERT_EQ(setAbsolute(SHUTTER, 500.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 2.0F);
}

TEST_F(SimProperty, AFrameRateIsAutomaticUnlessTheDescriptionGivesIt)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "[camera.sensor]\nwidth = 64\nheight = 32\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    EXPECT_TRUE(get(FRAME_RATE).autoManualMode);
    camera.Disconnect();
    connect();
    EXPECT_FALSE(get(FRAME_RATE).autoManualMode);
}

TEST_F(SimProperty, ALongShutterAtPowerUpGivesWayToItsFrameRateWhenItIsShortened)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "[camera.sensor]\nwidth = 64\nheight = 32\n"
                             "[camera.properties.SHUTTER]\nvalue = 100.0\n"
                             "[camera.properties.FRAME_RATE]\nvalue = 25.0\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(SHUTTER).absValue, 100.0F);
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 10.0F);
    ASSERT_EQ(setAbsolute(SHUTTER, 10.0F), PGRERROR_OK);
    EXPECT_FLOAT_EQ(get(FRAME_RATE).absValue, 25.0F);
    EXPECT_FLOAT_EQ(info(SHUTTER).absMax, 40.0F);
}

TEST_F(SimProperty, ARawValueBeyondTheLimitIsRefused)
{
    connect();
    Property shutter = get(SHUTTER);
    shutter.absControl = false;
    shutter.valueA = 166;
    EXPECT_EQ(camera.SetProperty(&shutter).GetType(), PGRERROR_INVALID_PARAMETER);
    shutter.valueA = 165;
    EXPECT_EQ(camera.SetProperty(&shutter).GetType(), PGRERROR_OK);
    EXPECT_LE(get(SHUTTER).absValue, 40.0F);
}

TEST_F(SimProperty, APushOfWhatIsNeverAutomaticEndsAtOnce)
{
    connect("[camera.properties.BRIGHTNESS]\none_push = true\n");
    Property brightness = get(BRIGHTNESS);
    brightness.onePush = true;
    ASSERT_EQ(camera.SetProperty(&brightness).GetType(), PGRERROR_OK);
    EXPECT_FALSE(get(BRIGHTNESS).onePush);
}

TEST_F(SimProperty, TheBusLimitsTheFrameRate)
{
    connect("[camera.delivery]\nbandwidth = 20480.0\n"); // ten frames of 2048 bytes a second
    EXPECT_FLOAT_EQ(info(FRAME_RATE).absMax, 10.0F);
    Format7ImageSettings half;
    half.width = 64;
    half.height = 16;
    half.pixelFormat = PIXEL_FORMAT_MONO8;
    ASSERT_EQ(camera.SetFormat7Configuration(&half, 100.0F).GetType(), PGRERROR_OK);
    EXPECT_FLOAT_EQ(info(FRAME_RATE).absMax, 20.0F);
}

} // namespace
