// A configured look-up table in the pictures.
#include "scene_session.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using kxtest::kSceneHeight;
using kxtest::kSceneWidth;
using kxtest::ReadPicture;
using kxtest::SceneSession;

/// Every level of 9 bits occurs: eight in a row of the picture, from black to white.
std::uint16_t allLevels(unsigned x, unsigned y)
{
    return static_cast<std::uint16_t>((x + y * kSceneWidth) * 65535 /
                                      (kSceneWidth * kSceneHeight - 1));
}

/// The scene grabbed with these settings.
ReadPicture picture(const std::vector<std::string>& settings)
{
    SceneSession session(allLevels);
    session.settings.insert(session.settings.end(), settings.begin(), settings.end());
    return session.grabPicture();
}

/// The nine bits that come to the table, as 12-bit pictures have them.
std::vector<unsigned> nineBits()
{
    std::vector<unsigned> levels;
    for (const std::uint16_t sample : picture({"format.pixel_format=mono12"}).samples) {
        levels.push_back(sample >> 7U);
    }
    return levels;
}

TEST(SessionLut, AnInvertedTableGivesTheInvertedPicture)
{
    const std::vector<unsigned> levels = nineBits();
    const ReadPicture inverted = picture({"lut.curve=invert"});
    ASSERT_EQ(inverted.samples.size(), levels.size());
    for (std::size_t i = 0; i < levels.size(); ++i) {
        ASSERT_EQ(inverted.samples[i], (511 - levels[i]) >> 1U) << "9-bit level " << levels[i];
    }
}

TEST(SessionLut, ATableFromAFileOfOtherBitsArrivesInTheCamerasBits)
{
    SceneSession session(allLevels);
    std::string table;
    for (unsigned i = 0; i < 512; ++i) { // 12 bits, the square of the level
        table += std::to_string(std::min(i * i / 64, 4088U)) + "\n";
    }
    kxtest::writeText(session.folder().file("square.txt"), table);
    session.configuration = "[lut]\nfile = \"square.txt\"\nbits = 12\n";
    const ReadPicture squared = session.grabPicture();
    const std::vector<unsigned> levels = nineBits();
    ASSERT_EQ(squared.samples.size(), levels.size());
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const unsigned entry = std::min(levels[i] * levels[i] / 64, 4088U);
        ASSERT_EQ(squared.samples[i], ((entry + 4) >> 3U) >> 1U) << "9-bit level " << levels[i];
    }
}

TEST(SessionLut, AllChannelsOfAColourCameraGetTheTable)
{
    const auto light = [](unsigned x, unsigned y) {
        const std::uint16_t level = allLevels(x, y);
        return std::array<std::uint16_t, 3>{level, level, level};
    };
    SceneSession session{kxtest::ColourLight(light)};
    session.settings.insert(session.settings.end(),
                            {"format.pixel_format=yuv422", "lut.curve=invert"});
    const ReadPicture inverted = session.grabPicture();
    for (unsigned y = 0; y < kSceneHeight; ++y) {
        const int expected = 255 - allLevels(kSceneWidth / 2, y) / 257;
        for (unsigned channel = 0; channel < 3; ++channel) {
            ASSERT_NEAR(inverted.at(kSceneWidth / 2, y, channel), expected, 3)
                << "line " << y << ", channel " << channel;
        }
    }
}

TEST(SessionLut, TwelveBitPixelsGoWithoutTableAndTheUserIsTold)
{
    SceneSession session(allLevels);
    session.settings.insert(session.settings.end(),
                            {"format.pixel_format=mono12", "lut.curve=invert"});
    const kxtest::Finished finished = session.run();
    EXPECT_EQ(finished.code, 0);
    EXPECT_NE(finished.out.find("LUT is not supported for 12 bit pixel format"), std::string::npos)
        << finished.out;
    EXPECT_LT(session.picture(session.frames().back()).at(0, 0), 100);
}

} // namespace
