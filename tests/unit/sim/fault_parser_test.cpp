// Faults in the description of a camera: what they do, and which values are refused.
#include "sim_fixture.h"

#include <stdexcept>

using namespace FlyCapture2;

namespace {

class FaultParser : public SimTest {
protected:
    static std::string problem(const std::string& tables)
    {
        return fcsim::loadBus(cameraToml(tables), "test.toml");
    }
    static void expectProblem(const std::string& tables, const std::string& part)
    {
        EXPECT_NE(problem(tables).find(part), std::string::npos) << problem(tables);
    }
    ErrorType setGain()
    {
        Property gain(GAIN);
        gain.absControl = true;
        gain.onOff = true;
        gain.absValue = 3;
        return camera.SetProperty(&gain).GetType();
    }
    ErrorType readGain()
    {
        Property gain(GAIN);
        return camera.GetProperty(&gain).GetType();
    }
};

TEST_F(FaultParser, ACallFailsAsDescribed)
{
    connect("[[camera.call_fault]]\noperation = \"SetProperty\"\nskip = 1\ncount = 2\n"
            "text = \"no luck\"\n");
    EXPECT_EQ(setGain(), PGRERROR_OK);
    Property gain(GAIN);
    const Error error = camera.SetProperty(&gain);
    EXPECT_EQ(error.GetType(), PGRERROR_FAILED);
    EXPECT_STREQ(error.GetDescription(), "simulated: no luck");
    EXPECT_EQ(setGain(), PGRERROR_FAILED);
    EXPECT_EQ(setGain(), PGRERROR_OK);
    EXPECT_EQ(readGain(), PGRERROR_OK);
}

TEST_F(FaultParser, ItFailsOnceWhereNothingElseIsSaid)
{
    connect("[[camera.call_fault]]\noperation = \"SetProperty\"\n");
    EXPECT_EQ(setGain(), PGRERROR_FAILED);
    EXPECT_EQ(setGain(), PGRERROR_OK);
}

TEST_F(FaultParser, ACountOfZeroNeverEnds)
{
    connect("[[camera.call_fault]]\noperation = \"SetProperty\"\ncount = 0\n");
    for (int turn = 0; turn < 10; ++turn) {
        EXPECT_EQ(setGain(), PGRERROR_FAILED);
    }
}

TEST_F(FaultParser, OnlyCallsWithTheseArgumentsFail)
{
    connect("[[camera.call_fault]]\noperation = \"ReadRegister\"\narguments = \"0x1098\"\n");
    unsigned value = 0;
    EXPECT_EQ(camera.ReadRegister(0x10A0, &value).GetType(), PGRERROR_OK);
    EXPECT_EQ(camera.ReadRegister(0x1098, &value).GetType(), PGRERROR_FAILED);
}

TEST_F(FaultParser, ACallMayThrow)
{
    connect("[[camera.call_fault]]\noperation = \"SetProperty\"\nthrows = \"gone\"\n");
    try {
        setGain();
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "gone");
    }
}

TEST_F(FaultParser, ACallMayTakeTheCameraOffTheBus)
{
    connect(
        "[[camera.call_fault]]\noperation = \"SetProperty\"\ndetach = true\nback_after = 0.5\n");
    EXPECT_EQ(setGain(), PGRERROR_FAILED);
    EXPECT_FALSE(camera.IsConnected());
    fcsim::advanceClock(499'999);
    EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_NOT_FOUND);
    fcsim::advanceClock(1);
    EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
}

TEST_F(FaultParser, CallsToOtherCamerasDoNotFail)
{
    const std::string other = "[[camera]]\nmodel = \"B\"\nserial = 7002\ninterface = \"usb3\"\n"
                              "[camera.sensor]\nwidth = 64\nheight = 32\n"
                              "[[camera.call_fault]]\noperation = \"SetProperty\"\ncount = 0\n";
    ASSERT_EQ(fcsim::loadBus(cameraToml("") + other, "test.toml"), "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK); // the first one
    EXPECT_EQ(setGain(), PGRERROR_OK);
}

TEST_F(FaultParser, TheReturnBelongsToADetach)
{
    expectProblem("[[camera.fault]]\nkind = \"lose\"\nframe = 1\nback_after = 1\n", "back_after");
    expectProblem("[[camera.fault]]\nkind = \"lose\"\nframe = 1\ntimes = 2\n", "times");
    expectProblem("[[camera.call_fault]]\noperation = \"SetProperty\"\nback_after = 1\n",
                  "back_after");
}

TEST_F(FaultParser, ImpossibleValuesAreRefused)
{
    const std::string detach = "[[camera.fault]]\nkind = \"detach\"\nframe = 1\n";
    expectProblem(detach + "back_after = 0\n", "back_after");
    expectProblem(detach + "back_after = -1\n", "back_after");
    expectProblem(detach + "back_max_size = [30, 16]\n", "back_max_size"); // steps of 16
    expectProblem(detach + "back_max_size = [80, 16]\n", "back_max_size"); // 64 x 32
    expectProblem(detach + "back_max_size = [32, 34]\n", "back_max_size");
    expectProblem(detach + "back_max_size = [0, 0]\n", "back_max_size");
    EXPECT_EQ(problem(detach + "back_max_size = [64, 32]\n"), "");
    expectProblem("[[camera.call_fault]]\nskip = 1\n", "operation");
    expectProblem("[[camera.fault]]\nframe = 1\n", "kind");
    expectProblem("[[camera.fault]]\nkind = \"lose\"\n", "frame");
}

} // namespace
