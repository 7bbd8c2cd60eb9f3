// Format7 settings of simulated cameras.
#include "sim_fixture.h"

using namespace FlyCapture2;

namespace {

class SimFormat7 : public SimTest {
protected:
    static Format7ImageSettings region(unsigned width, unsigned height, unsigned x = 0,
                                       unsigned y = 0, PixelFormat format = PIXEL_FORMAT_MONO8)
    {
        Format7ImageSettings settings;
        settings.width = width;
        settings.height = height;
        settings.offsetX = x;
        settings.offsetY = y;
        settings.pixelFormat = format;
        return settings;
    }
    bool valid(const Format7ImageSettings& settings)
    {
        bool valid = false;
        Format7PacketInfo packets;
        EXPECT_EQ(camera.ValidateFormat7Settings(&settings, &valid, &packets).GetType(),
                  PGRERROR_OK);
        EXPECT_EQ(packets.recommendedBytesPerPacket, 32768U);
        EXPECT_EQ(packets.maxBytesPerPacket, 32768U);
        EXPECT_EQ(packets.unitBytesPerPacket, 16U);
        return valid;
    }
};

TEST_F(SimFormat7, ModeZeroIsDescribed)
{
    connect("[camera.format7]\noffset_steps = [4, 2]\nsize_steps = [16, 8]\n"
            "pixel_formats = [\"MONO8\", \"MONO16\"]\n");
    Format7Info info;
    bool supported = false;
    ASSERT_EQ(camera.GetFormat7Info(&info, &supported).GetType(), PGRERROR_OK);
    EXPECT_TRUE(supported);
    EXPECT_EQ(info.maxWidth, 64U);
    EXPECT_EQ(info.maxHeight, 32U);
    EXPECT_EQ(info.offsetHStepSize, 4U);
    EXPECT_EQ(info.imageVStepSize, 8U);
    EXPECT_EQ(info.pixelFormatBitField, 0x84000000U);
    info.mode = MODE_1;
    ASSERT_EQ(camera.GetFormat7Info(&info, &supported).GetType(), PGRERROR_OK);
    EXPECT_FALSE(supported);
}

TEST_F(SimFormat7, ACameraMayLackTheMode)
{
    connect("[camera.format7]\nsupported = false\n");
    Format7Info info;
    bool supported = true;
    ASSERT_EQ(camera.GetFormat7Info(&info, &supported).GetType(), PGRERROR_OK);
    EXPECT_FALSE(supported);
}

TEST_F(SimFormat7, RegionsOffTheGridOrTheSensorAreNotValid)
{
    connect();
    EXPECT_TRUE(valid(region(64, 32)));
    EXPECT_TRUE(valid(region(32, 16, 32, 16)));
    EXPECT_FALSE(valid(region(32, 16, 34, 0)));
    EXPECT_FALSE(valid(region(24, 16)));
    EXPECT_FALSE(valid(region(32, 16, 1, 0)));
    EXPECT_FALSE(valid(region(0, 16)));
    EXPECT_FALSE(valid(region(80, 32)));
    EXPECT_FALSE(valid(region(64, 32, 0, 0, PIXEL_FORMAT_RAW8)));
}

TEST_F(SimFormat7, SettingsAreTakenOrRefusedAsAWhole)
{
    connect();
    Format7ImageSettings wanted = region(32, 16, 2, 4, PIXEL_FORMAT_MONO16);
    ASSERT_EQ(camera.SetFormat7Configuration(&wanted, 16384U).GetType(), PGRERROR_OK);
    Format7ImageSettings bad = region(24, 16);
    const Error error = camera.SetFormat7Configuration(&bad, 16384U);
    EXPECT_EQ(error.GetType(), PGRERROR_INVALID_SETTINGS);
    EXPECT_STREQ(error.GetDescription(), "Format7 settings: width 24 is no multiple of 16");
    bad = region(32, 16);
    EXPECT_EQ(camera.SetFormat7Configuration(&bad, 33000U).GetType(), PGRERROR_INVALID_PACKET_SIZE);
    Format7ImageSettings now;
    unsigned packet = 0;
    float percentage = 0;
    ASSERT_EQ(camera.GetFormat7Configuration(&now, &packet, &percentage).GetType(), PGRERROR_OK);
    EXPECT_EQ(now.width, 32U);
    EXPECT_EQ(now.offsetY, 4U);
    EXPECT_EQ(now.pixelFormat, PIXEL_FORMAT_MONO16);
    EXPECT_EQ(packet, 16384U);
    EXPECT_FLOAT_EQ(percentage, 50.0F);
}

TEST_F(SimFormat7, FramesHaveTheSizeOfTheRegion)
{
    connect();
    Format7ImageSettings wanted = region(32, 16, 0, 0, PIXEL_FORMAT_MONO12);
    ASSERT_EQ(camera.SetFormat7Configuration(&wanted, 100.0F).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    Image image;
    ASSERT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
    EXPECT_EQ(image.GetCols(), 32U);
    EXPECT_EQ(image.GetRows(), 16U);
    EXPECT_EQ(image.GetStride(), 48U);
    EXPECT_EQ(image.GetDataSize(), 768U);
    EXPECT_EQ(image.GetPixelFormat(), PIXEL_FORMAT_MONO12);
    EXPECT_EQ(camera.SetFormat7Configuration(&wanted, 100.0F).GetType(),
              PGRERROR_ISOCH_ALREADY_STARTED);
}

} // namespace
