// White balance and saturation of a configuration in the colours of the pictures.
#include "picture_levels.h"
#include "scene_session.h"

#include <gtest/gtest.h>

namespace {

using kxtest::ReadPicture;
using kxtest::SceneSession;
using Rgb = std::array<double, 3>;

Rgb meanColour(const std::array<std::uint16_t, 3>& light, const std::vector<std::string>& settings)
{
    SceneSession session{kxtest::ColourLight([light](unsigned, unsigned) { return light; })};
    session.set("format.pixel_format=yuv422");
    session.settings.insert(session.settings.end(), settings.begin(), settings.end());
    const ReadPicture picture = session.grabPicture();
    return {kxtest::meanLevel(picture, 0), kxtest::meanLevel(picture, 1),
            kxtest::meanLevel(picture, 2)};
}

void expectColour(const Rgb& colour, const Rgb& expected)
{
    for (unsigned channel = 0; channel < 3; ++channel) {
        EXPECT_NEAR(colour[channel], expected[channel], 3) << "channel " << channel;
    }
}

constexpr std::uint16_t eightBits(unsigned level)
{
    return static_cast<std::uint16_t>(level * 257);
}

/// Levels 0 to 255 of a grey wall and of a reddish one.
constexpr std::array<std::uint16_t, 3> kGrey = {eightBits(80), eightBits(80), eightBits(80)};
constexpr std::array<std::uint16_t, 3> kReddish = {eightBits(140), eightBits(90), eightBits(70)};

TEST(SessionColour, WhiteBalanceScalesRedAndBlue)
{
    expectColour(meanColour(kGrey, {}), {80, 80, 80});
    expectColour(meanColour(kGrey, {"color.white_balance_red=768", "color.white_balance_blue=512"}),
                 {120, 80, 80});
    expectColour(meanColour(kGrey, {"color.white_balance_red=512", "color.white_balance_blue=256"}),
                 {80, 80, 40});
}

TEST(SessionColour, SaturationScalesTheDistanceFromGrey)
{
    const Rgb natural = meanColour(kReddish, {});
    expectColour(natural, {140, 90, 70});
    const double luminance = 0.299 * 140 + 0.587 * 90 + 0.114 * 70;
    expectColour(meanColour(kReddish, {"color.saturation=0 %"}), {luminance, luminance, luminance});
    Rgb strong{};
    for (unsigned channel = 0; channel < 3; ++channel) {
        strong[channel] = luminance + 1.5 * (natural[channel] - luminance);
    }
    expectColour(meanColour(kReddish, {"color.saturation=150 %"}), strong);
}

TEST(SessionColour, RawBayerFramesAreLeftAsTheSensorSeesThem)
{
    SceneSession session{kxtest::ColourLight([](unsigned, unsigned) { return kReddish; })};
    session.set("format.pixel_format=bayer8");
    session.set("color.saturation=0 %");
    const ReadPicture picture = session.grabPicture();
    EXPECT_NEAR(kxtest::meanLevel(picture, 0), 140, 2);
    EXPECT_NEAR(kxtest::meanLevel(picture, 2), 70, 2);
}

} // namespace
