// The receiver, sample by sample: learning of the idle level, pulses, symbols, the end of a word.
#include "kx_pg_line_code.h"
#include "kx_pg_line_rx.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

using KxPGrey::LineEvent;
using KxPGrey::LineRx;
using KxPGrey::LineStep;
using KxPGrey::LineSymbols;
using KxPGrey::lineSymbols;
using KxPGrey::receivedWord;
using KxPGrey::stepLineRx;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t kGap = 12;
constexpr unsigned kPulse = 3; ///< shortest that counts

/// What happened at which sample.
struct Happened {
    LineEvent event;
    unsigned sample;

    bool operator==(const Happened&) const = default;
};

class LineRxTest : public testing::TestWithParam<bool> {
protected:
    /// Armed as for a new reply; the line rests at the parameter's level.
    LineRxTest()
    {
        rx_.loopsLeft = 100'000;
        rx_.rxWaitInit = 1;
    }

    void sample(bool level)
    {
        last_ = stepLineRx(rx_, level, gap_);
        ++samples_;
        if (last_.event != LineEvent::none) {
            happened_.push_back({last_.event, samples_});
        }
    }
    /// `count` samples at rest, or away from it.
    void rest(unsigned count) { hold(GetParam(), count); }
    void active(unsigned count) { hold(!GetParam(), count); }
    void hold(bool level, unsigned count)
    {
        for (unsigned done = 0; done < count; ++done) {
            sample(level);
        }
    }
    void pulses(unsigned count, unsigned length = kPulse)
    {
        for (unsigned done = 0; done < count; ++done) {
            active(length);
            rest(kPulse);
        }
    }
    /// A symbol, with the rest that ends it.
    void symbol(unsigned value)
    {
        pulses(value + 1);
        rest(gap_ - kPulse);
    }
    /// Symbols up to the sample that ends the word.
    void word(const std::vector<unsigned>& symbols)
    {
        for (const unsigned value : symbols) {
            symbol(value);
        }
        rest(2 * gap_);
    }
    std::vector<Happened> take() { return std::exchange(happened_, {}); }

    LineRx rx_;
    std::uint32_t gap_ = kGap;
    LineStep last_;
    unsigned samples_ = 0;
    std::vector<Happened> happened_;
};

TEST_P(LineRxTest, LearnsTheLevelFromThreeSamples)
{
    rest(3);
    EXPECT_THAT(take(),
                ElementsAre(Happened{LineEvent::learning, 1}, Happened{LineEvent::learnt, 3}));
    EXPECT_EQ(rx_.idleLevel, GetParam() ? 1 : 0);
    EXPECT_EQ(rx_.rxWaitInit, 1);
    rest(50);
    EXPECT_THAT(take(), IsEmpty());
    EXPECT_FALSE(last_.data);
}

TEST_P(LineRxTest, LearnsAnewWhenTheLevelChangesTooEarly)
{
    rest(2);
    active(1);
    EXPECT_EQ(rx_.idleCount, 0U);
    rest(3);
    EXPECT_THAT(take(),
                ElementsAre(Happened{LineEvent::learning, 1}, Happened{LineEvent::learning, 4},
                            Happened{LineEvent::learnt, 6}));
}

TEST_P(LineRxTest, BeginsWithTheFirstPulse)
{
    rest(3);
    take();
    rx_.pulseCount = 7;
    rx_.bitCount = 8;
    active(1);
    EXPECT_THAT(take(), ElementsAre(Happened{LineEvent::dataStart, 4}));
    EXPECT_FALSE(last_.data);
    EXPECT_EQ(rx_.rxWaitInit, 0);
    EXPECT_EQ(rx_.pulseCount, 0U);
    EXPECT_EQ(rx_.bitCount, 0);
    EXPECT_EQ(rx_.activeCount, 1U);
    EXPECT_EQ(rx_.idleCount, 0U);
    EXPECT_EQ(rx_.lastLevel, GetParam() ? 0 : 1);
    active(1);
    EXPECT_TRUE(last_.data);
    EXPECT_EQ(rx_.activeCount, 2U);
}

TEST_P(LineRxTest, CountsAPulseAtTheThirdSampleOfRest)
{
    rest(3);
    active(3);
    EXPECT_EQ(rx_.activeCount, 3U);
    take();
    rest(1);
    EXPECT_THAT(take(), ElementsAre(Happened{LineEvent::pulseEnd, 7}));
    EXPECT_EQ(last_.count, 0U);
    rest(1);
    EXPECT_EQ(rx_.pulseCount, 0U);
    rest(1);
    EXPECT_EQ(rx_.pulseCount, 1U);
    rest(1);
    EXPECT_EQ(rx_.pulseCount, 1U);
    active(1);
    EXPECT_THAT(take(), ElementsAre(Happened{LineEvent::pulseStart, 11}));
    EXPECT_EQ(last_.count, 3U); // the pulse before
    active(2);
    rest(1);
    EXPECT_EQ(last_.count, 4U); // the rest before
    EXPECT_EQ(rx_.idleCount, 1U);
}

TEST_P(LineRxTest, IgnoresPulsesOfOneOrTwoSamples)
{
    for (const unsigned length : {1U, 2U}) {
        rx_ = {.loopsLeft = 100'000, .rxWaitInit = 1};
        rest(3);
        active(length);
        rest(100);
        EXPECT_EQ(rx_.pulseCount, 0U);
        EXPECT_EQ(rx_.bitCount, 0);
        EXPECT_EQ(rx_.activeCount, 0U);
        active(length);
        rest(100);
        EXPECT_EQ(rx_.bitCount, 0);
    }
    EXPECT_THAT(take(), testing::Not(testing::Contains(
                            testing::Field(&Happened::event, LineEvent::symbol))));
}

TEST_P(LineRxTest, CountsNoEndAfterAPulseThatWasTooShort)
{
    rest(3);
    pulses(1);
    active(2);
    rest(100);
    EXPECT_EQ(rx_.pulseCount, 1U);
    EXPECT_EQ(rx_.bitCount, 0);
    // The next good pulse belongs to the same symbol.
    symbol(0);
    EXPECT_EQ(rx_.bitCount, 2);
    EXPECT_EQ(rx_.dataWord & 3U, 1U);
}

TEST_P(LineRxTest, EndsASymbolAndTheWordByTheRest)
{
    rest(3);
    active(3);
    take();
    rest(kGap - 1);
    EXPECT_EQ(rx_.bitCount, 0);
    take();
    rest(1);
    EXPECT_THAT(take(), ElementsAre(Happened{LineEvent::symbol, 6 + kGap}));
    EXPECT_EQ(rx_.bitCount, 2);
    EXPECT_EQ(rx_.dataWord, 0xFFFFFFFC);
    EXPECT_EQ(rx_.pulseCount, 0U);
    rest(2 * kGap - 1);
    EXPECT_THAT(take(), IsEmpty());
    rest(1);
    EXPECT_THAT(take(), ElementsAre(Happened{LineEvent::frameEnd, 6 + 3 * kGap}));
}

TEST_P(LineRxTest, TakesTheGapAsItIsGiven)
{
    gap_ = 5;
    rest(3);
    take();
    active(3);
    rest(15);
    EXPECT_THAT(take(),
                ElementsAre(Happened{LineEvent::dataStart, 4}, Happened{LineEvent::pulseEnd, 7},
                            Happened{LineEvent::symbol, 11}, Happened{LineEvent::frameEnd, 21}));
}

TEST_P(LineRxTest, EndsTheWordBeforeTheSymbolWhenBothFallTogether)
{
    // With a gap of one sample the rest never equals it: the first is the pulse's end.
    gap_ = 1;
    rest(3);
    active(3);
    rest(3);
    EXPECT_EQ(last_.event, LineEvent::frameEnd);
    EXPECT_EQ(rx_.bitCount, 0);
    EXPECT_EQ(rx_.pulseCount, 0U);
}

TEST_P(LineRxTest, TakesAGapOfThreeAsSymbolsOfNoPulse)
{
    gap_ = 3;
    rest(3);
    active(3);
    rest(3);
    EXPECT_EQ(last_.event, LineEvent::symbol);
    EXPECT_EQ(rx_.dataWord & 3U, 3U);
}

TEST_P(LineRxTest, ReceivesEachWordOfTwelveBits)
{
    for (std::uint32_t data = 0; data < 4096; ++data) {
        rx_ = {.loopsLeft = 100'000, .rxWaitInit = 1};
        rest(3);
        const LineSymbols symbols = lineSymbols(data, 12, true);
        word({symbols.begin(), symbols.end()});
        ASSERT_EQ(last_.event, LineEvent::frameEnd);
        ASSERT_EQ(rx_.bitCount, 14);
        const auto reply = receivedWord(rx_.dataWord, rx_.bitCount);
        ASSERT_EQ(reply.payload, data);
        ASSERT_TRUE(reply.parityGood);
    }
}

TEST_P(LineRxTest, DropsWhatExceeds32Bits)
{
    rest(3);
    word({0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 2, 2});
    EXPECT_EQ(last_.event, LineEvent::frameEnd);
    EXPECT_EQ(rx_.bitCount, 32);
    EXPECT_EQ(rx_.dataWord, 0x1B1B1B1BU);
    EXPECT_EQ(rx_.pulseCount, 0U);
}

TEST_P(LineRxTest, CountsTheTimeInEachPhase)
{
    rx_.loopsLeft = 5;
    rest(4);
    EXPECT_FALSE(last_.timedOut);
    rest(1);
    EXPECT_TRUE(last_.timedOut);
    EXPECT_FALSE(last_.data);

    rx_ = {.loopsLeft = 5, .rxWaitInit = 1};
    rest(3);
    active(1);
    EXPECT_FALSE(last_.timedOut);
    active(1);
    EXPECT_TRUE(last_.timedOut);
    EXPECT_TRUE(last_.data);
    EXPECT_EQ(rx_.loopsLeft, 0U);
    // A time that was none lasts very long.
    active(1);
    EXPECT_FALSE(last_.timedOut);
    EXPECT_EQ(rx_.loopsLeft, 0xFFFFFFFF);
}

TEST_P(LineRxTest, MayRunOutOfTimeAtTheEndOfAWord)
{
    rest(3);
    active(3);
    rest(3 * kGap - 1);
    rx_.loopsLeft = 1;
    rest(1);
    EXPECT_EQ(last_.event, LineEvent::frameEnd);
    EXPECT_TRUE(last_.timedOut);
}

INSTANTIATE_TEST_SUITE_P(Rests, LineRxTest, testing::Values(false, true),
                         [](const auto& one) { return one.param ? "High" : "Low"; });

} // namespace
