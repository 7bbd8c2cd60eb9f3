// Grab loop: set-up, the calls of each frame in their order, exports, and the end.
#include "camera_test.h"
#include "kx_scenario.h"

#include <unistd.h>

using kxtest::Event;
using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::Kind;
using kxtest::ScriptedFrame;
using kxtest::warning;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class GrabLoopTest : public kxtest::CameraTest {
protected:
    GrabLoopTest() { connect(); }

    static std::vector<ScriptedFrame> steadyFrames(unsigned count)
    {
        std::vector<ScriptedFrame> frames(count);
        for (unsigned index = 0; index < count; ++index) {
            frames[index] = {50'000 + index * kPeriodUs, 1'000'000 + index * kPeriodUs, false};
        }
        return frames;
    }
    /// Host and SDK calls from the first `from` on, without getters and time differences.
    static std::vector<std::string> callsFrom(const std::string& from)
    {
        std::vector<std::string> calls;
        bool begun = false;
        for (const Event& event : journal().events()) {
            begun = begun || event.name == from;
            if (begun && (event.kind == Kind::host || event.kind == Kind::sdk)) {
                calls.push_back(event.name);
            }
        }
        return calls;
    }
};

TEST_F(GrabLoopTest, CallsTheHostAndTheCameraInOrder)
{
    ASSERT_EQ(grab(2), 0);
    EXPECT_THAT(
        callsFrom("KxGiMem__Init"),
        ElementsAre(
            "KxGiMem__Init", "KxGiMem__SetActFsize", "KxGiMem__IsFactoryUsed", "KxGiMem__GetBufPtr",
            "KxGiMem__GetBufPtr", "KxGiMem__GetBufPtr", "KxGiMem__GetBufPtr", "KxGiMem__GetBufPtr",
            "Camera.SetUserBuffers", "Camera.StartCapture", "KxGi__ResetTermSigProc",
            // The first frame only starts the clock.
            "Camera.RetrieveBuffer", "Camera.ReadRegister", "KxUtl__CheckSignal", "Camera.GetStats",
            "KxGi__HaltStop", "KxUtl__UpdateGrabState", "Image.GetData", "Image.GetMetadata",
            "Camera.GetPropertyInfo", "Camera.GetProperty", "KxSc__SetParamVal",
            "Camera.GetPropertyInfo", "Camera.GetProperty", "KxSc__SetParamVal",
            "Image.GetTimeStamp", "KxSc__SetParamVal", "KxSc__SetParamVal", "KxGi__CommTriggerAll",
            "KxGi__CheckDynConfig",
            // The second one is exported.
            "Camera.RetrieveBuffer", "Camera.ReadRegister", "KxUtl__CheckSignal", "Camera.GetStats",
            "KxGi__HaltStop", "Image.GetData", "Image.GetMetadata", "Camera.GetPropertyInfo",
            "Camera.GetProperty", "KxSc__SetParamVal", "Camera.GetPropertyInfo",
            "Camera.GetProperty", "KxSc__SetParamVal", "Image.GetTimeStamp", "KxSc__SetParamVal",
            "KxSc__SetParamVal", "KxGiMemInst__Trigger", "KxSc__SetParamVal", "KxSc__ProcExport",
            "KxGi__CommTriggerAll", "KxGi__CheckDynConfig", "Camera.StopCapture",
            // The end.
            "KxGi__SetTermSigProc", "KxGi__SetNewCfgVendor", "KxGi__SetNewCfgPlugin",
            "Camera.GetEmbeddedImageInfo", "Camera.SetEmbeddedImageInfo"));
}

TEST_F(GrabLoopTest, OnlyStartsTheClockWithASingleFrame)
{
    EXPECT_EQ(grab(1), 0);
    EXPECT_THAT(host().exports, IsEmpty());
    EXPECT_THAT(host().frames, IsEmpty());
    EXPECT_THAT(callsFrom("Camera.StopCapture"),
                ElementsAre("Camera.StopCapture", "KxGi__SetTermSigProc", "KxGi__SetNewCfgVendor",
                            "KxGi__SetNewCfgPlugin", "Camera.GetEmbeddedImageInfo",
                            "Camera.SetEmbeddedImageInfo"));
    EXPECT_THAT(journal().logs(),
                Contains(info("...GRABBING IS DONE (captured 1 frames of 1 loops)")));
}

TEST_F(GrabLoopTest, ExportsOneFrameLessThanItRetrieves)
{
    EXPECT_EQ(grab(10), 0);
    EXPECT_THAT(host().exports, SizeIs(9));
    EXPECT_THAT(host().frames, SizeIs(9));
    for (std::size_t index = 0; index < host().exports.size(); ++index) {
        const auto& one = host().exports[index];
        EXPECT_EQ(one.timestampUs, host().frames[index].timestampUs);
        EXPECT_EQ(one.numbers.at(kKxScTimestampUs), static_cast<double>(one.timestampUs));
        EXPECT_EQ(host().frames[index].instance, 0);
        EXPECT_EQ(host().frames[index].store, 0);
    }
}

TEST_F(GrabLoopTest, GivesTheHostsSlotsToTheCamera)
{
    host().config.bnum = 3;
    host().slotStep = 1 << 20;
    ASSERT_EQ(grab(6), 0);
    const void* const base = factory_.base;
    ASSERT_NE(base, nullptr);
    EXPECT_THAT(cam_->userBuffers, ElementsAre(base));
    EXPECT_THAT(journal().lines({"Camera.SetUserBuffers"}),
                ElementsAre("Camera.SetUserBuffers(size=1048576 count=3)"));
    EXPECT_THAT(journal().logs(),
                Contains(info(format("START GRABBING (bufferFrameSize 1048576, bNum 3, fNum 6, "
                                     "PID %u) ...",
                                     static_cast<unsigned>(getpid())))));
    for (const auto& frame : host().frames) {
        const auto distance =
            static_cast<const char*>(frame.frame) - static_cast<const char*>(base);
        EXPECT_TRUE(distance >= 0 && distance < (3 << 20) && distance % (1 << 20) == 0) << distance;
    }
}

TEST_F(GrabLoopTest, LeavesTheBuffersToTheDriverWhenTheHostWantsIt)
{
    host().factoryUsed = false;
    ASSERT_EQ(grab(3), 0);
    EXPECT_EQ(journal().count("KxGiMem__GetBufPtr"), 0U);
    EXPECT_EQ(journal().count("Camera.SetUserBuffers"), 0U);
    EXPECT_THAT(host().frames, SizeIs(2));
}

TEST_F(GrabLoopTest, EndsWhenTheCameraRefusesTheBuffers)
{
    failCalls("SetUserBuffers");
    EXPECT_EQ(grab(3), -1);
    EXPECT_THAT(
        journal().logs(),
        Contains(warning("ProcLoop",
                         "SetUserBuffers error: " + failureOf("SetUserBuffers") +
                             format(" (bufferFrameSize %u, bNum 4)", proc_->gBufferFrameSize))));
    EXPECT_EQ(journal().count("Camera.StartCapture"), 0U);
    EXPECT_EQ(journal().count("KxGi__ResetTermSigProc"), 0U);
    EXPECT_THAT(journal().logsWith("Restore some changed"), IsEmpty());
}

TEST_F(GrabLoopTest, EndsWhenTheCameraCannotBeConfigured)
{
    failCalls("GetFormat7Info");
    EXPECT_EQ(grab(3), -2);
    const auto logs = journal().logsWith("Device configuration error");
    ASSERT_THAT(logs, SizeIs(1));
    EXPECT_THAT(logs[0], testing::MatchesRegex("3 \\[e\\|.*kx_pg_proc.*\\.cpp:[0-9]+\\] Device "
                                               "configuration error, finish loop"));
    EXPECT_EQ(journal().logs().back(), logs[0]);
    EXPECT_EQ(journal().count("KxGiMem__Init"), 0U);
    EXPECT_EQ(journal().count("KxGi__SetTermSigProc"), 0U);
}

TEST_F(GrabLoopTest, TellsTheHostAboutEachFrame)
{
    kxtest::CameraText camera;
    camera.sensor = "width = 320, height = 240, colour = false";
    camera.extra = "temperature = 45.25";
    connect(camera);
    ASSERT_EQ(grab(3), 0);
    EXPECT_THAT(journal().lines({"KxGi__HaltStop"}),
                ElementsAre("KxGi__HaltStop(320, 240, 45.25)", "KxGi__HaltStop(320, 240, 45.25)",
                            "KxGi__HaltStop(320, 240, 45.25)"));
}

TEST_F(GrabLoopTest, DoesWithoutATemperature)
{
    failCalls("GetStats", 1, 0);
    cam_->frames = std::vector<ScriptedFrame>{
        {50'000, 1'000'000, false}, {90'000, 0, true}, {120'000, 1'070'000, false}};
    ASSERT_EQ(grab(2), 0);
    const auto lines = journal().lines({"KxGi__HaltStop", "KxGi__HaltUpdate"});
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_THAT(lines[0], HasSubstr(", -321.00)"));
    EXPECT_THAT(lines[1], testing::MatchesRegex("KxGi__HaltUpdate\\([0-9]+, -321.00\\)"));
}

struct StatusRate {
    float fps;
    unsigned frames;
    unsigned reports;
};

class GrabLoopStatusTest : public GrabLoopTest, public testing::WithParamInterface<StatusRate> {};

TEST_P(GrabLoopStatusTest, IsReportedSeveralTimesInASecond)
{
    cam_->absValues[FlyCapture2::FRAME_RATE] = GetParam().fps;
    ASSERT_EQ(grab(steadyFrames(GetParam().frames)), 0);
    EXPECT_EQ(journal().count("KxUtl__UpdateGrabState"), GetParam().reports);
    EXPECT_THAT(journal().lines({"KxUtl__UpdateGrabState"}), Contains("KxUtl__UpdateGrabState(4)"));
}

INSTANTIATE_TEST_SUITE_P(GrabLoop, GrabLoopStatusTest,
                         testing::Values(StatusRate{0.5F, 5, 5}, StatusRate{1.0F, 5, 5},
                                         StatusRate{1.2F, 5, 5}, StatusRate{1.66F, 5, 5},
                                         StatusRate{2.0F, 5, 5}, StatusRate{5.0F, 7, 3},
                                         StatusRate{30.0F, 18, 1}, StatusRate{30.0F, 19, 2},
                                         StatusRate{-1.0F, 3, 3}, StatusRate{0.0F, 3, 3}),
                         [](const auto& one) {
                             return format("Rate%iFrames%u",
                                           static_cast<int>(one.param.fps * 100.0F + 100.0F),
                                           one.param.frames);
                         });

TEST_F(GrabLoopTest, CountsOnlyFramesForTheStatus)
{
    // 30 frames per second are reported at every 18th frame; each one comes after two drops here.
    std::vector<ScriptedFrame> frames;
    for (const ScriptedFrame& frame : steadyFrames(19)) {
        frames.insert(frames.end(), {{0, 0, true}, {0, 0, true}, frame});
    }
    std::vector<unsigned> reportedAt;
    unsigned retrievals = 0;
    cam_->onRetrieve = [&retrievals](unsigned number) { retrievals = number; };
    host().onCall = [&](std::string_view name) {
        if (name == "KxUtl__UpdateGrabState") {
            reportedAt.push_back(retrievals);
        }
    };
    ASSERT_EQ(grab(frames), 0);
    EXPECT_EQ(journal().count("KxGi__HaltUpdate"), 38U);
    EXPECT_THAT(reportedAt, ElementsAre(3U, 57U));
}

TEST_F(GrabLoopTest, GoesOnUntilASignalWithoutFrameCount)
{
    int polls = 0;
    host().checkSignal = [&polls] { return ++polls == 40 ? 1 : 0; };
    EXPECT_EQ(grab(0), 0);
    EXPECT_THAT(host().exports, SizeIs(39));
    // The host asked for the end itself: told once, by the signal.
    EXPECT_EQ(journal().count("KxGi__SetNewCfgVendor"), 1U);
}

TEST_F(GrabLoopTest, ExportsNothingOfARefusedFrame)
{
    unsigned frame = 0;
    host().trigger = [&frame](int) { return ++frame == 2 ? 5 : 0; };
    ASSERT_EQ(grab(4), 0);
    EXPECT_THAT(host().frames, SizeIs(3));
    EXPECT_THAT(host().exports, SizeIs(2));
    EXPECT_EQ(host().exports[1].timestampUs, host().frames[2].timestampUs);
    // Parameter 12 is set all the same.
    EXPECT_THAT(journal().lines({"KxSc__SetParamVal"}).size(),
                journal()
                        .lines([](const Event& event) {
                            return event.name == "KxSc__SetParamVal" && event.arguments != "12";
                        })
                        .size() +
                    3);
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

TEST_F(GrabLoopTest, ExportsReceivedLineDataOnce)
{
    // The control thread received a word before the third frame.
    unsigned frame = 0;
    host().trigger = [this, &frame](int) {
        if (++frame == 2) {
            cam_->rxData = 0xABCD;
            cam_->rxBits = 16;
        }
        return 0;
    };
    ASSERT_EQ(grab(4), 0);
    ASSERT_THAT(host().exports, SizeIs(3));
    EXPECT_EQ(host().exports[0].numbers.count(kKxScRxBits), 0U);
    EXPECT_EQ(host().exports[1].numbers.at(kKxScRxData), 0xABCD);
    EXPECT_EQ(host().exports[1].numbers.at(kKxScRxBits), 16);
    EXPECT_EQ(host().exports[2].numbers.at(kKxScRxBits), 0);
    EXPECT_EQ(cam_->rxData, 0U);
    EXPECT_EQ(cam_->rxBits, 0U);
    EXPECT_THAT(journal().lines([](const Event& event) {
        return event.name == "KxSc__ProcExport" || event.arguments == "13" ||
               event.arguments == "14";
    }),
                ElementsAre(HasSubstr("ProcExport"), "KxSc__SetParamVal(13)",
                            "KxSc__SetParamVal(14)", HasSubstr("ProcExport"),
                            "KxSc__SetParamVal(14)", HasSubstr("ProcExport")));
}

TEST_F(GrabLoopTest, KeepsLineDataOfARefusedFrame)
{
    cam_->rxData = 1;
    cam_->rxBits = 2;
    unsigned frame = 0;
    host().trigger = [&frame](int) { return ++frame == 1 ? 1 : 0; };
    ASSERT_EQ(grab(3), 0);
    ASSERT_THAT(host().exports, SizeIs(1));
    EXPECT_EQ(host().exports[0].numbers.at(kKxScRxBits), 2);
}

TEST_F(GrabLoopTest, KeepsLineDataThatComesDuringAnExport)
{
    host().onCall = [this](std::string_view name) {
        if (name == "KxSc__ProcExport" && host().exports.empty()) {
            cam_->rxData = 0xABCD;
            cam_->rxBits = 16;
        }
    };
    ASSERT_EQ(grab(3), 0);
    ASSERT_THAT(host().exports, SizeIs(2));
    EXPECT_EQ(host().exports[0].numbers.count(kKxScRxBits), 0U);
    EXPECT_EQ(host().exports[1].numbers.at(kKxScRxData), 0xABCD);
    EXPECT_EQ(host().exports[1].numbers.at(kKxScRxBits), 16);
    EXPECT_EQ(cam_->rxBits, 0U);
}

TEST_F(GrabLoopTest, IgnoresAFailedStopAndAFailedClock)
{
    failCalls("StopCapture");
    cam_->clockRegister = 0;
    EXPECT_EQ(grab(2), 0);
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

TEST_F(GrabLoopTest, RunsAgainOnTheSameSession)
{
    for (int pass = 0; pass < 3; ++pass) {
        host().exports.clear();
        EXPECT_EQ(grab(3), 0) << pass;
        EXPECT_THAT(host().exports, SizeIs(2)) << pass;
    }
    EXPECT_THAT(journal().logsWith("captured 3 frames of 3 loops"), SizeIs(3));
}

TEST_F(GrabLoopTest, KeepsEveryPublishedPointerValid)
{
    ASSERT_EQ(grab(3), 0);
    const auto published = host().published;
    const auto codec = static_cast<const char*>(published.at(kKxScCodec));
    // Read after the loop has ended: the pointers belong to the session.
    EXPECT_STREQ(codec, "MONO8T");
    EXPECT_EQ(*static_cast<const std::uint32_t*>(published.at(kKxScUnit)), 1000U);
    EXPECT_EQ(*static_cast<const std::uint64_t*>(published.at(kKxScTimestampUs)),
              proc_->frameClock.frameTs);
    EXPECT_EQ(*static_cast<const std::uint32_t*>(published.at(kKxScWidth)), proc_->roiWidth);
}

TEST_F(GrabLoopTest, EndsWithItsProfile)
{
    KX_IN_FRESH_PROCESS({
        host().onCall = [](std::string_view name) {
            if (name == "KxGiMemInst__Trigger") {
                fcsim::advanceClock(77);
            }
        };
        ASSERT_EQ(grab(steadyFrames(22)), 0);
        const auto logs = journal().logs();
        const auto at = [&logs](const std::string& line) {
            return static_cast<std::size_t>(std::find(logs.begin(), logs.end(), info(line)) -
                                            logs.begin());
        };
        const std::size_t done = at("...GRABBING IS DONE (captured 22 frames of 22 loops)");
        const std::size_t retrievals = at("Profiling info for RetrieveResult() (sleeping is "
                                          "accounted), currPos=2");
        const std::size_t stores = at("Profiling info for file writing (buffered), currPos=1");
        EXPECT_LT(done, retrievals);
        ASSERT_EQ(stores, retrievals + 22);
        ASSERT_EQ(logs.size(), stores + 24);
        // 22 retrievals in 20 places: the first two are overwritten. Each waits for one period less
        // what the frame before took.
        EXPECT_EQ(logs[retrievals + 1], info("0. 033256 us"));
        EXPECT_EQ(logs[retrievals + 3], info("2. 033256 us"));
        EXPECT_EQ(logs[retrievals + 20], info("19. 033256 us"));
        EXPECT_EQ(logs[retrievals + 21], info(""));
        EXPECT_EQ(logs[stores + 1], info("0. 000077 us"));
        EXPECT_EQ(logs[stores + 20], info("19. 000077 us"));
        EXPECT_EQ(logs[stores + 21], info(""));
        EXPECT_EQ(logs[stores + 22], info("Actual grabbing loop took: 0s 750070us"));
        EXPECT_EQ(logs[stores + 23], info("grabbing loop is completed with exitCode =0"));
    });
}

TEST_F(GrabLoopTest, DropsWholeSecondsFromItsProfile)
{
    KX_IN_FRESH_PROCESS({
        ASSERT_EQ(grab({{1'200'000, 1'000'000, false}}), 0);
        EXPECT_THAT(journal().logs(), Contains(info("0. 200000 us")));
        EXPECT_THAT(journal().logs(), Contains(info("Actual grabbing loop took: 1s 200000us")));
    });
}

TEST_F(GrabLoopTest, ReportsIterationsOncePerMinute)
{
    KX_IN_FRESH_PROCESS({
        // Ten retrievals in a second, failed ones included; the host's clock starts at whole
        // seconds.
        std::vector<ScriptedFrame> frames;
        cam_->onRetrieve = [](unsigned) { fcsim::advanceClock(100'000); };
        for (unsigned index = 0; index < 1300; ++index) {
            frames.push_back({0, index, index % 2 == 1});
        }
        ASSERT_EQ(grab(frames), 0);
        EXPECT_THAT(journal().logsWith("FPS"),
                    ElementsAre(kxtest::debug("ProcLoop", "retres FPS: 9"),
                                kxtest::debug("ProcLoop", "retres FPS: 10")));
    });
}

} // namespace
