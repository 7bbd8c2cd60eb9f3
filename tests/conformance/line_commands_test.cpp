// Square waves and data words on a line: transitions, pauses, result codes.
#include "camera_test.h"
#include "sanitizer.h"

#include <bit>

#include <pthread.h>
#include <rapidcheck/gtest.h>

using KxPGrey::kPgPin0;
using KxPGrey::kPgPin3;
using kxtest::journal;
using kxtest::Kind;
using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;

namespace {

constexpr unsigned kSerial = 1000;
constexpr unsigned kHalfPeriodUs = 2000;

using Texts = std::vector<std::string>;
using Numbers = std::vector<unsigned>;

/// A camera that takes `writeUs` for each register write.
class LineCommandsTest : public kxtest::CameraTest {
protected:
    LineCommandsTest()
    {
        connect();
        pinReads(0x80010000);
        cam_->onWriteRegister = [this](unsigned, unsigned) { fcsim::advanceClock(writeUs_); };
    }
    static void pinReads(std::uint32_t word) { fcsim::pokeRegister(kSerial, 0x1110, word); }
    /// What reached the line, in order: "0" and "1" for levels, the length of a pause otherwise.
    static Texts line()
    {
        Texts line;
        for (const kxtest::Event& event : journal().events()) {
            if (event.name == "Camera.WriteRegister") {
                line.push_back(levelOf(event.arguments));
            } else if (event.name == "usleep") {
                line.push_back(event.arguments);
            }
        }
        return line;
    }
    /// The level in "address word" of a register write.
    static std::string levelOf(const std::string& write)
    {
        return std::stoul(write.substr(write.rfind(' ')), nullptr, 16) % 2 == 1 ? "1" : "0";
    }
    /// The number of pulses in each burst, as someone counts them who sees the line: more than five
    /// half periods of rest end a burst. The last number is that rest behind the last one.
    static Numbers bursts(const std::string& idle)
    {
        constexpr unsigned kRestUs = 5 * kHalfPeriodUs;
        Numbers bursts(1);
        unsigned restedUs = 0;
        for (const std::string& event : line()) {
            if (event.size() > 1) {
                restedUs += static_cast<unsigned>(std::stoul(event));
                continue;
            }
            if (restedUs > kRestUs) {
                bursts.push_back(0);
            }
            restedUs = 0;
            bursts.back() += event == idle ? 0U : 1U;
        }
        bursts.push_back(restedUs / kHalfPeriodUs);
        return bursts;
    }
    int send(unsigned data, unsigned char bits, bool idleHigh = true, bool withParity = true)
    {
        journal().clear();
        return cam_->ExSendLineCmdBy2bits(kPgPin0, data, bits, kHalfPeriodUs, idleHigh, withParity);
    }
    /// The pauses of a frame of two single pulses: the symbol 0 and its parity.
    Texts pauses(unsigned halfPeriodUs, std::uint64_t writeUs)
    {
        journal().clear();
        writeUs_ = writeUs;
        EXPECT_EQ(cam_->ExSendLineCmdBy2bits(kPgPin0, 0, 2, halfPeriodUs, true, true), 0);
        return pausesOnLine();
    }
    static Texts pausesOnLine()
    {
        Texts pauses = line();
        std::erase_if(pauses, [](const std::string& event) { return event.size() == 1; });
        return pauses;
    }

    std::uint64_t writeUs_ = 0;
};

// ---- Words.

TEST_F(LineCommandsTest, SendsNothingForALengthThatIsNone)
{
    for (const int bits : {0, 33, 34, 128, 255}) {
        EXPECT_EQ(send(0x392, static_cast<unsigned char>(bits)), -1) << bits;
        EXPECT_THAT(journal().events(), IsEmpty());
    }
}

TEST_F(LineCommandsTest, SendsAWordAsBurstsAndItsParityLast)
{
    EXPECT_EQ(send(0x392, 10), 0);
    EXPECT_EQ(bursts("1"), (Numbers{4, 3, 2, 1, 3, 2, 41}));
    EXPECT_EQ(send(0x393, 10), 0);
    EXPECT_EQ(bursts("1"), (Numbers{4, 3, 2, 1, 4, 1, 41}));
}

TEST_F(LineCommandsTest, SendsNeitherParityNorALongPauseUnasked)
{
    EXPECT_EQ(send(0x392, 10, true, false), 0);
    EXPECT_EQ(bursts("1"), (Numbers{4, 3, 2, 1, 3, 20}));
}

TEST_F(LineCommandsTest, FillsAnOddLengthUp)
{
    EXPECT_EQ(send(0b101, 3, true, false), 0);
    EXPECT_EQ(bursts("1"), (Numbers{3, 3, 20}));
}

TEST_F(LineCommandsTest, LeavesOutWhatIsAboveTheWord)
{
    EXPECT_EQ(send(0xFFFFFF00, 8, true, true), 0);
    EXPECT_EQ(bursts("1"), (Numbers{1, 1, 1, 1, 1, 41}));
}

TEST_F(LineCommandsTest, SendsAll32Bits)
{
    EXPECT_EQ(send(0xC0000001, 32), 0);
    EXPECT_EQ(bursts("1"), (Numbers{4, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 41}));
}

TEST_F(LineCommandsTest, ALineThatRestsHighFallsFirst)
{
    EXPECT_EQ(send(0b01, 2, true, false), 0);
    EXPECT_THAT(line(), ElementsAre("0", "2000", "1", "2000", "0", "2000", "1", "2000", "38000"));
}

TEST_F(LineCommandsTest, ALineThatRestsLowRisesFirst)
{
    EXPECT_EQ(send(0b01, 2, false, false), 0);
    EXPECT_THAT(line(), ElementsAre("1", "2000", "0", "2000", "1", "2000", "0", "2000", "38000"));
    EXPECT_EQ(send(0x392, 10, false), 0);
    EXPECT_EQ(bursts("0"), (Numbers{4, 3, 2, 1, 3, 2, 41}));
}

TEST_F(LineCommandsTest, EachTransitionIsOneWriteAndOnlyTheFirstReads)
{
    EXPECT_EQ(send(0b01, 2), 0);
    const std::string low = "Camera.WriteRegister(0x1110 0x80010000)";
    const std::string high = "Camera.WriteRegister(0x1110 0x80010001)";
    EXPECT_THAT(journal().lines(Kind::sdk), ElementsAre("Camera.ReadRegister(0x1110)", low, high,
                                                        low, high, low, high, low, high));
    EXPECT_EQ(send(0, 2, true, false), 0);
    EXPECT_THAT(journal().lines(Kind::sdk), ElementsAre(low, high));
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(LineCommandsTest, EachPinIsItsOwnLine)
{
    fcsim::pokeRegister(kSerial, 0x1140, 0x80010000);
    EXPECT_EQ(cam_->ExSendLineCmdBy2bits(kPgPin3, 0, 2, kHalfPeriodUs, true, false), 0);
    EXPECT_THAT(journal().lines({"Camera.WriteRegister"}),
                ElementsAre("Camera.WriteRegister(0x1140 0x80010000)",
                            "Camera.WriteRegister(0x1140 0x80010001)"));
}

RC_GTEST_FIXTURE_PROP(LineCommandsTest, AnyWordCanBeReadFromTheLine, (std::uint32_t data))
{
    const auto bits = *rc::gen::inRange(1U, 33U);
    const auto idleHigh = *rc::gen::arbitrary<bool>();
    writeUs_ = *rc::gen::inRange(0U, 900U);
    RC_ASSERT(send(data, static_cast<unsigned char>(bits), idleHigh) == 0);
    Numbers seen = bursts(idleHigh ? "1" : "0");
    seen.pop_back();
    RC_ASSERT(seen.size() == (bits + 1) / 2 + 1);
    const unsigned parity = seen.back() - 1;
    seen.pop_back();
    std::uint64_t word = 0;
    for (const unsigned pulses : seen) {
        RC_ASSERT(pulses >= 1U && pulses <= 4U);
        word = word * 4 + (pulses - 1);
    }
    const std::uint64_t sent = data % (std::uint64_t{1} << bits);
    RC_ASSERT(word == sent * (bits % 2 == 1 ? 2 : 1));
    RC_ASSERT(parity == static_cast<unsigned>(std::popcount(sent) % 2));
}

// ---- Pauses.

TEST_F(LineCommandsTest, PausesAreShorterByTheTimeOfTheWrites)
{
    EXPECT_THAT(pauses(2000, 300), ElementsAre("1700", "1700", "38300", //
                                               "1700", "1700", "38300", "42000"));
}

TEST_F(LineCommandsTest, NoHalfPeriodIsShorterThanAMillisecond)
{
    EXPECT_THAT(pauses(2000, 999), ElementsAre("1001", "1001", "38999", //
                                               "1001", "1001", "38999", "42000"));
    const Texts shortest = {"1000", "1000", "39000", "1000", "1000", "39000", "42000"};
    for (const unsigned writeUs : {1000U, 1001U, 2000U, 2001U, 50'000U}) {
        EXPECT_EQ(pauses(2000, writeUs), shortest) << writeUs;
    }
    EXPECT_THAT(pauses(1000, 0), ElementsAre("1000", "1000", "19000", //
                                             "1000", "1000", "19000", "21000"));
    EXPECT_THAT(pauses(500, 0), ElementsAre("1000", "1000", "9000", //
                                            "1000", "1000", "9000", "10500"));
}

TEST_F(LineCommandsTest, NoGapIsShorterThanAMillisecond)
{
    EXPECT_THAT(pauses(101, 0), ElementsAre("1000", "1000", "1020", //
                                            "1000", "1000", "1020", "2121"));
    EXPECT_THAT(pauses(100, 0), ElementsAre("1000", "1000", "1000", //
                                            "1000", "1000", "1000", "2100"));
    EXPECT_THAT(pauses(99, 0), ElementsAre("1000", "1000", "1000", //
                                           "1000", "1000", "1000", "2059"));
}

TEST_F(LineCommandsTest, NoEndIsShorterThanAMillisecond)
{
    // 41 half periods, less the two milliseconds since the last transition.
    EXPECT_THAT(pauses(74, 0).back(), "1034");
    EXPECT_THAT(pauses(73, 0).back(), "1000");
    EXPECT_THAT(pauses(0, 0), Eq(Texts(7, "1000")));
}

TEST_F(LineCommandsTest, OfTheTimeThatPassedOnlyThePartBelowASecondCounts)
{
    EXPECT_THAT(pauses(2000, 1'000'300), ElementsAre("1700", "1700", "38300", //
                                                     "1700", "1700", "38300", "42000"));
    // A gap of 1.2 s has passed when the end begins, of which 0.2 s count.
    EXPECT_THAT(pauses(60'000, 0), ElementsAre("60000", "60000", "1140000", //
                                               "60000", "60000", "1140000", "2260000"));
}

TEST_F(LineCommandsTest, TheHostTakesTheDifferences)
{
    EXPECT_EQ(send(0b01, 2), 0);
    // Eight transitions, two gaps, one end.
    EXPECT_EQ(journal().count("KxUtl__TimeValDiff"), 11U);
}

// ---- Square waves.

TEST_F(LineCommandsTest, ASquareWaveHasTwoTransitionsPerPeriod)
{
    EXPECT_EQ(cam_->ExSendLineMeander(kPgPin0, 2, 3000, true), 0);
    EXPECT_THAT(line(), ElementsAre("0", "3000", "1", "3000", "0", "3000", "1", "3000"));
    journal().clear();
    EXPECT_EQ(cam_->ExSendLineMeander(kPgPin0, 1, 3000, false), 0);
    EXPECT_THAT(line(), ElementsAre("1", "3000", "0", "3000"));
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(LineCommandsTest, ASquareWaveOfNoPeriodsHasOneTransition)
{
    EXPECT_EQ(cam_->ExSendLineMeander(kPgPin0, 0, 3000, true), 0);
    EXPECT_THAT(line(), ElementsAre("0", "3000"));
    journal().clear();
    EXPECT_EQ(cam_->ExSendLineMeander(kPgPin0, 0, 3000, false), 0);
    EXPECT_THAT(line(), ElementsAre("1", "3000"));
}

TEST_F(LineCommandsTest, ASquareWavePausesWhateverTheWritesTake)
{
    writeUs_ = 700;
    EXPECT_EQ(cam_->ExSendLineMeander(kPgPin0, 1, 1001, true), 0);
    EXPECT_EQ(cam_->ExSendLineMeander(kPgPin0, 1, 999, true), 0);
    EXPECT_THAT(pausesOnLine(), ElementsAre("1001", "1001", "1000", "1000"));
    EXPECT_EQ(journal().count("KxUtl__TimeValDiff"), 0U);
}

// ---- Lines that cannot be written, and threads that are cancelled.

TEST_F(LineCommandsTest, APinThatIsNotThereTakesNothing)
{
    pinReads(0x7FFFFFFF);
    EXPECT_EQ(send(0x392, 10), -1);
    EXPECT_EQ(cam_->ExSendLineMeander(kPgPin0, 5, 2000, true), -1);
    EXPECT_THAT(line(), IsEmpty());
    EXPECT_THAT(journal().logs(), IsEmpty());
}

/// A register of ones only is written with a high level and so is not remembered; the pin goes away
/// with that write.
class LostPinTest : public LineCommandsTest {
protected:
    LostPinTest()
    {
        pinReads(0xFFFFFFFF);
        cam_->onWriteRegister = [](unsigned, unsigned value) {
            if (value == 0xFFFFFFFF) {
                pinReads(0);
            }
        };
    }
};

TEST_F(LostPinTest, AFrameIsLeftWhereItStands)
{
    EXPECT_EQ(send(0xFF, 8, true), -1);
    EXPECT_THAT(line(), ElementsAre("0", "2000", "1", "2000"));
    EXPECT_EQ(cam_->gpioCtrlShadow[kPgPin0], 0xFFFFFFFFU);
}

TEST_F(LostPinTest, ASquareWaveIsLeftWhereItStands)
{
    EXPECT_EQ(cam_->ExSendLineMeander(kPgPin0, 9, 2000, false), -1);
    EXPECT_THAT(line(), ElementsAre("1", "2000"));
}

struct CancelledSend {
    KxPGrey::CExCam* cam;
    bool square;
    bool unwound;
};

void* sendCancelled(void* argument)
{
    auto* const send = static_cast<CancelledSend*>(argument);
    struct Unwinding {
        bool& seen;
        ~Unwinding() { seen = true; }
    };
    const Unwinding unwinding{send->unwound};
    pthread_cancel(pthread_self());
    if (send->square) {
        send->cam->ExSendLineMeander(kPgPin0, 1000, 2000, true);
    } else {
        send->cam->ExSendLineCmdBy2bits(kPgPin0, 0xFFFF, 16, 2000, true, true);
    }
    return nullptr;
}

class CancelledSendTest : public LineCommandsTest, public testing::WithParamInterface<bool> {};

TEST_P(CancelledSendTest, EndsInItsFirstPauseAndUnwinds)
{
    if (!kxtest::kMayCancel) {
        GTEST_SKIP() << kxtest::kMayNotCancel;
    }
    CancelledSend send = {cam_.get(), GetParam(), false};
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, sendCancelled, &send), 0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_TRUE(send.unwound);
    EXPECT_THAT(line(), ElementsAre("0"));
}

INSTANTIATE_TEST_SUITE_P(LineCommands, CancelledSendTest, testing::Bool(),
                         [](const auto& one) { return one.param ? "SquareWave" : "Word"; });

} // namespace
