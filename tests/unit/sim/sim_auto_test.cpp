// Automatic functions of simulated cameras: they bring the picture to its target, within limits.
#include "sim_fixture.h"

#include <cmath>
#include <numeric>
#include <vector>

using namespace FlyCapture2;

namespace {

constexpr unsigned kShutterLimits = 0x1098;
constexpr unsigned kGainLimits = 0x10A0;
constexpr unsigned kPresent = 0x80000000;

class SimAuto : public SimTest {
protected:
    /// The chart in light of so many times the usual; 40 ms from frame to frame.
    void connectIn(double light, const std::string& more = "")
    {
        ASSERT_EQ(
            fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                           "register_time_us = 0\n[camera.sensor]\nwidth = 320\nheight = 240\n"
                           "[camera.properties.FRAME_RATE]\nvalue = 25.0\n"
                           "[camera.scene]\nbrightness = " +
                               std::to_string(light) + "\n" + more,
                           "test.toml"),
            "");
        ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    }
    Property get(PropertyType type)
    {
        Property property(type);
        EXPECT_EQ(camera.GetProperty(&property).GetType(), PGRERROR_OK);
        return property;
    }
    void put(const Property& property)
    {
        ASSERT_EQ(camera.SetProperty(&property).GetType(), PGRERROR_OK);
    }
    void set(PropertyType type, float value)
    {
        Property property = get(type);
        property.absControl = true;
        property.onOff = true;
        property.autoManualMode = false;
        property.absValue = value;
        put(property);
    }
    void makeAutomatic(PropertyType type)
    {
        Property property = get(type);
        property.onOff = true;
        property.autoManualMode = true;
        put(property);
    }
    void push(PropertyType type)
    {
        Property property = get(type);
        property.autoManualMode = false;
        property.onePush = true;
        put(property);
    }
    void limit(unsigned address, unsigned min, unsigned max)
    {
        ASSERT_EQ(camera.WriteRegister(address, kPresent | min << 12U | max).GetType(),
                  PGRERROR_OK);
    }
    void start() { ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK); }
    /// Truth of the next `count` frames.
    std::vector<fcsim::FrameTruth> grab(int count)
    {
        for (int frame = 0; frame < count; ++frame) {
            EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
        }
        return fcsim::takeTruth(kSerial);
    }
    /// Of the newest picture, 0 to 1.
    double meanLevel()
    {
        const unsigned char* data = image.GetData();
        return std::accumulate(data, data + image.GetDataSize(), 0.0) / image.GetDataSize() / 255;
    }
    static double exposureEv(const fcsim::FrameTruth& frame)
    {
        return std::log2(frame.exposureUs) + static_cast<double>(frame.gainDb) / 6.0206;
    }
    /// The exposure goes one way only, arrives within 20 frames and stays.
    static void expectSteady(const std::vector<fcsim::FrameTruth>& frames, double direction)
    {
        for (std::size_t k = 1; k < frames.size(); ++k) {
            EXPECT_GE((exposureEv(frames[k]) - exposureEv(frames[k - 1])) * direction, -0.002) << k;
            if (k > 20) {
                EXPECT_EQ(frames[k].exposureUs, frames[20].exposureUs) << k;
                EXPECT_EQ(frames[k].gainDb, frames[20].gainDb) << k;
            }
        }
        EXPECT_GT((exposureEv(frames.back()) - exposureEv(frames.front())) * direction, 2);
    }
    /// The mean level is that of `ev`, as far as the points of the metering stand for the picture.
    void expectTarget(double ev)
    {
        EXPECT_NEAR(std::log2(meanLevel() / (0.18 * std::exp2(ev))), 0, 0.35);
    }

    Image image;
};

TEST_F(SimAuto, ShutterAndGainConvergeFromDark)
{
    connectIn(0.03);
    set(SHUTTER, 0.5F);
    makeAutomatic(SHUTTER);
    makeAutomatic(GAIN);
    start();
    const std::vector<fcsim::FrameTruth> frames = grab(30);
    expectSteady(frames, 1);
    expectTarget(0);
    EXPECT_EQ(frames.back().exposureUs, 40'000U); // the shutter first, then the gain
    EXPECT_GT(frames.back().gainDb, 0);
    EXPECT_LT(frames.back().gainDb, 24);
}

TEST_F(SimAuto, ShutterAndGainConvergeFromBright)
{
    connectIn(4);
    set(SHUTTER, 40);
    set(GAIN, 24);
    makeAutomatic(SHUTTER);
    makeAutomatic(GAIN);
    start();
    const std::vector<fcsim::FrameTruth> frames = grab(30);
    EXPECT_EQ(frames.front().exposureUs, 40'000U);
    expectSteady(frames, -1);
    expectTarget(0);
    EXPECT_EQ(frames.back().gainDb, 0); // the gain first, then the shutter
    EXPECT_LT(frames.back().exposureUs, 8000U);
}

TEST_F(SimAuto, WhatIsManualStays)
{
    connectIn(0.3);
    set(SHUTTER, 4);
    makeAutomatic(GAIN);
    start();
    const std::vector<fcsim::FrameTruth> frames = grab(30);
    expectTarget(0);
    EXPECT_EQ(frames.back().exposureUs, 4000U);
    EXPECT_GT(frames.back().gainDb, 6);
}

TEST_F(SimAuto, TheTargetFollowsAutoExposure)
{
    connectIn(0.3);
    makeAutomatic(SHUTTER);
    start();
    double exposure = 0;
    for (const float ev : {-2.0F, -1.0F, 0.0F, 1.0F}) {
        set(AUTO_EXPOSURE, ev);
        const fcsim::FrameTruth last = grab(30).back();
        expectTarget(static_cast<double>(ev));
        if (exposure > 0) {
            EXPECT_NEAR(exposureEv(last) - exposure, 1, 0.25) << ev;
        }
        exposure = exposureEv(last);
    }
    Property target = get(AUTO_EXPOSURE);
    target.onOff = false;
    put(target); // aims at 0 EV again, whatever is set
    grab(30);
    expectTarget(0);
    EXPECT_EQ(get(AUTO_EXPOSURE).absValue, 1);
}

TEST_F(SimAuto, AnAutomaticTargetIsZeroEv)
{
    connectIn(0.3);
    set(AUTO_EXPOSURE, 1);
    makeAutomatic(AUTO_EXPOSURE);
    EXPECT_EQ(get(AUTO_EXPOSURE).absValue, 0);
    makeAutomatic(SHUTTER);
    start();
    grab(30);
    expectTarget(0);
}

TEST_F(SimAuto, TheDarkEndsAtTheUpperLimits)
{
    connectIn(0.001);
    makeAutomatic(SHUTTER);
    makeAutomatic(GAIN);
    limit(kShutterLimits, 10, 1500); // 0.1 to 15 ms
    limit(kGainLimits, 20, 73);      // 2 to 7.3 dB
    start();
    const std::vector<fcsim::FrameTruth> frames = grab(30);
    for (std::size_t k = 1; k < frames.size(); ++k) {
        EXPECT_LE(frames[k].exposureUs, 15'000U);
        EXPECT_LE(frames[k].gainDb, 7.3F);
        EXPECT_GE(frames[k].gainDb, 2.0F);
    }
    EXPECT_EQ(frames.back().exposureUs, 15'000U);
    EXPECT_FLOAT_EQ(frames.back().gainDb, 7.3F);
    EXPECT_LT(meanLevel(), 0.1);
}

TEST_F(SimAuto, TheBrightEndsAtTheLowerLimits)
{
    connectIn(1000);
    set(GAIN, 20);
    makeAutomatic(SHUTTER);
    makeAutomatic(GAIN);
    limit(kShutterLimits, 10, 1500);
    limit(kGainLimits, 20, 73);
    start();
    const std::vector<fcsim::FrameTruth> frames = grab(30);
    EXPECT_EQ(frames.back().exposureUs, 100U);
    EXPECT_FLOAT_EQ(frames.back().gainDb, 2);
    EXPECT_GT(meanLevel(), 0.5);
}

TEST_F(SimAuto, LimitsMayMoveMeanwhile)
{
    connectIn(0.001);
    makeAutomatic(SHUTTER);
    limit(kShutterLimits, 10, 1500);
    start();
    EXPECT_EQ(grab(20).back().exposureUs, 15'000U);
    limit(kShutterLimits, 10, 300);
    EXPECT_EQ(grab(2).back().exposureUs, 3000U);
}

TEST_F(SimAuto, LimitsThatAreTheWrongWayRoundHoldTheMinimum)
{
    connectIn(0.001);
    makeAutomatic(GAIN);
    limit(kGainLimits, 100, 50);
    start();
    EXPECT_FLOAT_EQ(grab(20).back().gainDb, 10);
}

TEST_F(SimAuto, AbsentLimitRegistersLeaveTheRangeOfTheProperty)
{
    connectIn(0.0001, "[camera.properties.GAIN]\nabsolute = [0.0, 48.0]\n[camera.registers]\n"
                      "\"0x10A0\" = 240\n");
    makeAutomatic(GAIN);
    start();
    EXPECT_FLOAT_EQ(grab(30).back().gainDb, 48);
}

TEST_F(SimAuto, AGridKeepsInsideTheLimits)
{
    connectIn(0.001, "[camera.properties.GAIN]\nstep = 0.5\n");
    makeAutomatic(GAIN);
    limit(kGainLimits, 0, 74);
    start();
    EXPECT_FLOAT_EQ(grab(30).back().gainDb, 7);
}

TEST_F(SimAuto, TheFrameRateLimitsAnAutomaticShutterUnlessItIsSwitchedOff)
{
    connectIn(0.0001);
    makeAutomatic(SHUTTER);
    start();
    EXPECT_EQ(grab(20).back().exposureUs, 40'000U);
    makeAutomatic(FRAME_RATE);
    EXPECT_EQ(grab(20).back().exposureUs, 16'667U); // 60 fps of the sensor
    EXPECT_NEAR(get(FRAME_RATE).absValue, 60, 1e-3);
    Property rate = get(FRAME_RATE);
    rate.onOff = false;
    rate.autoManualMode = false;
    put(rate);
    EXPECT_EQ(grab(20).back().exposureUs, 40'950U); // the most that the register can say
    EXPECT_NEAR(get(FRAME_RATE).absValue, 1e6 / 40'950, 1e-3);
}

TEST_F(SimAuto, APushEndsWhenItHasConverged)
{
    connectIn(0.3);
    set(SHUTTER, 1);
    push(SHUTTER);
    start();
    EXPECT_TRUE(get(SHUTTER).onePush);
    grab(3);
    EXPECT_TRUE(get(SHUTTER).onePush);
    grab(20);
    EXPECT_FALSE(get(SHUTTER).onePush);
    EXPECT_FALSE(get(SHUTTER).autoManualMode);
    expectTarget(0);
    const float found = get(SHUTTER).absValue;
    set(AUTO_EXPOSURE, -2);
    grab(20);
    EXPECT_EQ(get(SHUTTER).absValue, found);
}

TEST_F(SimAuto, APushEndsAtALimit)
{
    connectIn(0.0001);
    push(GAIN);
    start();
    grab(20);
    EXPECT_FALSE(get(GAIN).onePush);
    EXPECT_FLOAT_EQ(get(GAIN).absValue, 24);
}

TEST_F(SimAuto, APropertyWithoutOnePushIgnoresIt)
{
    connectIn(0.3, "[camera.properties.GAIN]\none_push = false\n");
    push(GAIN);
    EXPECT_FALSE(get(GAIN).onePush);
}

TEST_F(SimAuto, GetPropertyReportsWhatIsInForceWithoutAnyRetrieval)
{
    connectIn(0.1);
    set(SHUTTER, 0.1F);
    makeAutomatic(SHUTTER);
    start();
    float before = get(SHUTTER).absValue;
    EXPECT_FLOAT_EQ(before, 0.1F);
    for (int frame = 0; frame < 4; ++frame) {
        fcsim::advanceClock(40'000);
        const Property now = get(SHUTTER);
        EXPECT_GT(now.absValue, before);
        EXPECT_GT(now.valueA, 0U);
        before = now.absValue;
    }
}

TEST_F(SimAuto, ALongPauseIsCaughtUpWith)
{
    connectIn(0.1);
    set(SHUTTER, 0.1F);
    makeAutomatic(SHUTTER);
    start();
    fcsim::advanceClock(std::uint64_t{3'600'000'000});
    const float settled = get(SHUTTER).absValue;
    EXPECT_GT(settled, 5);
    const std::vector<fcsim::FrameTruth> frames = grab(20);
    EXPECT_NEAR(frames.back().exposureUs / 1000.0, static_cast<double>(settled), 1);
    expectTarget(0);
}

TEST_F(SimAuto, EachFrameHasTheSettingsThatItReports)
{
    connectIn(0.1);
    set(SHUTTER, 0.1F);
    makeAutomatic(SHUTTER);
    configure(2000, BUFFER_FRAMES, 16);
    start();
    const std::vector<fcsim::FrameTruth> live = grab(12);
    ASSERT_EQ(camera.StopCapture().GetType(), PGRERROR_OK);
    set(SHUTTER, 0.1F);
    makeAutomatic(SHUTTER);
    start();
    fcsim::advanceClock(480'000); // all of them wait in buffers
    const std::vector<fcsim::FrameTruth> late = grab(12);
    for (std::size_t k = 0; k < live.size(); ++k) {
        EXPECT_EQ(late[k].number, k);
        EXPECT_EQ(late[k].exposureUs, live[k].exposureUs) << k;
    }
}

TEST_F(SimAuto, ConvergesWithoutPacingAndOverLostFrames)
{
    connectIn(0.1, "[camera.delivery]\npaced = false\n"
                   "[[camera.fault]]\nkind = \"lose\"\nframe = 2\ncount = 10\n");
    set(SHUTTER, 0.1F);
    makeAutomatic(SHUTTER);
    start();
    const std::vector<fcsim::FrameTruth> frames = grab(12);
    EXPECT_EQ(frames[2].number, 12U);
    EXPECT_GT(frames[2].exposureUs, 4 * frames[1].exposureUs);
    expectTarget(0);
}

TEST_F(SimAuto, WithoutASceneItIsDark)
{
    connectIn(1, "kind = \"none\"\n");
    makeAutomatic(GAIN);
    start();
    EXPECT_FLOAT_EQ(grab(20).back().gainDb, 24);
}

} // namespace
