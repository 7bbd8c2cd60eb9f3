// Faults and the record of calls: those that tests set by name and those of the description.
#include "sim_fixture.h"

#include <vector>

using namespace FlyCapture2;

namespace {

class SimFault : public SimTest {
protected:
    void startWith(const std::string& faults)
    {
        connect(faults);
        configure(2000, BUFFER_FRAMES);
        EmbeddedImageInfo info;
        ASSERT_EQ(camera.GetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
        info.frameCounter.onOff = true;
        ASSERT_EQ(camera.SetEmbeddedImageInfo(&info).GetType(), PGRERROR_OK);
        ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    }
    /// Frame counter of the next frame.
    unsigned nextCounter()
    {
        Image image;
        EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
        return image.GetMetadata().embeddedFrameCounter;
    }
    ErrorType readGain()
    {
        Property gain(GAIN);
        return camera.GetProperty(&gain).GetType();
    }
};

TEST_F(SimFault, ALostFrameIsMissingAndCounted)
{
    startWith("[[camera.fault]]\nkind = \"lose\"\nframe = 1\ncount = 2\n");
    EXPECT_EQ(nextCounter(), 0U);
    EXPECT_EQ(nextCounter(), 3U);
    EXPECT_EQ(stats().imageXmitFailed, 2U);
    EXPECT_EQ(stats().imageDropped, 2U);
    EXPECT_EQ(stats().imageDriverDropped, 0U);
}

TEST_F(SimFault, ARetrievalErrorConcernsItsFrameOnly)
{
    startWith("[[camera.fault]]\nkind = \"error\"\nframe = 1\ntext = \"no luck\"\n");
    EXPECT_EQ(nextCounter(), 0U);
    Image image;
    const Error error = camera.RetrieveBuffer(&image);
    EXPECT_EQ(error.GetType(), PGRERROR_ISOCH_RETRIEVE_BUFFER_FAILED);
    EXPECT_STREQ(error.GetDescription(), "no luck");
    EXPECT_EQ(nextCounter(), 2U);
}

TEST_F(SimFault, AnIncompleteFrameIsAConsistencyErrorAndCounted)
{
    startWith("[[camera.fault]]\nkind = \"corrupt\"\nframe = 0\n");
    Image image;
    EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_IMAGE_CONSISTENCY_ERROR);
    EXPECT_EQ(stats().imageCorrupt, 1U);
}

TEST_F(SimFault, AFrameCounterMayBeWrong)
{
    startWith("[[camera.fault]]\nkind = \"counter\"\nframe = 1\namount = 1000\n");
    EXPECT_EQ(nextCounter(), 0U);
    EXPECT_EQ(nextCounter(), 1001U);
    EXPECT_EQ(nextCounter(), 2U);
}

TEST_F(SimFault, TheCameraClockMayJump)
{
    startWith("[[camera.fault]]\nkind = \"clock_step\"\nframe = 1\namount = 5e6\n");
    Image before;
    Image after;
    ASSERT_EQ(camera.RetrieveBuffer(&before).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.RetrieveBuffer(&after).GetType(), PGRERROR_OK);
    EXPECT_EQ(after.GetTimeStamp().cycleSeconds - before.GetTimeStamp().cycleSeconds, 5U);
}

TEST_F(SimFault, ANamedFaultFailsTheCallsItIsMeantFor)
{
    connect();
    fcsim::addFault({.operation = "GetProperty", .detail = "GAIN", .skip = 1, .count = 2});
    EXPECT_EQ(readGain(), PGRERROR_OK);
    Property shutter(SHUTTER);
    EXPECT_EQ(camera.GetProperty(&shutter).GetType(), PGRERROR_OK);
    EXPECT_EQ(readGain(), PGRERROR_FAILED);
    EXPECT_EQ(readGain(), PGRERROR_FAILED);
    EXPECT_EQ(readGain(), PGRERROR_OK);
}

TEST_F(SimFault, APropertyMayRefuseToBeSet)
{
    connect();
    fcsim::addFault({.operation = "SetProperty", .detail = "GAIN"});
    Property gain(GAIN);
    ASSERT_EQ(camera.GetProperty(&gain).GetType(), PGRERROR_OK);
    gain.absValue = 6;
    EXPECT_EQ(camera.SetProperty(&gain).GetType(), PGRERROR_FAILED);
    ASSERT_EQ(camera.GetProperty(&gain).GetType(), PGRERROR_OK);
    EXPECT_EQ(gain.absValue, 0);
}

TEST_F(SimFault, DescriptionsOfFaultsBeginWithSimulated)
{
    connect();
    fcsim::addFault({.operation = "StopCapture"});
    fcsim::addFault({.operation = "StopCapture", .description = "cable"});
    EXPECT_STREQ(camera.StopCapture().GetDescription(), "simulated failure of StopCapture");
    EXPECT_STREQ(camera.StopCapture().GetDescription(), "simulated: cable");
}

TEST_F(SimFault, AFaultMayLastUntilItIsCleared)
{
    connect();
    fcsim::addFault({.operation = "GetProperty", .count = 0, .error = PGRERROR_TIMEOUT});
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(readGain(), PGRERROR_TIMEOUT);
    }
    fcsim::clearFaults();
    EXPECT_EQ(readGain(), PGRERROR_OK);
}

TEST_F(SimFault, AFaultMayThrow)
{
    connect();
    fcsim::addFault({.operation = "GetStats", .throws = "boom"});
    CameraStats stats;
    EXPECT_THROW(camera.GetStats(&stats), std::runtime_error);
    fcsim::addFault({.operation = "GetStats", .throwsOther = true});
    bool other = false;
    try {
        camera.GetStats(&stats);
    } catch (const std::exception&) {
        FAIL() << "a std::exception was thrown";
    } catch (...) {
        other = true;
    }
    EXPECT_TRUE(other);
}

TEST_F(SimFault, AFaultMayTakeTheCameraOffTheBus)
{
    connect();
    fcsim::addFault({.operation = "RetrieveBuffer", .throws = "gone", .detach = true});
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    Image image;
    EXPECT_THROW(camera.RetrieveBuffer(&image), std::runtime_error);
    EXPECT_FALSE(camera.IsConnected());
}

TEST_F(SimFault, ACallMaySucceedWithoutEffect)
{
    connect();
    fcsim::addFault({.operation = "ReadRegister", .skipEffect = true});
    unsigned value = 77;
    EXPECT_EQ(camera.ReadRegister(0x1040, &value).GetType(), PGRERROR_OK);
    EXPECT_EQ(value, 77U);
}

TEST_F(SimFault, AFaultMayConcernOneCameraOnly)
{
    connect();
    fcsim::addFault({.operation = "GetProperty", .serial = 1});
    EXPECT_EQ(readGain(), PGRERROR_OK);
    fcsim::addFault({.operation = "GetProperty", .serial = kSerial});
    EXPECT_EQ(readGain(), PGRERROR_FAILED);
}

TEST_F(SimFault, TheRecordHoldsObjectOperationArgumentsAndResult)
{
    connect();
    fcsim::recordCalls(true);
    unsigned value = 0;
    camera.ReadRegister(0x1EA8, &value);
    camera.WriteRegister(0x610, 0x80000000);
    Property gain(GAIN);
    camera.GetProperty(&gain);
    gain.absValue = 3.5F;
    camera.SetProperty(&gain);
    camera.StopCapture();
    const std::vector<fcsim::Call> calls = fcsim::takeCalls();
    ASSERT_EQ(calls.size(), 5U);
    EXPECT_EQ(calls[0].object, "Camera");
    EXPECT_EQ(calls[0].operation, "ReadRegister");
    EXPECT_EQ(calls[0].arguments, "0x1EA8");
    EXPECT_EQ(calls[0].result, PGRERROR_OK);
    EXPECT_EQ(calls[1].arguments, "0x610 0x80000000");
    EXPECT_EQ(calls[2].arguments, "GAIN");
    EXPECT_EQ(calls[3].arguments, "GAIN abs=3.5 on");
    EXPECT_EQ(calls[4].operation, "StopCapture");
    EXPECT_EQ(calls[4].result, PGRERROR_ISOCH_NOT_STARTED);
    EXPECT_TRUE(fcsim::takeCalls().empty());
}

TEST_F(SimFault, NothingIsRecordedUnlessAskedFor)
{
    connect();
    readGain();
    EXPECT_TRUE(fcsim::takeCalls().empty());
}

} // namespace
