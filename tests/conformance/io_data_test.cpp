// The control thread's line data: commands that are sent, replies that come back or do not.
#include "io_fixture.h"
#include "kx_pg_line_code.h"

using kxtest::command;
using kxtest::debug;
using kxtest::format;
using kxtest::info;
using kxtest::journal;
using kxtest::kGpio0;
using kxtest::kGpio1;
using kxtest::kGpio3;
using kxtest::Kind;
using kxtest::kUnset;
using kxtest::reply;
using kxtest::strobe;
using kxtest::textOf;
using kxtest::traceLine;
using kxtest::warning;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* kFunction = "DoGpioProc";

class IoDataTest : public kxtest::IoTest {
protected:
    static std::string entryLine() { return traceLine(kFunction, "IoBox data proc entry"); }
    /// A line about the pin with the time of day before it.
    static std::string timedLine(const std::string& body)
    {
        return info(format("[%llu]", static_cast<unsigned long long>(fcsim::nowUs())) + body);
    }
};

// ---- Commands.

TEST_F(IoDataTest, NothingToDo)
{
    pin(0).src = 2;
    EXPECT_TRUE(process());
    EXPECT_THAT(journal().logs(), ElementsAre(entryLine()));
    EXPECT_THAT(journal().lines(Kind::sdk), IsEmpty());
}

TEST_F(IoDataTest, ACommandIsSentOnceAndThePinFreed)
{
    configureAndApply({command(kGpio1, 4, 0b0100)});
    EXPECT_FALSE(process());
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(),
                            info(" Proc IoBox set 1: pin=1 sent data 0x00000004 (4 bits)"),
                            timedLine(" Proc IoBox set 1: pin=1 sent data 0x00000004 (4 bits)")));
    // Symbols 1 and 0, and the parity's 1: 2, 1 and 2 pulses.
    EXPECT_THAT(pinWrites(), SizeIs(2 * 5));
    EXPECT_THAT(pinWrites()[0], HasSubstr("0x1120 0x80000001"));
    // Half periods of 2 ms, gaps of 20, an end of 41 of them.
    const std::string half = "usleep(2000)";
    const std::string gap = "usleep(38000)";
    EXPECT_THAT(journal().lines({"usleep"}),
                ElementsAre(half, half, half, half, gap, half, half, gap, half, half, half, half,
                            gap, "usleep(42000)"));
    EXPECT_EQ(pin(1).dataWord, kUnset);
    EXPECT_EQ(pin(1).bitCount, 0);
    EXPECT_EQ(pin(1).bitCountCfg, 4);
    EXPECT_EQ(pin(1).pinFree, 0);
    EXPECT_TRUE(cam_->lineCmdSent);
    EXPECT_EQ(cam_->lineCmdActive, kUnset);

    journal().clear();
    EXPECT_TRUE(process());
    EXPECT_THAT(journal().logs(), ElementsAre(entryLine()));
    EXPECT_THAT(pinWrites(), IsEmpty());
    EXPECT_EQ(pin(1).pinFree, 1);
    EXPECT_FALSE(cam_->lineCmdSent);
    EXPECT_TRUE(process());
}

TEST_F(IoDataTest, AnOutputNeedsBothBitsAndAWord)
{
    pin(1).mode = 1;
    pin(1).src = kxtest::kUserData;
    for (const auto& [bits, word] :
         std::vector<std::pair<int, std::uint32_t>>{{0, 5}, {8, kUnset}}) {
        pin(1).bitCount = static_cast<std::uint8_t>(bits);
        pin(1).dataWord = word;
        EXPECT_TRUE(process());
        EXPECT_EQ(pin(1).dataWord, word);
        EXPECT_FALSE(cam_->lineCmdSent);
    }
    EXPECT_THAT(pinWrites(), IsEmpty());
}

TEST_F(IoDataTest, AnInvertedLineRestsHigh)
{
    for (const int inv : {1, 2}) {
        kxtest::IoboxEntry entry = command(kGpio1, 2, 0);
        entry.inv = inv;
        configureAndApply({entry});
        process();
        ASSERT_THAT(pinWrites(), SizeIs(4));
        EXPECT_THAT(pinWrites()[0], HasSubstr("0x80000000"));
        EXPECT_THAT(pinWrites()[3], HasSubstr("0x80000001"));
        process();
    }
}

TEST_F(IoDataTest, AStrobeReturnsAfterTheCommand)
{
    cam_->expoTimeUs = 10'000;
    for (const int src : {2, 3}) {
        kxtest::IoboxEntry light = strobe(kGpio1, 100, 2000);
        light.src = src;
        configureAndApply({light});
        const std::string before = textOf(pin(1));
        configureAndApply({command(kGpio1, 2, 1)});
        EXPECT_FALSE(process());
        EXPECT_EQ(textOf(saved(1)), before);
        journal().clear();
        saved(1).dataWord = 5; // of a reply that the pin once took
        EXPECT_TRUE(process());
        EXPECT_THAT(journal().logs(),
                    ElementsAre(entryLine(), info(" Proc IoBox set 1: pin=1 restored strob")));
        KxPGrey::IoPinState expected = saved(1);
        expected.dataWord = kUnset;
        expected.cfgDirty = 1;
        EXPECT_EQ(textOf(pin(1)), textOf(expected));
        EXPECT_EQ(pin(1).pinFree, 1);
        EXPECT_TRUE(cam_->ioCfgPending);
        EXPECT_FALSE(cam_->lineCmdSent);
        journal().clear();
        EXPECT_TRUE(apply());
        EXPECT_THAT(journal().logsWith("### set strobe"),
                    ElementsAre(HasSubstr("onOff=1 (delay=0.100000, duration=2.000000")));
        cam_->ioCfgPending = false;
    }
}

TEST_F(IoDataTest, OnlyAStrobeReturns)
{
    for (const auto& [mode, src] :
         std::vector<std::pair<int, int>>{{2, 2}, {1, 1}, {1, 5}, {0, 0}}) {
        configureAndApply({command(kGpio1, 2, 1)});
        process();
        saved(1).mode = static_cast<std::uint8_t>(mode);
        saved(1).src = static_cast<std::uint8_t>(src);
        process();
        EXPECT_EQ(pin(1).src, kxtest::kUserData);
        EXPECT_EQ(pin(1).pinFree, 1);
        EXPECT_EQ(pin(1).cfgDirty, 0);
        EXPECT_FALSE(cam_->ioCfgPending);
        EXPECT_FALSE(cam_->lineCmdSent);
    }
}

TEST_F(IoDataTest, AFailedTransmissionGoesUnnoticed)
{
    configureAndApply({command(kGpio1, 2, 1)});
    setRegister(1, 0);
    EXPECT_FALSE(process());
    EXPECT_THAT(pinWrites(), IsEmpty());
    EXPECT_THAT(journal().logs(), Contains(HasSubstr("pin=1 sent data 0x00000001 (2 bits)")));
    EXPECT_TRUE(process());
    EXPECT_EQ(pin(1).pinFree, 1);
}

TEST_F(IoDataTest, TheFirstOutputEndsTheCommandOfAnother)
{
    configureAndApply({command(kGpio0, 2, 1), command(kGpio1, 2, 2)});
    // The first is sent; the second finds it over and takes that for its own.
    EXPECT_FALSE(process());
    EXPECT_THAT(journal().logsWith("] Proc"), ElementsAre(HasSubstr("pin=0 sent")));
    EXPECT_EQ(pin(0).pinFree, 0);
    EXPECT_EQ(pin(1).pinFree, 1);
    EXPECT_FALSE(cam_->lineCmdSent);
    // Then it is sent, and the first is freed for it.
    EXPECT_FALSE(process());
    EXPECT_THAT(journal().logsWith("] Proc"), SizeIs(2));
    EXPECT_TRUE(process());
    EXPECT_EQ(pin(0).pinFree, 1);
}

TEST_F(IoDataTest, ThePinOfAReplyIsArmedWhenTheCommandIsSent)
{
    configureAndApply({reply(kGpio3, 250, 12), command(kGpio0, 2, 1)});
    pin(3).dataWord = 1;
    pin(3).lastLevel = 1;
    pin(3).rxWaitInit = 0;
    pin(3).idleCount = 9;
    pin(3).pinFree = 1;
    EXPECT_FALSE(process());
    EXPECT_EQ(pin(3).dataWord, kUnset);
    EXPECT_EQ(pin(3).rxWaitInit, 1);
    EXPECT_EQ(pin(3).pinFree, 0);
    EXPECT_EQ(cam_->lineCmdActive, 1U); // until the reply is over
    // The same pass took the first sample.
    EXPECT_EQ(pin(3).idleCount, 1U);
    EXPECT_EQ(pin(3).loopsLeft, 249U);
    EXPECT_THAT(journal().logsWith("start polling"),
                ElementsAre(info(" start polling of Pin Line4 with timeout 250us to get reply")));
}

TEST_F(IoDataTest, APinBeforeTheCommandsIsArmedForTheNextPass)
{
    configureAndApply({reply(kGpio0, -1, 12), command(kGpio1, 2, 1)});
    pin(0).lastLevel = 1;
    EXPECT_FALSE(process());
    EXPECT_EQ(pin(0).loopsLeft, 10'000U);
    EXPECT_EQ(pin(0).lastLevel, 0);
    EXPECT_THAT(journal().logsWith("start polling"),
                ElementsAre(info(" start polling of Pin Line1 with timeout 10000us to get reply")));
}

// ---- Replies.

/// A command was sent on pin 0 and its reply is expected on pin 1; the tests give the samples.
class IoReplyTest : public IoDataTest {
protected:
    void SetUp() override { arm(500, 12); }

    void arm(int timeout, int gap)
    {
        for (unsigned number = 0; number < 2; ++number) {
            pin(number) = {.pinIndex = static_cast<std::uint8_t>(number)};
        }
        cam_->lineCmdActive = kUnset;
        configureAndApply({command(kGpio0, 2, 1), reply(kGpio1, timeout, gap)});
        setRegister(1, 0x80000000);
        EXPECT_FALSE(process()); // the first sample
        journal().clear();
    }
    /// `count` passes with this level.
    void hold(bool level, unsigned count)
    {
        setRegister(1, level ? 0x80000001 : 0x80000000);
        for (unsigned pass = 0; pass < count; ++pass) {
            done_ = process();
        }
    }
    void pulses(unsigned count)
    {
        for (unsigned pulse = 0; pulse < count; ++pulse) {
            hold(true, 3);
            hold(false, 3);
        }
    }
    /// Symbols up to the pass that ends the word, with a gap of 12.
    void word(const std::vector<unsigned>& symbols)
    {
        for (const unsigned symbol : symbols) {
            pulses(symbol + 1);
            hold(false, 12 - 3);
        }
        hold(false, 24);
    }
    /// The messages of the receiver without those of each sample.
    static std::vector<std::string> rxLogs()
    {
        return journal().lines([](const kxtest::Event& event) {
            return event.kind == Kind::log && event.arguments.find("RX:") != std::string::npos &&
                   event.arguments.find("loops remains") == std::string::npos;
        });
    }
    static std::vector<std::string> warnings() { return journal().logsWith("[w|"); }
    void expectOver()
    {
        EXPECT_EQ(cam_->lineCmdActive, kUnset);
        EXPECT_EQ(pin(1).pinFree, 1);
        EXPECT_TRUE(process());
        EXPECT_EQ(pin(0).pinFree, 1);
        EXPECT_FALSE(cam_->lineCmdSent);
    }

    bool done_ = false;
};

TEST_F(IoReplyTest, EachStepIsReported)
{
    hold(false, 2);
    const std::string learnt = timedLine(" pin 1 RX: got initial line level, lineBit 0");
    EXPECT_THAT(rxLogs(), ElementsAre(learnt));
    EXPECT_THAT(journal().logsWith("loops remains"), IsEmpty());
    journal().clear();
    hold(true, 1);
    EXPECT_THAT(rxLogs(),
                ElementsAre(timedLine(" pin 1 RX: pulse start - data start, lineBit 1 (TO curr "
                                      "val = 497)")));
    journal().clear();
    hold(true, 2);
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(entryLine(), traceLine(kFunction, " pin 1 RX: lineBit 1 (loops remains 496)"),
                    entryLine(), traceLine(kFunction, " pin 1 RX: lineBit 1 (loops remains 495)")));
    journal().clear();
    hold(false, 4);
    hold(true, 3);
    hold(false, 12);
    EXPECT_THAT(rxLogs(),
                ElementsAre(debug(kFunction, " pin 1 RX: pulse end (prev inactive cntr 0)"),
                            debug(kFunction, " pin 1 RX: pulse start (prev active cntr 3)"),
                            debug(kFunction, " pin 1 RX: pulse end (prev inactive cntr 4)"),
                            debug(kFunction, " pin 1 RX: 2bits 0x1 end (2 bits totally)")));
    EXPECT_FALSE(done_);
}

TEST_F(IoReplyTest, TheFirstSampleIsReported)
{
    pin(1).idleCount = 0;
    hold(true, 1);
    EXPECT_THAT(rxLogs(), ElementsAre(timedLine(" pin 1 RX: start getting initial line level, "
                                                "lineBit 1")));
}

TEST_F(IoReplyTest, AGoodReplyIsHandedOver)
{
    hold(false, 2);
    // 10 bits 0x392, with an odd number of ones, and the parity's 1.
    word({3, 2, 1, 0, 2, 1});
    EXPECT_THAT(rxLogs(), Contains(info(" pin 1 RX: fulldata 0x00000E49 (12 bits), parity - PASS, "
                                        "data 0x00000392")));
    EXPECT_THAT(warnings(), IsEmpty());
    EXPECT_EQ(cam_->rxBits, 10U);
    EXPECT_EQ(cam_->rxData, 0x392U);
    EXPECT_EQ(pin(1).dataWord, 0xE49U);
    EXPECT_FALSE(done_);
    expectOver();
}

TEST_F(IoReplyTest, EachWordThatFitsComesThrough)
{
    for (const unsigned bits : {1U, 2U, 7U, 12U, 29U, 30U}) {
        const std::uint32_t data = KxPGrey::lowBits(0xB5A6937D, bits);
        arm(5000, 12);
        hold(false, 2);
        const KxPGrey::LineSymbols symbols = KxPGrey::lineSymbols(data, bits, true);
        word({symbols.begin(), symbols.end()});
        EXPECT_EQ(cam_->rxBits, bits + bits % 2);
        EXPECT_EQ(cam_->rxData, data << bits % 2);
        expectOver();
    }
}

TEST_F(IoReplyTest, ALineThatRestsHighIsLearnt)
{
    pin(1).idleCount = 0;
    hold(true, 3);
    EXPECT_EQ(pin(1).idleLevel, 1);
    EXPECT_THAT(rxLogs(), Contains(timedLine(" pin 1 RX: got initial line level, lineBit 1")));
    hold(false, 3);
    EXPECT_THAT(rxLogs(), Contains(HasSubstr("data start, lineBit 0 (TO curr val = 496)")));
    EXPECT_THAT(journal().logsWith("RX: lineBit 0 (loops remains 495)"), SizeIs(1));
    hold(true, 12);
    hold(false, 3);
    hold(true, 36);
    EXPECT_THAT(rxLogs(), Contains(info(" pin 1 RX: fulldata 0x00000000 (4 bits), parity - PASS, "
                                        "data 0x00000000")));
    EXPECT_EQ(cam_->rxBits, 2U);
}

TEST_F(IoReplyTest, WrongParityIsRejected)
{
    cam_->rxBits = 7;
    hold(false, 2);
    word({3, 2, 1, 0, 2, 0});
    EXPECT_THAT(rxLogs(), Contains(info(" pin 1 RX: fulldata 0x00000E48 (12 bits), parity - FAIL, "
                                        "data 0x00000392")));
    EXPECT_THAT(warnings(),
                ElementsAre(warning(kFunction, " pin 1 RX: data 0x00000E48 (12 bits) is rejected "
                                               "(too short), parity - FAIL!")));
    EXPECT_EQ(cam_->rxBits, 7U);
    EXPECT_EQ(cam_->rxData, 0U);
    expectOver();
}

TEST_F(IoReplyTest, OfTheParitysSymbolTheLowerBitCounts)
{
    hold(false, 2);
    word({3, 2, 1, 0, 2, 3});
    EXPECT_EQ(cam_->rxBits, 10U);
    EXPECT_EQ(cam_->rxData, 0x392U);
}

TEST_F(IoReplyTest, TwoBitsAreTooShort)
{
    hold(false, 2);
    word({0});
    EXPECT_THAT(warnings(),
                ElementsAre(warning(kFunction, " pin 1 RX: data 0x00000000 (2 bits) is rejected "
                                               "(too short), parity - PASS!")));
    EXPECT_EQ(cam_->rxBits, 0U);
    expectOver();
    arm(500, 12);
    hold(false, 2);
    word({0, 0});
    EXPECT_EQ(cam_->rxBits, 2U);
}

TEST_F(IoReplyTest, NothingOnTheLineTimesOut)
{
    arm(5, 12);
    hold(false, 3);
    EXPECT_THAT(warnings(), IsEmpty());
    EXPECT_EQ(pin(1).pinFree, 0);
    hold(false, 1);
    EXPECT_THAT(warnings(),
                ElementsAre(warning(kFunction, " pin 1 RX: initial waiting is timed out - last "
                                               "lineBit 0")));
    EXPECT_FALSE(done_);
    expectOver();
}

TEST_F(IoReplyTest, ALineThatStaysHighTimesOut)
{
    arm(5, 12);
    hold(true, 4);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("timed out - last lineBit 1")));
    expectOver();
}

TEST_F(IoReplyTest, TheTimeWithoutASettingIs10000Samples)
{
    gKxLogLevelLib = 3;
    arm(-1, 12);
    hold(false, 9'998);
    EXPECT_EQ(pin(1).pinFree, 0);
    hold(false, 1);
    EXPECT_EQ(pin(1).pinFree, 1);
}

TEST_F(IoReplyTest, TheGapWithoutASettingIs12Samples)
{
    arm(500, -1);
    hold(false, 2);
    hold(true, 3);
    hold(false, 11);
    EXPECT_EQ(pin(1).bitCount, 0);
    hold(false, 1);
    EXPECT_EQ(pin(1).bitCount, 2);
}

TEST_F(IoReplyTest, AnUnfinishedReplyTimesOut)
{
    arm(30, 12);
    hold(false, 2);
    pulses(3);
    hold(false, 9);
    EXPECT_THAT(warnings(),
                ElementsAre(warning(kFunction, " pin 1 RX: data waiting is timed out - "
                                               "got 2 bits (data 0x00000002) so far!")));
    EXPECT_EQ(cam_->rxBits, 0U);
    expectOver();
}

TEST_F(IoReplyTest, AnEndlessReplyTimesOutSilently)
{
    arm(2 + 1 + 16 * 15 + 10, 12);
    hold(false, 2);
    for (unsigned symbol = 0; symbol < 16; ++symbol) {
        pulses(1);
        hold(false, 9);
    }
    EXPECT_EQ(pin(1).bitCount, 32);
    EXPECT_EQ(cam_->lineCmdActive, 1U);
    hold(true, 10);
    EXPECT_THAT(warnings(), IsEmpty());
    expectOver();
}

TEST_F(IoReplyTest, TimeMayRunOutWithTheWord)
{
    arm(3 + 3 + 36, 12);
    hold(false, 2);
    hold(true, 3);
    hold(false, 36);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("is rejected"),
                                        HasSubstr("timed out - got 2 bits (data 0x00000000)")));
    expectOver();
}

TEST_F(IoReplyTest, ShortPulsesAreNoReply)
{
    arm(200, 12);
    hold(false, 2);
    for (const unsigned length : {1U, 2U, 1U, 2U}) {
        hold(true, length);
        hold(false, 40);
    }
    EXPECT_EQ(pin(1).bitCount, 0);
    hold(false, 31);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("timed out - got 0 bits (data 0x00000000)")));
    expectOver();
}

TEST_F(IoReplyTest, AnInputWaitsForACommand)
{
    // None at all: no need for another pass.
    cam_->lineCmdActive = kUnset;
    cam_->lineCmdSent = false;
    EXPECT_TRUE(process());
    // One that has yet to be sent.
    cam_->lineCmdActive = 1;
    EXPECT_FALSE(process());
    EXPECT_THAT(journal().lines(Kind::sdk), IsEmpty());
}

TEST_F(IoReplyTest, APinThatIsNotThereReadsLow)
{
    pin(1).idleCount = 0;
    setRegister(1, 0x00000001);
    EXPECT_FALSE(process());
    EXPECT_THAT(rxLogs(), ElementsAre(HasSubstr("lineBit 0")));
}

TEST_F(IoReplyTest, DataPinsOfOtherModesAreInputs)
{
    pin(3).mode = 3;
    pin(3).src = kxtest::kUserData;
    process();
    EXPECT_THAT(journal().lines({"Camera.ReadRegister"}),
                ElementsAre("Camera.ReadRegister(0x1120)", "Camera.ReadRegister(0x1140)"));
}

} // namespace
