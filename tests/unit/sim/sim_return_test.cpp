// Cameras that leave the bus and come back: when, and what is left of what was set.
#include "sim_fixture.h"

using namespace FlyCapture2;

namespace {

constexpr const char* kBackAfterTwoSeconds =
    "[[camera.fault]]\nkind = \"detach\"\nframe = 1\nback_after = 2\n";

class SimReturn : public SimTest {
protected:
    /// Retrieves until that fails; returns how many frames came.
    unsigned framesUntilLost()
    {
        EXPECT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
        unsigned frames = 0;
        Image image;
        while (frames < 20 && camera.RetrieveBuffer(&image) == PGRERROR_OK) {
            ++frames;
        }
        return frames;
    }
    static unsigned camerasOnBus()
    {
        BusManager bus;
        unsigned count = 0;
        EXPECT_EQ(bus.GetNumOfCameras(&count).GetType(), PGRERROR_OK);
        return count;
    }
    unsigned read(unsigned address)
    {
        unsigned value = 0;
        EXPECT_EQ(camera.ReadRegister(address, &value).GetType(), PGRERROR_OK);
        return value;
    }
    void write(unsigned address, unsigned value)
    {
        EXPECT_EQ(camera.WriteRegister(address, value).GetType(), PGRERROR_OK);
    }
    void powerCycle()
    {
        fcsim::setAttached(kSerial, false);
        fcsim::setAttached(kSerial, true);
        ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    }
};

TEST_F(SimReturn, ADetachedCameraIsBackWhenItsTimeHasCome)
{
    connect(kBackAfterTwoSeconds);
    EXPECT_EQ(framesUntilLost(), 1U);
    fcsim::advanceClock(1'999'999);
    EXPECT_EQ(camerasOnBus(), 0U);
    EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_NOT_FOUND);
    fcsim::advanceClock(1);
    EXPECT_EQ(camerasOnBus(), 1U);
    EXPECT_FALSE(camera.IsConnected());
    EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
}

TEST_F(SimReturn, WithoutATimeItStaysAway)
{
    connect("[[camera.fault]]\nkind = \"detach\"\nframe = 0\n");
    EXPECT_EQ(framesUntilLost(), 0U);
    fcsim::advanceClock(1'000'000'000'000);
    EXPECT_EQ(camerasOnBus(), 0U);
    fcsim::setAttached(kSerial, true);
    EXPECT_EQ(camerasOnBus(), 1U);
}

TEST_F(SimReturn, ADetachHappensOnceUnlessMoreAreAskedFor)
{
    connect(kBackAfterTwoSeconds);
    EXPECT_EQ(framesUntilLost(), 1U);
    fcsim::advanceClock(2'000'000);
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    EXPECT_EQ(framesUntilLost(), 20U);
}

TEST_F(SimReturn, ADetachMayHappenSeveralTimes)
{
    connect(std::string(kBackAfterTwoSeconds) + "times = 3\n");
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_EQ(framesUntilLost(), 1U) << turn;
        fcsim::advanceClock(2'000'000);
        ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    }
    EXPECT_EQ(framesUntilLost(), 20U);
}

TEST_F(SimReturn, ADetachMayHappenInEachCapture)
{
    connect(std::string(kBackAfterTwoSeconds) + "times = 0\n");
    for (int turn = 0; turn < 5; ++turn) {
        EXPECT_EQ(framesUntilLost(), 1U) << turn;
        fcsim::advanceClock(2'000'000);
        ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    }
}

TEST_F(SimReturn, RegistersAreAsAtPowerUp)
{
    connect("[camera.registers]\n\"0x1040\" = 0x42474752\n\"0x2000\" = 5\n");
    const unsigned limits = read(0x1098);
    write(0x1098, 0x80123456);
    write(0x2000, 6);
    write(0x3000, 7);
    powerCycle();
    EXPECT_EQ(read(0x1098), limits);
    EXPECT_EQ(read(0x1040), 0x42474752U);
    EXPECT_EQ(read(0x2000), 5U);
    EXPECT_EQ(read(0x3000), 0U);
}

TEST_F(SimReturn, PinsAndStrobesAreAsAtPowerUp)
{
    connect("[camera.registers]\n\"0x1120\" = 0x80000001\n");
    write(0x1110, 0x80010001);
    write(0x1120, 0x80010001);
    StrobeControl strobe;
    strobe.source = 2;
    strobe.onOff = true;
    strobe.duration = 1;
    ASSERT_EQ(camera.SetStrobe(&strobe).GetType(), PGRERROR_OK);
    fcsim::takeTransitions(kSerial, 0);
    fcsim::advanceClock(500);
    powerCycle();
    EXPECT_EQ(fcsim::takeTransitions(kSerial, 0),
              (std::vector<fcsim::LineTransition>{{kStartUs + 500, false}}));
    EXPECT_EQ(read(0x1110), 0x80000000U);
    EXPECT_EQ(read(0x1120), 0x80000001U);
    ASSERT_EQ(camera.GetStrobe(&strobe).GetType(), PGRERROR_OK);
    EXPECT_FALSE(strobe.onOff);
}

TEST_F(SimReturn, TheClockBeginsAnewWhenTheCameraIsPluggedIn)
{
    connect(std::string("[camera.clock]\noffset_us = 3e6\n") + kBackAfterTwoSeconds);
    EXPECT_EQ(framesUntilLost(), 1U);
    fcsim::advanceClock(3'000'000); // plugged in one second ago
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    EXPECT_EQ(read(0x1EA8) >> 25, 4U);
    powerCycle();
    EXPECT_EQ(read(0x1EA8) >> 25, 3U);
}

TEST_F(SimReturn, LossesAreCountedAnew)
{
    connect("[[camera.fault]]\nkind = \"lose\"\nframe = 0\n");
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    Image image;
    ASSERT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
    EXPECT_EQ(stats().imageDropped, 1U);
    powerCycle();
    EXPECT_EQ(stats().imageDropped, 0U);
}

TEST_F(SimReturn, ItMayComeBackWithASmallerLargestRegion)
{
    connect(std::string(kBackAfterTwoSeconds) + "back_max_size = [32, 16]\n");
    EXPECT_EQ(framesUntilLost(), 1U);
    fcsim::advanceClock(2'000'000);
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    Format7Info info;
    bool supported = false;
    ASSERT_EQ(camera.GetFormat7Info(&info, &supported).GetType(), PGRERROR_OK);
    EXPECT_EQ(info.maxWidth, 32U);
    EXPECT_EQ(info.maxHeight, 16U);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    Image image;
    ASSERT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
    EXPECT_EQ(image.GetCols(), 32U);
}

TEST_F(SimReturn, AFaultSetByAProgramMayBringTheCameraBack)
{
    connect();
    fcsim::addFault({.operation = "SetProperty", .detach = true, .backAfterUs = 100});
    Property gain(GAIN);
    EXPECT_EQ(camera.SetProperty(&gain).GetType(), PGRERROR_FAILED);
    EXPECT_FALSE(camera.IsConnected());
    EXPECT_EQ(camerasOnBus(), 0U);
    fcsim::advanceClock(100);
    EXPECT_EQ(camerasOnBus(), 1U);
}

} // namespace
