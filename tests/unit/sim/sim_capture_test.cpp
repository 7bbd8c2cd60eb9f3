// Capture on simulated cameras: when frames come, what they carry, which are lost.
#include "sim_fixture.h"

#include <algorithm>
#include <array>
#include <vector>

using namespace FlyCapture2;

namespace {

/// Frames take 10 ms of exposure, 1 ms of transfer and 1 ms of latency; one comes each 40 ms.
constexpr const char* kTiming = "[camera.delivery]\nbandwidth = 2.048e6\nlatency_us = 1000.0\n";
constexpr std::uint64_t kPeriodUs = 40'000;
constexpr std::uint64_t kWayUs = 12'000;

class SimCapture : public SimTest {
protected:
    void start(const std::string& more = "", int timeoutMs = 2000, GrabMode mode = DROP_FRAMES,
               unsigned buffers = 4)
    {
        connect(kTiming + more);
        configure(timeoutMs, mode, buffers);
        ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    }
    ErrorType retrieve() { return camera.RetrieveBuffer(&image).GetType(); }
    std::vector<std::uint64_t> deliveredNumbers()
    {
        std::vector<std::uint64_t> numbers;
        for (const fcsim::FrameTruth& frame : fcsim::takeTruth(kSerial)) {
            numbers.push_back(frame.number);
        }
        return numbers;
    }

    Image image;
};

TEST_F(SimCapture, ARetrievalReturnsWhenTheFrameArrives)
{
    start();
    for (std::uint64_t k = 0; k < 5; ++k) {
        ASSERT_EQ(retrieve(), PGRERROR_OK);
        EXPECT_EQ(fcsim::nowUs(), kStartUs + k * kPeriodUs + kWayUs);
    }
    const std::vector<fcsim::FrameTruth> truth = fcsim::takeTruth(kSerial);
    ASSERT_EQ(truth.size(), 5U);
    EXPECT_EQ(truth[3].number, 3U);
    EXPECT_EQ(truth[3].exposureStartUs, kStartUs + 3 * kPeriodUs);
    EXPECT_EQ(truth[3].arrivalUs, kStartUs + 3 * kPeriodUs + kWayUs);
    EXPECT_EQ(truth[3].exposureUs, 10'000U);
    EXPECT_TRUE(fcsim::takeTruth(kSerial).empty());
}

TEST_F(SimCapture, TheTimeStampIsTheCameraClockAtTheStartOfExposure)
{
    start("[camera.clock]\noffset_us = 3000000.0\n");
    ASSERT_EQ(retrieve(), PGRERROR_OK);
    ASSERT_EQ(retrieve(), PGRERROR_OK);
    const TimeStamp stamp = image.GetTimeStamp();
    EXPECT_EQ(stamp.cycleSeconds, 3U);
    EXPECT_EQ(stamp.cycleCount, 320U);
    EXPECT_EQ(stamp.cycleOffset, 0U);
    EXPECT_EQ(stamp.seconds, 0);
    EXPECT_EQ(stamp.microSeconds, 0U);
}

TEST_F(SimCapture, ACameraThatCannotEmbedTheTimeGivesNone)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"T\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "embedded = [\"frameCounter\"]\n"
                             "[camera.sensor]\nwidth = 64\nheight = 32\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    ASSERT_EQ(retrieve(), PGRERROR_OK);
    const TimeStamp stamp = image.GetTimeStamp();
    EXPECT_EQ(stamp.cycleSeconds, 0U);
    EXPECT_EQ(stamp.cycleCount, 0U);
    EXPECT_EQ(stamp.cycleOffset, 0U);
}

TEST_F(SimCapture, AFastCameraClockShortensThePeriodOnTheHost)
{
    start("[camera.clock]\ndrift_ppm = 1000.0\n");
    for (int k = 0; k < 101; ++k) {
        ASSERT_EQ(retrieve(), PGRERROR_OK);
    }
    // 100 periods of 40 ms on a clock that runs 0.1 % fast
    EXPECT_EQ(fcsim::takeTruth(kSerial).back().exposureStartUs, kStartUs + 3'996'004);
}

TEST_F(SimCapture, JitterDelaysWithinItsBoundAndIsTheSameForTheSameSeed)
{
    const std::string jitter = "jitter_us = 500.0\nseed = 7\n";
    std::array<std::vector<std::uint64_t>, 2> delays;
    for (std::vector<std::uint64_t>& run : delays) {
        camera.Disconnect();
        fcsim::useManualClock(kStartUs);
        start(jitter);
        for (int k = 0; k < 50; ++k) {
            ASSERT_EQ(retrieve(), PGRERROR_OK);
        }
        for (const fcsim::FrameTruth& frame : fcsim::takeTruth(kSerial)) {
            run.push_back(frame.arrivalUs - frame.exposureStartUs - kWayUs);
        }
    }
    EXPECT_EQ(delays[0], delays[1]);
    EXPECT_LE(*std::max_element(delays[0].begin(), delays[0].end()), 500U);
    EXPECT_GT(*std::max_element(delays[0].begin(), delays[0].end()), 400U);
    EXPECT_LT(*std::min_element(delays[0].begin(), delays[0].end()), 100U);
}

TEST_F(SimCapture, DropFramesDeliversTheNewestAndCountsTheOthers)
{
    start();
    ASSERT_EQ(retrieve(), PGRERROR_OK);
    fcsim::advanceClock(3 * kPeriodUs);
    ASSERT_EQ(retrieve(), PGRERROR_OK);
    EXPECT_EQ(deliveredNumbers(), (std::vector<std::uint64_t>{0, 3}));
    EXPECT_EQ(stats().imageDropped, 2U);
    EXPECT_EQ(stats().imageDriverDropped, 2U);
    ASSERT_EQ(camera.ResetStats().GetType(), PGRERROR_OK);
    EXPECT_EQ(stats().imageDropped, 0U);
}

TEST_F(SimCapture, BufferFramesDeliversTheOldestUntilTheBuffersAreFull)
{
    start("", 2000, BUFFER_FRAMES, 3);
    fcsim::advanceClock(5 * kPeriodUs); // frames 0 to 4 arrive, 3 fit
    for (int k = 0; k < 4; ++k) {
        ASSERT_EQ(retrieve(), PGRERROR_OK);
    }
    EXPECT_EQ(deliveredNumbers(), (std::vector<std::uint64_t>{0, 1, 2, 5}));
    EXPECT_EQ(stats().imageDriverDropped, 2U);
}

TEST_F(SimCapture, TheGrabTimeOutIsHonoured)
{
    start("", 5);
    EXPECT_EQ(retrieve(), PGRERROR_TIMEOUT);
    EXPECT_EQ(fcsim::nowUs(), kStartUs + 5000);
    fcsim::advanceClock(5000);
    EXPECT_EQ(retrieve(), PGRERROR_OK);
    EXPECT_EQ(fcsim::nowUs(), kStartUs + kWayUs);
}

TEST_F(SimCapture, NoTimeOutMeansNoWait)
{
    start("", TIMEOUT_NONE);
    EXPECT_EQ(retrieve(), PGRERROR_TIMEOUT);
    EXPECT_EQ(fcsim::nowUs(), kStartUs);
    fcsim::advanceClock(kWayUs);
    EXPECT_EQ(retrieve(), PGRERROR_OK);
}

TEST_F(SimCapture, AStalledCameraTimesOutAgainAndAgain)
{
    start("[[camera.fault]]\nkind = \"stall\"\nframe = 1\n");
    EXPECT_EQ(retrieve(), PGRERROR_OK);
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(retrieve(), PGRERROR_TIMEOUT);
    }
    EXPECT_EQ(fcsim::nowUs(), kStartUs + kWayUs + 5000 * std::uint64_t{2'000'000});
}

TEST_F(SimCapture, UserBuffersAreFilledInRingOrder)
{
    connect(kTiming);
    configure(2000, DROP_FRAMES);
    std::vector<unsigned char> memory(std::size_t{3} * 4096);
    ASSERT_EQ(camera.SetUserBuffers(memory.data(), 4096, 3).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    for (std::size_t k = 0; k < 7; ++k) {
        Image frame;
        ASSERT_EQ(camera.RetrieveBuffer(&frame).GetType(), PGRERROR_OK);
        EXPECT_EQ(frame.GetData(), memory.data() + k % 3 * 4096);
        EXPECT_EQ(frame.GetDataSize(), 2048U);
    }
}

TEST_F(SimCapture, TooSmallUserBuffersAreRefusedWithBothSizes)
{
    connect();
    std::vector<unsigned char> memory(4096);
    const Error error = camera.SetUserBuffers(memory.data(), 2047, 2);
    EXPECT_EQ(error.GetType(), PGRERROR_BUFFER_TOO_SMALL);
    EXPECT_STREQ(error.GetDescription(),
                 "user buffers of 2047 bytes are too small for frames of 2048");
    EXPECT_EQ(camera.SetUserBuffers(nullptr, 2048, 2).GetType(), PGRERROR_INVALID_PARAMETER);
}

TEST_F(SimCapture, BuffersThatImagesHoldAreNotOverwritten)
{
    start("", 2000, DROP_FRAMES, 2);
    Image first;
    Image second;
    Image third;
    ASSERT_EQ(camera.RetrieveBuffer(&first).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.RetrieveBuffer(&second).GetType(), PGRERROR_OK);
    EXPECT_NE(first.GetData(), second.GetData());
    EXPECT_EQ(camera.RetrieveBuffer(&third).GetType(), PGRERROR_ISOCH_RETRIEVE_BUFFER_FAILED);
    ASSERT_EQ(first.ReleaseBuffer().GetType(), PGRERROR_OK);
    EXPECT_EQ(camera.RetrieveBuffer(&third).GetType(), PGRERROR_OK);
    // An image that is used again gives its own buffer back.
    EXPECT_EQ(camera.RetrieveBuffer(&third).GetType(), PGRERROR_OK);
}

TEST_F(SimCapture, MetadataHoldsOnlyWhatIsSwitchedOn)
{
    start();
    for (int k = 0; k < 2; ++k) {
        ASSERT_EQ(retrieve(), PGRERROR_OK);
    }
    EXPECT_EQ(image.GetMetadata().embeddedFrameCounter, 0U);
    EXPECT_EQ(image.GetMetadata().embeddedTimeStamp, 0U);
    EmbeddedImageInfo info;
    ASSERT_EQ(camera.GetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
    EXPECT_TRUE(info.frameCounter.available);
    info.frameCounter.onOff = true;
    info.timestamp.onOff = true;
    info.shutter.onOff = true;
    ASSERT_EQ(camera.SetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
    ASSERT_EQ(retrieve(), PGRERROR_OK);
    const ImageMetadata metadata = image.GetMetadata();
    const TimeStamp stamp = image.GetTimeStamp();
    EXPECT_EQ(metadata.embeddedFrameCounter, 2U);
    EXPECT_EQ(metadata.embeddedTimeStamp,
              stamp.cycleSeconds << 25 | stamp.cycleCount << 12 | stamp.cycleOffset);
    EXPECT_EQ(metadata.embeddedShutter, 42U); // 10 ms of 0.01 to 1000 ms as 1 to 4095
    EXPECT_EQ(metadata.embeddedGain, 0U);
}

TEST_F(SimCapture, ItemsThatTheCameraLacksCannotBeSwitchedOn)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "embedded = [\"timestamp\"]\n[camera.sensor]\nwidth = 64\n"
                             "height = 32\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    EmbeddedImageInfo info;
    ASSERT_EQ(camera.GetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
    EXPECT_TRUE(info.timestamp.available);
    EXPECT_FALSE(info.gain.available);
    info.gain.onOff = true;
    ASSERT_EQ(camera.SetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.GetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
    EXPECT_FALSE(info.gain.onOff);
}

TEST_F(SimCapture, AChangeDuringCaptureConcernsTheFramesThatFollow)
{
    start();
    ASSERT_EQ(retrieve(), PGRERROR_OK); // at 12 ms
    Property rate(FRAME_RATE);
    ASSERT_EQ(camera.GetProperty(&rate).GetType(), PGRERROR_OK);
    rate.absValue = 50.0F;
    ASSERT_EQ(camera.SetProperty(&rate).GetType(), PGRERROR_OK);
    for (int k = 1; k < 4; ++k) {
        ASSERT_EQ(retrieve(), PGRERROR_OK);
    }
    const std::vector<fcsim::FrameTruth> truth = fcsim::takeTruth(kSerial);
    EXPECT_EQ(truth[1].exposureStartUs, kStartUs + 40'000);
    EXPECT_EQ(truth[2].exposureStartUs, kStartUs + 60'000);
    EXPECT_EQ(truth[3].exposureStartUs, kStartUs + 80'000);
}

TEST_F(SimCapture, UnpacedRetrievalsNeitherWaitNorDrop)
{
    start("paced = false\n");
    for (std::uint64_t k = 0; k < 100; ++k) {
        ASSERT_EQ(retrieve(), PGRERROR_OK);
    }
    EXPECT_EQ(fcsim::nowUs(), kStartUs);
    const std::vector<fcsim::FrameTruth> truth = fcsim::takeTruth(kSerial);
    ASSERT_EQ(truth.size(), 100U);
    EXPECT_EQ(truth[99].number, 99U);
    EXPECT_EQ(truth[99].exposureStartUs, kStartUs + 99 * kPeriodUs);
    EXPECT_EQ(stats().imageDropped, 0U);
}

TEST_F(SimCapture, StatesRefuseTheCallsThatDoNotBelongToThem)
{
    connect(kTiming);
    EXPECT_EQ(retrieve(), PGRERROR_ISOCH_NOT_STARTED);
    EXPECT_EQ(camera.StopCapture().GetType(), PGRERROR_ISOCH_NOT_STARTED);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    EXPECT_EQ(camera.StartCapture().GetType(), PGRERROR_ISOCH_ALREADY_STARTED);
    FC2Config config;
    EXPECT_EQ(camera.SetConfiguration(&config).GetType(), PGRERROR_ISOCH_ALREADY_STARTED);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(retrieve(), PGRERROR_OK);
        EXPECT_EQ(camera.StopCapture().GetType(), PGRERROR_OK);
        EXPECT_EQ(retrieve(), PGRERROR_ISOCH_NOT_STARTED);
        EXPECT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    }
}

TEST_F(SimCapture, AFrameOutlivesTheCaptureAndTheConnection)
{
    start();
    ASSERT_EQ(retrieve(), PGRERROR_OK);
    ASSERT_EQ(camera.StopCapture().GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.Disconnect().GetType(), PGRERROR_OK);
    std::fill_n(image.GetData(), image.GetDataSize(), std::uint8_t{1}); // caught by asan if freed
    EXPECT_EQ(image.GetData()[2047], 1);
}

} // namespace
