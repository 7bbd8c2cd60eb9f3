// Settings that change while simulated cameras take pictures: each frame has those of its start.
#include "sim_fixture.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

using namespace FlyCapture2;

namespace {

/// 10 ms of exposure each 40 ms; a frame arrives 12 ms after its start.
constexpr const char* kTiming = "[camera.delivery]\nbandwidth = 2.048e6\nlatency_us = 1000.0\n";
constexpr std::uint64_t kPeriodUs = 40'000;

class SimSettings : public SimTest {
protected:
    void prepare(GrabMode mode, const std::string& more = "", unsigned buffers = 4)
    {
        connect(kTiming + more);
        configure(2000, mode, buffers);
        EmbeddedImageInfo info;
        ASSERT_EQ(camera.GetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
        info.gain.onOff = true;
        info.shutter.onOff = true;
        ASSERT_EQ(camera.SetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
    }
    void start(GrabMode mode, const std::string& more = "", unsigned buffers = 4)
    {
        prepare(mode, more, buffers);
        ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    }
    void set(PropertyType type, float value)
    {
        Property property(type);
        ASSERT_EQ(camera.GetProperty(&property).GetType(), PGRERROR_OK);
        property.absControl = true;
        property.autoManualMode = false;
        property.absValue = value;
        ASSERT_EQ(camera.SetProperty(&property).GetType(), PGRERROR_OK);
    }
    Property get(PropertyType type)
    {
        Property property(type);
        EXPECT_EQ(camera.GetProperty(&property).GetType(), PGRERROR_OK);
        return property;
    }
    /// Retrieves a frame; what its truth says.
    fcsim::FrameTruth next()
    {
        EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
        const std::vector<fcsim::FrameTruth> truth = fcsim::takeTruth(kSerial);
        EXPECT_EQ(truth.size(), 1U);
        return truth.empty() ? fcsim::FrameTruth{} : truth.front();
    }
    static unsigned rawGain(double db)
    {
        return static_cast<unsigned>(std::lround(db / 24 * 1023));
    }

    Image image;
};

TEST_F(SimSettings, AChangeConcernsTheFramesThatBeginAfterIt)
{
    start(DROP_FRAMES);
    EXPECT_EQ(next().gainDb, 0);
    fcsim::advanceClock(kPeriodUs - 12'000 - 1); // 1 us before frame 1 begins
    set(GAIN, 6);
    fcsim::FrameTruth truth = next();
    EXPECT_EQ(truth.number, 1U);
    EXPECT_EQ(truth.gainDb, 6);
    EXPECT_EQ(image.GetMetadata().embeddedGain, rawGain(6));
    fcsim::advanceClock(kPeriodUs - 12'000); // frame 2 has just begun
    set(GAIN, 12);
    EXPECT_EQ(get(GAIN).absValue, 12);
    truth = next();
    EXPECT_EQ(truth.number, 2U);
    EXPECT_EQ(truth.gainDb, 6);
    EXPECT_EQ(image.GetMetadata().embeddedGain, rawGain(6));
    EXPECT_EQ(next().gainDb, 12);
    EXPECT_EQ(image.GetMetadata().embeddedGain, rawGain(12));
}

TEST_F(SimSettings, FramesThatWaitInBuffersKeepWhatTheyWereExposedWith)
{
    start(BUFFER_FRAMES, "", 8);
    for (const float gain : {1.0F, 2.0F, 3.0F, 4.0F}) {
        fcsim::advanceClock(kPeriodUs);
        set(GAIN, gain);
        set(SHUTTER, 10 + gain);
    }
    EXPECT_EQ(get(GAIN).absValue, 4);
    for (std::uint64_t number = 0; number < 6; ++number) {
        const fcsim::FrameTruth truth = next();
        // Frames 1 to 4 begin at the moment of a change and so before it.
        const auto gain = static_cast<float>(number == 0 ? 0 : number - 1);
        const double shutterMs = number < 2 ? 10 : static_cast<double>(10 + number - 1);
        EXPECT_EQ(truth.number, number);
        EXPECT_EQ(truth.gainDb, gain);
        EXPECT_EQ(truth.exposureUs, static_cast<unsigned>(shutterMs * 1000));
        EXPECT_EQ(image.GetMetadata().embeddedGain, rawGain(static_cast<double>(gain)));
    }
}

TEST_F(SimSettings, AProgramThatIsLateForOneFrameLosesNoneToAShorterExposure)
{
    start(DROP_FRAMES);
    std::uint64_t number = 0;
    for (const float shutterMs : {30.0F, 1.0F, 35.0F, 20.0F, 0.1F, 38.0F, 5.0F}) {
        set(SHUTTER, shutterMs);
        fcsim::advanceClock(kPeriodUs * 3 / 2); // one frame is waiting now, none has replaced it
        for (int frame = 0; frame < 3; ++frame) {
            EXPECT_EQ(next().number, number++) << "exposure " << shutterMs << " ms";
        }
    }
}

TEST_F(SimSettings, WithoutPacingAChangeConcernsTheNextFrame)
{
    start(DROP_FRAMES, "paced = false\n");
    for (const float gain : {0.0F, 5.0F, 7.0F}) {
        set(GAIN, gain);
        EXPECT_EQ(next().gainDb, gain);
        EXPECT_EQ(next().gainDb, gain);
    }
}

TEST_F(SimSettings, WhatIsSetBetweenCapturesHoldsFromTheFirstFrame)
{
    start(DROP_FRAMES);
    set(GAIN, 3);
    ASSERT_EQ(camera.StopCapture().GetType(), PGRERROR_OK);
    set(SHUTTER, 5);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    const fcsim::FrameTruth truth = next();
    EXPECT_EQ(truth.gainDb, 3);
    EXPECT_EQ(truth.exposureUs, 5000U);
}

TEST_F(SimSettings, SettingsOutliveAConnectionButNotAnUnplugging)
{
    connect();
    set(GAIN, 3);
    ASSERT_EQ(camera.SetActiveLUTBank(1).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.Disconnect().GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    unsigned bank = 0;
    EXPECT_EQ(get(GAIN).absValue, 3);
    ASSERT_EQ(camera.GetActiveLUTBank(&bank).GetType(), PGRERROR_OK);
    EXPECT_EQ(bank, 1U);
    fcsim::setAttached(kSerial, false);
    Property gain(GAIN);
    EXPECT_EQ(camera.GetProperty(&gain).GetType(), PGRERROR_NOT_CONNECTED);
    EXPECT_EQ(camera.SetProperty(&gain).GetType(), PGRERROR_NOT_CONNECTED);
    fcsim::setAttached(kSerial, true);
    camera.Disconnect();
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    EXPECT_EQ(get(GAIN).absValue, 0);
    ASSERT_EQ(camera.GetActiveLUTBank(&bank).GetType(), PGRERROR_OK);
    EXPECT_EQ(bank, 0U);
}

/// Pictures of a chart behind tables that make every pixel alike: one that was taken partly with
/// one table and partly with another shows it.
class SimSettingsPicture : public SimSettings {
protected:
    void connectTo(const std::string& more = "")
    {
        ASSERT_EQ(
            fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                           "register_time_us = 0\n[camera.sensor]\nwidth = 320\nheight = 240\n"
                           "[camera.properties.SHUTTER]\nvalue = 8.0\n"
                           "[camera.properties.FRAME_RATE]\nvalue = 25.0\n" +
                               more,
                           "test.toml"),
            "");
        ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    }
    void write(unsigned bank, unsigned value)
    {
        const std::vector<unsigned> table(512, value);
        ASSERT_EQ(camera.SetLUTChannel(bank, 0, 512, table.data()).GetType(), PGRERROR_OK);
    }
    /// Darkest and lightest byte of the next frame.
    std::pair<int, int> range()
    {
        EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
        const auto [min, max] =
            std::minmax_element(image.GetData(), image.GetData() + image.GetDataSize());
        return {*min, *max};
    }
    void expectAll(int value)
    {
        const auto [min, max] = range();
        EXPECT_EQ(min, value);
        EXPECT_EQ(max, value);
    }
    void expectPicture()
    {
        const auto [min, max] = range();
        EXPECT_LT(min, 60);
        EXPECT_GT(max, 180);
    }
};

constexpr unsigned kBlack = 0;
constexpr unsigned kWhite = 511;

TEST_F(SimSettingsPicture, TablesActBetweenTwoFrames)
{
    connectTo();
    write(0, kBlack);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    expectPicture(); // written, but not switched on
    ASSERT_EQ(camera.EnableLUT(true).GetType(), PGRERROR_OK);
    expectAll(0);
    write(1, kWhite); // not the active bank
    expectAll(0);
    ASSERT_EQ(camera.SetActiveLUTBank(1).GetType(), PGRERROR_OK);
    expectAll(255);
    write(1, kBlack);
    expectAll(0);
    ASSERT_EQ(camera.EnableLUT(false).GetType(), PGRERROR_OK);
    expectPicture();
}

TEST_F(SimSettingsPicture, ABufferedFrameKeepsTheTableOfItsStart)
{
    connectTo();
    configure(2000, BUFFER_FRAMES, 8);
    write(0, kBlack);
    write(1, kWhite);
    ASSERT_EQ(camera.EnableLUT(true).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    fcsim::advanceClock(2 * kPeriodUs - 1);
    ASSERT_EQ(camera.SetActiveLUTBank(1).GetType(), PGRERROR_OK); // from frame 2 on
    fcsim::advanceClock(2 * kPeriodUs);
    write(1, kBlack); // from frame 4 on
    fcsim::advanceClock(2 * kPeriodUs);
    for (const int value : {0, 0, 255, 255, 0, 0}) {
        expectAll(value);
    }
}

TEST_F(SimSettingsPicture, TwelveBitFramesHaveTwelveBits)
{
    connectTo();
    Format7ImageSettings settings;
    settings.width = 320;
    settings.height = 240;
    settings.pixelFormat = PIXEL_FORMAT_MONO12;
    ASSERT_EQ(camera.SetFormat7Configuration(&settings, 100.0F).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
    ASSERT_EQ(image.GetDataSize(), 320U * 240 * 3 / 2);
    std::vector<bool> used(4096);
    for (unsigned at = 0; at < image.GetDataSize(); at += 3) {
        const unsigned char* pair = image.GetData() + at; // high, low nibbles, high
        used[static_cast<unsigned>(pair[0]) << 4U | (pair[1] & 0xFU)] = true;
        used[static_cast<unsigned>(pair[2]) << 4U | pair[1] >> 4U] = true;
    }
    EXPECT_GT(std::count(used.begin(), used.end(), true), 256);
}

TEST_F(SimSettingsPicture, TheFormatMayChangeBetweenCaptures)
{
    connectTo();
    const auto capture = [&](PixelFormat format, unsigned height) {
        Format7ImageSettings settings;
        settings.width = 320;
        settings.height = height;
        settings.pixelFormat = format;
        ASSERT_EQ(camera.SetFormat7Configuration(&settings, 100.0F).GetType(), PGRERROR_OK);
        ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
        expectPicture();
        EXPECT_EQ(image.GetPixelFormat(), format);
        EXPECT_EQ(image.GetRows(), height);
        expectPicture();
        ASSERT_EQ(camera.StopCapture().GetType(), PGRERROR_OK);
    };
    capture(PIXEL_FORMAT_MONO8, 240);
    EXPECT_EQ(image.GetDataSize(), 320U * 240);
    capture(PIXEL_FORMAT_MONO12, 240);
    EXPECT_EQ(image.GetDataSize(), 320U * 240 * 3 / 2);
    capture(PIXEL_FORMAT_MONO8, 120);
    EXPECT_EQ(image.GetDataSize(), 320U * 120);
}

} // namespace
