// Reconfiguration of a running grab: in full by a signal, and live when the host has a change.
#include "camera_test.h"
#include "system_calls.h"

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* kContinues = "continue grabbing with new configuration...";
constexpr const char* kExits = "can't continue grabbing with new configuration, exiting...";

class ReconfigurationTest : public kxtest::CameraTest {
protected:
    ReconfigurationTest() { connect(); }

    /// The host answers a reconfiguration so; `restart` nothing: it leaves the word alone.
    static void answer(int result, std::optional<int> restart = {})
    {
        host().doReconfig = [result, restart](int* word) {
            EXPECT_EQ(*word, 0);
            *word = restart.value_or(*word);
            return result;
        };
    }
    /// Configures the camera and lets the reconfiguration code be handled after 3 frames.
    int reconfigure(bool& stop)
    {
        proc_->ProcSetCamConfig(cam_.get(), &info_, 4);
        journal().clear();
        proc_->pendingSig = 2;
        return proc_->ProcSignal(cam_.get(), 3, &stop);
    }
    static std::vector<std::string> messages()
    {
        return journal().lines([](const auto& event) {
            return event.kind == kxtest::Kind::log &&
                   (event.arguments.find("econfig") != std::string::npos ||
                    event.arguments.find("done, spent") != std::string::npos ||
                    event.arguments.find("new configuration") != std::string::npos);
        });
    }
    /// Calls that tell whether the parameters were applied, and what was told to the host.
    static std::vector<std::string> control()
    {
        return journal().lines({"KxGi__DoReconfig", "KxGi__SetCurrFpsUs", "Camera.StopCapture",
                                "KxGi__SetNewCfgVendor", "KxGi__SetNewCfgPlugin",
                                "KxGi__SetSignalAction"});
    }
};

// ---- In full.

TEST_F(ReconfigurationTest, GoesOnWithTheNewConfiguration)
{
    answer(0);
    bool stop = true;
    EXPECT_EQ(reconfigure(stop), 0);
    EXPECT_FALSE(stop);
    EXPECT_EQ(proc_->pendingSig, 0U);
    EXPECT_THAT(messages(), ElementsAre(info("Grabbed 3 images, reconfiguration..."),
                                        info("done, spent 0us"), info(kContinues)));
    EXPECT_THAT(control(), ElementsAre("KxGi__DoReconfig()", "KxGi__SetCurrFpsUs(33333)",
                                       "KxGi__SetNewCfgVendor()", "KxGi__SetNewCfgPlugin()"));
}

TEST_F(ReconfigurationTest, TellsTheMicrosecondsThatItTook)
{
    answer(0);
    host().onCall = [](std::string_view name) {
        if (name == "KxGi__DoReconfig") {
            fcsim::advanceClock(3'001'000);
        } else if (name == "KxGi__SetCurrFpsUs") {
            fcsim::advanceClock(234);
        }
    };
    bool stop = true;
    EXPECT_EQ(reconfigure(stop), 0);
    EXPECT_THAT(messages(), Contains(info("done, spent 1234us")));
}

TEST_F(ReconfigurationTest, GoesOnAsItWasWhenTheHostRefuses)
{
    for (const int result : {-1, 1}) {
        answer(result);
        bool stop = true;
        EXPECT_EQ(reconfigure(stop), 0);
        EXPECT_FALSE(stop);
        EXPECT_THAT(messages(), ElementsAre(info("Grabbed 3 images, reconfiguration..."),
                                            info("done, spent 0us")));
        EXPECT_THAT(control(), ElementsAre("KxGi__DoReconfig()"));
    }
}

TEST_F(ReconfigurationTest, EndsTheGrabWhenTheHostWantsANewStart)
{
    struct Case {
        int result;
        int restart;
        int exitCode;
    };
    for (const Case& one :
         std::vector<Case>{{0, 1, 0}, {0, -1, 0}, {1, 1, 0}, {-1, 1, 1}, {-5, -1, 1}}) {
        SCOPED_TRACE(format("result %i, restart %i", one.result, one.restart));
        answer(one.result, one.restart);
        bool stop = false;
        EXPECT_EQ(reconfigure(stop), one.exitCode);
        EXPECT_TRUE(stop);
        EXPECT_THAT(messages(), ElementsAre(info("Grabbed 3 images, reconfiguration..."),
                                            info("done, spent 0us"), info(kExits)));
        EXPECT_THAT(control(), ElementsAre("KxGi__DoReconfig()", "Camera.StopCapture()",
                                           "KxGi__SetSignalAction(2)"));
    }
}

TEST_F(ReconfigurationTest, EndsTheGrabWhenTheSizeHasChanged)
{
    host().doReconfig = [](int*) {
        host().config.width = 80;
        return 0;
    };
    bool stop = false;
    EXPECT_EQ(reconfigure(stop), 0);
    EXPECT_TRUE(stop);
    EXPECT_THAT(messages(), Contains(info(kExits)));
    EXPECT_THAT(control(), ElementsAre("KxGi__DoReconfig()", "Camera.StopCapture()",
                                       "KxGi__SetSignalAction(2)"));
}

TEST_F(ReconfigurationTest, DoesWithoutAFlag)
{
    proc_->ProcSetCamConfig(cam_.get(), &info_, 4);
    proc_->pendingSig = 2;
    answer(-1, 1);
    EXPECT_EQ(proc_->ProcSignal(cam_.get(), 3, nullptr), 1);
}

TEST_F(ReconfigurationTest, IgnoresAFailedStop)
{
    answer(0, 1);
    failCalls("StopCapture");
    bool stop = false;
    EXPECT_EQ(reconfigure(stop), 0);
    EXPECT_TRUE(stop);
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

// ---- What it means for the loop.

class ReconfiguredGrabTest : public ReconfigurationTest {
protected:
    /// Grabs 6 frames with the code at the third poll.
    int grabReconfigured()
    {
        auto polls = std::make_shared<int>(0);
        host().checkSignal = [polls] { return ++*polls == 3 ? 2 : 0; };
        return grab(6);
    }
    static std::vector<std::string> ends()
    {
        return journal().lines({"KxGi__SetTermSigProc", "KxGi__SetNewCfgVendor",
                                "KxGi__SetNewCfgPlugin", "Camera.StopCapture"});
    }
};

TEST_F(ReconfiguredGrabTest, LosesNoFrame)
{
    answer(0);
    EXPECT_EQ(grabReconfigured(), 0);
    EXPECT_THAT(host().exports, SizeIs(5));
    EXPECT_THAT(messages(), ElementsAre(info("Grabbed 3 images, reconfiguration..."),
                                        HasSubstr("done, spent"), info(kContinues)));
    EXPECT_EQ(journal().count("Camera.StartCapture"), 1U);
}

TEST_F(ReconfiguredGrabTest, RestoresTheCameraWhenItEndsWell)
{
    answer(1, 1);
    EXPECT_EQ(grabReconfigured(), 0);
    EXPECT_THAT(host().exports, SizeIs(2));
    EXPECT_THAT(ends(), ElementsAre("Camera.StopCapture()", "KxGi__SetTermSigProc()",
                                    "KxGi__SetNewCfgVendor()", "KxGi__SetNewCfgPlugin()"));
    EXPECT_THAT(journal().logsWith("Restore some changed camera values"), SizeIs(1));
    EXPECT_THAT(journal().logs(), Contains(info("grabbing loop is completed with exitCode =0")));
}

TEST_F(ReconfiguredGrabTest, LeavesTheCameraWhenTheHostRefused)
{
    answer(-1, 1);
    EXPECT_EQ(grabReconfigured(), 1);
    EXPECT_THAT(ends(), ElementsAre("Camera.StopCapture()", "KxGi__SetTermSigProc()"));
    EXPECT_THAT(journal().logsWith("Restore some changed camera values"), IsEmpty());
    EXPECT_THAT(journal().logs(), Contains(info("grabbing loop is completed with exitCode =1")));
}

TEST_F(ReconfiguredGrabTest, IsNotRepeatedAfterARefusal)
{
    answer(-1, 1);
    host().onCall = [this](std::string_view name) {
        if (name == "KxGi__DoReconfig") {
            proc_->dynLutMode = 6;
        }
    };
    auto polls = std::make_shared<int>(0);
    host().checkSignal = [polls] { return ++*polls == 3 ? 2 : 0; };
    EXPECT_EQ(proc_->ProcOnce(cam_.get(), &info_, &factory_), 1);
    EXPECT_EQ(journal().count("Camera.StartCapture"), 1U);
}

// ---- Live.

class LiveReconfigurationTest : public ReconfigurationTest {
protected:
    LiveReconfigurationTest()
    {
        proc_->ProcSetCamConfig(cam_.get(), &info_, 4);
        host().checkDynConfig = [] { return 1; };
        journal().clear();
    }
    static std::size_t asked() { return journal().count("KxGi__CheckDynConfig"); }
};

TEST_F(LiveReconfigurationTest, AppliesWhatARunningCaptureTakes)
{
    for (const int answer : {1, -1}) {
        host().checkDynConfig = [answer] { return answer; };
        journal().clear();
        bool stop = true;
        EXPECT_EQ(proc_->ProcSignal(cam_.get(), 7, &stop), 0);
        EXPECT_TRUE(stop) << "the flag is left alone";
        EXPECT_THAT(messages(), ElementsAre(info("Grabbed 7 images, dynamic reconfiguration..."),
                                            info("...done, spent 0us")));
        // The parameters are read, the geometry is not touched.
        EXPECT_EQ(journal().count("KxGiMainCtx__GetSweepLutMod"), 1U);
        EXPECT_THAT(control(), IsEmpty());
        EXPECT_EQ(journal().count("Camera.GetFormat7Configuration"), 0U);
        EXPECT_EQ(journal().count("KxGiMainCtx__GetWidth"), 0U);
    }
}

TEST_F(LiveReconfigurationTest, TellsTheMicrosecondsThatItTook)
{
    // Time passes in the first line that is written on the way.
    host().config.sweepLutMod = 1;
    kxtest::onSyslog([lines = 0]() mutable { fcsim::advanceClock(++lines == 2 ? 2100 : 0); });
    proc_->ProcSignal(cam_.get(), 7, nullptr);
    kxtest::onSyslog(nullptr);
    EXPECT_THAT(messages(), Contains(info("...done, spent 2100us")));
}

TEST_F(LiveReconfigurationTest, IsNotDoneWithoutAChange)
{
    host().checkDynConfig = [] { return 0; };
    proc_->ProcSignal(cam_.get(), 7, nullptr);
    EXPECT_EQ(asked(), 1U);
    EXPECT_THAT(journal().logs(), IsEmpty());
    EXPECT_EQ(journal().count("KxGiMainCtx__GetSweepLutMod"), 0U);
}

TEST_F(LiveReconfigurationTest, IsNotAskedForWithACodePending)
{
    for (const std::uint32_t code : {1U, 2U, 3U, 4U, 5U, 99U}) {
        proc_->pendingSig = code;
        proc_->dynLutState = 0;
        proc_->dynLutMode = 0;
        proc_->ProcSignal(cam_.get(), 7, nullptr);
    }
    EXPECT_EQ(asked(), 0U);
}

TEST_F(LiveReconfigurationTest, IsNotAskedForWhileATableIsCalculated)
{
    for (const auto& [state, mode] : std::vector<std::pair<unsigned, unsigned>>{
             {1, 0}, {4, 0}, {8, 0}, {0, 6}, {0, 7}, {1, 6}, {5, 7}}) {
        proc_->dynLutState = state;
        proc_->dynLutMode = mode;
        proc_->ProcSignal(cam_.get(), 7, nullptr);
    }
    EXPECT_EQ(asked(), 0U);
}

TEST_F(LiveReconfigurationTest, IsAskedForOncePerRetrievedFrame)
{
    host().checkDynConfig = nullptr;
    EXPECT_EQ(grab({{0, 1000, false}, {0, 0, true}, {0, 35'000, false}, {0, 68'000, false}}), 0);
    EXPECT_EQ(asked(), 3U);
}

TEST_F(LiveReconfigurationTest, LeavesTheLoopRunning)
{
    auto asks = std::make_shared<int>(0);
    host().checkDynConfig = [asks] { return ++*asks == 2 ? 1 : 0; };
    EXPECT_EQ(grab(5), 0);
    EXPECT_THAT(host().exports, SizeIs(4));
    EXPECT_EQ(asked(), 5U);
    EXPECT_THAT(messages(), ElementsAre(info("Grabbed 2 images, dynamic reconfiguration..."),
                                        HasSubstr("...done, spent")));
    EXPECT_EQ(journal().count("Camera.StopCapture"), 1U) << "at the frame count";
}

} // namespace
