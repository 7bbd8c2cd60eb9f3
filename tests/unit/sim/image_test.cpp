// FlyCapture2::Image: dimensions, memory, sharing, conversion and frames lent by a camera.
#include "image/image_data.h"
#include "read_picture.h"
#include "temporary_folder.h"

#include <FlyCapture2.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <numeric>
#include <vector>

namespace {

using namespace FlyCapture2;
using Bytes = std::vector<unsigned char>;

/// Stands for a camera that lends its slots.
class Lender : public fcsim::SlotOwner {
public:
    void releaseSlot(unsigned slot) noexcept override
    {
        ++releases;
        last = slot;
    }
    std::atomic<int> releases{0};
    std::atomic<unsigned> last{0};
};

fcsim::FrameView frameOf(Bytes& pixels, const std::shared_ptr<Lender>& lender, unsigned slot)
{
    fcsim::FrameView frame;
    frame.rows = 2;
    frame.cols = static_cast<unsigned>(pixels.size()) / 2;
    frame.stride = frame.cols;
    frame.format = PIXEL_FORMAT_RAW8;
    frame.tile = GBRG;
    frame.data = pixels.data();
    frame.dataSize = static_cast<unsigned>(pixels.size());
    frame.receivedDataSize = frame.dataSize - 1;
    frame.timeStamp.cycleSeconds = 127;
    frame.timeStamp.cycleCount = 7999;
    frame.metadata.embeddedFrameCounter = 41;
    frame.blockId = 17;
    frame.owner = lender;
    frame.slot = slot;
    return frame;
}

Bytes contentOf(const Image& image)
{
    return {image.GetData(), image.GetData() + image.GetDataSize()};
}

TEST(Image, IsEmptyAtFirst)
{
    Image image;
    EXPECT_EQ(image.GetRows(), 0U);
    EXPECT_EQ(image.GetCols(), 0U);
    EXPECT_EQ(image.GetDataSize(), 0U);
    EXPECT_EQ(image.GetData(), nullptr);
    EXPECT_EQ(image.GetPixelFormat(), UNSPECIFIED_PIXEL_FORMAT);
    EXPECT_EQ(image.GetMetadata().embeddedFrameCounter, 0U);
    EXPECT_EQ(image.GetColorProcessing(), DEFAULT);
    EXPECT_EQ(image[0], nullptr);
    EXPECT_EQ(image(0, 0), nullptr);
}

TEST(Image, ShowsMemoryOfTheClient)
{
    Bytes pixels(12);
    std::iota(pixels.begin(), pixels.end(), static_cast<unsigned char>(0));
    Image image(2, 4, 6, pixels.data(), 12, 11, PIXEL_FORMAT_RAW8, BGGR);
    EXPECT_EQ(image.GetData(), pixels.data());
    EXPECT_EQ(image.GetDataSize(), 12U);
    EXPECT_EQ(image.GetReceivedDataSize(), 11U);
    EXPECT_EQ(image.GetStride(), 6U);
    EXPECT_EQ(image.GetBitsPerPixel(), 8U);
    EXPECT_EQ(*image[7], 7);
    EXPECT_EQ(*image(1, 2), 8);
    EXPECT_EQ(image[12], nullptr);
    EXPECT_EQ(image(2, 0), nullptr);
    unsigned rows = 0;
    unsigned cols = 0;
    BayerTileFormat tile = NONE;
    image.GetDimensions(&rows, &cols, nullptr, nullptr, &tile);
    EXPECT_EQ(rows, 2U);
    EXPECT_EQ(cols, 4U);
    EXPECT_EQ(tile, BGGR);
}

TEST(Image, HasMemoryOfItsOwn)
{
    const Image image(2, 4, PIXEL_FORMAT_MONO12);
    EXPECT_EQ(image.GetDataSize(), 12U);
    EXPECT_EQ(image.GetStride(), 6U);
    EXPECT_EQ(contentOf(image), Bytes(12, 0));
}

TEST(Image, SettersAreReadBack)
{
    Bytes pixels(4);
    Image image;
    EXPECT_EQ(image.SetDimensions(1, 2, 4, PIXEL_FORMAT_MONO16, NONE), PGRERROR_OK);
    EXPECT_EQ(image.SetData(pixels.data(), 4), PGRERROR_OK);
    EXPECT_EQ(image.SetBlockId(9), PGRERROR_OK);
    EXPECT_EQ(image.SetColorProcessing(NEAREST_NEIGHBOR), PGRERROR_OK);
    EXPECT_EQ(image.GetPixelFormat(), PIXEL_FORMAT_MONO16);
    EXPECT_EQ(image.GetData(), pixels.data());
    EXPECT_EQ(image.GetBlockId(), 9U);
    EXPECT_EQ(image.GetColorProcessing(), NEAREST_NEIGHBOR);
    EXPECT_EQ(image.SetData(nullptr, 4), PGRERROR_INVALID_PARAMETER);
}

TEST(Image, CopiesShareThePixelsAndDeepCopiesDoNot)
{
    Image image(1, 4, PIXEL_FORMAT_MONO8);
    Image shared(image);
    Image assigned;
    assigned = image;
    Image deep;
    ASSERT_EQ(deep.DeepCopy(&image), PGRERROR_OK);
    *image[2] = 5;
    EXPECT_EQ(*shared[2], 5);
    EXPECT_EQ(*assigned[2], 5);
    EXPECT_EQ(*deep[2], 0);
    EXPECT_EQ(deep.GetCols(), 4U);
    EXPECT_EQ(deep.DeepCopy(nullptr), PGRERROR_INVALID_PARAMETER);
}

TEST(Image, CarriesTheFactsOfAFrame)
{
    Bytes pixels(8, 3);
    Image image;
    fcsim::attachFrame(image, frameOf(pixels, nullptr, 0));
    EXPECT_EQ(image.GetData(), pixels.data());
    EXPECT_EQ(image.GetRows(), 2U);
    EXPECT_EQ(image.GetCols(), 4U);
    EXPECT_EQ(image.GetBayerTileFormat(), GBRG);
    EXPECT_EQ(image.GetReceivedDataSize(), 7U);
    EXPECT_EQ(image.GetTimeStamp().cycleSeconds, 127U);
    EXPECT_EQ(image.GetTimeStamp().cycleCount, 7999U);
    EXPECT_EQ(image.GetMetadata().embeddedFrameCounter, 41U);
    EXPECT_EQ(image.GetBlockId(), 17U);
}

TEST(Image, SlotGoesBackOnReleaseReuseAndDestruction)
{
    const auto lender = std::make_shared<Lender>();
    Bytes pixels(8);
    {
        Image image;
        fcsim::attachFrame(image, frameOf(pixels, lender, 1));
        EXPECT_EQ(lender->releases, 0);
        EXPECT_EQ(image.ReleaseBuffer(), PGRERROR_OK);
        EXPECT_EQ(lender->releases, 1);
        EXPECT_EQ(lender->last, 1U);
        EXPECT_EQ(image.GetData(), nullptr);
        EXPECT_EQ(image.ReleaseBuffer(), PGRERROR_OK);
        EXPECT_EQ(lender->releases, 1);
        fcsim::attachFrame(image, frameOf(pixels, lender, 2));
        fcsim::attachFrame(image, frameOf(pixels, lender, 3));
        EXPECT_EQ(lender->releases, 2);
        EXPECT_EQ(lender->last, 2U);
    }
    EXPECT_EQ(lender->releases, 3);
    EXPECT_EQ(lender.use_count(), 1);
}

TEST(Image, SlotStaysWithTheLastCopy)
{
    const auto lender = std::make_shared<Lender>();
    Bytes pixels(8);
    Image kept;
    {
        Image image;
        fcsim::attachFrame(image, frameOf(pixels, lender, 4));
        kept = image;
    }
    EXPECT_EQ(lender->releases, 0);
    EXPECT_EQ(kept.ReleaseBuffer(), PGRERROR_OK);
    EXPECT_EQ(lender->releases, 1);
}

TEST(Image, ConvertsAndKeepsTheFacts)
{
    Bytes pixels = {10, 20, 30, 40};
    Image image;
    fcsim::attachFrame(image, frameOf(pixels, nullptr, 0));
    ASSERT_EQ(image.SetColorProcessing(NO_COLOR_PROCESSING), PGRERROR_OK);
    Image out;
    ASSERT_EQ(image.Convert(PIXEL_FORMAT_RGB8, &out), PGRERROR_OK);
    EXPECT_EQ(contentOf(out), (Bytes{10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40}));
    EXPECT_EQ(out.GetPixelFormat(), PIXEL_FORMAT_RGB8);
    EXPECT_EQ(out.GetStride(), 6U);
    EXPECT_EQ(out.GetBayerTileFormat(), NONE);
    EXPECT_EQ(out.GetMetadata().embeddedFrameCounter, 41U);
    ASSERT_EQ(image.Convert(PIXEL_FORMAT_RAW16, &out), PGRERROR_OK);
    EXPECT_EQ(out.GetBayerTileFormat(), GBRG);
}

TEST(Image, ConvertUsesItsDestinationsMemoryAgain)
{
    Image source(4, 4, PIXEL_FORMAT_MONO8);
    Image out;
    ASSERT_EQ(source.Convert(PIXEL_FORMAT_BGRU, &out), PGRERROR_OK);
    const unsigned char* memory = out.GetData();
    ASSERT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &out), PGRERROR_OK);
    EXPECT_EQ(out.GetData(), memory);
    EXPECT_EQ(out.GetDataSize(), 48U);
    const Image copy(out);
    ASSERT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &out), PGRERROR_OK);
    EXPECT_NE(out.GetData(), memory) << "the copy still shows the old pixels";
    EXPECT_EQ(copy.GetData(), memory);
}

TEST(Image, ConvertWritesIntoMemoryOfTheClient)
{
    Image source(1, 4, PIXEL_FORMAT_MONO8);
    *source[3] = 77;
    Bytes memory(12, 9);
    Image out(memory.data(), 12);
    ASSERT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &out), PGRERROR_OK);
    EXPECT_EQ(out.GetData(), memory.data());
    EXPECT_EQ(memory, (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 77, 77, 77}));
    Image small(memory.data(), 11);
    EXPECT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &small), PGRERROR_BUFFER_TOO_SMALL);
}

TEST(Image, ConvertNeverWritesIntoACamerasSlot)
{
    const auto lender = std::make_shared<Lender>();
    Bytes slot(64, 9);
    Image out;
    fcsim::attachFrame(out, frameOf(slot, lender, 0));
    Image source(1, 4, PIXEL_FORMAT_MONO8);
    ASSERT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &out), PGRERROR_OK);
    EXPECT_EQ(slot, Bytes(64, 9));
    EXPECT_EQ(lender->releases, 1);
}

TEST(Image, ConvertRefusesWithAReason)
{
    Image source(2, 2, PIXEL_FORMAT_MONO8);
    Image out;
    const Error unsupported = source.Convert(PIXEL_FORMAT_RGB16, &out);
    EXPECT_EQ(unsupported, PGRERROR_IMAGE_CONVERSION_FAILED);
    EXPECT_STREQ(unsupported.GetDescription(),
                 "Cannot convert MONO8 to RGB16: this pair of pixel formats is not supported");
    EXPECT_EQ(source.Convert(PIXEL_FORMAT_RGB8, nullptr), PGRERROR_INVALID_PARAMETER);
    EXPECT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &source), PGRERROR_INVALID_PARAMETER);
    ASSERT_EQ(source.SetDimensions(3, 2, 2, PIXEL_FORMAT_MONO8, NONE), PGRERROR_OK);
    EXPECT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &out), PGRERROR_IMAGE_CONSISTENCY_ERROR);
}

TEST(Image, DefaultsHoldForTheProcess)
{
    EXPECT_EQ(Image::GetDefaultOutputFormat(), PIXEL_FORMAT_BGR);
    EXPECT_EQ(Image::GetDefaultColorProcessing(), DEFAULT);
    Image source(1, 2, PIXEL_FORMAT_MONO8);
    Image out;
    ASSERT_EQ(Image::SetDefaultOutputFormat(PIXEL_FORMAT_MONO16), PGRERROR_OK);
    EXPECT_EQ(source.Convert(&out), PGRERROR_OK);
    EXPECT_EQ(out.GetPixelFormat(), PIXEL_FORMAT_MONO16);
    EXPECT_EQ(Image::SetDefaultOutputFormat(UNSPECIFIED_PIXEL_FORMAT), PGRERROR_INVALID_PARAMETER);
    EXPECT_EQ(Image::SetDefaultOutputFormat(PIXEL_FORMAT_BGR), PGRERROR_OK);
}

TEST(Image, DefaultColourProcessingIsUsed)
{
    Bytes raw = {200, 100, 100, 50};
    const Image source(2, 2, 2, raw.data(), 4, PIXEL_FORMAT_RAW8, RGGB);
    Image out;
    ASSERT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &out), PGRERROR_OK);
    EXPECT_EQ(*out[0], 200);
    EXPECT_EQ(*out[2], 50);
    ASSERT_EQ(Image::SetDefaultColorProcessing(NO_COLOR_PROCESSING), PGRERROR_OK);
    ASSERT_EQ(source.Convert(PIXEL_FORMAT_RGB8, &out), PGRERROR_OK);
    EXPECT_EQ(*out[2], 200);
    ASSERT_EQ(Image::SetDefaultColorProcessing(DEFAULT), PGRERROR_OK);
}

TEST(Image, BitsPerPixelOfEveryFormat)
{
    EXPECT_EQ(Image::DetermineBitsPerPixel(PIXEL_FORMAT_MONO8), 8U);
    EXPECT_EQ(Image::DetermineBitsPerPixel(PIXEL_FORMAT_MONO12), 12U);
    EXPECT_EQ(Image::DetermineBitsPerPixel(PIXEL_FORMAT_411YUV8), 12U);
    EXPECT_EQ(Image::DetermineBitsPerPixel(PIXEL_FORMAT_422YUV8), 16U);
    EXPECT_EQ(Image::DetermineBitsPerPixel(PIXEL_FORMAT_RGB8), 24U);
    EXPECT_EQ(Image::DetermineBitsPerPixel(PIXEL_FORMAT_BGRU), 32U);
    EXPECT_EQ(Image::DetermineBitsPerPixel(UNSPECIFIED_PIXEL_FORMAT), 0U);
}

TEST(Image, SavesAndIsReadBack)
{
    const kxtest::TemporaryFolder folder;
    Bytes rgb = {1, 2, 3, 4, 5, 6};
    Image colour(1, 2, 6, rgb.data(), 6, PIXEL_FORMAT_RGB8);
    ASSERT_EQ(colour.Save(folder.file("c.png").c_str()), PGRERROR_OK);
    const kxtest::ReadPicture picture = kxtest::readPng(folder.file("c.png"));
    EXPECT_EQ(picture.channels, 3U);
    EXPECT_EQ(picture.samples, (std::vector<std::uint16_t>{1, 2, 3, 4, 5, 6}));

    Bytes deep = {0x30, 0x12, 0xF0, 0xFF};
    Image mono(1, 2, 4, deep.data(), 4, PIXEL_FORMAT_MONO16);
    ASSERT_EQ(mono.Save(folder.file("m.png").c_str()), PGRERROR_OK);
    EXPECT_EQ(kxtest::readPng(folder.file("m.png")).samples,
              (std::vector<std::uint16_t>{0x1230, 0xFFF0}));

    ASSERT_EQ(colour.Save(folder.file("c").c_str(), PPM), PGRERROR_OK);
    EXPECT_EQ(kxtest::readText(folder.file("c")), "P6\n2 1\n255\n\1\2\3\4\5\6");
    ASSERT_EQ(mono.Save(folder.file("m.pgm").c_str()), PGRERROR_OK);
    EXPECT_EQ(kxtest::readText(folder.file("m.pgm")), "P5\n2 1\n65535\n\x12\x30\xFF\xF0");
    ASSERT_EQ(mono.Save(folder.file("m.raw").c_str()), PGRERROR_OK);
    EXPECT_EQ(kxtest::readText(folder.file("m.raw")), "\x30\x12\xF0\xFF");
}

TEST(Image, SaveRefusesWhatItCannotWrite)
{
    const kxtest::TemporaryFolder folder;
    Image empty;
    Image colour(1, 2, PIXEL_FORMAT_RGB8);
    EXPECT_EQ(empty.Save(folder.file("a.png").c_str()), PGRERROR_IMAGE_CONSISTENCY_ERROR);
    EXPECT_EQ(colour.Save(folder.file("a.jpg").c_str()), PGRERROR_NOT_IMPLEMENTED);
    EXPECT_EQ(colour.Save(folder.file("a.bmp").c_str(), BMP), PGRERROR_NOT_IMPLEMENTED);
    EXPECT_EQ(colour.Save(folder.file("a.pgm").c_str()), PGRERROR_INVALID_PARAMETER);
    EXPECT_EQ(colour.Save(folder.file("no/such/a.png").c_str()), PGRERROR_IMAGE_LIBRARY_FAILURE);
    EXPECT_EQ(colour.Save(nullptr), PGRERROR_INVALID_PARAMETER);
    EXPECT_TRUE(folder.names().empty());
    EXPECT_EQ(colour.CalculateStatistics(nullptr), PGRERROR_NOT_IMPLEMENTED);
}

} // namespace
