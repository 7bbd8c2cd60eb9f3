// The configured look-up table: when it is loaded, what of it, into which bank, and what is said.
#include "lut_fixture.h"
#include "system_calls.h"

#include <numeric>

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

using Table = std::vector<std::uint16_t>;

constexpr const char* kFunction = "ProcParametrizeCamManLUT";
constexpr std::size_t kEntries = 512;

class ConfiguredLutTest : public kxtest::LutTest {
protected:
    ConfiguredLutTest()
    {
        proc_->dataBits = 8;
        host().config.lutBits = 9;
        host().config.lut = straightLine();
    }

    static Table straightLine()
    {
        Table table(kEntries);
        std::iota(table.begin(), table.end(), std::uint16_t{0});
        return table;
    }
    void apply() { proc_->ProcParametrizeCamManLUT(cam_.get(), false); }
    static std::string entryLine()
    {
        const Table& table = host().config.lut;
        const void* const address = table.empty() ? nullptr : table.data();
        return info(format("LUT settings handler entry LUT arr %p", address));
    }
};

// ---- What is loaded, and where to.

TEST_F(ConfiguredLutTest, IsWrittenBesideTheActiveBankAndThenMadeActive)
{
    apply();
    EXPECT_THAT(lutCalls(), ElementsAre("Camera.GetLUTInfo()", "Camera.EnableLUT(on)",
                                        "Camera.GetActiveLUTBank()",
                                        "Camera.SetLUTChannel(bank=1 channel=0 entries=512)",
                                        "Camera.SetActiveLUTBank(1)"));
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_THAT(cam_->luts[0].entries, testing::ElementsAreArray(straightLine()));
    EXPECT_EQ(proc_->lastLutData, host().config.lut.data());
}

TEST_F(ConfiguredLutTest, ChangesBanksWithEachTable)
{
    apply();
    const Table former = std::exchange(host().config.lut, Table(kEntries, 5));
    apply();
    EXPECT_THAT(cam_->luts, ElementsAre(Field(&kxtest::LutWrite::bank, 1U),
                                        Field(&kxtest::LutWrite::bank, 0U)));
    EXPECT_THAT(journal().lines({"Camera.SetActiveLUTBank"}),
                ElementsAre(HasSubstr("(1)"), HasSubstr("(0)")));
    EXPECT_THAT(journal().logsWith("LUT active bank is"),
                ElementsAre(info("  LUT active bank is 0"), info("  LUT active bank is 1")));
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

TEST_F(ConfiguredLutTest, TellsWhatItDoes)
{
    apply();
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(),
                            info("  current LUT state: ena 0, banks 2, chans 1, entries 512"),
                            info("  check LUT value[10] = 10"), info("  LUT active bank is 0"),
                            info("LUT handler exit (nValues = 512, nCfgVals = 512, time = 0us)")));
}

TEST_F(ConfiguredLutTest, TellsHowLongItTook)
{
    // Two lines are written while the time is taken.
    kxtest::onSyslog([] { fcsim::advanceClock(300); });
    apply();
    kxtest::onSyslog(nullptr);
    EXPECT_THAT(journal().logs(),
                Contains(info("LUT handler exit (nValues = 512, nCfgVals = 512, time = 600us)")));
}

TEST_F(ConfiguredLutTest, TellsTheStateOfTheCamera)
{
    switchOn();
    apply();
    EXPECT_THAT(journal().logs(),
                Contains(info("  current LUT state: ena 1, banks 2, chans 1, entries 512")));
}

TEST_F(ConfiguredLutTest, HasOneChannelForMonochromeAndThreeForColour)
{
    connectColour();
    apply();
    EXPECT_THAT(cam_->luts, ElementsAre(Field(&kxtest::LutWrite::channel, 0U)));
    cam_->luts.clear();
    proc_->isColor = true;
    proc_->lastLutData = nullptr;
    apply();
    EXPECT_THAT(cam_->luts, ElementsAre(Field(&kxtest::LutWrite::channel, 0U),
                                        Field(&kxtest::LutWrite::channel, 1U),
                                        Field(&kxtest::LutWrite::channel, 2U)));
    EXPECT_THAT(cam_->luts, Each(Field(&kxtest::LutWrite::bank, 0U)));
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

TEST_F(ConfiguredLutTest, HasThreeChannelsForColourWhateverTheCameraTells)
{
    proc_->isColor = true;
    apply();
    EXPECT_THAT(journal().logs(), Contains(HasSubstr("chans 1")));
    EXPECT_THAT(cam_->luts, ElementsAre(Field(&kxtest::LutWrite::channel, 0U),
                                        Field(&kxtest::LutWrite::channel, 1U)));
    EXPECT_THAT(journal().logsWith("can't do SetLUTChannel: error - "), SizeIs(1));
}

TEST_F(ConfiguredLutTest, IsScaledByItsBits)
{
    host().config.lutBits = 12;
    host().config.lut = Table(kEntries, 4);
    host().config.lut[0] = 4095;
    apply();
    ASSERT_THAT(cam_->luts, SizeIs(1));
    EXPECT_EQ(cam_->luts[0].entries[0], 512U);
    EXPECT_EQ(cam_->luts[0].entries[1], 1U);
    EXPECT_EQ(journal().count("KxGiMainCtx__GetLutBitSize"), 1U);
}

TEST_F(ConfiguredLutTest, IsLoadedIntoATwelveBitColourImage)
{
    proc_->dataBits = 12;
    proc_->isColor = true;
    connectColour();
    apply();
    EXPECT_THAT(cam_->luts, SizeIs(3));
}

// ---- When it is not loaded.

TEST_F(ConfiguredLutTest, IsNotLoadedTwice)
{
    apply();
    journal().clear();
    apply();
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(),
                            info("  LUT configuration is skipped: no data change is detected")));
    EXPECT_THAT(lutCalls(), IsEmpty());
}

TEST_F(ConfiguredLutTest, IsKnownByItsAddressAndNotByItsContent)
{
    apply();
    host().config.lut[10] = 77;
    apply();
    EXPECT_THAT(cam_->luts, SizeIs(1));
    const Table former = std::exchange(host().config.lut, Table(host().config.lut));
    apply();
    EXPECT_THAT(cam_->luts, SizeIs(2));
}

TEST_F(ConfiguredLutTest, IsLoadedAgainAfterItWasGone)
{
    apply();
    Table table;
    table.swap(host().config.lut);
    apply();
    EXPECT_EQ(proc_->lastLutData, nullptr);
    table.swap(host().config.lut);
    apply();
    EXPECT_THAT(cam_->luts, SizeIs(2));
}

TEST_F(ConfiguredLutTest, WaitsWhileOneIsCalculated)
{
    for (const std::uint32_t state : {1U, 4U, 5U, 8U}) {
        proc_->dynLutState = state;
        journal().clear();
        apply();
        EXPECT_THAT(
            journal().logs(),
            ElementsAre(entryLine(),
                        info("  LUT configuration from file is skipped (dynamic mode is active)")));
        EXPECT_THAT(lutCalls(), IsEmpty());
        EXPECT_EQ(proc_->lastLutData, nullptr);
    }
}

TEST_F(ConfiguredLutTest, WaitsWithoutATableToo)
{
    host().config.lut.clear();
    proc_->dynLutState = 1;
    apply();
    EXPECT_THAT(journal().logsWith("is skipped (dynamic mode is active)"), SizeIs(1));
    EXPECT_THAT(lutCalls(), IsEmpty());
}

TEST_F(ConfiguredLutTest, WaitsForTheStateAndNotForTheMode)
{
    proc_->dynLutMode = 6;
    apply();
    EXPECT_THAT(cam_->luts, SizeIs(1));
}

TEST_F(ConfiguredLutTest, NeedsACameraThatHasOne)
{
    connectWith("[camera.lut]\nsupported = false\n");
    apply();
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(entryLine(), warning(kFunction, "LUT is not supported for this device")));
    EXPECT_EQ(proc_->lastLutData, nullptr);
}

TEST_F(ConfiguredLutTest, NeedsACameraThatTells)
{
    failCalls("GetLUTInfo");
    apply();
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(), warning(kFunction, "can't do GetLUTInfo: error - " +
                                                                failureOf("GetLUTInfo"))));
    EXPECT_THAT(lutCalls(), SizeIs(1));
    EXPECT_EQ(proc_->lastLutData, nullptr);
}

TEST_F(ConfiguredLutTest, DoesNotFitTwelveBitMonochrome)
{
    proc_->dataBits = 12;
    apply();
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(), HasSubstr("current LUT state"),
                            warning(kFunction, "LUT is not supported for 12 bit pixel format")));
    EXPECT_THAT(lutCalls(), SizeIs(1));
    EXPECT_EQ(proc_->lastLutData, nullptr);
}

TEST_F(ConfiguredLutTest, NeedsACameraWith512Entries)
{
    for (const unsigned entries : {511U, 513U, 256U}) {
        connectWith(format("[camera.lut]\nentries = %u\n", entries));
        apply();
        EXPECT_THAT(
            journal().logs(),
            ElementsAre(
                entryLine(),
                info(format("  current LUT state: ena 0, banks 2, chans 1, entries %u", entries)),
                info("  check LUT value[10] = 10"),
                warning(kFunction, "  LUT type is not supported by this handler")));
        EXPECT_THAT(lutCalls(), SizeIs(1));
        EXPECT_EQ(proc_->lastLutData, nullptr);
    }
}

// ---- Without a table.

TEST_F(ConfiguredLutTest, IsSwitchedOffWithoutATable)
{
    switchOn();
    host().config.lut.clear();
    apply();
    EXPECT_THAT(lutCalls(), ElementsAre("Camera.GetLUTInfo()", "Camera.EnableLUT(off)"));
    EXPECT_THAT(journal().logs(),
                ElementsAre(info(format("LUT settings handler entry LUT arr %p",
                                        static_cast<void*>(nullptr))),
                            HasSubstr("ena 1"), info("  LUT is disabled due to configuration")));
}

TEST_F(ConfiguredLutTest, StaysOffWithoutATable)
{
    host().config.lut.clear();
    apply();
    EXPECT_THAT(lutCalls(), ElementsAre("Camera.GetLUTInfo()"));
    EXPECT_THAT(journal().logs(), Not(Contains(info("  LUT is disabled due to configuration"))));
}

TEST_F(ConfiguredLutTest, MayRefuseToBeSwitchedOff)
{
    switchOn();
    host().config.lut.clear();
    failCalls("EnableLUT");
    apply();
    EXPECT_THAT(journal().logs(),
                Contains(warning(kFunction, "can't disable LUT follow configuration: error - " +
                                                failureOf("EnableLUT"))));
    EXPECT_THAT(journal().logs(), Contains(info("  LUT is disabled due to configuration")));
}

TEST_F(ConfiguredLutTest, IsSwitchedOffForTwelveBitMonochromeToo)
{
    switchOn();
    host().config.lut.clear();
    proc_->dataBits = 12;
    apply();
    EXPECT_THAT(lutCalls(), ElementsAre("Camera.GetLUTInfo()", "Camera.EnableLUT(off)"));
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

TEST_F(ConfiguredLutTest, WarnsOfACameraWithoutOneAlsoWithoutATable)
{
    host().config.lut.clear();
    failCalls("GetLUTInfo");
    apply();
    EXPECT_EQ(journal().logs().back(),
              warning(kFunction, "can't do GetLUTInfo: error - " + failureOf("GetLUTInfo")));
    connectWith("[camera.lut]\nsupported = false\n");
    apply();
    EXPECT_EQ(journal().logs().back(), warning(kFunction, "LUT is not supported for this device"));
    EXPECT_EQ(journal().count("Camera.EnableLUT"), 0U);
}

// ---- Cameras that refuse.

TEST_F(ConfiguredLutTest, IsLoadedAlsoWhereItCannotBeSwitchedOn)
{
    failCalls("EnableLUT");
    apply();
    EXPECT_THAT(journal().logs(), Contains(warning(kFunction, "can't enable LUT: error - " +
                                                                  failureOf("EnableLUT"))));
    EXPECT_EQ(journal().count("Camera.SetActiveLUTBank"), 1U);
    EXPECT_THAT(journal().logsWith("LUT handler exit"), SizeIs(1));
}

TEST_F(ConfiguredLutTest, TakesBankZeroForActiveWhenTheCameraDoesNotTell)
{
    static_cast<void>(cam_->SetActiveLUTBank(1));
    failCalls("GetActiveLUTBank");
    apply();
    EXPECT_THAT(journal().logs(), Contains(info("  LUT active bank is 0")));
    EXPECT_THAT(cam_->luts, ElementsAre(Field(&kxtest::LutWrite::bank, 1U)));
}

TEST_F(ConfiguredLutTest, IsGivenUpAtTheFirstChannelThatFails)
{
    connectColour();
    proc_->isColor = true;
    failCalls("SetLUTChannel", 1);
    apply();
    EXPECT_THAT(cam_->luts, SizeIs(2));
    EXPECT_THAT(journal().logs(), Contains(warning(kFunction, "can't do SetLUTChannel: error - " +
                                                                  failureOf("SetLUTChannel"))));
    EXPECT_EQ(journal().count("Camera.SetActiveLUTBank"), 0U);
    EXPECT_THAT(journal().logsWith("LUT handler exit"), IsEmpty());
    // It counts as loaded all the same.
    journal().clear();
    apply();
    EXPECT_THAT(journal().logsWith("no data change is detected"), SizeIs(1));
}

TEST_F(ConfiguredLutTest, SaysBankZeroWhicheverCannotBeMadeActive)
{
    failCalls("SetActiveLUTBank");
    apply();
    EXPECT_THAT(journal().lines({"Camera.SetActiveLUTBank"}), ElementsAre(HasSubstr("(1)")));
    EXPECT_THAT(journal().logs(),
                Contains(warning(kFunction, "can't do SetActiveLUTBank(0): error - " +
                                                failureOf("SetActiveLUTBank"))));
    EXPECT_THAT(journal().logsWith("LUT handler exit"), IsEmpty());
    EXPECT_EQ(proc_->lastLutData, host().config.lut.data());
}

// ---- Who asks for it.

TEST_F(ConfiguredLutTest, IsAppliedInItsMode)
{
    for (const bool dynamic : {false, true}) {
        for (const std::int32_t mode : {0, 2, -1}) {
            host().config.sweepLutMod = mode;
            EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), dynamic), 0);
            EXPECT_THAT(journal().logsWith("LUT settings handler"), IsEmpty());
        }
        host().config.sweepLutMod = 1;
        EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), dynamic), 0);
        EXPECT_THAT(journal().logsWith("LUT settings handler"), SizeIs(1));
        journal().clear();
    }
    EXPECT_THAT(cam_->luts, SizeIs(1));
}

TEST_F(ConfiguredLutTest, IsInForceFromTheFirstFrameOn)
{
    host().config.sweepLutMod = 1;
    EXPECT_EQ(grab(2), 0);
    EXPECT_THAT(journal().lines({"Camera.SetActiveLUTBank", "Camera.StartCapture"}),
                ElementsAre(HasSubstr("SetActiveLUTBank(1)"), HasSubstr("StartCapture")));
}

} // namespace
