// Strobes of a simulated camera: records, and their pulses frame by frame.
#include "sim_fixture.h"

#include <vector>

using namespace FlyCapture2;
using fcsim::StrobePulse;

namespace {

constexpr std::uint64_t kPeriodUs = 40'000; // 25 frames a second
constexpr std::uint64_t kExposureUs = 10'000;
constexpr unsigned kPin2 = 0x1130;

class GpioStrobeTest : public SimTest {
protected:
    static StrobeControl control(unsigned pin, bool on, unsigned polarity, float delay,
                                 float duration)
    {
        StrobeControl control;
        control.source = pin;
        control.onOff = on;
        control.polarity = polarity;
        control.delay = delay;
        control.duration = duration;
        return control;
    }
    void set(const StrobeControl& wanted)
    {
        StrobeControl copy = wanted;
        ASSERT_EQ(camera.SetStrobe(&copy).GetType(), PGRERROR_OK);
    }
    StrobeControl get(unsigned pin)
    {
        StrobeControl found;
        found.source = pin;
        EXPECT_EQ(camera.GetStrobe(&found).GetType(), PGRERROR_OK);
        return found;
    }
    void start() { ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK); }
    void fetch(unsigned frames)
    {
        Image image;
        for (unsigned i = 0; i < frames; ++i) {
            ASSERT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
        }
    }
};

TEST_F(GpioStrobeTest, EachPinTellsWhatItCanDo)
{
    connect();
    StrobeInfo info;
    info.source = 3;
    ASSERT_EQ(camera.GetStrobeInfo(&info).GetType(), PGRERROR_OK);
    EXPECT_TRUE(info.present && info.onOffSupported && info.polaritySupported);
    EXPECT_EQ(info.source, 3U);
    EXPECT_EQ(info.maxValue, 64.0F);
    info.source = 4;
    ASSERT_EQ(camera.GetStrobeInfo(&info).GetType(), PGRERROR_OK);
    EXPECT_FALSE(info.present || info.onOffSupported);
}

TEST_F(GpioStrobeTest, ThereIsNoStrobeWithoutAPin)
{
    connect();
    StrobeControl strobe;
    strobe.source = 4;
    EXPECT_EQ(camera.GetStrobe(&strobe).GetType(), PGRERROR_STROBE_FAILED);
    EXPECT_EQ(camera.SetStrobe(&strobe).GetType(), PGRERROR_STROBE_FAILED);
}

TEST_F(GpioStrobeTest, RecordsAreKeptByPinWithinTheRange)
{
    connect();
    set(control(1, true, 1, 2.5F, 70));
    EXPECT_EQ(get(1).source, 1U);
    EXPECT_TRUE(get(1).onOff);
    EXPECT_EQ(get(1).polarity, 1U);
    EXPECT_EQ(get(1).delay, 2.5F);
    EXPECT_EQ(get(1).duration, 64.0F);
    set(control(1, true, 1, -1, 64));
    EXPECT_EQ(get(1).delay, 0.0F);
    EXPECT_FALSE(get(0).onOff);
}

TEST_F(GpioStrobeTest, PulsesFollowTheExposure)
{
    connect();
    set(control(2, true, 1, 2.5F, 4));
    start();
    fetch(2);
    const std::vector<fcsim::FrameTruth> truth = fcsim::takeTruth(kSerial);
    const std::vector<StrobePulse> pulses = fcsim::takeStrobePulses(kSerial);
    ASSERT_EQ(truth.size(), 2U);
    ASSERT_EQ(pulses.size(), 2U);
    for (unsigned i = 0; i < 2; ++i) {
        EXPECT_EQ(pulses[i].frame, i);
        EXPECT_EQ(pulses[i].pin, 2U);
        EXPECT_EQ(pulses[i].exposureStartUs, truth[i].exposureStartUs);
        EXPECT_EQ(pulses[i].startUs, truth[i].exposureStartUs + 2500);
        EXPECT_EQ(pulses[i].endUs, truth[i].exposureStartUs + 6500);
        EXPECT_TRUE(pulses[i].activeHigh);
    }
    EXPECT_TRUE(fcsim::takeStrobePulses(kSerial).empty());
}

TEST_F(GpioStrobeTest, WithoutADurationThePulseIsAsLongAsTheExposure)
{
    connect();
    set(control(0, true, 0, 1, 0));
    start();
    fetch(1);
    const auto pulses = fcsim::takeStrobePulses(kSerial);
    ASSERT_EQ(pulses.size(), 1U);
    EXPECT_EQ(pulses[0].startUs, kStartUs + 1000);
    EXPECT_EQ(pulses[0].endUs, kStartUs + 1000 + kExposureUs);
    EXPECT_FALSE(pulses[0].activeHigh);
}

TEST_F(GpioStrobeTest, LostFramesAreLitToo)
{
    connect("[[camera.fault]]\nkind = \"lose\"\nframe = 1\n");
    set(control(0, true, 0, 0, 1));
    set(control(3, true, 0, 0, 1));
    start();
    fetch(2);
    const auto pulses = fcsim::takeStrobePulses(kSerial);
    ASSERT_EQ(pulses.size(), 6U);
    EXPECT_EQ(pulses[2].frame, 1U);
    EXPECT_EQ(pulses[2].pin, 0U);
    EXPECT_EQ(pulses[3].pin, 3U);
    EXPECT_EQ(pulses[5].frame, 2U);
}

TEST_F(GpioStrobeTest, FramesThatNobodyFetchesAreLitToo)
{
    connect();
    set(control(0, true, 0, 0, 1));
    start();
    fcsim::advanceClock(3 * kPeriodUs);
    EXPECT_EQ(fcsim::takeStrobePulses(kSerial).size(), 3U);
}

TEST_F(GpioStrobeTest, AChangeConcernsTheFramesThatStartAfterIt)
{
    connect();
    start();
    fcsim::advanceClock(kPeriodUs + 1000); // frame 1 has begun
    set(control(0, true, 1, 0, 1));
    fetch(4); // until frame 3 is there
    set(control(0, false, 1, 0, 1));
    fcsim::advanceClock(3 * kPeriodUs);
    const auto pulses = fcsim::takeStrobePulses(kSerial);
    ASSERT_EQ(pulses.size(), 2U);
    EXPECT_EQ(pulses[0].frame, 2U);
    EXPECT_EQ(pulses[1].frame, 3U);
}

TEST_F(GpioStrobeTest, APinThatIsAnOutputGivesNoPulsesUntilItsStrobeIsSetAgain)
{
    connect();
    set(control(2, true, 1, 0, 1));
    unsigned value = 0;
    ASSERT_EQ(camera.ReadRegister(kPin2, &value).GetType(), PGRERROR_OK);
    EXPECT_EQ(value, 0x80030000U);
    start();
    fetch(1);
    ASSERT_EQ(camera.WriteRegister(kPin2, 0x80010000).GetType(), PGRERROR_OK);
    fetch(1);
    set(control(2, true, 1, 0, 1));
    fetch(1);
    const auto pulses = fcsim::takeStrobePulses(kSerial);
    ASSERT_EQ(pulses.size(), 2U);
    EXPECT_EQ(pulses[0].frame, 0U);
    EXPECT_EQ(pulses[1].frame, 2U);
}

} // namespace
