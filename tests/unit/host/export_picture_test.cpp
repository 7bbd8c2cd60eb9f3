// Tests of the pictures in the export folder: names, formats, files of an earlier grab.
#include "config/settings.h"
#include "export/export_picture.h"
#include "read_picture.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

namespace {

using kxhost::ExportSettings;
using kxhost::FrameInfo;
using kxhost::Instance;
using kxhost::PictureFormat;
using kxhost::PictureRecord;
using kxtest::TemporaryFolder;

ExportSettings settingsFor(const TemporaryFolder& folder, PictureFormat format)
{
    ExportSettings settings;
    settings.folder = folder.path().string();
    settings.format = format;
    return settings;
}

PictureRecord recordOf(const char* codec, std::uint32_t width, std::uint32_t height)
{
    return {FrameInfo{Instance::kRaw, width, height, codec, 1}, "", 0};
}

TEST(ExportPicture, NamesCountWithSixDigits)
{
    ExportSettings settings;
    EXPECT_EQ(kxhost::pictureName(settings, 1, Instance::kRaw), "frame_000001.png");
    settings.format = PictureFormat::kTiff;
    EXPECT_EQ(kxhost::pictureName(settings, 999999, Instance::kConverted),
              "frame_999999_converted.tiff");
    settings.prefix = "left-";
    settings.format = PictureFormat::kRaw;
    EXPECT_EQ(kxhost::pictureName(settings, 1234567, Instance::kRaw), "left-1234567.raw");
}

TEST(ExportPicture, NamesSortForAYearAtHundredsOfFramesASecond)
{
    kxhost::Settings configured;
    configured.outputFormat = static_cast<int>(PictureFormat::kPng);
    const auto name = [&](std::uint32_t frames, std::uint64_t number) {
        configured.frames = frames;
        return kxhost::pictureName(kxhost::exportSettings(configured), number, Instance::kRaw);
    };
    EXPECT_EQ(name(0, 1), "frame_00000000001.png");
    EXPECT_EQ(name(0, 999'999), "frame_00000999999.png");
    EXPECT_EQ(name(0, 1'000'000), "frame_00001000000.png");
    constexpr std::uint64_t kYear = 500ULL * 365 * 24 * 3600;
    EXPECT_LT(name(0, kYear - 1), name(0, kYear));
    EXPECT_LT(name(0, 9'999'999'999), name(0, kYear));
    EXPECT_EQ(name(999'999, 1), "frame_000001.png");
    EXPECT_EQ(name(1'000'000, 1), "frame_0000001.png");
    EXPECT_EQ(name(4'294'967'293, 1), "frame_0000000001.png");
}

TEST(ExportPicture, KnowsItsOwnNames)
{
    const ExportSettings settings;
    for (const char* name : {"frame_000001.png", "frame_12345678901.raw", "frame_000001.tiff",
                             "frame_000001_converted.png"}) {
        EXPECT_TRUE(kxhost::isPictureName(settings, name)) << name;
    }
    for (const char* name : {"frame_00001.png", "frame_000001", "frame_000001.jpg", "frame_.png",
                             "left_000001.png", "frame_000001x.png", "frame_000001_conv.png",
                             "frame_000001.png.bak", "frames.ndjson", ""}) {
        EXPECT_FALSE(kxhost::isPictureName(settings, name)) << name;
    }
}

TEST(ExportPicture, PngHoldsThePixels)
{
    const TemporaryFolder folder;
    const ExportSettings settings = settingsFor(folder, PictureFormat::kPng);
    PictureRecord record = recordOf("MONO8T", 2, 1);
    ASSERT_EQ(kxhost::PictureWriter(settings).write(5, {17, 34}, record), "");
    EXPECT_EQ(record.file, "frame_000005.png");
    EXPECT_EQ(record.fileBytes, std::filesystem::file_size(folder.file(record.file)));
    EXPECT_EQ(kxtest::readPng(folder.file(record.file)).samples,
              (std::vector<std::uint16_t>{17, 34}));
}

TEST(ExportPicture, TiffHoldsThePixels)
{
    const TemporaryFolder folder;
    const ExportSettings settings = settingsFor(folder, PictureFormat::kTiff);
    PictureRecord record = recordOf("MONO12PT", 2, 1);
    ASSERT_EQ(kxhost::PictureWriter(settings).write(1, {0xAB, 0x3C, 0x12}, record), "");
    EXPECT_EQ(kxtest::readTiff(folder.file(record.file)).samples,
              (std::vector<std::uint16_t>{0xABC0, 0x1230}));
}

TEST(ExportPicture, RawHoldsTheBytesOfThePictureAndNoMore)
{
    const TemporaryFolder folder;
    const ExportSettings settings = settingsFor(folder, PictureFormat::kRaw);
    PictureRecord record = recordOf("MONO12PT", 2, 1);
    const std::vector<std::uint8_t> place = {'a', 'b', 'c', 'd', 'e'}; // a place may be larger
    ASSERT_EQ(kxhost::PictureWriter(settings).write(1, place, record), "");
    EXPECT_EQ(kxtest::readText(folder.file("frame_000001.raw")), "abc");
    EXPECT_EQ(record.fileBytes, 3U);
}

TEST(ExportPicture, FormatNoneWritesNothing)
{
    const TemporaryFolder folder;
    const ExportSettings settings = settingsFor(folder, PictureFormat::kNone);
    PictureRecord record = recordOf("MONO8T", 1, 1);
    EXPECT_EQ(kxhost::PictureWriter(settings).write(1, {1}, record), "");
    EXPECT_EQ(record.file, "");
    EXPECT_TRUE(folder.names().empty());
}

TEST(ExportPicture, APictureThatCannotBeEncodedIsAnError)
{
    const TemporaryFolder folder;
    const ExportSettings settings = settingsFor(folder, PictureFormat::kPng);
    PictureRecord record = recordOf("MONO8T", 0, 0);
    const std::string error = kxhost::PictureWriter(settings).write(1, {}, record);
    EXPECT_TRUE(error.starts_with("Cannot encode frame_000001.png: ")) << error;
    EXPECT_TRUE(folder.names().empty());
}

TEST(ExportPicture, FindsOnlyFilesThatAGrabWouldReplace)
{
    const TemporaryFolder folder;
    ExportSettings settings = settingsFor(folder, PictureFormat::kPng);
    kxtest::writeText(folder.file("notes.txt"), "");
    kxtest::writeText(folder.file("frame_list"), "");
    EXPECT_EQ(kxhost::findEarlierFile(settings), "");
    kxtest::writeText(folder.file("frame_000001.raw"), "");
    EXPECT_EQ(kxhost::findEarlierFile(settings), "frame_000001.raw");
    settings.prefix = "other_";
    EXPECT_EQ(kxhost::findEarlierFile(settings), "");
    kxtest::writeText(folder.file("frames.ndjson"), "");
    EXPECT_EQ(kxhost::findEarlierFile(settings), "frames.ndjson");
    settings.metadata = false;
    EXPECT_EQ(kxhost::findEarlierFile(settings), "");
}

} // namespace
