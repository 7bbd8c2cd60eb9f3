// Hints about keys that have no effect where they are.
#include "config/config_hints.h"
#include "config_fixture.h"

#include <ostream>

namespace kxhost {
namespace {

struct HintCase {
    const char* title;
    const char* text;
    std::vector<std::string> hints;
};

void PrintTo(const HintCase& each, std::ostream* out)
{
    *out << each.title;
}

class ConfigHints : public testing::TestWithParam<HintCase> {};

TEST_P(ConfigHints, AreGivenWhereTheyAreDue)
{
    EXPECT_EQ(hintsOn(good(GetParam().text)), GetParam().hints);
}

constexpr const char* kAllAutomatic =
    "[acquisition]\nexposure_mode = \"auto\"\ngain_mode = \"auto\"\n[auto]\nauto_exposure = "
    "\"on\"\nbrightness = 0.4\ngain_min = 0\ngain_max = 9\nexposure_min = \"1 ms\"\nexposure_max = "
    "\"9 ms\"\n";

INSTANTIATE_TEST_SUITE_P(
    Light, ConfigHints,
    testing::Values(
        HintCase{"Nothing", "", {}},
        HintCase{"Manual", "[acquisition]\nexposure = \"1 ms\"\ngain = 3\n", {}},
        HintCase{"Automatic", kAllAutomatic, {}},
        HintCase{"ValuesWithAutomaticModes",
                 "[acquisition]\nexposure = \"1 ms\"\nexposure_mode = \"auto\"\ngain = 3\n"
                 "gain_mode = \"auto\"\n",
                 {"camera.toml:2: acquisition.exposure = \"1000 us\": has no effect: with "
                  "exposure_mode = \"auto\" the camera chooses the value",
                  "camera.toml:4: acquisition.gain = \"3 dB\": has no effect: with gain_mode = "
                  "\"auto\" the camera chooses the value"}},
        HintCase{"ValuesWithKeptModes",
                 "[acquisition]\nexposure = \"1 ms\"\nexposure_mode = \"keep\"\ngain = 3\n"
                 "gain_mode = \"keep\"\n",
                 {"camera.toml:2: acquisition.exposure = \"1000 us\": has no effect: with "
                  "exposure_mode = \"keep\" it is not handed to the camera",
                  "camera.toml:4: acquisition.gain = \"3 dB\": has no effect: with gain_mode = "
                  "\"keep\" it is not handed to the camera"}},
        HintCase{
            "ExposureOfAFramePeriod", "[acquisition]\nframe_rate = 50\nexposure = \"20 ms\"\n", {}},
        HintCase{"ExposureLongerThanAFramePeriod",
                 "[acquisition]\nframe_rate = 50\nexposure = \"20.01 ms\"\n",
                 {"camera.toml:3: acquisition.exposure = \"20010 us\": is longer than the time "
                  "between two frames of frame_rate; no camera can do both"}},
        HintCase{"GainLimitsOfManualGain",
                 "[acquisition]\nexposure_mode = \"auto\"\ngain = 3\n[auto]\ngain_min = 0\n"
                 "gain_max = 9\n",
                 {"camera.toml:5: auto.gain_min = \"0 dB\": has no effect: gain_mode is "
                  "\"manual\"",
                  "camera.toml:6: auto.gain_max = \"9 dB\": has no effect: gain_mode is "
                  "\"manual\""}},
        HintCase{"GainLimitsOfKeptGain",
                 "[acquisition]\nexposure_mode = \"auto\"\n[auto]\ngain_min = 0\ngain_max = 9\n",
                 {}},
        HintCase{"ExposureLimitsOfManualExposure",
                 "[acquisition]\nexposure_mode = \"manual\"\ngain_mode = \"auto\"\n[auto]\n"
                 "exposure_min = \"1 ms\"\nexposure_max = \"2 ms\"\n",
                 {"camera.toml:5: auto.exposure_min = \"1000 us\": has no effect: exposure_mode is "
                  "\"manual\"",
                  "camera.toml:6: auto.exposure_max = \"2000 us\": has no effect: exposure_mode is "
                  "\"manual\""}},
        HintCase{"AutoExposureWithNothingToFollow",
                 "[acquisition]\nexposure = \"1 ms\"\ngain = 3\n[auto]\nauto_exposure = \"on\"\n",
                 {"camera.toml:5: auto.auto_exposure = \"on\": has no effect: gain_mode and "
                  "exposure_mode are both \"manual\""}},
        HintCase{"KeptAutoExposure",
                 "[acquisition]\nexposure = \"1 ms\"\ngain = 3\n[auto]\nauto_exposure = "
                 "\"keep\"\n",
                 {}}),
    [](const auto& each) { return std::string(each.param.title); });

INSTANTIATE_TEST_SUITE_P(
    Pixels, ConfigHints,
    testing::Values(
        HintCase{"ColoursOfGreyPixels",
                 "[color]\nsaturation = 50\nwhite_balance_red = 1\nwhite_balance_blue = 2\n",
                 {"camera.toml:2: color.saturation = \"50 %\": has no effect: only with "
                  "pixel_format yuv411 or yuv422 are colours set",
                  "camera.toml:3: color.white_balance_red = 1: has no effect: only with "
                  "pixel_format yuv411 or yuv422 are colours set",
                  "camera.toml:4: color.white_balance_blue = 2: has no effect: only with "
                  "pixel_format yuv411 or yuv422 are colours set"}},
        HintCase{"ColoursOfRawColourPixels",
                 "[format]\npixel_format = \"bayer8\"\n[color]\nsaturation = 50\n",
                 {"camera.toml:4: color.saturation = \"50 %\": has no effect: only with "
                  "pixel_format yuv411 or yuv422 are colours set"}},
        HintCase{"ColoursOfYuv411",
                 "[format]\npixel_format = \"yuv411\"\n[color]\nsaturation = 50\n",
                 {}},
        HintCase{"ColoursOfYuv422",
                 "[format]\npixel_format = \"yuv422\"\n[color]\nsaturation = 50\n",
                 {}},
        HintCase{"Rotation",
                 "[format]\nrotation = \"on\"\n",
                 {"camera.toml:2: format.rotation = \"on\": is handed to the plug-in, which takes "
                  "note of it; kxhost turns no pictures"}},
        HintCase{"NoRotation", "[format]\nrotation = \"off\"\n", {}},
        HintCase{
            "Bayer", "[format]\npixel_format = \"bayer8\"\n[output]\nbayer = \"mosaic\"\n", {}},
        HintCase{"BayerOfAConversion",
                 "[format]\nconvert_to = \"bayer8\"\n[output]\nbayer = \"mosaic\"\nformat = "
                 "\"tiff\"\n",
                 {}},
        HintCase{"BayerOfOtherPixels",
                 "[output]\nbayer = \"mosaic\"\n",
                 {"camera.toml:2: output.bayer = \"mosaic\": has no effect: neither pixel_format "
                  "nor convert_to is \"bayer8\""}},
        HintCase{"BayerOfRawFiles",
                 "[format]\npixel_format = \"bayer8\"\n[output]\nbayer = \"mosaic\"\nformat = "
                 "\"raw\"\n",
                 {"camera.toml:4: output.bayer = \"mosaic\": has no effect: output.format is "
                  "neither \"png\" nor \"tiff\""}},
        HintCase{"CompressionOfTiff",
                 "[output]\ncompression = 9\nformat = \"tiff\"\n",
                 {"camera.toml:2: output.compression = 9: has no effect: output.format is not "
                  "\"png\""}},
        HintCase{"CompressionOfPng", "[output]\ncompression = 9\n", {}},
        HintCase{"PrefixOfNoPictures",
                 "[output]\nprefix = \"a\"\nformat = \"none\"\n",
                 {"camera.toml:2: output.prefix = \"a\": has no effect: output.format is "
                  "\"none\""}},
        HintCase{"LogIdWithoutSyslog",
                 "[log]\nid = 3\n",
                 {"camera.toml:2: log.id = 3: has no effect: log.sinks does not hold syslog"}},
        HintCase{"LogIdOfSyslog", "[log]\nid = 3\nsinks = \"syslog\"\n", {}},
        HintCase{"LogIdOfBoth", "[log]\nid = 3\nsinks = \"both\"\n", {}}),
    [](const auto& each) { return std::string(each.param.title); });

INSTANTIATE_TEST_SUITE_P(
    Lut, ConfigHints,
    testing::Values(
        HintCase{"Loaded", "[lut]\ncurve = \"invert\"\nbits = 12\n", {}},
        HintCase{"NotLoaded",
                 "[lut]\ncurve = \"invert\"\nmode = \"auto\"\n",
                 {"camera.toml:2: lut.curve = \"invert\": has no effect: only with lut.mode = "
                  "\"manual\" the table is loaded"}},
        HintCase{"TwelveBitPixels",
                 "[format]\npixel_format = \"mono12\"\n[lut]\ncurve = \"invert\"\n",
                 {"camera.toml:4: lut.curve = \"invert\": has no effect: cameras take no look-up "
                  "table with 12-bit pixels"}},
        HintCase{"TwelveBitPackedPixels",
                 "[format]\npixel_format = \"mono12_packed\"\n[lut]\ncurve = \"invert\"\n",
                 {"camera.toml:4: lut.curve = \"invert\": has no effect: cameras take no look-up "
                  "table with 12-bit pixels"}},
        HintCase{"BitsOfNothing",
                 "[lut]\nbits = 12\n",
                 {"camera.toml:2: lut.bits = 12: has no effect: there is no table, file or "
                  "curve"}}),
    [](const auto& each) { return std::string(each.param.title); });

TEST(ConfigHintsOnAims, TellThatNothingFollowsThemWithoutAnAutomaticMode)
{
    const Configuration configuration =
        good("[auto]\nbrightness = 0.5\ngain_min = 0\ngain_max = 9\nexposure_min = \"1 ms\"\n"
             "exposure_max = \"9 ms\"\n");
    for (const char* name :
         {"brightness", "gain_min", "gain_max", "exposure_min", "exposure_max"}) {
        EXPECT_EQ(hintOn(configuration, *findKey("auto", name)),
                  "has no effect: neither gain_mode nor exposure_mode is \"auto\"");
    }
    ASSERT_EQ(hintsOn(configuration).size(), 5U);
    EXPECT_EQ(hintsOn(configuration).back(),
              "camera.toml:6: auto.exposure_max = \"9000 us\": has no effect: neither gain_mode "
              "nor exposure_mode is \"auto\"");
}

std::string tableOf(unsigned value)
{
    std::string text = "[lut]\nbits = 12\ntable = [";
    for (std::size_t entry = 0; entry < kLutEntries; ++entry) {
        text += std::to_string(value) + ",";
    }
    return text + "]\n";
}

TEST(ConfigHintsOnTables, TellOfValuesThatTheCameraWouldRoundUpToATenthBit)
{
    EXPECT_TRUE(hintsOn(good(tableOf(4091))).empty());
    const std::vector<std::string> hints = hintsOn(good(tableOf(4092)));
    ASSERT_EQ(hints.size(), 1U);
    EXPECT_TRUE(hints[0].ends_with(": holds 4092, which becomes 512 of the camera's 9 bits, one "
                                   "too many for them; 4091 is the largest value of lut.bits = 12 "
                                   "that does not"))
        << hints[0];
}

} // namespace
} // namespace kxhost
