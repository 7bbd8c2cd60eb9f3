// Exposure, gain and gamma of a configuration in the levels of the pictures.
#include "picture_levels.h"
#include "scene_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using kxtest::kSceneWidth;
using kxtest::ReadPicture;
using kxtest::SceneSession;

/// Levels of 12 bits stand at the top of 16.
constexpr double kFullScale = 65536;
/// A step of 12 bits, to which the converter rounds down.
constexpr double kStep = 16;

/// A tenth of full scale at the left edge, two tenths at the right one.
std::uint16_t dimLight(unsigned x, unsigned /*y*/)
{
    return static_cast<std::uint16_t>(6554 + x * 6554 / (kSceneWidth - 1));
}

ReadPicture dimPicture(const std::vector<std::string>& settings)
{
    SceneSession session(dimLight);
    session.set("format.pixel_format=mono12");
    for (const std::string& setting : settings) {
        session.set(setting);
    }
    return session.grabPicture();
}

/// The mean of the scene's light, amplified, as far as the pixels can hold it.
double expectedMean(double factor)
{
    double sum = 0;
    for (unsigned x = 0; x < kSceneWidth; ++x) {
        sum += std::min(dimLight(x, 0) * factor, kFullScale - kStep);
    }
    return sum / kSceneWidth;
}

TEST(SessionResponse, DoublingTheExposureDoublesTheMeanLevelUntilSaturation)
{
    double before = 0;
    for (const double ms : {2.0, 4.0, 8.0, 16.0, 32.0}) { // up to 0.8 of full scale
        const double mean =
            kxtest::meanLevel(dimPicture({"acquisition.exposure=" + std::to_string(ms) + " ms"}));
        EXPECT_NEAR(mean, expectedMean(ms / 8), kStep) << ms;
        if (before > 0) {
            EXPECT_NEAR(mean, 2 * before, 2 * kStep) << ms;
        }
        before = mean;
    }
    const ReadPicture half = dimPicture({"acquisition.exposure=56 ms"}); // 0.7 to 1.4
    EXPECT_NEAR(kxtest::meanLevel(half), expectedMean(7), kStep);
    EXPECT_LT(kxtest::meanLevel(half), 1.6 * before); // and not 1.75 times as much
    const ReadPicture white = dimPicture({"acquisition.exposure=112 ms"});
    EXPECT_EQ(kxtest::meanLevel(white), kFullScale - kStep);
}

TEST(SessionResponse, EachGainStepScalesTheMeanLevelAsItsDecibelsSay)
{
    for (const double gain : {0.0, 1.0, 3.0, 6.0, 10.0, 13.5}) { // up to 0.95 of full scale
        const double mean =
            kxtest::meanLevel(dimPicture({"acquisition.gain=" + std::to_string(gain) + " dB"}));
        EXPECT_NEAR(mean, expectedMean(std::pow(10, gain / 20)), kStep) << gain;
    }
    const ReadPicture bright = dimPicture({"acquisition.gain=24 dB"});
    EXPECT_EQ(kxtest::meanLevel(bright), kFullScale - kStep);
}

TEST(SessionResponse, TheMetadataSaysWhatTheConfigurationAskedFor)
{
    SceneSession session(dimLight);
    session.set("acquisition.exposure=12.5 ms");
    session.set("acquisition.gain=7.5 dB");
    session.grabPicture();
    for (const auto& frame : session.frames()) {
        EXPECT_NEAR(frame["exposure_us"].get<double>(), 12500, 1);
        EXPECT_NEAR(frame["gain_db"].get<double>(), 7.5, 0.01);
    }
}

TEST(SessionResponse, GammaBendsTheLevels)
{
    const std::vector<std::string> plain = {"acquisition.exposure=32 ms"};
    std::vector<std::string> bent = plain;
    bent.emplace_back("acquisition.gamma=2");
    const ReadPicture before = dimPicture(plain);
    const ReadPicture after = dimPicture(bent);
    for (std::size_t i = 0; i < before.samples.size(); ++i) {
        const double root = std::sqrt(before.samples[i] / (kFullScale - kStep)) * kFullScale;
        ASSERT_NEAR(after.samples[i], root, 2 * kStep) << before.samples[i];
    }
}

TEST(SessionResponse, AGammaOfOneSwitchesTheCamerasGammaOff)
{
    const std::string bends = "properties.GAMMA = { value = 2.0, switched_on = true }";
    const auto sample = [&](const std::string& gamma) {
        SceneSession session(dimLight, {8, 0, bends});
        if (!gamma.empty()) {
            session.set("acquisition.gamma=" + gamma);
        }
        return session.grabPicture().at(0, 0);
    };
    EXPECT_NEAR(sample(""), 255 * std::sqrt(0.1), 2); // kept as the camera has it
    EXPECT_NEAR(sample("1"), 255 * 0.1, 2);
}

} // namespace
