// The test chart: what stands where, and the parts that move.
#include "scene/scene_chart.h"
#include "scene/scene_glyphs.h"

#include <gtest/gtest.h>

namespace {

using fcsim::Canvas;
using fcsim::ChartLayout;
using fcsim::ChartScene;
using fcsim::FrameRequest;
using fcsim::Level;
using fcsim::Rect;
using fcsim::SensorSettings;

constexpr int kWidth = 1280;
constexpr int kHeight = 1024;

SensorSettings sensor(bool colour)
{
    SensorSettings settings;
    settings.colour = colour;
    settings.width = kWidth;
    settings.height = kHeight;
    settings.title = "MODEL 123";
    return settings;
}

Level levelAt(const Canvas& canvas, int x, int y, unsigned plane = 0)
{
    return canvas.row(x, y, 1).plane[plane][0];
}

FrameRequest numbered(std::uint64_t number)
{
    FrameRequest request;
    request.number = number;
    return request;
}

std::uint32_t codeOn(const Canvas& canvas, const ChartLayout& layout)
{
    std::uint32_t number = 0;
    const int square = layout.code.width / fcsim::kCodeBits;
    for (int bit = 0; bit < fcsim::kCodeBits; ++bit) {
        const Level level = levelAt(canvas, layout.code.x + bit * square + square / 2,
                                    layout.code.y + layout.code.height / 2);
        number = number << 1U | (level > 0x8000 ? 1U : 0U);
    }
    return number;
}

/// Reads the digits by comparing each cell's dots with the glyphs.
std::string digitsOn(const Canvas& canvas, const ChartLayout& layout)
{
    std::string text;
    const int dot = layout.numberDot;
    for (int cell = 0; cell < fcsim::kNumberDigits; ++cell) {
        std::array<std::uint8_t, fcsim::kGlyphHeight> rows{};
        for (int row = 0; row < fcsim::kGlyphHeight; ++row) {
            for (int column = 0; column < fcsim::kGlyphWidth; ++column) {
                const int x =
                    layout.number.x + dot + (cell * fcsim::kGlyphAdvance + column) * dot + dot / 2;
                const int y = layout.number.y + dot + row * dot + dot / 2;
                auto& bits = rows[static_cast<std::size_t>(row)];
                bits =
                    static_cast<std::uint8_t>(bits << 1 | (levelAt(canvas, x, y) > 0x6000 ? 1 : 0));
            }
        }
        for (const char digit : std::string("0123456789")) {
            if (fcsim::glyph(digit) == rows) {
                text += digit;
            }
        }
    }
    return text;
}

TEST(SceneChart, FrameNumberCanBeReadFromThePicture)
{
    const ChartLayout layout(kWidth, kHeight);
    for (const bool colour : {false, true}) {
        ChartScene chart(sensor(colour));
        for (const std::uint64_t number : {0U, 1U, 9876543U, 0x5A5A5U, 7U}) {
            chart.paint(numbered(number));
            EXPECT_EQ(codeOn(chart.canvas(), layout), number);
            std::string digits = std::to_string(number);
            digits.insert(0, fcsim::kNumberDigits - digits.size(), '0');
            EXPECT_EQ(digitsOn(chart.canvas(), layout), digits);
        }
        chart.paint(numbered(12345678901ULL));
        EXPECT_EQ(digitsOn(chart.canvas(), layout), "5678901");
        EXPECT_EQ(codeOn(chart.canvas(), layout), static_cast<std::uint32_t>(12345678901ULL));
    }
}

TEST(SceneChart, DigitsDifferFromEachOther)
{
    const std::string digits = "0123456789";
    for (std::size_t first = 0; first < digits.size(); ++first) {
        for (std::size_t second = first + 1; second < digits.size(); ++second) {
            EXPECT_NE(fcsim::glyph(digits[first]), fcsim::glyph(digits[second]));
        }
    }
    EXPECT_EQ(fcsim::glyph('a'), fcsim::glyph('A'));
    EXPECT_EQ(fcsim::glyph('\x7F'), fcsim::glyph(' '));
}

/// All that changes between frames lies in the regions that the chart names.
TEST(SceneChart, OnlyTheNamedRegionsChange)
{
    ChartScene chart(sensor(false));
    chart.paint(numbered(0));
    const Canvas before = chart.canvas();
    const std::span<const Rect> areas = chart.paint(numbered(1000));
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            bool named = false;
            for (const Rect& area : areas) {
                named = named || !fcsim::intersection(area, {x, y, 1, 1}).empty();
            }
            if (!named) {
                ASSERT_EQ(levelAt(chart.canvas(), x, y), levelAt(before, x, y)) << x << ' ' << y;
            }
        }
    }
}

TEST(SceneChart, EachMovingPartMoves)
{
    ChartScene chart(sensor(true));
    FrameRequest request = numbered(3);
    chart.paint(request);
    const Canvas before = chart.canvas();
    request.number = 4;
    request.state.gainDb = 12;
    for (const Rect& area : chart.paint(request)) {
        bool moved = false;
        for (int y = area.y; y < area.bottom() && !moved; ++y) {
            for (int x = area.x; x < area.right() && !moved; ++x) {
                moved = levelAt(chart.canvas(), x, y) != levelAt(before, x, y);
            }
        }
        EXPECT_TRUE(moved) << "region at " << area.x << ", " << area.y;
    }
}

TEST(SceneChart, RampRisesFromBlackToWhite)
{
    const ChartScene chart(sensor(true));
    const Rect ramp = ChartLayout(kWidth, kHeight).ramp;
    EXPECT_EQ(levelAt(chart.canvas(), ramp.x, ramp.y), 0);
    EXPECT_EQ(levelAt(chart.canvas(), ramp.right() - 1, ramp.y), 0xFFF0);
    for (int x = ramp.x + 1; x < ramp.right(); ++x) {
        ASSERT_GT(levelAt(chart.canvas(), x, ramp.y), levelAt(chart.canvas(), x - 1, ramp.y));
    }
}

TEST(SceneChart, FinestGratingAlternatesPixelByPixel)
{
    const ChartScene chart(sensor(false));
    const ChartLayout layout(kWidth, kHeight);
    const int x0 = layout.gratings.x + 2 * layout.dot;
    const int y0 = layout.gratings.y + 2 * layout.dot;
    for (int x = x0; x < x0 + 40; ++x) {
        ASSERT_NE(levelAt(chart.canvas(), x, y0) > 0x8000,
                  levelAt(chart.canvas(), x + 1, y0) > 0x8000);
    }
}

TEST(SceneChart, PatchesHaveColourAndMonoShowsTheirLuma)
{
    const ChartScene colour(sensor(true));
    const ChartScene mono(sensor(false));
    const Rect patches = ChartLayout(kWidth, kHeight).patches;
    const int x = patches.x + patches.width / 12;
    const int y = patches.y + patches.height * 5 / 8;
    const Level red = levelAt(colour.canvas(), x, y, 0);
    const Level green = levelAt(colour.canvas(), x, y, 1);
    const Level blue = levelAt(colour.canvas(), x, y, 2);
    EXPECT_GT(blue, 2 * red); // the third row begins with blue
    EXPECT_EQ(levelAt(mono.canvas(), x, y), fcsim::luma(red, green, blue));
}

TEST(SceneChart, BorderEndsAtTheSensorsEdge)
{
    const ChartScene chart(sensor(false));
    for (const int x : {0, 16, 1264}) {
        EXPECT_GT(levelAt(chart.canvas(), x, 0), 0xF000);
        EXPECT_GT(levelAt(chart.canvas(), x, kHeight - 1), 0xF000);
    }
    EXPECT_EQ(levelAt(chart.canvas(), 8, 0), 0);
    EXPECT_EQ(levelAt(chart.canvas(), kWidth - 1, 8), 0);
}

} // namespace
