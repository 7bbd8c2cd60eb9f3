// The examples that show what settings do: pictures of their cameras before and after.
#include "grab_session.h"
#include "picture_levels.h"
#include "read_picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using kxtest::Finished;
using kxtest::kxhostPath;
using kxtest::meanLevel;
using kxtest::ReadPicture;
using kxtest::spreadOfLevels;

const std::string kExamples = KX_TEST_EXAMPLES "/";

/// The last picture of a grab from the examples' scenes with these further words.
ReadPicture lastPicture(unsigned frames, std::vector<std::string> words)
{
    const kxtest::TemporaryFolder folder;
    std::vector<std::string> command = {kxhostPath(), "grab", "--quiet"};
    command.push_back("--simulate=" + kExamples + "scenes.toml");
    command.push_back("--frames=" + std::to_string(frames));
    command.push_back("--output=" + folder.path().string());
    std::ranges::move(words, std::back_inserter(command));
    const Finished finished = kxtest::run(command);
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_EQ(finished.err, "");
    std::vector<std::string> names = folder.names();
    std::erase_if(names, [](const std::string& name) { return !name.ends_with(".png"); });
    return names.empty() ? ReadPicture{} : kxtest::readPng(folder.file(names.back()));
}

/// As the camera starts.
ReadPicture before(unsigned serial, const std::string& pixelFormat = "mono8")
{
    return lastPicture(1, {"--set=camera.serial=" + std::to_string(serial),
                           "--set=format.pixel_format=" + pixelFormat});
}

ReadPicture after(const std::string& example, unsigned frames = 1)
{
    return lastPicture(frames, {"--config=" + kExamples + example});
}

TEST(SessionExamples, ExposureByHandBrightensADarkScene)
{
    const double dark = meanLevel(before(15011001));
    const double exposed = meanLevel(after("exposure-manual.toml"));
    EXPECT_LT(dark, 10);
    // 25 ms instead of 8 ms, and 12 dB: 12.44 times the signal.
    EXPECT_NEAR(exposed, dark * 25 / 8 * std::pow(10, 12.0 / 20), 0.1 * exposed);
    EXPECT_LT(exposed, 200);
}

TEST(SessionExamples, AutomaticExposureDarkensABrightScene)
{
    EXPECT_GT(meanLevel(before(15011002)), 200);
    const double regulated = meanLevel(after("exposure-auto.toml", 25));
    EXPECT_GT(regulated, 40);
    EXPECT_LT(regulated, 120);
}

TEST(SessionExamples, ALookUpTableGivesHazeItsContrast)
{
    const unsigned haze = spreadOfLevels(before(15011003));
    const unsigned clear = spreadOfLevels(after("lut-contrast.toml"));
    EXPECT_LT(haze, 160U);
    EXPECT_GT(clear, 220U);
}

TEST(SessionExamples, WhiteBalanceTakesTheCastAway)
{
    const auto cast = [](const ReadPicture& picture) {
        return meanLevel(picture, 0) - meanLevel(picture, 2);
    };
    EXPECT_GT(cast(before(15011004, "yuv422")), 40);
    EXPECT_LT(std::abs(cast(after("white-balance.toml"))), 10);
}

} // namespace
