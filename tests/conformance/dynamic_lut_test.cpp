// The dynamic look-up table, step by step: what each state does, says and leads to.
#include "lut_fixture.h"

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
using testing::SizeIs;

// So many bytes are never there; the sanitizers too then answer as malloc does.
extern "C" __attribute__((visibility("default"))) const char*
__asan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "allocator_may_return_null=1";
}
extern "C" __attribute__((visibility("default"))) const char*
__tsan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "allocator_may_return_null=1";
}

namespace {

constexpr const char* kFunction = "ProcDynamLut";
constexpr unsigned char kTooManyBits = 50;

constexpr const char* kStartsNow = "triggered dynamic LUT calc/apply right now";
constexpr const char* kTurnedOff = "LUT is turned off temporary for new 'clear' frames capture";
constexpr const char* kCalculated = "a new LUT was dynamically calculated...";
constexpr const char* kContinues = "continue operation with new LUT (dynamically calculated)...";

class DynamicLutTest : public kxtest::LutTest {
protected:
    DynamicLutTest()
    {
        useBits(8, 8);
        proc_->roiWidth = 160;
        proc_->roiHeight = 120;
        proc_->frameData = pixels_.data();
        // Both arrays are filled to the end: one that is too short would be noticed.
        host().calcLut = [](const void*, std::uint32_t bits, std::uint32_t* cdf) {
            std::fill_n(cdf, std::size_t{1} << bits, 1U);
        };
        host().getLut = [](std::uint32_t bits, const std::uint32_t*, std::uint16_t* lut) {
            for (std::size_t entry = 0; entry < std::size_t{1} << bits; ++entry) {
                lut[entry] = static_cast<std::uint16_t>((entry << 12U) >> bits);
            }
        };
    }
    void useBits(unsigned char stored, unsigned char significant)
    {
        proc_->bitsPerPixel = stored;
        proc_->dataBits = significant;
    }
    void use(std::uint32_t state, std::uint32_t mode = 0)
    {
        proc_->dynLutState = state;
        proc_->dynLutMode = mode;
    }
    void step() { proc_->ProcDynamLut(cam_.get()); }
    /// Runs a plain pass with the camera's table off.
    void pass()
    {
        switchOn(false);
        use(1);
        step();
    }
    std::vector<std::uint32_t> stateAndMode() const
    {
        return {proc_->dynLutState, proc_->dynLutMode};
    }

    std::vector<unsigned char> pixels_ = std::vector<unsigned char>(std::size_t{160} * 120 * 2);
};

TEST_F(DynamicLutTest, DoesNothingWhenIdleOrUnknown)
{
    for (const std::uint32_t mode : {0U, 6U, 7U}) {
        for (const std::uint32_t state : {0U, 6U, 7U, 9U, 0xFFFFFFFFU}) {
            use(state, mode);
            step();
            EXPECT_THAT(stateAndMode(), ElementsAre(state, mode));
        }
    }
    EXPECT_THAT(journal().events(), IsEmpty());
}

// ---- Start.

TEST_F(DynamicLutTest, StartsOnTheSameFrameWithTheTableOff)
{
    use(1);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(0U, 0U));
    EXPECT_THAT(journal().logs(),
                ElementsAre(info(kStartsNow), info("allocated CDF array for 8 bits pixel"),
                            info("allocated LUT array for 8 bits pixel"), info(kCalculated),
                            info(format("LUT settings handler entry LUT arr %p",
                                        static_cast<void*>(proc_->lutArray.get()))),
                            info("  current LUT state: ena 0, banks 2, chans 1, entries 512"),
                            info("  check LUT value[10] = 160"), info("  LUT active bank is 0"),
                            info("LUT handler exit (nValues = 512, nCfgVals = 512, time = 0us)"),
                            info(kContinues)));
    EXPECT_THAT(lutCalls(), ElementsAre("Camera.GetLUTInfo()", "Camera.GetLUTInfo()",
                                        "Camera.EnableLUT(on)", "Camera.GetActiveLUTBank()",
                                        "Camera.SetLUTChannel(bank=1 channel=0 entries=512)",
                                        "Camera.SetActiveLUTBank(1)"));
    EXPECT_THAT(journal().lines(kxtest::Kind::host),
                ElementsAre("KxGi__CalcLutDynam(160, 120, 160, 8)", "KxGi__GetLutDynam(8, 12)"));
}

TEST_F(DynamicLutTest, CalculatesOnTheNextFrameWithTheTableOn)
{
    switchOn();
    use(1);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(4U, 0U));
    EXPECT_THAT(journal().logs(), ElementsAre(info(kTurnedOff)));
    EXPECT_THAT(lutCalls(), ElementsAre("Camera.GetLUTInfo()", "Camera.EnableLUT(off)"));
    EXPECT_EQ(journal().count("KxGi__CalcLutDynam"), 0U);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(0U, 0U));
    EXPECT_EQ(journal().count("KxGi__CalcLutDynam"), 1U);
    EXPECT_THAT(journal().logsWith(kContinues), SizeIs(1));
    EXPECT_TRUE(isOn());
}

TEST_F(DynamicLutTest, IgnoresATableThatCannotBeSwitchedOff)
{
    switchOn();
    failCalls("EnableLUT");
    use(1);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(4U, 0U));
    EXPECT_THAT(journal().logs(), ElementsAre(info(kTurnedOff)));
}

TEST_F(DynamicLutTest, AsksAgainAtEachFrameWhenTheCameraDoesNotTell)
{
    failCalls("GetLUTInfo", 0, 2);
    use(1);
    for (int frame = 0; frame < 2; ++frame) {
        step();
        EXPECT_THAT(stateAndMode(), ElementsAre(1U, 0U));
    }
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(warning(kFunction, "can't do GetLUTInfo: error - " + failureOf("GetLUTInfo")),
                    warning(kFunction, "can't do GetLUTInfo: error - " + failureOf("GetLUTInfo"))));
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(0U, 0U));
    EXPECT_THAT(cam_->luts, SizeIs(1));
}

TEST_F(DynamicLutTest, NeverGetsAnywhereWithoutATable)
{
    connectWith("[camera.lut]\nsupported = false\n");
    for (const std::uint32_t mode : {0U, 6U}) {
        use(1, mode);
        for (int frame = 0; frame < 3; ++frame) {
            step();
            EXPECT_THAT(stateAndMode(), ElementsAre(1U, mode));
        }
    }
    EXPECT_THAT(journal().logs(), IsEmpty());
    EXPECT_THAT(lutCalls(), SizeIs(6));
    EXPECT_THAT(lutCalls(), Each(std::string("Camera.GetLUTInfo()")));
}

TEST_F(DynamicLutTest, FreesTheArraysWhenATwelveBitPassStarts)
{
    pass();
    ASSERT_TRUE(proc_->lutArray);
    failCalls("GetLUTInfo", 0, 0);
    for (const std::uint32_t mode : {0U, 7U}) {
        use(1, mode);
        step();
        EXPECT_TRUE(proc_->lutArray);
        EXPECT_TRUE(proc_->cdfArray);
    }
    use(1, 6);
    step();
    EXPECT_FALSE(proc_->lutArray);
    EXPECT_FALSE(proc_->cdfArray);
    EXPECT_THAT(stateAndMode(), ElementsAre(1U, 6U));
}

// ---- Wait.

TEST_F(DynamicLutTest, CanWaitTwoFrames)
{
    for (const std::uint32_t mode : {0U, 6U}) {
        journal().clear();
        use(2, mode);
        step();
        EXPECT_THAT(stateAndMode(), ElementsAre(3U, mode));
        EXPECT_THAT(journal().lines([](const auto&) { return true; }),
                    ElementsAre(info("dynamic LUT is waiting for new clear picture 2 frames yet")));
        journal().clear();
        step();
        EXPECT_THAT(stateAndMode(), ElementsAre(4U, mode));
        EXPECT_THAT(journal().lines([](const auto&) { return true; }),
                    ElementsAre(info("dynamic LUT is waiting for new clear picture 1 frame yet")));
    }
}

// ---- Calculate.

TEST_F(DynamicLutTest, AllocatesTheArraysOfThePixelFormatOnce)
{
    useBits(12, 8);
    pass();
    EXPECT_GE(malloc_usable_size(proc_->cdfArray.get()), 16'384U);
    EXPECT_LT(malloc_usable_size(proc_->cdfArray.get()), 2U * 16'384U);
    EXPECT_GE(malloc_usable_size(proc_->lutArray.get()), 512U);
    EXPECT_LT(malloc_usable_size(proc_->lutArray.get()), 2U * 512U);
    EXPECT_THAT(journal().logsWith("allocated"),
                ElementsAre(info("allocated CDF array for 12 bits pixel"),
                            info("allocated LUT array for 8 bits pixel")));
    EXPECT_THAT(journal().lines(kxtest::Kind::host),
                ElementsAre("KxGi__CalcLutDynam(160, 120, 160, 12)", "KxGi__GetLutDynam(8, 12)"));
    const void* const cdf = proc_->cdfArray.get();
    pass();
    EXPECT_THAT(journal().logsWith("allocated"), IsEmpty());
    EXPECT_EQ(proc_->cdfArray.get(), cdf);
}

TEST_F(DynamicLutTest, MakesLargerArraysWhenTheFormatNeedsThem)
{
    pass();
    useBits(16, 12);
    proc_->isColor = true;
    pass();
    EXPECT_THAT(journal().logsWith("allocated"),
                ElementsAre(info("allocated CDF array for 16 bits pixel"),
                            info("allocated LUT array for 12 bits pixel")));
    EXPECT_GE(malloc_usable_size(proc_->cdfArray.get()), 262'144U);
    EXPECT_GE(malloc_usable_size(proc_->lutArray.get()), 8192U);
    // Smaller ones are as good.
    useBits(8, 8);
    pass();
    EXPECT_THAT(journal().logsWith("allocated"), IsEmpty());
}

TEST_F(DynamicLutTest, HandsTheFrameAndTheArraysToTheHost)
{
    const void* seen = nullptr;
    const std::uint32_t* filled = nullptr;
    const std::uint32_t* read = nullptr;
    const std::uint16_t* written = nullptr;
    host().calcLut = [&](const void* frame, std::uint32_t, std::uint32_t* cdf) {
        seen = frame;
        filled = cdf;
    };
    host().getLut = [&](std::uint32_t bits, const std::uint32_t* cdf, std::uint16_t* lut) {
        read = cdf;
        written = lut;
        std::fill_n(lut, std::size_t{1} << bits, std::uint16_t{0});
    };
    pass();
    EXPECT_EQ(seen, pixels_.data());
    EXPECT_EQ(filled, proc_->cdfArray.get());
    EXPECT_EQ(read, proc_->cdfArray.get());
    EXPECT_EQ(written, proc_->lutArray.get());
}

TEST_F(DynamicLutTest, IsAbandonedWithoutMemory)
{
    for (const std::uint32_t mode : {0U, 6U, 7U}) {
        for (const bool forLut : {false, true}) {
            journal().clear();
            useBits(forLut ? 8 : kTooManyBits, forLut ? kTooManyBits : 8);
            use(4, mode);
            step();
            EXPECT_THAT(stateAndMode(), ElementsAre(0U, 0U));
            EXPECT_FALSE(proc_->cdfArray);
            EXPECT_FALSE(proc_->lutArray);
            EXPECT_THAT(journal().lines([](const auto&) { return true; }),
                        ElementsAre(info(forLut ? "allocated CDF array for 8 bits pixel"
                                                : "allocated LUT array for 8 bits pixel")));
        }
    }
    // The next pass is as good as the first.
    useBits(8, 8);
    pass();
    EXPECT_THAT(cam_->luts, SizeIs(1));
}

TEST_F(DynamicLutTest, ForgetsATableThatItCouldNotReplace)
{
    pass();
    ASSERT_NE(proc_->lastLutData, nullptr);
    useBits(8, kTooManyBits);
    use(4);
    step();
    // A table of the host's that gets the address is another one.
    EXPECT_EQ(proc_->lastLutData, nullptr);
}

TEST_F(DynamicLutTest, EndsTheTwelveBitGrabOnceItIsCalculated)
{
    useBits(12, 12);
    use(4, 6);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(5U, 7U));
    EXPECT_EQ(proc_->pendingSig, 4U);
    EXPECT_THAT(journal().lines({"KxGi__CalcLutDynam", "Camera.StopCapture", "KxGi__GetLutDynam"}),
                ElementsAre("KxGi__CalcLutDynam(160, 120, 160, 12)", "Camera.StopCapture()",
                            "KxGi__GetLutDynam(12, 12)"));
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("allocated CDF array for 12 bits pixel"),
                            info("allocated LUT array for 12 bits pixel"), info(kCalculated)));
    EXPECT_THAT(cam_->luts, IsEmpty());
}

TEST_F(DynamicLutTest, KeepsAFinishingSignalThatIsPending)
{
    for (const std::uint32_t code : {1U, 5U}) {
        proc_->pendingSig = code;
        use(4, 6);
        step();
        EXPECT_EQ(proc_->pendingSig, code);
        EXPECT_THAT(stateAndMode(), ElementsAre(5U, 7U));
    }
    proc_->pendingSig = 2;
    use(4, 6);
    step();
    EXPECT_EQ(proc_->pendingSig, 4U);
}

TEST_F(DynamicLutTest, CalculatesOnceInATwelveBitPassThatIsDone)
{
    useBits(12, 12);
    use(4, 7);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(5U, 7U));
    EXPECT_EQ(proc_->pendingSig, 0U);
    EXPECT_EQ(journal().count("Camera.StopCapture"), 0U);
}

// ---- Apply.

TEST_F(DynamicLutTest, AppliesTheTwelveBitTableToEightBitFrames)
{
    useBits(12, 12);
    use(4, 6);
    step();
    useBits(8, 8);
    journal().clear();
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(8U, 7U));
    EXPECT_TRUE(proc_->lutArray);
    EXPECT_THAT(journal().logs(), Contains(info(kContinues)));
    ASSERT_THAT(cam_->luts, SizeIs(1));
    // 4096 entries from 0 to 4095: every eighth, divided by 8.
    for (unsigned entry = 0; entry < 512; ++entry) {
        EXPECT_EQ(cam_->luts[0].entries[entry], entry);
    }
}

TEST_F(DynamicLutTest, ReadsNoFurtherThanTheTableGoes)
{
    // A camera without a 12-bit format gave 8-bit frames also in the 12-bit pass.
    use(4, 6);
    step();
    ASSERT_LT(malloc_usable_size(proc_->lutArray.get()), 8192U);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(8U, 7U));
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_EQ(cam_->luts[0].entries[2], 2U); // 16 / 8
    EXPECT_EQ(cam_->luts[0].entries[3], 3U); // (16 + 32) / 2 / 8
    EXPECT_EQ(cam_->luts[0].entries[510], 510U);
    EXPECT_EQ(cam_->luts[0].entries[511], 510U);
}

TEST_F(DynamicLutTest, TakesThe256EntriesOfAPlainPass)
{
    host().getLut = [](std::uint32_t, const std::uint32_t*, std::uint16_t* lut) {
        std::fill_n(lut, 256, std::uint16_t{0});
        lut[1] = 16;
    };
    pass();
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_EQ(cam_->luts[0].entries[0], 0U);
    EXPECT_EQ(cam_->luts[0].entries[1], 1U);
    EXPECT_EQ(cam_->luts[0].entries[2], 2U);
    EXPECT_EQ(cam_->luts[0].entries[3], 1U);
    EXPECT_EQ(cam_->luts[0].entries[4], 0U);
}

TEST_F(DynamicLutTest, TakesTheEntriesOfThisCalculationFromALargerArray)
{
    useBits(12, 12);
    use(4, 7);
    step();
    useBits(8, 8);
    use(4, 7);
    step();
    step();
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_EQ(cam_->luts[0].entries[510], 510U);
}

TEST_F(DynamicLutTest, ThinsOutTheLargeTablesOfColourFormats)
{
    connectColour();
    proc_->isColor = true;
    for (const unsigned char bits :
         {static_cast<unsigned char>(12), static_cast<unsigned char>(16)}) {
        cam_->luts.clear();
        useBits(bits, bits);
        pass();
        ASSERT_THAT(cam_->luts, SizeIs(3));
        EXPECT_EQ(cam_->luts[2].entries[1], 1U);
        EXPECT_EQ(cam_->luts[2].entries[511], 511U);
    }
}

TEST_F(DynamicLutTest, CannotBeAppliedToTwelveBitMonochrome)
{
    useBits(12, 12);
    pass();
    EXPECT_THAT(stateAndMode(), ElementsAre(0U, 0U));
    EXPECT_THAT(journal().logs(),
                Contains(warning("ProcParametrizeCamManLUT",
                                 "LUT is not supported for 12 bit pixel format")));
    EXPECT_THAT(journal().logs(), Contains(info(kContinues)));
    EXPECT_THAT(cam_->luts, IsEmpty());
}

TEST_F(DynamicLutTest, AppliesNothingThatIsNotThere)
{
    use(5);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(0U, 0U));
    use(5, 7);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(8U, 7U));
    EXPECT_THAT(journal().events(), IsEmpty());
}

TEST_F(DynamicLutTest, LoadsEachTableThoughItStandsAtTheSameAddress)
{
    pass();
    const void* const table = proc_->lutArray.get();
    EXPECT_EQ(proc_->lastLutData, table);
    pass();
    EXPECT_EQ(proc_->lutArray.get(), table);
    EXPECT_THAT(cam_->luts, ElementsAre(Field(&kxtest::LutWrite::bank, 1U),
                                        Field(&kxtest::LutWrite::bank, 0U)));
    EXPECT_THAT(journal().logsWith("no data change"), IsEmpty());
}

TEST_F(DynamicLutTest, LetsTheHostsTableComeBack)
{
    host().config.lutBits = 9;
    host().config.lut.assign(512, 3);
    proc_->ProcParametrizeCamManLUT(cam_.get(), false);
    pass();
    proc_->ProcParametrizeCamManLUT(cam_.get(), false);
    ASSERT_THAT(cam_->luts, SizeIs(3));
    EXPECT_THAT(cam_->luts[2].entries, Each(3U));
}

TEST_F(DynamicLutTest, LoadsATableOnceThatIsNotCalculatedAnew)
{
    pass();
    journal().clear();
    use(5);
    step();
    EXPECT_THAT(journal().logs(),
                ElementsAre(HasSubstr("LUT settings handler entry"),
                            info("  LUT configuration is skipped: no data change is detected"),
                            info(kContinues)));
    EXPECT_THAT(lutCalls(), IsEmpty());
}

TEST_F(DynamicLutTest, DoesNotAskTheHostForItsTable)
{
    host().config.lut.assign(512, 3);
    pass();
    EXPECT_EQ(journal().count("KxGiMainCtx__GetLutDataU16"), 0U);
    EXPECT_EQ(journal().count("KxGiMainCtx__GetLutBitSize"), 0U);
}

TEST_F(DynamicLutTest, SwitchesTheTableOffWhenAskedToLoadOneThatIsNotThere)
{
    switchOn();
    host().config.lut.assign(512, 3);
    proc_->ProcParametrizeCamManLUT(cam_.get(), true);
    EXPECT_THAT(lutCalls(), ElementsAre("Camera.GetLUTInfo()", "Camera.EnableLUT(off)"));
}

// ---- Finish.

TEST_F(DynamicLutTest, FreesTheArraysAfterATwelveBitPass)
{
    pass();
    ASSERT_NE(proc_->lastLutData, nullptr);
    journal().clear();
    use(8, 7);
    step();
    EXPECT_THAT(stateAndMode(), ElementsAre(0U, 0U));
    EXPECT_FALSE(proc_->lutArray);
    EXPECT_FALSE(proc_->cdfArray);
    // A table of the host's that gets the address is another one.
    EXPECT_EQ(proc_->lastLutData, nullptr);
    EXPECT_THAT(journal().events(), IsEmpty());
}

TEST_F(DynamicLutTest, RemembersTheHostsTableWhenItFreesItsOwn)
{
    pass();
    host().config.lutBits = 9;
    host().config.lut.assign(512, 3);
    proc_->ProcParametrizeCamManLUT(cam_.get(), false);
    use(8, 7);
    step();
    EXPECT_EQ(proc_->lastLutData, host().config.lut.data());
}

TEST_F(DynamicLutTest, KeepsTheArraysOtherwise)
{
    pass();
    for (const std::uint32_t mode : {0U, 6U}) {
        use(8, mode);
        step();
        EXPECT_THAT(stateAndMode(), ElementsAre(0U, mode));
        EXPECT_TRUE(proc_->lutArray);
        EXPECT_TRUE(proc_->cdfArray);
    }
}

} // namespace
