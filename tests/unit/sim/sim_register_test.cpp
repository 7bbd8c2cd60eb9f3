// Registers of simulated cameras: power, clock, colour filter, plain storage.
#include "sim_fixture.h"

#include <utility>

using namespace FlyCapture2;

namespace {

class SimRegister : public SimTest {
protected:
    unsigned read(unsigned address)
    {
        unsigned value = 0;
        EXPECT_EQ(camera.ReadRegister(address, &value).GetType(), PGRERROR_OK);
        return value;
    }
    ErrorType readPower(unsigned* value) { return camera.ReadRegister(0x610, value).GetType(); }
    void askForPower()
    {
        ASSERT_EQ(camera.WriteRegister(0x610, 0x80000000).GetType(), PGRERROR_OK);
    }
};

TEST_F(SimRegister, TheClockRegisterIsTheCameraClockNow)
{
    connect("[camera.clock]\noffset_us = 5000000.0\n");
    EXPECT_EQ(read(0x1EA8), 5U << 25);
    fcsim::advanceClock(500'000 + 62); // 4000 cycles and half a cycle less half a microsecond
    EXPECT_EQ(read(0x1EA8), 5U << 25 | 4000U << 12 | 1524U);
}

TEST_F(SimRegister, TheClockStartsAgainAfter128Seconds)
{
    connect("[camera.clock]\noffset_us = 127999875.0\n");
    EXPECT_EQ(read(0x1EA8), 127U << 25 | 7999U << 12);
    fcsim::advanceClock(125);
    EXPECT_EQ(read(0x1EA8), 0U);
}

TEST_F(SimRegister, TheClockMayWrapEarlierAndDrift)
{
    connect("[camera.clock]\noffset_us = 0.0\nwrap_seconds = 4\ndrift_ppm = 1000.0\n");
    fcsim::advanceClock(5'000'000); // 5.005 s on the camera's clock
    EXPECT_EQ(read(0x1EA8), 1U << 25 | 40U << 12);
}

/// Microseconds of a clock register.
double shownUs(unsigned value)
{
    const double ticks = value & 0xFFFU;
    return (value >> 25U) * 1e6 + (value >> 12U & 0x1FFFU) * 125.0 + ticks / 24.576;
}

TEST_F(SimRegister, TheClockMayWanderAboutItsDrift)
{
    connect("[camera.clock]\noffset_us = 0.0\ndrift_ppm = 100.0\nwander_ppm = 50.0\n"
            "wander_seconds = 40.0\n");
    // A sine of 50 ppm over 40 s adds up to 50 x 40 / pi after half of it, and to nothing after
    // all.
    const double peakUs = 50 * 40 / 3.14159265;
    constexpr double kTickUs = 1 / 24.576;
    for (const auto& [seconds, wanderUs] :
         {std::pair(10, peakUs / 2), std::pair(20, peakUs), std::pair(30, peakUs / 2),
          std::pair(40, 0.0), std::pair(60, peakUs)}) {
        fcsim::useManualClock(kStartUs);
        fcsim::advanceClock(static_cast<std::uint64_t>(seconds) * 1'000'000);
        EXPECT_NEAR(shownUs(read(0x1EA8)), seconds * 1e6 * 1.0001 + wanderUs, kTickUs) << seconds;
    }
}

TEST_F(SimRegister, GetCycleTimeAgreesWithTheRegister)
{
    connect();
    fcsim::advanceClock(123'456);
    TimeStamp time;
    ASSERT_EQ(camera.GetCycleTime(&time).GetType(), PGRERROR_OK);
    EXPECT_EQ(time.cycleSeconds << 25 | time.cycleCount << 12 | time.cycleOffset, read(0x1EA8));
    EXPECT_EQ(time.seconds, 0);
    EXPECT_EQ(time.microSeconds, 0U);
}

TEST_F(SimRegister, ACameraThatIsOnSaysSo)
{
    connect();
    askForPower();
    EXPECT_EQ(read(0x610), 0x80000000U);
}

TEST_F(SimRegister, ADelayedCameraTakesSomeReads)
{
    connect("[camera.power]\nbehaviour = \"delayed\"\nreads = 2\n");
    EXPECT_EQ(camera.StartCapture().GetType(), PGRERROR_ISOCH_START_FAILED);
    askForPower();
    EXPECT_EQ(read(0x610), 0U);
    EXPECT_EQ(read(0x610), 0U);
    EXPECT_EQ(read(0x610), 0x80000000U);
    EXPECT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
}

TEST_F(SimRegister, ACameraThatNeverComesUpAnswersZero)
{
    connect("[camera.power]\nbehaviour = \"never\"\n");
    askForPower();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(read(0x610), 0U);
    }
}

TEST_F(SimRegister, PowerReadsMayTimeOut)
{
    connect("[camera.power]\nbehaviour = \"timeout\"\nreads = 1\n");
    askForPower();
    unsigned value = 0;
    EXPECT_EQ(readPower(&value), PGRERROR_TIMEOUT);
    EXPECT_EQ(readPower(&value), PGRERROR_OK);
    EXPECT_EQ(value, 0x80000000U);
}

TEST_F(SimRegister, TheTileRegisterHoldsFourLetters)
{
    connect("[[camera]]\nmodel = \"C\"\nserial = 2\ninterface = \"usb3\"\n"
            "[camera.sensor]\nwidth = 64\nheight = 32\ncolour = true\nbayer_tile = \"GRBG\"\n"
            "[camera.scene]\nkind = \"none\"\n");
    EXPECT_EQ(read(0x1040), 0x59595959U);
    EXPECT_EQ(fcsim::peekRegister(2, 0x1040), 0x47524247U);
}

TEST_F(SimRegister, TheDescriptionMaySetRegisters)
{
    connect("[camera.registers]\n\"0x1040\" = 0x42474752\n\"0x1098\" = 0x80001002\n");
    EXPECT_EQ(read(0x1040), 0x42474752U);
    EXPECT_EQ(read(0x1098), 0x80001002U);
}

TEST_F(SimRegister, AutomaticLimitsBeginWithTheRangesOfTheProperties)
{
    connect("[camera.properties.GAIN]\nabsolute = [1.5, 18.0]\n");
    EXPECT_EQ(read(0x1098), 0x80001FFFU); // 0.01 ms, and 1000 ms cut to 12 bits
    EXPECT_EQ(read(0x10A0), 0x8000F0B4U);
    ASSERT_EQ(camera.WriteRegister(0x10A0, 0x0200A064).GetType(), PGRERROR_OK);
    EXPECT_EQ(read(0x10A0), 0x8200A064U);
}

TEST_F(SimRegister, AutomaticLimitsMayBeAbsent)
{
    connect("[camera.properties.GAIN]\npresent = false\n[camera.registers]\n\"0x1098\" = 0\n");
    EXPECT_EQ(read(0x1098), 0U);
    EXPECT_EQ(read(0x10A0), 0U);
    ASSERT_EQ(camera.WriteRegister(0x1098, 0x80001FFF).GetType(), PGRERROR_OK);
    EXPECT_EQ(read(0x1098), 0x1FFFU);
}

TEST_F(SimRegister, PlainRegistersKeepWhatIsWrittenButThePresenceBit)
{
    connect();
    EXPECT_EQ(read(0x2000), 0U);
    ASSERT_EQ(camera.WriteRegister(0x2000, 0x1234).GetType(), PGRERROR_OK);
    EXPECT_EQ(read(0x2000), 0x1234U);
    ASSERT_EQ(camera.WriteRegister(0x1110, 0x00010001).GetType(), PGRERROR_OK);
    EXPECT_EQ(read(0x1110), 0x80010001U);
}

TEST_F(SimRegister, AnUnalignedAddressFails)
{
    connect();
    unsigned value = 0;
    EXPECT_EQ(camera.ReadRegister(0x611, &value).GetType(), PGRERROR_READ_REGISTER_FAILED);
}

TEST_F(SimRegister, APokedRegisterKeepsItsValue)
{
    connect();
    fcsim::pokeRegister(kSerial, 0x1EA8, 0);
    fcsim::advanceClock(1000);
    EXPECT_EQ(read(0x1EA8), 0U);
}

TEST_F(SimRegister, RegisterCallsTakeTheirTime)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "register_time_us = 45\n[camera.sensor]\nwidth = 64\nheight = 32\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    const std::uint64_t before = fcsim::nowUs();
    read(0x2000);
    EXPECT_EQ(fcsim::nowUs() - before, 45U);
}

} // namespace
