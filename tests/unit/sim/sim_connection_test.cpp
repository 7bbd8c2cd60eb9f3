// Connecting to simulated cameras, and cameras that leave the bus.
#include "sim_fixture.h"

using namespace FlyCapture2;

namespace {

class SimConnection : public SimTest {};

TEST_F(SimConnection, ACameraIsConnectedOnce)
{
    connect();
    Camera other;
    EXPECT_EQ(other.Connect(nullptr).GetType(), PGRERROR_FAILED_BUS_MASTER_CONNECTION);
    EXPECT_FALSE(other.IsConnected());
    EXPECT_EQ(camera.Disconnect().GetType(), PGRERROR_OK);
    EXPECT_EQ(other.Connect(nullptr).GetType(), PGRERROR_OK);
    EXPECT_TRUE(other.IsConnected());
}

TEST_F(SimConnection, ADestroyedObjectLetsItsCameraGo)
{
    ASSERT_EQ(fcsim::loadBus(cameraToml(""), "test.toml"), "");
    {
        Camera passing;
        ASSERT_EQ(passing.Connect(nullptr).GetType(), PGRERROR_OK);
    }
    EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
}

TEST_F(SimConnection, CallsWithoutAConnectionFail)
{
    unsigned value = 0;
    Image image;
    EXPECT_EQ(camera.ReadRegister(0x610, &value).GetType(), PGRERROR_NOT_CONNECTED);
    EXPECT_EQ(camera.StartCapture().GetType(), PGRERROR_NOT_CONNECTED);
    EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_NOT_CONNECTED);
    EXPECT_EQ(camera.Disconnect().GetType(), PGRERROR_NOT_CONNECTED);
}

TEST_F(SimConnection, AGigECameraConnectsThroughEitherClass)
{
    ASSERT_EQ(fcsim::loadBus(cameraToml("", "gige"), "test.toml"), "");
    GigECamera gige;
    ASSERT_EQ(gige.Connect(nullptr).GetType(), PGRERROR_OK);
    gige.Disconnect();
    EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
}

TEST_F(SimConnection, AUsbCameraIsNoGigECamera)
{
    ASSERT_EQ(fcsim::loadBus(cameraToml(""), "test.toml"), "");
    GigECamera gige;
    EXPECT_EQ(gige.Connect(nullptr).GetType(), PGRERROR_NOT_SUPPORTED);
}

TEST_F(SimConnection, TheStreamChannelKeepsWhatIsWritten)
{
    const std::string stream = "[camera.stream]\npacket_size = 1400\npacket_delay = 400\n";
    ASSERT_EQ(fcsim::loadBus(cameraToml(stream, "gige"), "test.toml"), "");
    GigECamera gige;
    ASSERT_EQ(gige.Connect(nullptr).GetType(), PGRERROR_OK);
    unsigned count = 0;
    ASSERT_EQ(gige.GetNumStreamChannels(&count).GetType(), PGRERROR_OK);
    EXPECT_EQ(count, 1U);
    GigEStreamChannel channel;
    ASSERT_EQ(gige.GetGigEStreamChannelInfo(0, &channel).GetType(), PGRERROR_OK);
    EXPECT_EQ(channel.packetSize, 1400U);
    EXPECT_EQ(channel.interPacketDelay, 400U);
    EXPECT_TRUE(channel.doNotFragment);
    channel.packetSize = 9000;
    channel.interPacketDelay = 10;
    ASSERT_EQ(gige.SetGigEStreamChannelInfo(0, &channel).GetType(), PGRERROR_OK);
    GigEStreamChannel back;
    ASSERT_EQ(gige.GetGigEStreamChannelInfo(0, &back).GetType(), PGRERROR_OK);
    EXPECT_EQ(back.packetSize, 9000U);
    EXPECT_EQ(back.interPacketDelay, 10U);
    EXPECT_EQ(gige.GetGigEStreamChannelInfo(1, &back).GetType(), PGRERROR_INVALID_PARAMETER);
}

TEST_F(SimConnection, ACameraThatLeavesTheBusIsNotConnected)
{
    connect();
    fcsim::setAttached(kSerial, false);
    EXPECT_FALSE(camera.IsConnected());
    BusManager bus;
    unsigned count = 1;
    EXPECT_EQ(bus.GetNumOfCameras(&count).GetType(), PGRERROR_OK);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_NOT_FOUND);
}

TEST_F(SimConnection, ACameraThatComesBackHasToBeConnectedAnew)
{
    connect();
    fcsim::setAttached(kSerial, false);
    fcsim::setAttached(kSerial, true);
    EXPECT_FALSE(camera.IsConnected());
    EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    EXPECT_TRUE(camera.IsConnected());
}

TEST_F(SimConnection, ADetachFailsTheNextRetrieval)
{
    connect();
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    fcsim::setAttached(kSerial, false);
    Image image;
    EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_NOT_CONNECTED);
}

TEST_F(SimConnection, ADetachThrowsWhereTheDescriptionSaysSo)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "detach_throws = \"device removed\"\n"
                             "[camera.sensor]\nwidth = 64\nheight = 32\n"
                             "[camera.scene]\nkind = \"none\"\n"
                             "[[camera.fault]]\nkind = \"detach\"\nframe = 1\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    Image image;
    ASSERT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
    try {
        camera.RetrieveBuffer(&image);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "device removed");
    }
    EXPECT_FALSE(camera.IsConnected());
}

} // namespace
