// Reading configurations: every key, every kind of mistake.
#include "config/config_value.h"
#include "config_fixture.h"

namespace kxhost {
namespace {

TEST(Config, AbsentKeysAreTheSentinelsOfTheGetters)
{
    const Settings settings = good("").settings;
    EXPECT_EQ(settings.width, 0xFFFFFFFFU);
    EXPECT_EQ(settings.offsetY, 0xFFFFFFFFU);
    EXPECT_EQ(settings.frameRate, -1.0F);
    EXPECT_EQ(settings.gainDb, -100.0F);
    EXPECT_EQ(settings.exposureUs, -1.0F);
    EXPECT_EQ(settings.gamma, -1.0F);
    EXPECT_EQ(settings.saturation, -1);
    EXPECT_EQ(settings.whiteBalanceRed, -1);
    EXPECT_EQ(settings.brightness, -1.0F);
    EXPECT_EQ(settings.autoGainMinDb, -100.0F);
    EXPECT_EQ(settings.autoExposureMinUs, -1.0F);
    EXPECT_EQ(settings.rotation, 0);
    EXPECT_EQ(settings.gainMode, 0);
    EXPECT_EQ(settings.exposureMode, 0);
    EXPECT_EQ(settings.lutMode, 0);
    EXPECT_EQ(settings.clockCorrectionNs, 0);
    EXPECT_EQ(settings.convertTo, 0);
    EXPECT_TRUE(settings.lut.empty());
    EXPECT_TRUE(settings.iobox.empty());
}

TEST(Config, MessagesStayOnTheirLineWhateverANameHolds)
{
    EXPECT_EQ(onlyError("[camera]\n\"a\\nb\" = 1\n"), R"(camera.toml:2: unknown key camera.a\nb)");
    EXPECT_EQ(onlyError("[\"x\\u001b\"]\n"), R"(camera.toml:1: unknown section [x\u001B])");
    EXPECT_EQ(onlyError("", {"camera.wait=1 \n2"}).find('\n'), std::string::npos);
}

TEST(Config, SyntaxErrorsAreReported)
{
    // A header without a key, which the library's own assertions take for impossible.
    EXPECT_EQ(onlyError("[camera]\n[!]\n").rfind("camera.toml:2: ", 0), 0U);
    EXPECT_EQ(onlyError("[\x02").rfind("camera.toml:1: ", 0), 0U);
}

TEST(Config, ReadsEverySection)
{
    const Settings settings = good(R"(
[camera]
model = "Grasshopper"
serial = 12345678
bus_mask = 0b10
wait = "1500 ms"
[gige]
packet_size = "9 kB"
[grab]
frames = 10
buffers = 4
max_losses = 0
[region]
width = 640
height = 480
offset_x = 16
offset_y = 8
[format]
pixel_format = "bayer8"
convert_to = "yuv422"
rotation = "on"
[acquisition]
frame_rate = "29.5 fps"
exposure = "10 ms"
gain = 3
gamma = 1.5
[color]
saturation = "120 %"
white_balance_red = 500
white_balance_blue = 700
[auto]
auto_exposure = "on"
brightness = "40 %"
gain_min = "0 dB"
gain_max = "12 dB"
exposure_min = "100 us"
exposure_max = "20 ms"
[timestamps]
clock_correction = "-12 us/s"
[log]
level = "info"
sinks = "both"
id = 7
[output]
folder = "pictures"
prefix = "cam1_"
format = "tiff"
bayer = "mosaic"
compression = 9
metadata = false
overwrite = true
queue = 3
when_full = "drop"
writers = 1
)")
                                  .settings;
    EXPECT_EQ(settings.model, "Grasshopper");
    EXPECT_EQ(settings.serial, "12345678");
    EXPECT_EQ(settings.busMask, 2U);
    EXPECT_DOUBLE_EQ(settings.waitSeconds, 1.5);
    EXPECT_EQ(settings.packetSize, 9000U);
    EXPECT_EQ(settings.frames, 10U);
    EXPECT_EQ(settings.buffers, 4U);
    EXPECT_EQ(settings.maxLosses, 0);
    EXPECT_EQ(settings.width, 640U);
    EXPECT_EQ(settings.height, 480U);
    EXPECT_EQ(settings.offsetX, 16U);
    EXPECT_EQ(settings.offsetY, 8U);
    EXPECT_EQ(settings.pixelFormat, 9);
    EXPECT_EQ(settings.convertTo, 5);
    EXPECT_EQ(settings.rotation, 2);
    EXPECT_FLOAT_EQ(settings.frameRate, 29.5F);
    EXPECT_FLOAT_EQ(settings.exposureUs, 10000.0F);
    EXPECT_EQ(settings.exposureMode, kSweepManual);
    EXPECT_FLOAT_EQ(settings.gainDb, 3.0F);
    EXPECT_EQ(settings.gainMode, kSweepManual);
    EXPECT_FLOAT_EQ(settings.gamma, 1.5F);
    EXPECT_EQ(settings.saturation, 120);
    EXPECT_EQ(settings.whiteBalanceRed, 500);
    EXPECT_EQ(settings.whiteBalanceBlue, 700);
    EXPECT_EQ(settings.autoProfile, 1);
    EXPECT_FLOAT_EQ(settings.brightness, 0.4F);
    EXPECT_FLOAT_EQ(settings.autoGainMinDb, 0.0F);
    EXPECT_FLOAT_EQ(settings.autoGainMaxDb, 12.0F);
    EXPECT_FLOAT_EQ(settings.autoExposureMinUs, 100.0F);
    EXPECT_FLOAT_EQ(settings.autoExposureMaxUs, 20000.0F);
    EXPECT_EQ(settings.clockCorrectionNs, -12000);
    EXPECT_EQ(settings.logLevel, 3);
    EXPECT_EQ(settings.logSinks, 3);
    EXPECT_EQ(settings.logId, 7U);
    const ExportSettings output = exportSettings(settings);
    EXPECT_EQ(output.folder, "pictures");
    EXPECT_EQ(output.prefix, "cam1_");
    EXPECT_EQ(output.format, PictureFormat::kTiff);
    EXPECT_EQ(output.bayer, BayerPicture::kMosaic);
    EXPECT_EQ(output.compression, 9);
    EXPECT_FALSE(output.metadata);
    EXPECT_TRUE(output.overwrite);
    EXPECT_EQ(output.queueDepth, 3U);
    EXPECT_EQ(output.whenFull, WhenFull::kDrop);
    EXPECT_EQ(output.writerThreads, 1U);
}

TEST(Config, AGivenModeWinsOverTheOneThatFollowsFromAValue)
{
    const Settings settings =
        good("[acquisition]\ngain = 3\ngain_mode = \"auto\"\nexposure = \"1 ms\"\n").settings;
    EXPECT_EQ(settings.gainMode, kSweepAuto);
    EXPECT_EQ(settings.exposureMode, kSweepManual);
}

TEST(Config, ReadsPinsWithTheirParameters)
{
    const Settings settings = good(R"(
[[iobox]]
pin = "gpio1"
mode = "output"
source = "strobe"
invert = "yes"
delay = "50 us"
duration = "1 ms"
[[iobox]]
pin = "gpio2"
mode = "output"
source = "data"
bits = 10
word = 0x392
[[iobox]]
pin = "gpio3"
mode = "input"
source = "data"
)")
                                  .settings;
    ASSERT_EQ(settings.iobox.size(), 3U);
    EXPECT_EQ(settings.iobox[0].pin, 10);
    EXPECT_EQ(settings.iobox[0].mode, 1);
    EXPECT_EQ(settings.iobox[0].source, 2);
    EXPECT_EQ(settings.iobox[0].invert, 2);
    EXPECT_EQ(settings.iobox[0].parameters[0], 50U);
    EXPECT_EQ(settings.iobox[0].parameters[1], 1000U);
    EXPECT_EQ(settings.iobox[1].source, 5);
    EXPECT_EQ(settings.iobox[1].parameters[0], 10U);
    EXPECT_EQ(settings.iobox[1].parameters[1], 914U);
    EXPECT_EQ(settings.iobox[2].mode, 2);
    EXPECT_EQ(settings.iobox[2].parameters[0], kKeep);
}

TEST(Config, RefusesAnUnknownKeyWithLineAndSuggestion)
{
    EXPECT_EQ(onlyError("[acquisition]\n\nframerate = 30\n"),
              "camera.toml:3: unknown key acquisition.framerate; did you mean "
              "acquisition.frame_rate?");
    EXPECT_EQ(onlyError("[camera]\nexposure = \"1 ms\"\n"),
              "camera.toml:2: unknown key camera.exposure; did you mean acquisition.exposure?");
    EXPECT_EQ(onlyError("[aquisition]\ngain = 3\n"),
              "camera.toml:1: unknown section [aquisition]; did you mean [acquisition]?");
    EXPECT_EQ(onlyError("[output]\nturbocharger = 1\n"),
              "camera.toml:2: unknown key output.turbocharger");
    EXPECT_EQ(onlyError("gain = 3\n"),
              "camera.toml:1: gain stands outside its section [acquisition]");
}

TEST(Config, RefusesImpossibleValuesAndSaysWhatIsAllowed)
{
    EXPECT_EQ(
        onlyError("[acquisition]\nexposure = 10\n"),
        "camera.toml:2: acquisition.exposure = 10: expected a number from 1 us to 3600000000 us, "
        "with its unit (us, ns, ms, s, min)");
    EXPECT_EQ(onlyError("[region]\nwidth = 640.5\n"),
              "camera.toml:2: region.width = 640.5: expected a whole number from 1 to 65535");
    EXPECT_EQ(onlyError("[gige]\npacket_size = 9001\n"),
              "camera.toml:2: gige.packet_size = 9001: expected a number from 1 B to 9000 B, unit "
              "B, kB, KiB or none");
    EXPECT_EQ(
        onlyError("[log]\nlevel = \"loud\"\n"),
        "camera.toml:2: log.level = \"loud\": expected one of \"off\", \"error\", \"warning\", "
        "\"info\", \"debug\", \"trace\"");
    EXPECT_EQ(onlyError("[output]\nmetadata = \"yes\"\n"),
              "camera.toml:2: output.metadata = \"yes\": expected true or false");
    EXPECT_EQ(onlyError("[camera]\nserial = \"12abc\"\n"),
              "camera.toml:2: camera.serial = \"12abc\": expected a serial number from 0 to "
              "4294967295, as a number or a text");
    EXPECT_EQ(onlyError("[camera]\nmodel = 7\n"),
              "camera.toml:2: camera.model = 7: expected a text in quotes");
    EXPECT_EQ(onlyError("[output]\nfolder = 2024-05-01\n"),
              "camera.toml:2: output.folder = 2024-05-01: expected a text in quotes");
}

TEST(Config, EveryKeyRefusesAValueOfAForeignKind)
{
    for (const Key& key : configKeys()) {
        const bool pin = key.section == kIoboxSection;
        const std::string name(key.name);
        const std::string text = (pin ? "[[" : "[") + std::string(key.section) +
                                 (pin ? "]]\n" : "]\n") + name + " = 1979-05-27\n";
        Configuration result;
        const ConfigErrors errors = read(text, result);
        ASSERT_EQ(errors.size(), 1U) << text;
        EXPECT_TRUE(errors[0].starts_with("camera.toml:2: ")) << errors[0];
        EXPECT_NE(errors[0].find(allowedBy(key.rule)), std::string::npos) << errors[0];
    }
}

TEST(Config, EveryNumberRefusesWhatLiesBeyondItsLimits)
{
    for (const Key& key : configKeys()) {
        const auto* rule = std::get_if<NumberRule>(&key.rule);
        if (rule == nullptr || key.section == kIoboxSection) {
            continue;
        }
        const std::string name = std::string(key.section) + "." + std::string(key.name) + "=";
        for (const double value : {rule->min - 1, rule->max * 2 + 1}) {
            Configuration result;
            const std::string assignment = name + formatQuantity(value, rule->dimension);
            EXPECT_EQ(read("", result, {assignment}).size(), 1U) << assignment;
        }
    }
}

TEST(Config, ReportsEveryProblemAndAppliesNothing)
{
    Configuration result;
    result.settings.frames = 77;
    const ConfigErrors errors =
        read("[grab]\nframes = 3\nbuffers = 0\n[acquisition]\ngian = 3\nframe_rate = -1\n", result);
    ASSERT_EQ(errors.size(), 3U);
    EXPECT_TRUE(errors[0].starts_with("camera.toml:3: ")) << errors[0];
    EXPECT_TRUE(errors[1].starts_with("camera.toml:5: ")) << errors[1];
    EXPECT_TRUE(errors[2].starts_with("camera.toml:6: ")) << errors[2];
    EXPECT_EQ(result.settings.frames, 77U);
}

TEST(Config, ReportsBrokenToml)
{
    const std::string error = onlyError("[grab]\nframes = = 3\n");
    EXPECT_TRUE(error.starts_with("camera.toml:2: ")) << error;
    EXPECT_TRUE(onlyError("camera = 3\n").starts_with("camera.toml:1: camera is a section"));
    EXPECT_TRUE(onlyError("iobox = 3\n").starts_with("camera.toml:1: iobox settings are written"));
}

TEST(Config, OverridesWinAndAreCheckedAlike)
{
    const Configuration configuration =
        good("[acquisition]\ngain = 3\n", {"acquisition.gain=6 dB", "format.pixel_format=mono12",
                                           "grab.frames=5", "output.folder=a b"});
    EXPECT_FLOAT_EQ(configuration.settings.gainDb, 6);
    EXPECT_EQ(configuration.settings.pixelFormat, 3);
    EXPECT_EQ(configuration.settings.frames, 5U);
    EXPECT_EQ(configuration.settings.outputFolder, "a b");
    EXPECT_EQ(configuration.given.size(), 4U);
    EXPECT_EQ(onlyError("", {"grab.farmes=5"}),
              "--set grab.farmes=5: unknown key grab.farmes; did you mean grab.frames?");
    EXPECT_EQ(onlyError("", {"frames"}), "--set frames: expected section.key=value");
    // Latin 1: no file could hold it.
    EXPECT_EQ(onlyError("", {"camera.model=caf\xE9 1"}).rfind("--set camera.model=caf\xE9 1: ", 0),
              0U);
    EXPECT_EQ(onlyError("", {"iobox.pin=gpio1"}),
              "--set iobox.pin=gpio1: the settings of [[iobox]] can only be given in a file");
}

TEST(Config, WhereATextBelongsAnOverrideIsOneWhateverItLooksLike)
{
    for (const char* name : {"2024-05-01", "10", "1e3", "true", "10:30", "[]", "{", "a b", "#1"}) {
        EXPECT_EQ(good("", {std::string("output.folder=") + name}).settings.outputFolder, name);
    }
    EXPECT_EQ(good("", {"output.folder=\"in quotes\""}).settings.outputFolder, "in quotes");
    EXPECT_EQ(good("", {"output.folder="}).settings.outputFolder, "");
    EXPECT_EQ(onlyError("", {"output.metadata=1"}),
              "--set output.metadata=1: output.metadata = 1: expected true or false");
}

TEST(Config, ThePrefixOfPicturesHoldsNoSlash)
{
    EXPECT_EQ(good("[output]\nprefix = \"a-b.\"\n").settings.outputPrefix, "a-b.");
    EXPECT_EQ(onlyError("[output]\nprefix = \"a/b\"\n"),
              "camera.toml:2: output.prefix = \"a/b\": expected a text in quotes, without slashes");
    EXPECT_EQ(onlyError("", {"output.prefix=/"}),
              "--set output.prefix=/: output.prefix = \"/\": expected a text in quotes, without "
              "slashes");
}

TEST(Config, MessagesQuoteValuesSoThatTheyStayOnOneLine)
{
    EXPECT_EQ(onlyError("[log]\nlevel = \"a\\nb \\\"c\\\"\"\n"),
              "camera.toml:2: log.level = \"a\\nb \\\"c\\\"\": expected one of \"off\", "
              "\"error\", \"warning\", \"info\", \"debug\", \"trace\"");
}

/// No value that a file can hold is one of those by which the getters say "keep".
TEST(Config, SentinelsCannotBeConfigured)
{
    for (const char* assignment : {"acquisition.gain=-100",
                                   "acquisition.gain=-99.0001",
                                   "acquisition.gain=nan",
                                   "acquisition.exposure=-1 us",
                                   "acquisition.exposure=0.999 us",
                                   "acquisition.gamma=-1",
                                   "acquisition.gamma=0.1999999",
                                   "acquisition.frame_rate=-1",
                                   "acquisition.frame_rate=0",
                                   "acquisition.frame_rate=0.00099",
                                   "color.saturation=-1",
                                   "auto.brightness=-1",
                                   "auto.brightness=0",
                                   "auto.brightness=1",
                                   "auto.brightness=100 %",
                                   "auto.gain_min=-100",
                                   "auto.gain_min=-0.1",
                                   "auto.exposure_min=-1 us",
                                   "auto.exposure_min=9.9 us",
                                   "region.width=4294967295",
                                   "region.offset_x=-1",
                                   "color.white_balance_red=-1",
                                   "color.white_balance_blue=4294967295"}) {
        Configuration result;
        EXPECT_EQ(read("", result, {assignment}).size(), 1U) << assignment;
    }
    const Settings least = good("[acquisition]\ngain = -99\nexposure = \"1 us\"\ngamma = 0.2\n"
                                "frame_rate = 0.001\n")
                               .settings;
    EXPECT_EQ(least.gainDb, -99.0F);
    EXPECT_EQ(least.exposureUs, 1.0F);
    EXPECT_GE(static_cast<double>(least.gamma), 0.2);
    EXPECT_EQ(least.frameRate, 0.001F);
}

/// The camera counts them in twelve bits, of 0.1 dB and of 10 us.
TEST(Config, AutomaticLimitsEndWhereTheCamerasRegistersDo)
{
    const std::string both = "[auto]\nexposure_min = \"10 us\"\nexposure_max = ";
    EXPECT_EQ(good(both + "\"40.95 ms\"\n").settings.autoExposureMaxUs, 40950.0F);
    EXPECT_EQ(onlyError(both + "\"40.96 ms\"\n"),
              "camera.toml:3: auto.exposure_max = \"40.96 ms\": expected a number from 10 us to "
              "40950 us, with its unit (us, ns, ms, s, min)");
}

TEST(Config, AMissingFileIsOneSentence)
{
    Configuration result;
    EXPECT_EQ(loadConfiguration("no/such.toml", {}, result),
              ConfigErrors{"no/such.toml: the configuration file cannot be read"});
    EXPECT_TRUE(loadConfiguration("", {}, result).empty());
}

} // namespace
} // namespace kxhost
