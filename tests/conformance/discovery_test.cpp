// Discovery: what a run prints about the cameras on the bus, and what it does when there is none.
#include "kx_plugin.h"
#include "plugin_test.h"
#include "stdout_capture.h"

using kxtest::CameraText;
using kxtest::debug;
using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

namespace {

class DiscoveryTest : public kxtest::PluginTest {
protected:
    DiscoveryTest()
    {
        // Nothing matches, so that a run ends after it has looked at the cameras.
        host().config.model = "no such model";
    }
    static std::vector<CameraText> cameras(unsigned count)
    {
        std::vector<CameraText> all(count);
        for (unsigned index = 0; index < count; ++index) {
            all[index].serial = 1000 + index;
        }
        return all;
    }
    /// The number in parentheses of the only waiting message.
    static int waitingCounter(const char* text)
    {
        const auto lines = journal().logsWith(text);
        EXPECT_THAT(lines, SizeIs(1));
        const std::string marker = "(";
        return lines.empty() ? -1 : std::stoi(lines[0].substr(lines[0].find(marker) + 1));
    }
};

const char* const kNone = "no any devices found, waiting for dev";
const char* const kNotOurs = "please attach configured device";

TEST_F(DiscoveryTest, TellsItsVersion)
{
    EXPECT_THAT(std::string(KxLibGetVer()), MatchesRegex("0\\.37\\.28-[0-9a-f]+"));
    EXPECT_EQ(std::string(KxLibGetVer()).size(), 48U);
}

TEST_F(DiscoveryTest, ReturnsAtOnceFromAnEmptyBus)
{
    plugIn({});
    host().config.id = "77";
    EXPECT_EQ(run(), 2);
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(debug("KxLibProc", "init SDK staff"),
                    MatchesRegex(format("6 \\[i\\] TSus_%llu: \\([0-9]+\\) no any devices found, "
                                        "waiting for dev \\(Model:no such model ID:77\\)\\.\\.\\.",
                                        static_cast<unsigned long long>(kxtest::kStartUs))),
                    info("Loop completed (exitCode = 2)")));
    EXPECT_THAT(journal().lines(kxtest::Kind::sdk), ElementsAre("BusManager.GetNumOfCameras()"));
    EXPECT_THAT(journal().lines(kxtest::Kind::host), ElementsAre("KxUtl__CheckSignal()"));
    EXPECT_THAT(journal().lines(kxtest::Kind::getter),
                ElementsAre("KxGiMainCtx__GetModelStr()", "KxGiMainCtx__GetIdStr()",
                            "KxGiMainCtx__GetActiveCamMask()"));
    EXPECT_EQ(journal().count("usleep"), 0U);
}

TEST_F(DiscoveryTest, TakesAFailedCountForAnEmptyBus)
{
    plugIn(cameras(1));
    failCalls("GetNumOfCameras");
    EXPECT_EQ(run(), 2);
    EXPECT_THAT(journal().logsWith(kNone), SizeIs(1));
    EXPECT_THAT(journal().logsWith("Printing all"), IsEmpty());
}

TEST_F(DiscoveryTest, PrintsNullStringsAsTheSystemLibraryDoes)
{
    plugIn({});
    host().config.model.reset();
    run();
    EXPECT_THAT(journal().logsWith(kNone), ElementsAre(HasSubstr("(Model:(null) ID:(null))...")));
}

TEST_F(DiscoveryTest, CountsTheRunsWithoutAnyCamera)
{
    plugIn({});
    run();
    const int first = waitingCounter(kNone);
    journal().clear();
    run();
    EXPECT_EQ(waitingCounter(kNone), first + 1);

    plugIn(cameras(1));
    run();
    plugIn({});
    journal().clear();
    run();
    EXPECT_EQ(waitingCounter(kNone), 0);
}

TEST_F(DiscoveryTest, CountsTheRunsWithoutTheConfiguredCamera)
{
    plugIn(cameras(1));
    EXPECT_EQ(run(), 3);
    const int first = waitingCounter(kNotOurs);
    journal().clear();
    run();
    EXPECT_EQ(waitingCounter(kNotOurs), first + 1);

    host().config.activeCamMask = 1;
    failCalls("WriteRegister"); // ends the run after the choice
    EXPECT_EQ(run(), -5);
    host().config.activeCamMask = 0;
    journal().clear();
    run();
    EXPECT_EQ(waitingCounter(kNotOurs), 0);
}

TEST_F(DiscoveryTest, CountsOncePerSink)
{
    plugIn(cameras(1));
    gKxLogModeLib = 3;
    kxtest::StdoutCapture output;
    run();
    const auto lines = output.lines();
    const int logged = waitingCounter(kNotOurs);
    EXPECT_THAT(lines, Contains(HasSubstr(format("- (%i) please attach", logged + 1))));
}

struct Interface {
    const char* name;
    const char* printed;
    const char* detected; ///< null = nothing is said
};

class DiscoveryInterfaceTest : public DiscoveryTest,
                               public testing::WithParamInterface<Interface> {};

TEST_P(DiscoveryInterfaceTest, IsPrinted)
{
    CameraText camera;
    camera.serial = 4711;
    camera.interface = GetParam().name;
    plugIn({camera});
    EXPECT_EQ(run(), 3);
    const auto lines = journal().logs();
    ASSERT_GT(lines.size(), 6U);
    EXPECT_EQ(lines[1], info("Printing all the devices information found:"));
    EXPECT_EQ(lines[2], info("== 0. Camera Device Information =="));
    EXPECT_EQ(lines[3], info(std::string(35, '=')));
    EXPECT_THAT(lines[4], MatchesRegex("6 \\[i\\] \tGUID             : 0x[0-9A-F]+ 0x[0-9A-F]+ "
                                       "0x[0-9A-F]+ 0x[0-9A-F]+"));
    EXPECT_EQ(lines[5], info("\tDeviceSerial     : 4711"));
    EXPECT_EQ(lines[6], info(format("\tInterface        : %s", GetParam().printed)));
    const auto detected = journal().logsWith("detected PGrey");
    if (GetParam().detected != nullptr) {
        EXPECT_THAT(detected, ElementsAre(info(GetParam().detected)));
        EXPECT_EQ(lines[7], info(GetParam().detected));
    } else {
        EXPECT_THAT(detected, IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Discovery, DiscoveryInterfaceTest,
                         testing::Values(Interface{"usb2", "USB2", "detected PGrey USB device"},
                                         Interface{"usb3", "USB3", "detected PGrey USB device"},
                                         Interface{"gige", "GigE", "detected PGrey GigE device"},
                                         Interface{"ieee1394", "Not supported", nullptr}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(DiscoveryTest, LooksAtEightCamerasAtMost)
{
    plugIn(cameras(9));
    host().config.activeCamMask = 0x100;
    EXPECT_EQ(run(), 3);
    EXPECT_THAT(journal().logsWith("Camera Device Information"), SizeIs(8));
    EXPECT_THAT(journal().logsWith("== 7. Camera Device Information =="), SizeIs(1));
    EXPECT_THAT(journal().logsWith("DeviceSerial     : 1008"), IsEmpty());
    EXPECT_EQ(journal().count("Camera.Connect"), 8U);
}

TEST_F(DiscoveryTest, ListsInBusOrderBeforeItConnects)
{
    plugIn(cameras(2));
    run();
    EXPECT_THAT(journal().lines({"BusManager.GetNumOfCameras", "BusManager.GetCameraFromIndex",
                                 "BusManager.GetCameraSerialNumberFromIndex",
                                 "BusManager.GetInterfaceTypeFromGuid", "Camera.Connect",
                                 "Camera.GetCameraInfo", "Camera.Disconnect"}),
                ElementsAre(HasSubstr("GetNumOfCameras"), HasSubstr("GetCameraFromIndex(0"),
                            HasSubstr("GetCameraSerialNumberFromIndex(0"),
                            HasSubstr("GetInterfaceType"), HasSubstr("GetCameraFromIndex(1"),
                            HasSubstr("GetCameraSerialNumberFromIndex(1"),
                            HasSubstr("GetInterfaceType"), HasSubstr("GetCameraFromIndex(0"),
                            HasSubstr("Camera.Connect"), HasSubstr("GetCameraInfo"),
                            HasSubstr("Camera.Disconnect"), HasSubstr("GetCameraFromIndex(1"),
                            HasSubstr("Camera.Connect"), HasSubstr("GetCameraInfo"),
                            HasSubstr("Camera.Disconnect")));
}

struct InventoryFailure {
    const char* operation;
    const char* message; ///< regular expression of the level d line
};

class DiscoveryFailureTest : public DiscoveryTest,
                             public testing::WithParamInterface<InventoryFailure> {};

TEST_P(DiscoveryFailureTest, DropsTheCameraFromTheListOnly)
{
    plugIn(cameras(2));
    failCalls(GetParam().operation);
    host().config.activeCamMask = 1;
    failCalls("WriteRegister"); // ends the run after the choice
    EXPECT_EQ(run(), -5);
    EXPECT_THAT(journal().logs(),
                Contains(MatchesRegex(std::string("7 \\[d\\|KxLibProc\\] ") + GetParam().message)));
    EXPECT_THAT(journal().logsWith("Camera Device Information"),
                ElementsAre(info("== 1. Camera Device Information ==")));
    // The camera may be chosen all the same.
    EXPECT_THAT(journal().logsWith("Loop 0. Choose Model"), SizeIs(1));
}

const char* const kGuidPattern = "guid 0x[0-9A-F]+ 0x[0-9A-F]+ 0x[0-9A-F]+ 0x[0-9A-F]+";
const std::string kNoSerial =
    std::string("can't do GetCameraSerialNumberFromIndex 0, ") + kGuidPattern;
const std::string kNoInterface =
    std::string("can't do GetInterfaceTypeFromGuid 0, ") + kGuidPattern;

INSTANTIATE_TEST_SUITE_P(
    Discovery, DiscoveryFailureTest,
    testing::Values(InventoryFailure{"GetCameraFromIndex",
                                     "can't do GetCameraFromIndex for device 0"},
                    InventoryFailure{"GetCameraSerialNumberFromIndex", kNoSerial.c_str()},
                    InventoryFailure{"GetInterfaceTypeFromGuid", kNoInterface.c_str()}),
    [](const auto& one) { return std::string(one.param.operation); });

struct Reconfiguration {
    const char* name;
    int signal;
    int answer;
    const char* message; ///< null = the host is not asked
};

class ReconfigurationLookTest : public DiscoveryTest,
                                public testing::WithParamInterface<Reconfiguration> {};

TEST_P(ReconfigurationLookTest, ComesLastAndChangesNoResult)
{
    plugIn({});
    host().checkSignal = [] { return GetParam().signal; };
    host().doReconfig = [](int* restart) {
        EXPECT_NE(restart, nullptr);
        *restart = 1;
        return GetParam().answer;
    };
    EXPECT_EQ(run(), 2);
    const auto lines = journal().logs();
    if (GetParam().message == nullptr) {
        EXPECT_EQ(journal().count("KxGi__DoReconfig"), 0U);
        EXPECT_EQ(lines.size(), 3U);
    } else {
        EXPECT_EQ(journal().count("KxGi__DoReconfig"), 1U);
        ASSERT_EQ(lines.size(), 4U);
        EXPECT_EQ(lines[2], info(GetParam().message));
    }
    EXPECT_EQ(lines.back(), info("Loop completed (exitCode = 2)"));
}

const char* const kRefused = "incorrect cfg file, continue with the old one...";

INSTANTIATE_TEST_SUITE_P(
    Discovery, ReconfigurationLookTest,
    testing::Values(Reconfiguration{"InForce", 2, 0,
                                    "continue operation with new configuration..."},
                    Reconfiguration{"Rejected", 2, 1, kRefused},
                    Reconfiguration{"RejectedNegative", 2, -1, kRefused},
                    Reconfiguration{"NoSignal", 0, 0, nullptr},
                    Reconfiguration{"Finish", 1, 0, nullptr},
                    Reconfiguration{"LookUpTable", 3, 0, nullptr}),
    [](const auto& one) { return std::string(one.param.name); });

} // namespace
