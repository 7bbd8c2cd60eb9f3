// What configuration keys demand of each other.
#include "config_fixture.h"

namespace kxhost {
namespace {

TEST(ConfigCheck, LimitsComeInPairs)
{
    EXPECT_EQ(onlyError("[auto]\ngain_min = 3\n"),
              "camera.toml:2: auto.gain_min = \"3 dB\": needs gain_max beside it");
    EXPECT_EQ(onlyError("[auto]\n\ngain_max = 3\n"),
              "camera.toml:3: auto.gain_max = \"3 dB\": needs gain_min beside it");
    EXPECT_EQ(onlyError("[auto]\nexposure_min = \"1 ms\"\n"),
              "camera.toml:2: auto.exposure_min = \"1000 us\": needs exposure_max beside it");
    EXPECT_EQ(onlyError("", {"auto.exposure_max=1 ms"}),
              "--set auto.exposure_max=1 ms: auto.exposure_max = \"1000 us\": needs exposure_min "
              "beside it");
}

TEST(ConfigCheck, TheLowerLimitIsNotAboveTheUpper)
{
    EXPECT_EQ(onlyError("[auto]\ngain_min = 3\ngain_max = 2\n"),
              "camera.toml:2: auto.gain_min = \"3 dB\": lies above gain_max = \"2 dB\"");
    EXPECT_EQ(onlyError("[auto]\nexposure_max = \"1 ms\"\nexposure_min = \"1.01 ms\"\n"),
              "camera.toml:3: auto.exposure_min = \"1010 us\": lies above exposure_max = "
              "\"1000 us\"");
    const Settings equal = good("[auto]\ngain_min = 3\ngain_max = 3\n").settings;
    EXPECT_EQ(equal.autoGainMinDb, equal.autoGainMaxDb);
}

/// The plug-in writes red and blue together, so that one alone would take the other out of "keep".
TEST(ConfigCheck, WhiteBalanceIsAPairToo)
{
    EXPECT_EQ(onlyError("[color]\nwhite_balance_red = 500\n"),
              "camera.toml:2: color.white_balance_red = 500: needs white_balance_blue beside it");
    EXPECT_EQ(onlyError("[color]\nwhite_balance_blue = 500\n"),
              "camera.toml:2: color.white_balance_blue = 500: needs white_balance_red beside it");
}

} // namespace
} // namespace kxhost
