// Power-up: the power register, the waits, and what counts as failure.
#include "plugin_test.h"

using kxtest::CameraText;
using kxtest::format;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class PowerUpTest : public kxtest::PluginTest {
protected:
    PowerUpTest() { kxtest::host().config.fnum = 1; }

    /// One camera with this power behaviour: the power table's content.
    static void plugInWith(const std::string& power)
    {
        CameraText camera;
        camera.extra = "power = { " + power + " }";
        plugIn({camera});
    }
    static std::size_t powerReads()
    {
        std::size_t reads = 0;
        for (const kxtest::Event& event : journal().events()) {
            reads += event.name == "Camera.ReadRegister" && event.arguments == "0x610" ? 1U : 0U;
        }
        return reads;
    }
    static bool sessionStarted() { return !journal().logsWith("KxPgProc entry").empty(); }
    static void expectFailure()
    {
        EXPECT_THAT(journal().logsWith("powering up the camera is not ok"),
                    ElementsAre(testing::MatchesRegex(
                        "4 \\[w\\|KxLibProc\\] TSus_[0-9]+ - powering up the camera is not ok "
                        "\\(Model: ID:\\(null\\)\\)\\.\\.\\.")));
        EXPECT_FALSE(sessionStarted());
        EXPECT_EQ(journal().lines(kxtest::Kind::sdk).back(), "Camera.Disconnect()");
        EXPECT_EQ(journal().logs().back(), info("Loop completed (exitCode = -5)"));
        EXPECT_THAT(journal().logsWith("device is disconnected"), IsEmpty());
    }
};

TEST_F(PowerUpTest, AsksForPowerAndLooksAfterATenthOfASecond)
{
    plugInWith("behaviour = \"on\"");
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(sessionStarted());
    const auto steps = journal().lines({"Camera.WriteRegister", "usleep", "Camera.ReadRegister"});
    ASSERT_GE(steps.size(), 3U);
    // Not a broadcast, which would wake every camera of the bus.
    EXPECT_EQ(steps[0], "Camera.WriteRegister(0x610 0x80000000)");
    EXPECT_EQ(steps[1], "usleep(100000)");
    EXPECT_EQ(steps[2], "Camera.ReadRegister(0x610)");
    EXPECT_EQ(journal().count("usleep"), 1U);
}

TEST_F(PowerUpTest, WaitsUntilThePowerShows)
{
    plugInWith("behaviour = \"delayed\", reads = 3");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(powerReads(), 4U);
    EXPECT_EQ(journal().count("usleep"), 4U);
    EXPECT_TRUE(sessionStarted());
}

TEST_F(PowerUpTest, StartsAnywayAfterTenReads)
{
    plugInWith("behaviour = \"never\"");
    run();
    EXPECT_EQ(powerReads(), 10U);
    EXPECT_EQ(journal().count("usleep"), 10U);
    EXPECT_TRUE(sessionStarted());
    EXPECT_THAT(journal().logsWith("owering up"), IsEmpty());
}

TEST_F(PowerUpTest, FailsWhenTheLastReadTimesOut)
{
    plugInWith("behaviour = \"timeout\"");
    EXPECT_EQ(run(), -5);
    EXPECT_EQ(powerReads(), 10U);
    EXPECT_THAT(journal().logs(),
                Contains(StartsWith(warning("_t_PowerOnCam", "Timeout during powering up: "))));
    expectFailure();
}

TEST_F(PowerUpTest, ForgivesTimeOutsThatEnd)
{
    plugInWith("behaviour = \"on\"");
    fcsim::Fault fault;
    fault.operation = "ReadRegister";
    fault.detail = "0x610";
    fault.count = 9;
    fault.error = FlyCapture2::PGRERROR_TIMEOUT;
    fcsim::addFault(fault);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(powerReads(), 10U);
    EXPECT_THAT(journal().logsWith("Timeout during powering up"), IsEmpty());
}

TEST_F(PowerUpTest, FailsWhenTheRegisterCannotBeWritten)
{
    plugInWith("behaviour = \"on\"");
    failCalls("WriteRegister");
    EXPECT_EQ(run(), -5);
    EXPECT_EQ(powerReads(), 0U);
    EXPECT_EQ(journal().count("usleep"), 0U);
    EXPECT_THAT(journal().logs(),
                Contains(warning("_t_PowerOnCam",
                                 "Error during WriteRegister: " + failureOf("WriteRegister"))));
    expectFailure();
}

TEST_F(PowerUpTest, FailsAtOnceWhenTheRegisterCannotBeRead)
{
    plugInWith("behaviour = \"never\"");
    failCalls("ReadRegister", 2);
    EXPECT_EQ(run(), -5);
    EXPECT_EQ(powerReads(), 3U);
    EXPECT_THAT(journal().logs(),
                Contains(warning("_t_PowerOnCam",
                                 "Error during ReadRegister: " + failureOf("ReadRegister"))));
    expectFailure();
}

TEST_F(PowerUpTest, TellsTheTimeOfTheFailure)
{
    plugInWith("behaviour = \"timeout\"");
    run();
    EXPECT_THAT(
        journal().logsWith(format("TSus_%llu - powering up",
                                  static_cast<unsigned long long>(kxtest::kStartUs) + 1'000'000)),
        SizeIs(1));
}

TEST_F(PowerUpTest, DisconnectsAtTheEndOfTheRun)
{
    plugInWith("behaviour = \"on\"");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(journal().lines(kxtest::Kind::sdk).back(), "Camera.Disconnect()");
    const auto logs = journal().logs();
    ASSERT_GE(logs.size(), 3U);
    EXPECT_EQ(logs[logs.size() - 3], info("scenario is completed (rc = 0)"));
    EXPECT_EQ(logs[logs.size() - 2], info("device is disconnected"));
    EXPECT_EQ(logs[logs.size() - 1], info("Loop completed (exitCode = 0)"));
}

TEST_F(PowerUpTest, ReportsAFailedDisconnect)
{
    plugInWith("behaviour = \"on\"");
    failCalls("Disconnect");
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(journal().logs(), Contains(warning("KxLibProc", "can't do Disconnect: error - " +
                                                                    failureOf("Disconnect"))));
    EXPECT_THAT(journal().logsWith("device is disconnected"), IsEmpty());
}

} // namespace
