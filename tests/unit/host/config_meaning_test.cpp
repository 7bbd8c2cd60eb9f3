// What kxhost check prints: each value with its meaning, as a file that can be read again.
#include "config/config_meaning.h"
#include "config_fixture.h"

#include <ostream>

namespace kxhost {
namespace {

struct MeaningCase {
    const char* title;
    const char* text;
    const char* line; ///< what check prints
};

void PrintTo(const MeaningCase& each, std::ostream* out)
{
    *out << each.title;
}

class ConfigMeaning : public testing::TestWithParam<MeaningCase> {};

TEST_P(ConfigMeaning, StandsBesideTheValue)
{
    const std::string text = "\n" + describeConfiguration(good(GetParam().text));
    EXPECT_NE(text.find("\n" + std::string(GetParam().line) + "\n"), std::string::npos) << text;
    Configuration again;
    EXPECT_TRUE(read(text, again).empty());
}

constexpr auto kTitle = [](const auto& each) { return std::string(each.param.title); };

INSTANTIATE_TEST_SUITE_P(
    Absent, ConfigMeaning,
    testing::Values(
        MeaningCase{"Width", "", "# width: kept as the camera has it"},
        MeaningCase{"Frames", "", "# frames: until a signal or an error"},
        MeaningCase{"Rotation", "", "# rotation: left as it is"},
        MeaningCase{"FrameRate", "", "# frame_rate: kept as the camera has it"},
        MeaningCase{"Exposure", "", "# exposure: kept as the camera has it"},
        MeaningCase{"ExposureMode", "", "# exposure_mode: kept as the camera has it"},
        MeaningCase{"ModeThatFollows", "[acquisition]\nexposure = \"1 ms\"\n",
                    "# exposure_mode: manual, the camera takes the exposure given here"},
        MeaningCase{"GainModeThatFollows", "[acquisition]\ngain = 1\n",
                    "# gain_mode: manual, the camera takes the gain given here"},
        MeaningCase{"Gamma", "", "# gamma: kept as the camera has it"},
        MeaningCase{"WhiteBalance", "", "# white_balance_red: kept as the camera has it"},
        MeaningCase{"AutoExposure", "", "# auto_exposure: kept as the camera has it"},
        MeaningCase{"GainMin", "", "# gain_min: kept as the camera has it"},
        MeaningCase{"Clock", "", "# clock_correction: time stamps come from this computer's clock"},
        MeaningCase{"Table", "", "# table: none"},
        MeaningCase{"LutMode", "",
                    "# mode: kept as the camera has it; signals may still compute a table"},
        MeaningCase{"LutModeThatFollows", "[lut]\ncurve = \"linear\"\n",
                    "# mode: the table is loaded and switched on"}),
    kTitle);

INSTANTIATE_TEST_SUITE_P(
    Given, ConfigMeaning,
    testing::Values(
        MeaningCase{"BusMask", "[camera]\nbus_mask = 0b1001\n",
                    "bus_mask = 9  # places on the bus: 0, 3"},
        MeaningCase{"HighestPlace", "[camera]\nbus_mask = 0x80000000\n",
                    "bus_mask = 2147483648  # places on the bus: 31"},
        MeaningCase{"NoBusMask", "[camera]\nbus_mask = 0\n",
                    "bus_mask = 0  # no place is set apart"},
        MeaningCase{"Frames", "[grab]\nframes = 7\n", "frames = 7"},
        MeaningCase{"FramesForEver", "[grab]\nframes = 0\n",
                    "frames = 0  # until a signal or an error"},
        MeaningCase{"Mono8", "[format]\npixel_format = \"mono8\"\n",
                    "pixel_format = \"mono8\"  # 8 bits a pixel, grey"},
        MeaningCase{"Mono12Packed", "[format]\npixel_format = \"mono12_packed\"\n",
                    "pixel_format = \"mono12_packed\"  # 12 bits a pixel, grey, two pixels in "
                    "three bytes"},
        MeaningCase{"Mono12", "[format]\npixel_format = \"mono12\"\n",
                    "pixel_format = \"mono12\"  # 12 bits a pixel, grey, in two bytes"},
        MeaningCase{"Yuv411", "[format]\npixel_format = \"yuv411\"\n",
                    "pixel_format = \"yuv411\"  # 12 bits a pixel, colour computed by the camera"},
        MeaningCase{"Yuv422", "[format]\npixel_format = \"yuv422\"\n",
                    "pixel_format = \"yuv422\"  # 16 bits a pixel, colour computed by the camera"},
        MeaningCase{"Bayer8", "[format]\npixel_format = \"bayer8\"\n",
                    "pixel_format = \"bayer8\"  # 8 bits a pixel, raw colour mosaic"},
        MeaningCase{"RotationOff", "[format]\nrotation = \"off\"\n",
                    "rotation = \"off\"  # software rotation is switched off"},
        MeaningCase{"RotationOn", "[format]\nrotation = \"on\"\n",
                    "rotation = \"on\"  # software rotation is switched on"},
        MeaningCase{"FrameRate", "[acquisition]\nframe_rate = 30\n",
                    "frame_rate = \"30 fps\"  # a frame every 33.33 ms"},
        MeaningCase{"SlowFrames", "[acquisition]\nframe_rate = 0.25\n",
                    "frame_rate = \"0.25 fps\"  # a frame every 4 s"},
        MeaningCase{"Exposure", "[acquisition]\nexposure = \"20 ms\"\n",
                    "exposure = \"20000 us\"  # 20 ms"},
        MeaningCase{"ShortExposure", "[acquisition]\nexposure = \"999 us\"\n",
                    "exposure = \"999 us\"  # 999 us"},
        MeaningCase{"LongExposure", "[acquisition]\nexposure = \"1.5 s\"\n",
                    "exposure = \"1500000 us\"  # 1.5 s"},
        MeaningCase{"ExposureAuto", "[acquisition]\nexposure_mode = \"auto\"\n",
                    "exposure_mode = \"auto\"  # the camera chooses the exposure"},
        MeaningCase{"ExposureManual", "[acquisition]\nexposure_mode = \"manual\"\n",
                    "exposure_mode = \"manual\"  # manual, the exposure stays where it is"},
        MeaningCase{"ExposureKept", "[acquisition]\nexposure_mode = \"keep\"\n",
                    "exposure_mode = \"keep\"  # kept as the camera has it"},
        MeaningCase{"Gain", "[acquisition]\ngain = 20\n",
                    "gain = \"20 dB\"  # the signal times 10"},
        MeaningCase{"NegativeGain", "[acquisition]\ngain = -20\n",
                    "gain = \"-20 dB\"  # the signal times 0.1"},
        MeaningCase{"GainAuto", "[acquisition]\ngain_mode = \"auto\"\n",
                    "gain_mode = \"auto\"  # the camera chooses the gain"},
        MeaningCase{"GammaOff", "[acquisition]\ngamma = 1\n",
                    "gamma = 1  # the camera's gamma is switched off"},
        MeaningCase{"GammaAlmostOff", "[acquisition]\ngamma = 1.0005\n",
                    "gamma = 1.0005  # the camera's gamma is switched off"},
        MeaningCase{"Gamma", "[acquisition]\ngamma = 1.002\n", "gamma = 1.002"},
        MeaningCase{"AutoExposure", "[auto]\nauto_exposure = \"on\"\n",
                    "auto_exposure = \"on\"  # the control of brightness is switched on"}),
    kTitle);

constexpr const char* kLimits =
    "[acquisition]\ngain_mode = \"auto\"\n[auto]\ngain_min = 0\ngain_max = 0.7\n"
    "exposure_min = \"100 us\"\nexposure_max = \"20.009 ms\"\n";

INSTANTIATE_TEST_SUITE_P(
    Automatic, ConfigMeaning,
    testing::Values(
        MeaningCase{"NormalBrightness", "[auto]\nbrightness = \"50 %\"\n",
                    "brightness = 0.5  # 0 EV, the camera's normal brightness"},
        MeaningCase{"Darker", "[auto]\nbrightness = 0.4\n",
                    "brightness = 0.4  # 20 % of the way from 0 EV to the camera's darkest "
                    "setting"},
        MeaningCase{"Brighter", "[auto]\nbrightness = 0.75\n",
                    "brightness = 0.75  # 50 % of the way from 0 EV to the camera's brightest "
                    "setting"},
        MeaningCase{"GainMin", kLimits, "gain_min = \"0 dB\"  # 0 steps of 0.1 dB"},
        MeaningCase{"GainMaxIsCut", kLimits, "gain_max = \"0.7 dB\"  # 6 steps of 0.1 dB"},
        MeaningCase{"ExposureMin", kLimits, "exposure_min = \"100 us\"  # 10 steps of 10 us"},
        MeaningCase{"ExposureMaxIsCut", kLimits,
                    "exposure_max = \"20009 us\"  # 2000 steps of 10 us"},
        MeaningCase{"Clock", "[timestamps]\nclock_correction = \"1 ppm\"\n",
                    "clock_correction = \"1000 ns/s\"  # time stamps come from the camera's "
                    "clock"},
        MeaningCase{"NoClock", "[timestamps]\nclock_correction = \"0 ppm\"\n",
                    "clock_correction = \"0 ns/s\"  # time stamps come from this computer's "
                    "clock"},
        MeaningCase{"Curve", "[lut]\ncurve = \"contrast 2.5\"\nbits = 10\n",
                    "curve = \"contrast 2.5\"  # 512 values of 10 bits from curve contrast 2.5"},
        MeaningCase{"LutOff", "[lut]\nmode = \"manual\"\n",
                    "mode = \"manual\"  # the camera's look-up table is switched off"},
        MeaningCase{"LutAuto", "[lut]\nmode = \"auto\"\n",
                    "mode = \"auto\"  # kept as the camera has it; signals may still compute a "
                    "table"}),
    kTitle);

TEST(DescribeConfiguration, PutsAHintBelowItsKey)
{
    const std::string text =
        describeConfiguration(good("[acquisition]\ngain = 3\ngain_mode = \"auto\"\n"));
    EXPECT_NE(text.find("gain = \"3 dB\"  # the signal times 1.413\n"
                        "#   hint: gain has no effect: with gain_mode = \"auto\" the camera "
                        "chooses the value\n"
                        "gain_mode = \"auto\"  # the camera chooses the gain\n"),
              std::string::npos)
        << text;
}

TEST(DescribeConfiguration, IsAConfigurationThatSaysTheSame)
{
    const Configuration first =
        good("[acquisition]\nexposure = \"10 ms\"\n[output]\nformat = \"raw\"\nfolder = \"x\"\n"
             "[[iobox]]\npin = \"gpio1\"\n[[iobox]]\npin = \"gpio2\"\n");
    const std::string text = describeConfiguration(first);
    const Configuration second = good(text);
    EXPECT_EQ(describeConfiguration(second), text);
    EXPECT_EQ(second.settings.exposureUs, 10000.0F);
    EXPECT_EQ(second.settings.iobox.size(), 2U);
}

TEST(DescribeConfiguration, TextsReadBackAsTheyWere)
{
    const std::string odd = "a \"b\" \\ c\t";
    Configuration first;
    ASSERT_TRUE(read("[camera]\nmodel = 'a \"b\" \\ c\t'\n", first).empty());
    ASSERT_EQ(first.settings.model, odd);
    const std::string text = describeConfiguration(first);
    EXPECT_NE(text.find(R"(model = "a \"b\" \\ c\t")"), std::string::npos) << text;
    EXPECT_EQ(good(text).settings.model, odd);
}

TEST(DescribeConfiguration, NamesEveryKey)
{
    const std::string text = "\n" + describeConfiguration(good("[[iobox]]\npin = \"gpio0\"\n"));
    for (const Key& key : configKeys()) {
        const std::string name(key.name);
        EXPECT_TRUE(text.find("\n" + name + " = ") != std::string::npos ||
                    text.find("\n# " + name + ": ") != std::string::npos)
            << name;
    }
}

} // namespace
} // namespace kxhost
