// Every key that concerns the camera reaches it; what it cannot do is told and the grab goes on.
#include "scene_session.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

using kxtest::Finished;
using kxtest::SceneSession;

SceneSession colourSession()
{
    return SceneSession{kxtest::ColourLight([](unsigned, unsigned) {
        return std::array<std::uint16_t, 3>{20000, 20000, 20000};
    })};
}

SceneSession greySession()
{
    return SceneSession{kxtest::GreyLight([](unsigned, unsigned) { return 20000; })};
}

/// Runs and returns what the plug-in logged; the grab must go well and export all its frames.
std::string logOf(SceneSession& session)
{
    session.set("log.level=info");
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_EQ(session.frames().size(), 2U);
    kxtest::expectBalance(session);
    return finished.out;
}

void expectLine(const std::string& log, const std::string& part)
{
    EXPECT_NE(log.find(part), std::string::npos) << "no \"" << part << "\" in\n" << log;
}

TEST(SessionSettings, EveryManualValueReachesTheCamera)
{
    SceneSession session = colourSession();
    session.configuration = R"(
[format]
pixel_format = "yuv422"
rotation = "on"
[acquisition]
frame_rate = "3 fps"
exposure = "12.5 ms"
gain = "4.5 dB"
gamma = 1.5
[color]
saturation = "120 %"
white_balance_red = 600
white_balance_blue = 480
[lut]
curve = "contrast 1.5"
)";
    const std::string log = logOf(session);
    expectLine(log, "  new CamFps val is 3.000000");
    expectLine(log, "  new swRotate val is: 1");
    expectLine(log, "  new Saturation val is 120.000000");
    expectLine(log, "  new WhiteBalance vals are: Red 600, Blue 480");
    expectLine(log, "  new Gain val is 4.500000");
    expectLine(log, "  new ExpoTime val is 12500.000000 (12500)us");
    expectLine(log, "  new Gamma val is 1.500000");
    expectLine(log, "LUT handler exit (nValues = 512, nCfgVals = 512, time = ");
}

TEST(SessionSettings, EveryValueOfTheAutomaticFunctionsReachesTheCamera)
{
    SceneSession session = greySession();
    session.configuration = R"(
[acquisition]
exposure_mode = "auto"
gain_mode = "auto"
[auto]
auto_exposure = "on"
brightness = 0.75
gain_min = "1 dB"
gain_max = "12 dB"
exposure_min = "100 us"
exposure_max = "20 ms"
)";
    const std::string log = logOf(session);
    expectLine(log, "AutoFunc params handler entry vals: bright 0.750000, glims [1.000000, "
                    "12.000000], etlims [100.000000, 20000.000000]");
    expectLine(log, "### set property (AUTO_EXPOSURE) val to 1.21");
    expectLine(log, "### set AUTO_GAIN_RANGE abs (min 1.000000, max 12.000000) rel (min 10, max "
                    "120) ###");
    expectLine(log, "### set AUTO_SHUTTER_RANGE abs (min 100.000000, max 20000.000000 ) rel (min "
                    "10, max 2000) ###");
    expectLine(log, "### set property 13 (GAIN) to OnOff=1 Auto=1 OnePush=0 ###");
    expectLine(log, "### set property 12 (SHUTTER) to OnOff=1 Auto=1 OnePush=0 ###");
    expectLine(log, "### set property 1 (AUTO_EXPOSURE) to OnOff=1 Auto=0 OnePush=0 ###");
}

TEST(SessionSettings, AbsentKeysLeaveTheCameraAsItIs)
{
    SceneSession session = greySession();
    const std::string log = logOf(session);
    for (const char* part : {"  Fps config is skipped", "  Rotate config is skipped",
                             "  Gamma config is skipped", "  skipped for \"Profile\"",
                             "  skipped for \"GainMode\"", "  skipped for \"ExpTimeMode\""}) {
        expectLine(log, part);
    }
    EXPECT_EQ(log.find("### set property"), std::string::npos) << log;
}

struct Excess {
    const char* name;
    const char* configuration;
    const char* warning;
};

void PrintTo(const Excess& each, std::ostream* out)
{
    *out << each.name;
}

class BeyondTheCamera : public testing::TestWithParam<Excess> {};

TEST_P(BeyondTheCamera, IsWarnedOfAndTheGrabGoesOnWithTheOldValue)
{
    SceneSession session = colourSession();
    session.set("format.pixel_format=yuv422");
    session.configuration = GetParam().configuration;
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_NE(finished.out.find("[KX_PG_PROC:w]: " + std::string(GetParam().warning)),
              std::string::npos)
        << finished.out;
    const auto frames = session.frames();
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_NEAR(frames[1]["exposure_us"].get<double>(), 8000, 1);
    EXPECT_NEAR(frames[1]["gain_db"].get<double>(), 0, 0.01);
}

INSTANTIATE_TEST_SUITE_P(
    SessionSettings, BeyondTheCamera,
    testing::Values(Excess{"GainAbove", "[acquisition]\ngain = \"50 dB\"",
                           "  asked Gain val 50.000000 exceeds max 24.000000, skipped"},
                    Excess{"GainBelow", "[acquisition]\ngain = \"-5 dB\"",
                           "  asked Gain val -5.000000 is lower than min 0.000000, skipped"},
                    Excess{"ExposureBelow", "[acquisition]\nexposure = \"5 us\"",
                           "  asked ExpoTime val 5.000000 is lower than min "},
                    Excess{"FrameRateAbove", "[acquisition]\nframe_rate = \"200 fps\"",
                           "  asked Fps val 200.000000 exceeds max "},
                    Excess{"GammaAbove", "[acquisition]\ngamma = 5",
                           "  asked Gamma val 5.000000 exceeds max 4.000000, skipped"},
                    Excess{"SaturationAbove", "[color]\nsaturation = \"401 %\"",
                           "  asked Saturation val 401.000000 exceeds max 400.000000, skipped"},
                    Excess{"WhiteBalanceAbove",
                           "[color]\nwhite_balance_red = 2000\nwhite_balance_blue = 500",
                           "  asked WhiteBalance Red val 2000 exceeds max 1023, skipped"}),
    [](const auto& each) { return std::string(each.param.name); });

} // namespace
