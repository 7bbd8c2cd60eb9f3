// The control thread's configuration of pins: strobes, commands, replies, and what it refuses.
#include "io_fixture.h"

using KxPGrey::CCamCtrlThread;
using kxtest::command;
using kxtest::debug;
using kxtest::format;
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

constexpr const char* kFunction = "DoGpioCfg";

class IoConfigTest : public kxtest::IoTest {
protected:
    IoConfigTest() { cam_->expoTimeUs = 10'000; }

    static std::string entryLine()
    {
        return debug(kFunction, "IoBox configuration apply handler entry");
    }
    /// Puts an entry into the record of its pin, as the grab thread does.
    void mark(const IoboxEntry& entry)
    {
        KxPGrey::IoPinState& record = pin(static_cast<unsigned>(entry.pin - kGpio0));
        record.mode = static_cast<std::uint8_t>(entry.mode);
        record.src = static_cast<std::uint8_t>(entry.src);
        record.inv = static_cast<std::uint8_t>(entry.inv);
        record.param0 = static_cast<std::uint32_t>(entry.par[0]);
        record.param1 = static_cast<std::uint32_t>(entry.par[1]);
        record.cfgDirty = 1;
    }
    /// The camera's own message about a strobe that was set.
    static std::vector<std::string> strobesSet() { return journal().logsWith("### set strobe"); }
};

TEST_F(IoConfigTest, NothingChanged)
{
    EXPECT_TRUE(apply());
    EXPECT_THAT(journal().logs(), ElementsAre(entryLine()));
    EXPECT_THAT(journal().lines(Kind::sdk), IsEmpty());
}

TEST_F(IoConfigTest, AStrobeIsSwitchedOn)
{
    pin(1).pinFree = 0;
    mark(strobe(kGpio1, 0x64, 0x7D0));
    EXPECT_TRUE(apply());
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(),
                            info(" Cfg IoBox set 1: Pin 1, Mod 1, Src 2, Inv 1 (param[0]=0x64, "
                                 "param[1]=0x7D0)"),
                            info("### set strobe on pin 1: onOff=1 (delay=0.100000, "
                                 "duration=2.000000, polarity=1) ###")));
    EXPECT_EQ(pin(1).cfgDirty, 0);
    EXPECT_EQ(pin(1).pinFree, 1);
    EXPECT_EQ(pin(1).expoAtCfgUs, 10'000U);
    EXPECT_EQ(pin(1).param1, 0x7D0U);
}

TEST_F(IoConfigTest, AStrobeIsNotLongerThanTheExposure)
{
    const std::vector<std::pair<int, const char*>> durations = {{9'999, "0x270F"},
                                                                {10'000, "0x2710"},
                                                                {10'001, "0x2710"},
                                                                {-2, "0x2710"},
                                                                {-1, "0xFFFFFFFF"}};
    for (const auto& [duration, shown] : durations) {
        journal().clear();
        mark(strobe(kGpio0, 0, duration));
        EXPECT_TRUE(apply());
        EXPECT_THAT(journal().logs(),
                    Contains(info(format(" Cfg IoBox set 0: Pin 0, Mod 1, Src 2, Inv 1 "
                                         "(param[0]=0x0, param[1]=%s)",
                                         shown))));
        // Only the camera gets the shorter one.
        EXPECT_EQ(pin(0).param1, static_cast<std::uint32_t>(duration));
    }
    EXPECT_EQ(pin(0).expoAtCfgUs, 0U); // no duration
}

TEST_F(IoConfigTest, AStrobeRemembersItsExposure)
{
    for (const int src : {2, 3}) {
        IoboxEntry entry = strobe(kGpio0, 0, 500);
        entry.src = src;
        cam_->expoTimeUs = 1234;
        mark(entry);
        apply();
        EXPECT_EQ(pin(0).expoAtCfgUs, 1234U);
        cam_->expoTimeUs = kUnset;
        mark(entry);
        apply();
        EXPECT_EQ(pin(0).expoAtCfgUs, 0U);
    }
    // Nothing else does.
    pin(0).expoAtCfgUs = 77;
    mark({.pin = kGpio0, .mode = 1, .inv = 0, .src = 1, .par = {-1, 500}});
    apply();
    EXPECT_EQ(pin(0).expoAtCfgUs, 77U);
}

TEST_F(IoConfigTest, OnlyAnOutputOfAStrobeSourceIsOn)
{
    for (const int src : {0, 1, 2, 3, 4, 6, 255}) {
        for (const int mode : {0, 1, 2, 3}) {
            journal().clear();
            mark({.pin = kGpio2, .mode = mode, .inv = 0, .src = src, .par = {-1, -1}});
            EXPECT_TRUE(apply());
            const bool on = mode == 1 && (src == 2 || src == 3);
            EXPECT_THAT(strobesSet(), ElementsAre(HasSubstr(on ? "pin 2: onOff=1" : "onOff=0")));
            EXPECT_EQ(pin(2).pinFree, 1);
        }
    }
}

TEST_F(IoConfigTest, AnInversionOfTwoIsLowActive)
{
    for (const int inv : {0, 1, 2, 3}) {
        journal().clear();
        IoboxEntry entry = strobe(kGpio0, 0, 1);
        entry.inv = inv;
        mark(entry);
        apply();
        EXPECT_THAT(strobesSet(), ElementsAre(HasSubstr(inv == 2 ? "polarity=0" : "polarity=1")));
    }
}

TEST_F(IoConfigTest, AStrobeThatFailsGoesUnnoticed)
{
    failCalls("SetStrobe");
    pin(0).pinFree = 0;
    mark(strobe(kGpio0, 0, 1));
    EXPECT_TRUE(apply());
    EXPECT_EQ(pin(0).pinFree, 1);
    EXPECT_EQ(pin(0).cfgDirty, 0);
}

TEST_F(IoConfigTest, ACommandIsQueued)
{
    pin(3).pulseCount = 9;
    cam_->lineCmdSent = true;
    IoboxEntry entry = command(kGpio3, 10, 914);
    entry.inv = 2;
    mark(entry);
    EXPECT_TRUE(apply());
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(), info("### initially set pin 3: mode 1 ###"),
                            info(" Cfg IoBox set 3: enqueue gpio cmd '914' (0x00000392)")));
    EXPECT_THAT(pinWrites(), ElementsAre("Camera.WriteRegister(0x1140 0x80010001)"));
    EXPECT_EQ(textOf(pin(3)), "0 10 914 914 0 0 0 0, 10 10 3 1 5 2 2 0 1 0 0");
    EXPECT_TRUE(cam_->ioDataActive);
    EXPECT_FALSE(cam_->lineCmdSent);
    EXPECT_EQ(cam_->lineCmdActive, 914U);
    EXPECT_EQ(cam_->rxPinIndex, kUnset);
}

TEST_F(IoConfigTest, AnOutputRestsAtItsInversion)
{
    for (const int inv : {0, 1, 2}) {
        journal().clear();
        pin(0).dataWord = kUnset;
        IoboxEntry entry = command(kGpio0, 1, 0);
        entry.inv = inv;
        mark(entry);
        apply();
        EXPECT_THAT(pinWrites(), ElementsAre(HasSubstr(inv == 0 ? "0x80010000" : "0x80010001")));
        EXPECT_EQ(pin(0).idleLevel, inv);
    }
}

TEST_F(IoConfigTest, ACommandNeedsABitAndAWord)
{
    for (const auto& [bits, word] :
         std::vector<std::pair<int, int>>{{0, 1}, {33, 1}, {-1, 1}, {10, -1}}) {
        mark(command(kGpio0, bits, word));
        journal().clear();
        EXPECT_TRUE(apply());
        EXPECT_THAT(journal().logs(), ElementsAre(entryLine()));
        EXPECT_THAT(journal().lines(Kind::sdk), IsEmpty());
        EXPECT_EQ(pin(0).dataWord, kUnset);
        EXPECT_EQ(pin(0).pinFree, 1);
        EXPECT_EQ(pin(0).cfgDirty, 0);
    }
    EXPECT_FALSE(cam_->ioDataActive);
    for (const auto& [bits, word] : std::vector<std::pair<int, int>>{{1, 0}, {32, -2}}) {
        mark(command(kGpio0, bits, word));
        pin(0).dataWord = kUnset;
        EXPECT_TRUE(apply());
        EXPECT_EQ(pin(0).dataWord, static_cast<std::uint32_t>(word));
        EXPECT_EQ(pin(0).bitCount, bits);
    }
}

TEST_F(IoConfigTest, ACommandMakesTheReplysPinBusy)
{
    configureAndApply({reply(kGpio2, -1, -1)});
    pin(2).pinFree = 1;
    mark(command(kGpio0, 8, 1));
    apply();
    EXPECT_EQ(pin(2).pinFree, 0);
    EXPECT_EQ(cam_->rxPinIndex, 2U);
}

TEST_F(IoConfigTest, APinThatIsNotThereIsNotArmed)
{
    setRegister(0, 0);
    mark(command(kGpio0, 8, 1));
    EXPECT_TRUE(apply());
    EXPECT_EQ(pin(0).cfgDirty, 0);
    EXPECT_EQ(pin(0).pinFree, 1);
    EXPECT_EQ(pin(0).dataWord, kUnset);
    mark(reply(kGpio0, 8, 1));
    EXPECT_TRUE(apply());
    EXPECT_EQ(pin(0).pinFree, 1);
    EXPECT_EQ(cam_->rxPinIndex, kUnset);
    EXPECT_FALSE(cam_->ioDataActive);
    EXPECT_THAT(journal().logsWith("Cfg IoBox"), IsEmpty());
}

TEST_F(IoConfigTest, ACommandIsRefusedWhileOneIsSent)
{
    configureAndApply({command(kGpio1, 10, 914)});
    cam_->ioDataActive = false;
    pin(1).pinFree = 1;
    mark(command(kGpio1, 12, 0xABC));
    mark(strobe(kGpio2, 0, 1));
    const std::string refusal =
        warning(kFunction, " Cfg IoBox set 1: prev cmd ('914' 0x00000392) sending is active, skip "
                           "cmd '2748' (0x00000ABC)");
    for (int attempt = 0; attempt < 2; ++attempt) {
        journal().clear();
        EXPECT_FALSE(apply());
        EXPECT_THAT(journal().logsWith("prev cmd"), ElementsAre(refusal));
        EXPECT_EQ(pin(1).cfgDirty, 1);
        EXPECT_EQ(pin(1).pinFree, 0);
        EXPECT_EQ(pin(1).dataWord, 914U);
        EXPECT_TRUE(cam_->ioDataActive);
        // The pins behind it do not suffer.
        EXPECT_THAT(strobesSet(), SizeIs(attempt == 0 ? 1 : 0));
    }
    pin(1).dataWord = kUnset;
    EXPECT_TRUE(apply());
    EXPECT_EQ(pin(1).dataWord, 0xABCU);
}

TEST_F(IoConfigTest, AReplysPinIsPrepared)
{
    pin(2).dataWord = 5;
    mark(reply(kGpio2, 1000, -1));
    EXPECT_TRUE(apply());
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(), info("### initially set pin 2: mode 0 ###"),
                            info(" Cfg IoBox set 2: user input with timeout '1000' (0x000003E8) "
                                 "us")));
    EXPECT_EQ(textOf(pin(2)),
              format("0 1000 %u %u 0 0 0 0, 0 0 2 2 5 0 0 0 0 0 0", kUnset, kUnset));
    EXPECT_TRUE(cam_->ioDataActive);
    EXPECT_EQ(cam_->rxPinIndex, 2U);

    IoboxEntry inverted = reply(kGpio2, 1000, -1);
    inverted.inv = 2;
    mark(inverted);
    apply();
    EXPECT_EQ(pin(2).idleLevel, 1);
}

TEST_F(IoConfigTest, AReplysPinIsForgottenWhenItChanges)
{
    configureAndApply({reply(kGpio2, -1, -1)});
    mark(strobe(kGpio2, 0, 1));
    apply();
    EXPECT_EQ(cam_->rxPinIndex, kUnset);
    // Also when it becomes nothing at all.
    configureAndApply({reply(kGpio3, -1, -1)});
    ASSERT_EQ(cam_->rxPinIndex, 3U);
    mark(command(kGpio3, 0, 0));
    apply();
    EXPECT_EQ(cam_->rxPinIndex, kUnset);
    // Not when another pin does.
    mark(reply(kGpio1, -1, -1));
    mark(strobe(kGpio2, 0, 1));
    apply();
    EXPECT_EQ(cam_->rxPinIndex, 1U);
}

TEST_F(IoConfigTest, DataInOtherModesIsNothing)
{
    for (const int mode : {0, 3, 255}) {
        mark({.pin = kGpio0, .mode = mode, .inv = 0, .src = 5, .par = {8, 8}});
        journal().clear();
        EXPECT_TRUE(apply());
        EXPECT_THAT(journal().logs(), ElementsAre(entryLine()));
        EXPECT_THAT(journal().lines(Kind::sdk), IsEmpty());
        EXPECT_EQ(pin(0).cfgDirty, 0);
        EXPECT_EQ(pin(0).pinFree, 1);
    }
}

TEST_F(IoConfigTest, PinsAreTakenInTheirOrder)
{
    mark(strobe(kGpio3, 0, 1));
    mark(command(kGpio2, 8, 1));
    mark(strobe(kGpio0, 0, 1));
    apply();
    EXPECT_THAT(journal().logsWith("Cfg IoBox set"),
                ElementsAre(HasSubstr("set 0:"), HasSubstr("set 2:"), HasSubstr("set 3:")));
}

TEST_F(IoConfigTest, ATestCommandCanBeAskedFor)
{
    EXPECT_EQ(CCamCtrlThread::ConfigureLineUserOutput(cam_.get(), KxPGrey::kPgPin2, 2), 0);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("***** Opening GPIO line from ctrl thread: rc=0 *********")));
    EXPECT_EQ(textOf(pin(2)), format("0 10 914 %u 0 0 0 0, 0 0 2 1 5 2 0 0 0 1 1", kUnset));
    EXPECT_TRUE(cam_->ioCfgPending);
    EXPECT_TRUE(apply());
    EXPECT_THAT(journal().logs(),
                Contains(info(" Cfg IoBox set 2: enqueue gpio cmd '914' (0x00000392)")));
}

} // namespace
