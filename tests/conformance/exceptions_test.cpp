// Exceptions in the grab loop: those of the standard base class end the grab, others pass through.
#include "camera_test.h"

#include <stdexcept>

using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class ExceptionsTest : public kxtest::CameraTest {
protected:
    ExceptionsTest() { connect(); }

    static void throwIn(const std::string& operation, unsigned skip, const std::string& text,
                        bool detach)
    {
        fcsim::Fault fault;
        fault.operation = operation;
        fault.skip = skip;
        fault.throws = text;
        fault.detach = detach;
        fcsim::addFault(fault);
    }
    static void expectEnded(const std::string& message)
    {
        const auto logs = journal().logs();
        const auto place = std::find(logs.begin(), logs.end(), warning("ProcLoop", message));
        ASSERT_NE(place, logs.end());
        ASSERT_NE(place + 1, logs.end());
        EXPECT_EQ(*(place + 1), info("grabbing is stopped"));
        EXPECT_EQ(journal().count("KxGi__SetTermSigProc"), 1U);
        EXPECT_EQ(journal().count("KxGi__SetNewCfgVendor"), 0U);
        EXPECT_EQ(journal().count("Camera.StopCapture"), 0U);
        EXPECT_THAT(journal().logsWith("Restore some changed"), IsEmpty());
        EXPECT_EQ(logs.back(), info("grabbing loop is completed with exitCode =4294967286"));
    }
};

TEST_F(ExceptionsTest, EndTheGrabOfAConnectedCamera)
{
    throwIn("RetrieveBuffer", 3, "something broke", false);
    EXPECT_EQ(grab(10), -10);
    expectEnded("An unhandled exception occured (-10): something broke");
    EXPECT_THAT(journal().logs(),
                Contains(info("...GRABBING IS DONE (captured 3 frames of 3 loops)")));
    EXPECT_THAT(host().exports, SizeIs(2));
}

TEST_F(ExceptionsTest, EndTheGrabOfADetachedCamera)
{
    throwIn("RetrieveBuffer", 3, "device gone", true);
    EXPECT_EQ(grab(10), -10);
    expectEnded("The device detach triggered an exception (-10): device gone");
}

TEST_F(ExceptionsTest, OfALibraryThatThrowsWhenAskedForTheCameraTellOfADetach)
{
    throwIn("RetrieveBuffer", 3, "device gone", true);
    throwIn("IsConnected", 1, "not even this", false); // the configuration asks once
    EXPECT_EQ(grab(10), -10);
    expectEnded("The device detach triggered an exception (-10): device gone");
}

TEST_F(ExceptionsTest, AreTakenFromEveryStepOfTheLoop)
{
    for (const char* const operation : {"ReadRegister", "GetStats", "GetProperty"}) {
        SCOPED_TRACE(operation);
        connect();
        // Most of these are called before the loop, too.
        cam_->onRetrieve = [operation](unsigned number) {
            if (number == 2) {
                throwIn(operation, 0, "broken step", false);
            }
        };
        EXPECT_EQ(grab(10), -10);
        expectEnded("An unhandled exception occured (-10): broken step");
    }
}

TEST_F(ExceptionsTest, OfTheHostEndTheGrabToo)
{
    host().onCall = [](std::string_view name) {
        if (name == "KxSc__ProcExport") {
            throw std::logic_error("no space");
        }
    };
    EXPECT_EQ(grab(10), -10);
    expectEnded("An unhandled exception occured (-10): no space");
}

TEST_F(ExceptionsTest, BeforeTheFirstIterationPassThrough)
{
    // Nothing has begun that would have to be ended in order.
    for (const char* const operation :
         {"GetFormat7Info", "SetConfiguration", "SetUserBuffers", "StartCapture"}) {
        SCOPED_TRACE(operation);
        connect();
        throwIn(operation, 0, "not yet", false);
        EXPECT_THROW(grab(3), std::runtime_error);
        EXPECT_THAT(journal().logsWith("exception"), IsEmpty());
        EXPECT_THAT(journal().logsWith("GRABBING IS DONE"), IsEmpty());
        EXPECT_EQ(journal().count("KxGi__ResetTermSigProc"), 0U);
        EXPECT_EQ(journal().count("KxGi__SetTermSigProc"), 0U);
    }
    EXPECT_EQ(grab(3), 0);
}

TEST_F(ExceptionsTest, OfOtherTypesPassThrough)
{
    struct Other {};
    host().onCall = [](std::string_view name) {
        if (name == "KxGi__HaltStop") {
            throw Other{};
        }
    };
    EXPECT_THROW(grab(10), Other);
    EXPECT_THAT(journal().logsWith("exception"), IsEmpty());
    EXPECT_THAT(journal().logsWith("grabbing is stopped"), IsEmpty());
    EXPECT_EQ(journal().count("KxGi__SetTermSigProc"), 0U);
}

/// The same through the whole run.
class RunExceptionsTest : public kxtest::PluginTest {};

TEST_F(RunExceptionsTest, OfADetachEndTheRunOnly)
{
    plugIn({{}});
    fcsim::Fault fault;
    fault.operation = "RetrieveBuffer";
    fault.skip = 2;
    fault.throws = "device gone";
    fault.detach = true;
    fcsim::addFault(fault);
    EXPECT_EQ(run(), -10);
    EXPECT_THAT(journal().logs(), Contains(info("scenario is completed (rc = -10)")));
    EXPECT_EQ(journal().logs().back(), info("Loop completed (exitCode = -10)"));
    // The next run finds no camera, and grabs again once it is back.
    EXPECT_EQ(run(), 2);
    fcsim::setAttached(1000, true);
    host().config.fnum = 2;
    EXPECT_EQ(run(), 0);
}

TEST_F(RunExceptionsTest, OfOtherTypesReleaseTheCameraOnTheirWay)
{
    plugIn({{}});
    fcsim::Fault fault;
    fault.operation = "RetrieveBuffer";
    fault.throwsOther = true;
    fcsim::addFault(fault);
    EXPECT_ANY_THROW(run());
    EXPECT_EQ(journal().count("KxUtl__CheckSignal"), 0U);
    // Nobody holds the camera any more.
    host().config.fnum = 2;
    EXPECT_EQ(run(), 0);
}

TEST_F(RunExceptionsTest, ADetachWithoutExceptionEndsByTheDropTrigger)
{
    plugIn({{}});
    fcsim::Fault fault;
    fault.operation = "RetrieveBuffer";
    fault.skip = 2;
    fault.detach = true;
    fcsim::addFault(fault);
    EXPECT_EQ(run(), -10);
    EXPECT_THAT(journal().logsWith("Frames Drop trigger"), SizeIs(5));
}

} // namespace
