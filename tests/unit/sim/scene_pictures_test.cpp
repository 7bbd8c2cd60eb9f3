// PNG pictures as scene: read back pixel by pixel, played in a loop, refused clearly.
#include "scene/scene_pictures.h"
#include "scene/scene_png.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <png.h>

#include <fstream>
#include <vector>

namespace {

using namespace FlyCapture2;
using fcsim::FrameRequest;
using fcsim::Renderer;
using fcsim::SceneError;
using fcsim::SceneSettings;
using fcsim::SensorSettings;
using Bytes = std::vector<std::uint8_t>;

void writePng(const std::string& path, unsigned width, unsigned height, unsigned format,
              const void* pixels)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = format;
    ASSERT_NE(png_image_write_to_file(&image, path.c_str(), 0, pixels, 0, nullptr), 0)
        << image.message;
}

SensorSettings sensor(unsigned width, unsigned height, BayerTileFormat tile = NONE)
{
    SensorSettings settings;
    settings.colour = tile != NONE;
    settings.tile = tile;
    settings.width = width;
    settings.height = height;
    settings.noise = false;
    return settings;
}

Bytes frame(Renderer& renderer, PixelFormat format, unsigned width, unsigned height,
            std::uint64_t number = 0)
{
    FrameRequest request;
    request.format = format;
    request.width = width;
    request.height = height;
    request.number = number;
    Bytes out(fcsim::packedSize(format, width, height), 0xAA);
    renderer.render(request, out.data());
    return out;
}

SceneSettings pictures(const std::filesystem::path& path)
{
    SceneSettings settings;
    settings.kind = fcsim::SceneKind::pictures;
    settings.path = path;
    return settings;
}

std::string refusal(const std::filesystem::path& path)
{
    try {
        const Renderer renderer(pictures(path), sensor(4, 4));
    } catch (const SceneError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(ScenePictures, ColourOfSensorSizeIsShownPixelByPixel)
{
    const kxtest::TemporaryFolder folder;
    const Bytes rgb = {255, 0, 0, 0, 255, 0, 0, 0, 255, 12, 34, 56};
    writePng(folder.file("a.png"), 2, 2, PNG_FORMAT_RGB, rgb.data());
    Renderer renderer(pictures(folder.file("a.png")), sensor(2, 2, BGGR));
    EXPECT_EQ(frame(renderer, PIXEL_FORMAT_RGB8, 2, 2), rgb);
    EXPECT_EQ(frame(renderer, PIXEL_FORMAT_RAW8, 2, 2), (Bytes{0, 255, 0, 12}));
}

TEST(ScenePictures, MonoSensorSeesLuma)
{
    const kxtest::TemporaryFolder folder;
    const Bytes rgb = {255, 0, 0, 0, 0, 255};
    writePng(folder.file("a.png"), 2, 1, PNG_FORMAT_RGB, rgb.data());
    Renderer renderer(pictures(folder.path()), sensor(2, 1));
    EXPECT_EQ(frame(renderer, PIXEL_FORMAT_MONO8, 2, 1), (Bytes{76, 28}));
}

TEST(ScenePictures, TransparencyIsIgnored)
{
    const kxtest::TemporaryFolder folder;
    const Bytes rgba = {10, 20, 30, 128, 40, 50, 60, 0};
    writePng(folder.file("a.png"), 2, 1, PNG_FORMAT_RGBA, rgba.data());
    Renderer renderer(pictures(folder.path()), sensor(2, 1, RGGB));
    EXPECT_EQ(frame(renderer, PIXEL_FORMAT_RGB8, 2, 1), (Bytes{10, 20, 30, 40, 50, 60}));
}

TEST(ScenePictures, SixteenBitsReachDeepFormats)
{
    const kxtest::TemporaryFolder folder;
    const std::vector<std::uint16_t> levels = {0x1230, 0xFFF0, 0xABCF, 0};
    writePng(folder.file("a.png"), 2, 2, PNG_FORMAT_LINEAR_Y, levels.data());
    Renderer renderer(pictures(folder.path()), sensor(2, 2));
    EXPECT_EQ(frame(renderer, PIXEL_FORMAT_MONO16, 2, 2),
              (Bytes{0x30, 0x12, 0xF0, 0xFF, 0xC0, 0xAB, 0, 0}));
}

TEST(ScenePictures, FolderPlaysSortedInALoop)
{
    const kxtest::TemporaryFolder folder;
    for (const unsigned level : {30U, 10U, 20U}) {
        const auto grey = static_cast<std::uint8_t>(level);
        writePng(folder.file("p" + std::to_string(level) + ".PNG"), 1, 1, PNG_FORMAT_GRAY, &grey);
    }
    kxtest::writeText(folder.file("notes.txt"), "no picture");
    Renderer renderer(pictures(folder.path()), sensor(1, 1));
    Bytes shown;
    for (const std::uint64_t number : {0U, 1U, 2U, 3U, 5U, 4U}) {
        shown.push_back(frame(renderer, PIXEL_FORMAT_MONO8, 1, 1, number)[0]);
    }
    EXPECT_EQ(shown, (Bytes{10, 20, 30, 10, 30, 20}));
}

TEST(ScenePictures, LargerPicturesAreAveragedAndCutInTheMiddle)
{
    const kxtest::TemporaryFolder folder;
    const Bytes grey = {99, 10, 20, 30, 50, 99, //
                        99, 30, 40, 50, 70, 99};
    writePng(folder.file("a.png"), 6, 2, PNG_FORMAT_GRAY, grey.data());
    Renderer renderer(pictures(folder.path()), sensor(2, 1));
    EXPECT_EQ(frame(renderer, PIXEL_FORMAT_MONO8, 2, 1), (Bytes{25, 50}));
}

TEST(ScenePictures, SmallerPicturesRepeatPixels)
{
    const kxtest::TemporaryFolder folder;
    const Bytes grey = {10, 20};
    writePng(folder.file("a.png"), 2, 1, PNG_FORMAT_GRAY, grey.data());
    Renderer renderer(pictures(folder.path()), sensor(4, 2));
    EXPECT_EQ(frame(renderer, PIXEL_FORMAT_MONO8, 4, 2), (Bytes{10, 10, 20, 20, 10, 10, 20, 20}));
}

TEST(ScenePictures, RefusalsNameThePathAndTheReason)
{
    const kxtest::TemporaryFolder folder;
    EXPECT_EQ(refusal(folder.file("gone.png")),
              "Cannot read picture " + folder.file("gone.png") + ": No such file or directory");
    EXPECT_EQ(refusal(folder.path()),
              "Folder " + folder.path().string() + " holds no PNG pictures (*.png)");
    kxtest::writeText(folder.file("text.png"), "this is only text");
    EXPECT_EQ(refusal(folder.path()),
              "Cannot read picture " + folder.file("text.png") + ": not a PNG file");
}

TEST(ScenePictures, CutOffPictureIsRefused)
{
    const kxtest::TemporaryFolder folder;
    const Bytes grey(std::size_t{64} * 64, 77);
    writePng(folder.file("a.png"), 64, 64, PNG_FORMAT_GRAY, grey.data());
    const std::string whole = kxtest::readText(folder.file("a.png"));
    kxtest::writeText(folder.file("a.png"), whole.substr(0, whole.size() / 2));
    EXPECT_EQ(refusal(folder.path()),
              "Cannot read picture " + folder.file("a.png") + ": the file is cut off");
    EXPECT_THROW(fcsim::readPng(folder.file("a.png")), SceneError);
    kxtest::writeText(folder.file("a.png"), whole.substr(0, 20));
    EXPECT_THROW(fcsim::checkPng(folder.file("a.png")), SceneError);
}

TEST(ScenePictures, PictureThatGoesBadLaterIsBlack)
{
    const kxtest::TemporaryFolder folder;
    const Bytes grey(16, 77);
    writePng(folder.file("a.png"), 4, 4, PNG_FORMAT_GRAY, grey.data());
    Renderer renderer(pictures(folder.path()), sensor(4, 4));
    kxtest::writeText(folder.file("a.png"), "gone");
    EXPECT_EQ(frame(renderer, PIXEL_FORMAT_MONO8, 4, 4), Bytes(16, 0));
}

} // namespace
