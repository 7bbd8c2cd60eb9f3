// Passes of the dynamic look-up table in running grabs: each traced from its signal to its end.
#include "lut_fixture.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <stdexcept>

#include <malloc.h>

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

using Polls = std::map<unsigned, int>;

class LutPassTest : public kxtest::LutTest {
protected:
    LutPassTest()
    {
        host().calcLut = [](const void*, std::uint32_t bits, std::uint32_t* cdf) {
            std::fill_n(cdf, std::size_t{1} << bits, 1U);
        };
        host().getLut = [](std::uint32_t bits, const std::uint32_t*, std::uint16_t* lut) {
            for (std::size_t entry = 0; entry < std::size_t{1} << bits; ++entry) {
                lut[entry] = static_cast<std::uint16_t>((entry << 12U) >> bits);
            }
        };
        host().onCall = [this](std::string_view name) {
            if (name == "KxGi__HaltStop") {
                trace_.push_back(format("%u/%u", proc_->dynLutState, proc_->dynLutMode));
            }
        };
    }
    /// Grabs with these codes at the polls with these numbers, counted from 1 over all loops.
    int grabOnce(unsigned frames, const Polls& codes)
    {
        auto poll = std::make_shared<unsigned>(0);
        host().checkSignal = [poll, codes] {
            const auto found = codes.find(++*poll);
            return found == codes.end() ? 0 : found->second;
        };
        host().config.fnum = frames;
        return proc_->ProcOnce(cam_.get(), &info_, &factory_);
    }
    std::vector<unsigned> pixelFormats() const
    {
        std::vector<unsigned> formats;
        for (const auto& settings : cam_->format7) {
            formats.push_back(static_cast<unsigned>(settings.pixelFormat));
        }
        return formats;
    }

    std::vector<std::string> trace_; ///< "state/mode" as each frame arrives
};

// ---- Plain passes.

TEST_F(LutPassTest, TakesTwoFramesWithTheTableOn)
{
    switchOn();
    EXPECT_EQ(grabOnce(6, {{3, 3}}), 0);
    EXPECT_THAT(trace_, ElementsAre("0/0", "0/0", "0/0", "4/0", "0/0", "0/0"));
    EXPECT_THAT(lutMessages(),
                ElementsAre(info("Grabbed 3 images, processing SIGUSR1..."),
                            info("LUT is turned off temporary for new 'clear' frames capture"),
                            info("allocated CDF array for 8 bits pixel"),
                            info("allocated LUT array for 8 bits pixel"),
                            info("a new LUT was dynamically calculated..."),
                            HasSubstr("LUT settings handler entry LUT arr 0x"),
                            info("  current LUT state: ena 0, banks 2, chans 1, entries 512"),
                            info("  check LUT value[10] = 160"), info("  LUT active bank is 0"),
                            HasSubstr("LUT handler exit (nValues = 512, nCfgVals = 512, time = "),
                            info("continue operation with new LUT (dynamically calculated)...")));
    EXPECT_THAT(lutCalls(),
                ElementsAre("Camera.GetLUTInfo()", "Camera.EnableLUT(off)", "Camera.GetLUTInfo()",
                            "Camera.EnableLUT(on)", "Camera.GetActiveLUTBank()",
                            "Camera.SetLUTChannel(bank=1 channel=0 entries=512)",
                            "Camera.SetActiveLUTBank(1)"));
    EXPECT_EQ(journal().count("Camera.StartCapture"), 1U);
    EXPECT_THAT(host().exports, SizeIs(5));
}

TEST_F(LutPassTest, TakesOneFrameWithTheTableOff)
{
    EXPECT_EQ(grabOnce(5, {{3, 3}}), 0);
    EXPECT_THAT(trace_, ElementsAre("0/0", "0/0", "0/0", "0/0", "0/0"));
    EXPECT_THAT(lutMessages(), Contains(info("triggered dynamic LUT calc/apply right now")));
    EXPECT_THAT(lutMessages(),
                Not(Contains(HasSubstr("LUT is turned off temporary for new 'clear'"))));
    EXPECT_THAT(cam_->luts, SizeIs(1));
    EXPECT_TRUE(isOn());
    EXPECT_THAT(host().exports, SizeIs(4));
}

TEST_F(LutPassTest, LoadsZerosOfAHostThatCalculatesNothing)
{
    host().calcLut = nullptr;
    host().getLut = nullptr;
    // New memory of the C library is not zero now.
    mallopt(M_PERTURB, 0x5A);
    EXPECT_EQ(grabOnce(3, {{2, 3}}), 0);
    mallopt(M_PERTURB, 0);
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_THAT(cam_->luts[0].entries, Each(0U));
}

TEST_F(LutPassTest, WorksASecondTime)
{
    EXPECT_EQ(grabOnce(8, {{3, 3}, {5, 3}}), 0);
    // The first pass has switched the table on, so the second one has to switch it off.
    EXPECT_THAT(trace_, ElementsAre("0/0", "0/0", "0/0", "0/0", "0/0", "4/0", "0/0", "0/0"));
    EXPECT_THAT(cam_->luts, ElementsAre(Field(&kxtest::LutWrite::bank, 1U),
                                        Field(&kxtest::LutWrite::bank, 0U)));
    EXPECT_THAT(journal().logsWith("allocated"), SizeIs(2));
    EXPECT_THAT(journal().logsWith("no data change is detected"), IsEmpty());
}

TEST_F(LutPassTest, WorksOnTheFirstFrame)
{
    EXPECT_EQ(grabOnce(2, {{1, 3}}), 0);
    EXPECT_THAT(lutMessages(), Contains(info("Grabbed 1 images, processing SIGUSR1...")));
    EXPECT_THAT(cam_->luts, SizeIs(1));
}

TEST_F(LutPassTest, KeepsTheConfiguredTableOutMeanwhile)
{
    switchOn();
    host().config.sweepLutMod = 1;
    host().config.lutBits = 9;
    host().config.lut.assign(512, 3);
    EXPECT_EQ(grabOnce(7, {{3, 3}, {4, 2}, {5, 2}}), 0);
    // Configured; skipped as the table is on; calculated; then the host's comes back.
    ASSERT_THAT(cam_->luts, SizeIs(3));
    EXPECT_EQ(cam_->luts[0].entries[511], 3U);
    EXPECT_EQ(cam_->luts[1].entries[511], 510U);
    EXPECT_EQ(cam_->luts[2].entries[511], 3U);
}

TEST_F(LutPassTest, SkipsTheConfiguredTableWhileItWaits)
{
    host().config.sweepLutMod = 1;
    host().config.lutBits = 9;
    host().config.lut.assign(512, 3);
    host().doReconfig = [](int*) {
        // The camera stops telling, and the pass gets stuck.
        failCalls("GetLUTInfo", 0, 0);
        return 0;
    };
    EXPECT_EQ(grabOnce(6, {{2, 2}, {3, 3}, {4, 2}}), 0);
    EXPECT_EQ(trace_.back(), "1/0");
    EXPECT_THAT(
        journal().logs(),
        Contains(info("  LUT configuration from file is skipped (dynamic mode is active)")));
    EXPECT_THAT(journal().logsWith("can't do GetLUTInfo: error - "), SizeIs(4));
}

TEST_F(LutPassTest, LeavesNoTimeForLiveChanges)
{
    connectWith("[camera.lut]\nsupported = false\n");
    EXPECT_EQ(grabOnce(6, {{3, 3}}), 0);
    EXPECT_EQ(trace_.back(), "1/0");
    EXPECT_EQ(journal().count("KxGi__CheckDynConfig"), 2U);
    EXPECT_THAT(lutMessages(), ElementsAre(info("Grabbed 3 images, processing SIGUSR1...")));
}

// ---- 12-bit passes.

TEST_F(LutPassTest, PassesThroughTwelveBits)
{
    switchOn();
    EXPECT_EQ(grabOnce(6, {{3, 4}}), 0);
    EXPECT_THAT(trace_, ElementsAre("0/0", "0/0", "0/0",                        // 8 bits
                                    "1/6",                                      // 12 bits
                                    "5/7", "8/7", "0/0", "0/0", "0/0", "0/0")); // 8 bits
    EXPECT_THAT(pixelFormats(),
                ElementsAre(FlyCapture2::PIXEL_FORMAT_MONO8, FlyCapture2::PIXEL_FORMAT_MONO12,
                            FlyCapture2::PIXEL_FORMAT_MONO8));
    EXPECT_THAT(
        lutMessages(),
        ElementsAre(info("Grabbed 3 images, processing SIGUSR2..."),
                    info("...Switching to 12-bit mode for dynamic LUT calculation/applying..."),
                    info("triggered dynamic LUT calc/apply right now"),
                    info("allocated CDF array for 12 bits pixel"),
                    info("allocated LUT array for 12 bits pixel"),
                    info("a new LUT was dynamically calculated..."),
                    info("Grabbed 1 images, processing SIGUSR2..."),
                    info("...Switching back to 8-bit mode..."),
                    HasSubstr("LUT settings handler entry LUT arr 0x"),
                    info("  current LUT state: ena 0, banks 2, chans 1, entries 512"),
                    info("  check LUT value[10] = 10"), info("  LUT active bank is 0"),
                    HasSubstr("LUT handler exit (nValues = 512, nCfgVals = 512, time = "),
                    info("continue operation with new LUT (dynamically calculated)...")));
    EXPECT_THAT(
        journal().lines({"Camera.StartCapture", "Camera.StopCapture", "Camera.GetLUTInfo",
                         "Camera.EnableLUT", "KxGiMainCtx__SetFormat", "KxGi__CalcLutDynam",
                         "KxGi__GetLutDynam", "Camera.SetLUTChannel", "Camera.SetActiveLUTBank"}),
        ElementsAre("Camera.StartCapture()", "Camera.StopCapture()", "Camera.GetLUTInfo()",
                    "Camera.EnableLUT(off)", "KxGiMainCtx__SetFormat(2)",
                    // The 12-bit loop.
                    "Camera.StartCapture()", "Camera.GetLUTInfo()",
                    "KxGi__CalcLutDynam(160, 120, 160, 12)", "Camera.StopCapture()",
                    "KxGi__GetLutDynam(12, 12)", "KxGiMainCtx__SetFormat(1)",
                    "Camera.StopCapture()",
                    // The 8-bit loop.
                    "Camera.StartCapture()", "Camera.GetLUTInfo()", "Camera.EnableLUT(on)",
                    "Camera.SetLUTChannel(bank=1 channel=0 entries=512)",
                    "Camera.SetActiveLUTBank(1)", "Camera.StopCapture()"));
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_EQ(cam_->luts[0].entries[511], 511U);
    EXPECT_EQ(proc_->dynLutState, 0U);
    EXPECT_EQ(proc_->dynLutMode, 0U);
    EXPECT_FALSE(proc_->lutArray);
    EXPECT_EQ(host().config.format, 1);
}

TEST_F(LutPassTest, ExportsAllFramesOfATwelveBitPass)
{
    for (const bool userBuffers : {true, false}) {
        connect();
        host().exports.clear();
        host().frames.clear();
        host().factoryUsed = userBuffers;
        // The host reads each frame to its end, also the one on which capture was stopped.
        unsigned long sum = 0;
        host().trigger = [&](int) {
            const auto* const pixels =
                static_cast<const unsigned char*>(host().frames.back().frame);
            sum = std::accumulate(pixels, pixels + proc_->activeFrameSize, sum);
            return 0;
        };
        EXPECT_EQ(grabOnce(4, {{3, 4}}), 0);
        // Of three loops the first frame each only starts the clock.
        EXPECT_THAT(host().exports, SizeIs(2 + 0 + 3));
        EXPECT_GT(sum, 0U);
    }
}

TEST_F(LutPassTest, ComesBackToTheHostsFormatWithinOneSession)
{
    EXPECT_EQ(grabOnce(4, {{3, 4}, {9, 4}}), 0);
    EXPECT_THAT(pixelFormats(),
                ElementsAre(FlyCapture2::PIXEL_FORMAT_MONO8, FlyCapture2::PIXEL_FORMAT_MONO12,
                            FlyCapture2::PIXEL_FORMAT_MONO8));
    EXPECT_EQ(journal().count("KxUtl__CheckSignal"), 8U);
}

TEST_F(LutPassTest, IsIgnoredWhileOneIsUnderWay)
{
    // Stuck in the 12-bit loop, where the code comes once more.
    failCalls("GetLUTInfo", 1, 3);
    EXPECT_EQ(grabOnce(8, {{3, 4}, {5, 4}}), 0);
    EXPECT_THAT(trace_, ElementsAre("0/0", "0/0", "0/0", "1/6", "1/6", "1/6", "1/6", "5/7", "8/7",
                                    "0/0", "0/0", "0/0", "0/0", "0/0", "0/0"));
    EXPECT_THAT(journal().logsWith("Switching to 12-bit"), SizeIs(1));
    EXPECT_THAT(journal().logs(), Contains(info("Grabbed 2 images, processing SIGUSR2...")));
}

TEST_F(LutPassTest, UsesTwoHundredFiftySixEntriesWithoutATwelveBitFormat)
{
    connectWith("format7 = { pixel_formats = [\"MONO8\"] }\n");
    EXPECT_EQ(grabOnce(4, {{3, 4}}), 0);
    EXPECT_THAT(pixelFormats(), Each(static_cast<unsigned>(FlyCapture2::PIXEL_FORMAT_MONO8)));
    EXPECT_THAT(pixelFormats(), SizeIs(3));
    EXPECT_THAT(journal().logsWith("allocated"),
                ElementsAre(info("allocated CDF array for 8 bits pixel"),
                            info("allocated LUT array for 8 bits pixel")));
    EXPECT_THAT(journal().lines({"KxGi__GetLutDynam"}), ElementsAre("KxGi__GetLutDynam(8, 12)"));
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_EQ(cam_->luts[0].entries[3], 3U);
    EXPECT_EQ(cam_->luts[0].entries[510], 510U);
    EXPECT_EQ(cam_->luts[0].entries[511], 510U);
    EXPECT_EQ(proc_->dynLutMode, 0U);
}

TEST_F(LutPassTest, GoesOnThoughTheCameraDoesNotTell)
{
    failCalls("GetLUTInfo");
    EXPECT_EQ(grabOnce(4, {{3, 4}}), 0);
    EXPECT_THAT(journal().logs(), Contains(warning("ProcSignal", "can't do GetLUTInfo: error - " +
                                                                     failureOf("GetLUTInfo"))));
    EXPECT_THAT(cam_->luts, SizeIs(1));
}

TEST_F(LutPassTest, LeavesATableThatIsOffAlone)
{
    EXPECT_EQ(grabOnce(4, {{3, 4}}), 0);
    EXPECT_THAT(journal().lines({"Camera.EnableLUT"}), ElementsAre("Camera.EnableLUT(on)"));
}

TEST_F(LutPassTest, LeavesACameraWithoutATableAlone)
{
    connectWith("[camera.lut]\nsupported = false\n");
    EXPECT_EQ(grabOnce(4, {{3, 4}, {6, 1}}), 0);
    EXPECT_EQ(journal().count("Camera.EnableLUT"), 0U);
    EXPECT_THAT(journal().logsWith("[w|ProcSignal]"), IsEmpty());
    EXPECT_EQ(trace_.back(), "1/6");
}

TEST_F(LutPassTest, SwitchesTheTableOffAgainWhenThatFailedBefore)
{
    switchOn();
    failCalls("EnableLUT");
    EXPECT_EQ(grabOnce(4, {{3, 4}}), 0);
    EXPECT_THAT(trace_, ElementsAre("0/0", "0/0", "0/0", "1/6", "4/6", "5/7", "8/7", "0/0", "0/0"));
    EXPECT_THAT(
        journal().lines({"Camera.EnableLUT"}),
        ElementsAre("Camera.EnableLUT(off)", "Camera.EnableLUT(off)", "Camera.EnableLUT(on)"));
}

TEST_F(LutPassTest, IsAPlainPassInATwelveBitGrab)
{
    host().config.format = 2;
    EXPECT_EQ(grabOnce(5, {{3, 4}}), 0);
    // The signal step comes after the table's: it starts on the next frame.
    EXPECT_EQ(journal().count("Camera.StartCapture"), 1U);
    EXPECT_THAT(lutMessages(),
                ElementsAre(info("Grabbed 3 images, processing SIGUSR2..."),
                            info("triggered dynamic LUT calc/apply right now"),
                            info("allocated CDF array for 12 bits pixel"),
                            info("allocated LUT array for 12 bits pixel"),
                            info("a new LUT was dynamically calculated..."),
                            HasSubstr("LUT settings handler entry"), HasSubstr("current LUT state"),
                            warning("ProcParametrizeCamManLUT",
                                    "LUT is not supported for 12 bit pixel format"),
                            info("continue operation with new LUT (dynamically calculated)...")));
}

TEST_F(LutPassTest, SurvivesTheFrameCount)
{
    // The code comes with the last frame.
    EXPECT_EQ(grabOnce(3, {{3, 4}}), 0);
    EXPECT_THAT(trace_, ElementsAre("0/0", "0/0", "0/0", "1/6", "5/7", "8/7", "0/0"));
    // A loop that reaches the frame count in the middle of a pass is started again.
    trace_.clear();
    cam_->luts.clear();
    EXPECT_EQ(grabOnce(1, {{1, 4}}), 0);
    EXPECT_THAT(trace_, ElementsAre("0/0", "1/6", "5/7", "8/7"));
    EXPECT_THAT(cam_->luts, SizeIs(1));
    EXPECT_EQ(proc_->dynLutMode, 0U);
}

TEST_F(LutPassTest, CalculatesAnewWhenAskedToInTheMiddle)
{
    // At the first frame after the 12-bit loop comes SIGUSR1, so that table is never applied.
    EXPECT_EQ(grabOnce(6, {{3, 4}, {5, 3}}), 0);
    EXPECT_THAT(trace_,
                ElementsAre("0/0", "0/0", "0/0", "1/6", "5/7", "5/7", "8/7", "0/0", "0/0", "0/0"));
    EXPECT_THAT(journal().lines({"KxGi__GetLutDynam"}),
                ElementsAre("KxGi__GetLutDynam(12, 12)", "KxGi__GetLutDynam(8, 12)"));
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_EQ(cam_->luts[0].entries[510], 510U);
}

TEST_F(LutPassTest, EndsWithAFinishingSignalOnTheTwelveBitFrame)
{
    for (const int code : {1, 5}) {
        journal().clear();
        host().config.format = 1;
        EXPECT_EQ(grabOnce(0, {{3, 4}, {4, code}}), 0);
        EXPECT_EQ(journal().count("Camera.StartCapture"), 2U);
        EXPECT_THAT(journal().lines({"KxGi__SetSignalAction"}),
                    ElementsAre(format("KxGi__SetSignalAction(%i)", code)));
        EXPECT_EQ(proc_->dynLutMode, 0U);
    }
}

// ---- The loop's repetition.

TEST_F(LutPassTest, RepeatsTheLoopInTwoModesOnly)
{
    for (const std::uint32_t mode : {0U, 1U, 5U, 6U, 7U, 8U}) {
        journal().clear();
        host().onCall = [this, mode, loops = 0](std::string_view name) mutable {
            // Set in the first loop, taken back in the second one.
            if (name == "KxGi__ResetTermSigProc") {
                proc_->dynLutMode = ++loops == 1 ? mode : 0;
            }
        };
        EXPECT_EQ(grabOnce(2, {}), 0);
        EXPECT_EQ(journal().count("Camera.StartCapture"), mode == 6 || mode == 7 ? 2U : 1U);
    }
}

TEST_F(LutPassTest, DoesNotRepeatALoopThatFailed)
{
    host().onCall = [this](std::string_view name) {
        if (name == "KxGi__ResetTermSigProc") {
            proc_->dynLutMode = 6;
        } else if (name == "KxSc__ProcExport") {
            throw std::runtime_error("full");
        }
    };
    EXPECT_EQ(grabOnce(5, {}), -10);
    EXPECT_EQ(journal().count("Camera.StartCapture"), 1U);
}

TEST_F(LutPassTest, LeavesNothingBehindWhenItIsInterrupted)
{
    for (const char* const where :
         {"KxGi__CalcLutDynam", "KxGi__GetLutDynam", "KxUtl__TimeValDiff"}) {
        SCOPED_TRACE(where);
        connect(); // an interrupted grab leaves its camera capturing
        host().config.format = 1;
        // In the middle of the calculation, and once its table waits to be loaded.
        host().onCall = [this, where, thrown = false](std::string_view name) mutable {
            if (name == where && !thrown && (proc_->dynLutState == 4 || proc_->dynLutState == 5)) {
                thrown = true;
                throw std::runtime_error("interrupted");
            }
        };
        EXPECT_EQ(grabOnce(4, {{3, 4}}), -10);
        EXPECT_THAT(journal().logsWith("(-10): interrupted"), SizeIs(1));
        EXPECT_FALSE(proc_->lutArray);
        EXPECT_FALSE(proc_->cdfArray);
    }
    // The next session starts from scratch.
    host().onCall = nullptr;
    host().config.format = 1;
    connect();
    EXPECT_EQ(grabOnce(4, {{2, 3}}), 0);
    EXPECT_EQ(journal().count("Camera.StartCapture"), 1U);
    EXPECT_THAT(journal().logsWith("allocated"), SizeIs(2));
}

TEST_F(LutPassTest, StartsAgainWithTheNewConfigurationWhenThatEndsTheLoop)
{
    // The pass is stuck in its 12-bit loop when the host asks for a new start.
    failCalls("GetLUTInfo", 1, 1);
    host().doReconfig = [](int* restart) {
        host().config.format = 1;
        host().config.width = 80;
        *restart = 1;
        return 0;
    };
    EXPECT_EQ(grabOnce(4, {{3, 4}, {4, 2}}), 0);
    EXPECT_THAT(trace_, ElementsAre("0/0", "0/0", "0/0", "1/6", "1/6", "5/7", "8/7", "0/0", "0/0"));
    EXPECT_THAT(pixelFormats(),
                ElementsAre(FlyCapture2::PIXEL_FORMAT_MONO8, FlyCapture2::PIXEL_FORMAT_MONO12,
                            FlyCapture2::PIXEL_FORMAT_MONO8, FlyCapture2::PIXEL_FORMAT_MONO8));
    EXPECT_THAT(journal().lines({"KxGi__CalcLutDynam"}),
                ElementsAre("KxGi__CalcLutDynam(80, 120, 80, 8)"));
    EXPECT_EQ(proc_->dynLutMode, 0U);
}

TEST_F(LutPassTest, StartsFromScratchAlsoWhereTheCameraCannotBeConfigured)
{
    proc_->dynLutState = 1;
    proc_->dynLutMode = 6;
    proc_->pendingSig = 3;
    proc_->frameCounter = 7;
    failCalls("GetFormat7Info");
    EXPECT_EQ(grabOnce(4, {}), -2);
    EXPECT_EQ(proc_->dynLutState, 0U);
    EXPECT_EQ(proc_->dynLutMode, 0U);
    EXPECT_EQ(proc_->pendingSig, 0U);
    EXPECT_EQ(proc_->frameCounter, 0U);
}

TEST_F(LutPassTest, StartsAndEndsASessionWithoutArrays)
{
    proc_->dynLutState = 5;
    proc_->dynLutMode = 7;
    EXPECT_EQ(grabOnce(4, {{2, 3}}), 0);
    EXPECT_EQ(trace_.front(), "0/0");
    EXPECT_FALSE(proc_->lutArray);
    EXPECT_FALSE(proc_->cdfArray);
}

} // namespace
