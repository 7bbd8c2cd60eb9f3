// The I/O box's lines, from the host's configuration to the records of the pins.
#include "io_fixture.h"
#include "kx_iobox.h"
#include "system_calls.h"

using kxtest::command;
using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::IoboxEntry;
using kxtest::journal;
using kxtest::kGpio0;
using kxtest::kGpio1;
using kxtest::kGpio2;
using kxtest::kGpio3;
using kxtest::Kind;
using kxtest::kUnset;
using kxtest::reply;
using kxtest::strobe;
using kxtest::textOf;
using kxtest::warning;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* kFunction = "ProcParametrizeCamOutLines";

class IoOutlinesTest : public kxtest::IoTest {
protected:
    /// A line of the entry's values.
    static std::string entryLine(unsigned set, const char* name, const char* values)
    {
        return info(format(" Cfg IoBox set %u: Pin '%s', %s", set, name, values));
    }
    static std::string skippedLine(unsigned set)
    {
        return info(format(" Cfg IoBox set %u: no config changes are detected, skipped", set));
    }
    static std::string busyLine(const char* name)
    {
        return warning(
            kFunction,
            format("The Pin '%s' can't be reconfigured right now, pls come later...", name));
    }
    /// The records as the control thread leaves a strobe.
    void settle()
    {
        for (KxPGrey::IoPinState& record : cam_->ioPinState) {
            record.cfgDirty = 0;
        }
        cam_->ioCfgPending = false;
        journal().clear();
    }
    /// Whether another pass with this entry applies it.
    bool appliesAgain(const IoboxEntry& entry)
    {
        settle();
        configure({entry});
        EXPECT_EQ(cam_->ioCfgPending, pin(0).cfgDirty != 0);
        EXPECT_NE(journal().logsWith("no config changes").empty(), pin(0).cfgDirty == 0);
        return pin(0).cfgDirty != 0;
    }
};

TEST_F(IoOutlinesTest, RecordsStartFreeAndUnset)
{
    for (unsigned number = 0; number < 4; ++number) {
        KxPGrey::IoPinState expected;
        expected.pinIndex = static_cast<std::uint8_t>(number);
        expected.param0 = expected.param1 = expected.dataWord = 0xFFFFFFFF;
        expected.pinFree = 1;
        EXPECT_EQ(textOf(pin(number)), textOf(expected));
        EXPECT_EQ(textOf(saved(number)), textOf(expected));
    }
    EXPECT_EQ(textOf(pin(3)),
              format("0 %u %u %u 0 0 0 0, 0 0 3 0 0 0 0 0 0 1 0", kUnset, kUnset, kUnset));
}

TEST_F(IoOutlinesTest, PinNamesAreInTheirRows)
{
    ASSERT_EQ(std::size(KxCfgIoPinMapT), 13U);
    std::vector<std::string> names;
    for (const KxCfgIoPin& row : KxCfgIoPinMapT) {
        EXPECT_EQ(row.id, names.size());
        names.emplace_back(row.name);
    }
    EXPECT_THAT(names, ElementsAre("None", "Line1", "Line2", "Line3", "Line4", "Out1", "Out2",
                                   "Out3", "Out4", "Gpio0", "Gpio1", "Gpio2", "Gpio3"));
}

TEST_F(IoOutlinesTest, NothingIsConfigured)
{
    configure({});
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("IoBox settings handler entry: numCfg 0 (allowed cfg? - "
                                 "\"YES\")")));
    EXPECT_THAT(journal().lines(Kind::getter), ElementsAre("KxGiMainCtx__GetIoboxNum()"));
    EXPECT_FALSE(cam_->ioCfgPending);
}

TEST_F(IoOutlinesTest, NothingIsTakenWhileAConfigurationIsPending)
{
    cam_->ioCfgPending = true;
    configure({strobe(kGpio0, 1, 2)});
    EXPECT_THAT(journal().logs(), ElementsAre(info("IoBox settings handler entry: numCfg 1 "
                                                   "(allowed cfg? - \"NO\")")));
    EXPECT_THAT(journal().lines(Kind::getter), ElementsAre("KxGiMainCtx__GetIoboxNum()"));
    EXPECT_TRUE(cam_->ioCfgPending);
    EXPECT_EQ(pin(0).cfgDirty, 0);
}

TEST_F(IoOutlinesTest, AnEntryBecomesARecord)
{
    // Nothing of a record is left out when it is saved.
    pin(1) = {.expoAtCfgUs = 11,
              .param0 = 12,
              .param1 = 13,
              .dataWord = 14,
              .loopsLeft = 15,
              .pulseCount = 16,
              .idleCount = 17,
              .activeCount = 18,
              .bitCount = 19,
              .bitCountCfg = 20,
              .pinIndex = 21,
              .mode = 22,
              .src = 23,
              .inv = 24,
              .idleLevel = 25,
              .lastLevel = 26,
              .rxWaitInit = 27,
              .pinFree = 28,
              .cfgDirty = 29};
    const std::string before = textOf(pin(1));
    configure({{.pin = kGpio1, .mode = 1, .inv = 2, .src = 3, .par = {100, 2000}}});
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(HasSubstr("numCfg 1 (allowed cfg? - \"YES\")"),
                    entryLine(0, "Gpio1", "Mod 1, Src 3, Inv 2 (param[0]=100, param[1]=2000)")));
    EXPECT_THAT(journal().lines(Kind::getter),
                ElementsAre("KxGiMainCtx__GetIoboxNum()", "KxGiMainCtx__GetIoboxPin(0)",
                            "KxGiMainCtx__GetIoboxMod(0)", "KxGiMainCtx__GetIoboxInv(0)",
                            "KxGiMainCtx__GetIoboxSrc(0)", "KxGiMainCtx__GetIoboxPar(0, 0)",
                            "KxGiMainCtx__GetIoboxPar(0, 1)"));
    EXPECT_EQ(textOf(saved(1)), before);
    KxPGrey::IoPinState expected = saved(1);
    expected.param0 = 100;
    expected.param1 = 2000;
    expected.mode = 1;
    expected.src = 3;
    expected.inv = 2;
    expected.cfgDirty = 1;
    EXPECT_EQ(textOf(pin(1)), textOf(expected));
    EXPECT_TRUE(cam_->ioCfgPending);
    EXPECT_THAT(journal().lines(Kind::sdk), IsEmpty());
}

TEST_F(IoOutlinesTest, TheFourthEntryIsNotLookedAt)
{
    configure(
        {strobe(kGpio3, 1, 2), strobe(kGpio2, 1, 2), strobe(kGpio1, 1, 2), strobe(kGpio0, 1, 2)});
    EXPECT_THAT(journal().logs(), Contains(HasSubstr("numCfg 4")));
    EXPECT_EQ(pin(3).cfgDirty, 1);
    EXPECT_EQ(pin(2).cfgDirty, 1);
    EXPECT_EQ(pin(1).cfgDirty, 1);
    EXPECT_EQ(pin(0).cfgDirty, 0);
    EXPECT_THAT(journal().lines({"KxGiMainCtx__GetIoboxPin"}), SizeIs(3));
}

TEST_F(IoOutlinesTest, PinsOfOtherCamerasAreSkipped)
{
    const std::vector<std::pair<int, const char*>> others = {
        {0, "None"}, {1, "Line1"}, {4, "Line4"}, {5, "Out1"},
        {8, "Out4"}, {13, "None"}, {-1, "None"}, {0x7FFFFFFF, "None"},
    };
    for (const auto& [id, name] : others) {
        settle();
        configure({strobe(id, 1, 2), strobe(kGpio3, id, 2)});
        EXPECT_THAT(journal().logs(),
                    ElementsAre(HasSubstr("numCfg 2"),
                                warning(kFunction, format("The Pin '%s' is not supported for this "
                                                          "device",
                                                          name)),
                                HasSubstr("set 1: Pin 'Gpio3'")));
        EXPECT_EQ(pin(3).cfgDirty, 1);
    }
    EXPECT_EQ(pin(0).cfgDirty + pin(1).cfgDirty + pin(2).cfgDirty, 0);
}

TEST_F(IoOutlinesTest, NothingBecomesPendingWithoutAnAppliedEntry)
{
    configure({strobe(1, 1, 2), strobe(2, 1, 2)});
    EXPECT_FALSE(cam_->ioCfgPending);
    // One is enough, wherever it stands.
    configure({strobe(kGpio0, 1, 2), strobe(2, 1, 2)});
    EXPECT_TRUE(cam_->ioCfgPending);
}

TEST_F(IoOutlinesTest, ABusyPinIsLeftAlone)
{
    pin(0).pinFree = 0;
    const std::string before = textOf(pin(0));
    configure({strobe(kGpio0, 1, 2), strobe(kGpio1, 1, 2)});
    EXPECT_THAT(journal().logs(), ElementsAre(HasSubstr("numCfg 2"), busyLine("Gpio0"),
                                              HasSubstr("set 1: Pin 'Gpio1'")));
    EXPECT_EQ(textOf(pin(0)), before);
    EXPECT_EQ(pin(1).cfgDirty, 1);
    EXPECT_TRUE(cam_->ioCfgPending);
}

TEST_F(IoOutlinesTest, APinThatTheThreadTakesBackMeanwhileIsBusy)
{
    // As a strobe is restored: pending first, then the record is free again.
    kxtest::onSyslog([this] { cam_->ioCfgPending = true; });
    configure({strobe(kGpio0, 1, 2)});
    kxtest::onSyslog(nullptr);
    EXPECT_THAT(journal().logs(), ElementsAre(HasSubstr("\"YES\""), busyLine("Gpio0")));
    EXPECT_EQ(pin(0).cfgDirty, 0);
    EXPECT_TRUE(cam_->ioCfgPending); // the thread's, not to be lowered
}

TEST_F(IoOutlinesTest, AStrobeIsAppliedAgainOnlyWhenItChanged)
{
    const IoboxEntry entry = strobe(kGpio0, 100, 2000);
    configure({entry});
    pin(0).expoAtCfgUs = cam_->expoTimeUs = 10'000;
    settle();
    configure({entry});
    EXPECT_THAT(journal().logs(),
                ElementsAre(HasSubstr("numCfg 1"), HasSubstr("Pin 'Gpio0'"), skippedLine(0)));
    EXPECT_EQ(pin(0).cfgDirty, 0);
    EXPECT_FALSE(cam_->ioCfgPending);

    IoboxEntry other = entry;
    other.par[0] = 101;
    EXPECT_TRUE(appliesAgain(other));
    other.par[1] = 2001;
    EXPECT_TRUE(appliesAgain(other));
    other.mode = 2;
    EXPECT_TRUE(appliesAgain(other));
    other.inv = 2;
    EXPECT_TRUE(appliesAgain(other));
    other.src = 3;
    EXPECT_TRUE(appliesAgain(other));
    EXPECT_FALSE(appliesAgain(other));
}

TEST_F(IoOutlinesTest, AStrobeIsAppliedAgainForAnotherExposure)
{
    const IoboxEntry entry = strobe(kGpio0, 100, 2000);
    configure({entry});
    pin(0).expoAtCfgUs = cam_->expoTimeUs = 10'000;
    EXPECT_FALSE(appliesAgain(entry));
    cam_->expoTimeUs = 9'999;
    EXPECT_TRUE(appliesAgain(entry));
    // Without a duration the exposure does not matter.
    EXPECT_TRUE(appliesAgain(strobe(kGpio0, 100, -1)));
    cam_->expoTimeUs = 5;
    EXPECT_FALSE(appliesAgain(strobe(kGpio0, 100, -1)));
}

TEST_F(IoOutlinesTest, ACommandIsAppliedEachTime)
{
    const IoboxEntry entry = command(kGpio0, 10, 914);
    configure({entry});
    EXPECT_TRUE(appliesAgain(entry));
    EXPECT_EQ(textOf(saved(0)).substr(0, 8), format("0 10 914"));
}

TEST_F(IoOutlinesTest, OfAnInputOnlyModeInversionAndSourceCount)
{
    configure({reply(kGpio0, 1000, 12)});
    EXPECT_FALSE(appliesAgain(reply(kGpio0, 1000, 12)));
    EXPECT_FALSE(appliesAgain(reply(kGpio0, 500, 6)));
    EXPECT_EQ(pin(0).param0, 1000U);
    IoboxEntry other = reply(kGpio0, 500, 6);
    other.inv = 2;
    EXPECT_TRUE(appliesAgain(other));
    EXPECT_EQ(pin(0).param0, 500U);
    EXPECT_EQ(pin(0).param1, 6U);
}

TEST_F(IoOutlinesTest, OtherSourcesHaveNoParameters)
{
    for (const int src : {0, 1, 4, 6}) {
        settle();
        configure({{.pin = kGpio2, .mode = 1, .inv = 0, .src = src, .par = {11, 22}}});
        EXPECT_THAT(journal().logs(),
                    Contains(entryLine(0, "Gpio2",
                                       format("Mod 1, Src %d, Inv 0 (param[0]=4294967295, "
                                              "param[1]=4294967295)",
                                              src)
                                           .c_str())));
        EXPECT_EQ(journal().count("KxGiMainCtx__GetIoboxPar"), 0U);
        EXPECT_EQ(pin(2).param0, kUnset);
        EXPECT_EQ(pin(2).param1, kUnset);
    }
}

TEST_F(IoOutlinesTest, APinMayBeConfiguredTwiceInAPass)
{
    configure({strobe(kGpio0, 1, 2), strobe(kGpio0, 3, 4)});
    EXPECT_EQ(pin(0).param0, 3U);
    EXPECT_EQ(saved(0).param0, 1U);
    EXPECT_EQ(saved(0).cfgDirty, 1);
}

TEST_F(IoOutlinesTest, BelongToEachPassOverTheParameters)
{
    proc_->ProcSetCamConfig(cam_.get(), &info_, 4);
    for (const bool live : {false, true}) {
        settle();
        host().config.iobox = {command(kGpio0, 2, 1)};
        EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), live), 0);
        EXPECT_THAT(journal().lines({"KxGiMainCtx__GetGamma", "KxGiMainCtx__GetIoboxNum"}),
                    ElementsAre("KxGiMainCtx__GetGamma()", "KxGiMainCtx__GetIoboxNum()"));
        EXPECT_TRUE(cam_->ioCfgPending);
    }
}

} // namespace
