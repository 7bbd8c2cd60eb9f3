// Answers of the simulated I/O box: exact transitions, and what a polling receiver makes of them.
#include "line_fixture.h"

#include <gtest/gtest.h>

#include <bit>
#include <optional>
#include <random>

#include <pins/io_box_reply.h>

using fcsim::LineWord;
using fcsim::Misbehaviour;
using fcsim::ReplyShape;
using line::Plan;

namespace {

constexpr std::uint64_t kStartUs = 50'000;
constexpr unsigned kShortest = 3; ///< looks that a level must last to count
constexpr unsigned kGap = 12;

Plan planOf(const LineWord& word, Misbehaviour misbehaviour = Misbehaviour::none,
            std::uint64_t seed = 1, const ReplyShape& shape = ReplyShape())
{
    return planReply(word, shape, kStartUs, misbehaviour, seed);
}

/// Counts pulses of at least three looks, closes a symbol after twelve idle looks and the frame
/// after three times as many. Returns the symbols of a frame.
std::optional<std::vector<unsigned>> receive(const Plan& plan, bool idleHigh, std::uint64_t pollUs)
{
    std::vector<unsigned> symbols;
    unsigned pulses = 0;
    unsigned active = 0;
    unsigned idle = kShortest;
    for (std::uint64_t atUs = 0; atUs < kStartUs + 10'000'000; atUs += pollUs) {
        if (fcsim::levelAt(plan, atUs, idleHigh) != idleHigh) {
            active = idle > 0 ? 1 : active + 1;
            idle = 0;
            continue;
        }
        ++idle;
        if (active < kShortest) {
            continue;
        }
        if (idle == kShortest) {
            ++pulses;
        } else if (idle == kGap && pulses > 0) {
            symbols.push_back(pulses - 1);
            pulses = 0;
        } else if (idle == 3 * kGap) {
            return symbols;
        }
    }
    return std::nullopt;
}

std::uint32_t padded(std::uint32_t word, unsigned bits)
{
    return bits % 2 == 0 ? word : word << 1U;
}

TEST(IoBoxReply, TransitionsAreExact)
{
    const ReplyShape shape{false, 10, 40};
    const Plan expected{{100, true}, {110, false}, {120, true}, {130, false},  // 1
                        {170, true}, {180, false},                             // 0
                        {220, true}, {230, false}, {240, true}, {250, false}}; // odd
    EXPECT_EQ(planReply({0b0100, 4}, shape, 100, Misbehaviour::none, 1), expected);
}

TEST(IoBoxReply, AHighIdleLevelTurnsEverythingRound)
{
    const Plan low = planOf({0x392, 10});
    const Plan high = planOf({0x392, 10}, Misbehaviour::none, 1, {true});
    ASSERT_EQ(low.size(), high.size());
    for (std::size_t i = 0; i < low.size(); ++i) {
        EXPECT_EQ(low[i].atUs, high[i].atUs);
        EXPECT_NE(low[i].level, high[i].level);
    }
}

TEST(IoBoxReply, AReceiverHearsEveryWordOfUpToTwelveBits)
{
    for (unsigned bits = 1; bits <= 12; ++bits) {
        for (std::uint32_t word = 0; word < 1U << bits; ++word) {
            const bool idleHigh = word % 2 != 0;
            const Plan plan = planOf({word, bits}, Misbehaviour::none, 1, {idleHigh});
            ASSERT_EQ(receive(plan, idleHigh, 2100),
                      line::symbolsOf(padded(word, bits), bits + bits % 2));
        }
    }
}

TEST(IoBoxReply, AReceiverHearsLongWordsAtItsOwnPace)
{
    std::mt19937 random(3);
    for (int i = 0; i < 500; ++i) {
        const auto bits = static_cast<unsigned>(13 + random() % 20);
        const auto word = static_cast<std::uint32_t>(random() & ((1ULL << bits) - 1));
        const std::uint64_t pollUs = 2010 + random() % 1000;
        ASSERT_EQ(receive(planOf({word, bits}), false, pollUs),
                  line::symbolsOf(padded(word, bits), bits + bits % 2))
            << std::hex << word << "/" << std::dec << bits << " polled every " << pollUs;
    }
}

TEST(IoBoxReply, BitsBeyondTheWordAreNotSent)
{
    EXPECT_EQ(planOf({0xFFFFFFF1, 4}), planOf({1, 4}));
}

TEST(IoBoxReply, WrongParityIsTheOppositeSymbol)
{
    for (const std::uint32_t word : {0x3U, 0x2U}) {
        auto expected = line::symbolsOf(word, 2);
        expected.back() ^= 1U;
        EXPECT_EQ(receive(planOf({word, 2}, Misbehaviour::wrongParity), false, 2100), expected);
    }
}

TEST(IoBoxReply, ShortPulsesAreNotHeard)
{
    const Plan plan = planOf({0x392, 10}, Misbehaviour::shortPulses);
    EXPECT_EQ(plan.size(), planOf({0x392, 10}).size());
    EXPECT_EQ(plan[1].atUs - plan[0].atUs, 2000U);
    EXPECT_EQ(plan[2].atUs - plan[0].atUs, 24'000U);
    EXPECT_EQ(receive(plan, false, 2100), std::nullopt);
}

TEST(IoBoxReply, SilenceIsNoTransition)
{
    EXPECT_TRUE(planOf({0x392, 10}, Misbehaviour::silence).empty());
}

TEST(IoBoxReply, ATruncatedAnswerHasHalfOfTheSymbols)
{
    const std::vector<unsigned> half{3, 2, 1};
    EXPECT_EQ(receive(planOf({0x392, 10}, Misbehaviour::truncated), false, 2100), half);
}

TEST(IoBoxReply, NoiseAddsPairsOfTransitionsInOrder)
{
    const Plan clean = planOf({0x392, 10});
    const Plan noisy = planOf({0x392, 10}, Misbehaviour::noise);
    ASSERT_GT(noisy.size(), clean.size());
    EXPECT_EQ((noisy.size() - clean.size()) % 2, 0U);
    EXPECT_EQ(noisy.front(), clean.front());
    EXPECT_EQ(noisy.back(), clean.back());
    std::size_t found = 0;
    for (std::size_t i = 0; i < noisy.size(); ++i) {
        found += found < clean.size() && noisy[i] == clean[found] ? 1U : 0U;
        if (i > 0) {
            EXPECT_LT(noisy[i - 1].atUs, noisy[i].atUs);
            EXPECT_NE(noisy[i - 1].level, noisy[i].level);
        }
    }
    EXPECT_EQ(found, clean.size());
}

TEST(IoBoxReply, TheSeedChoosesTheNoise)
{
    EXPECT_EQ(planOf({0x392, 10}, Misbehaviour::noise, 7),
              planOf({0x392, 10}, Misbehaviour::noise, 7));
    EXPECT_NE(planOf({0x392, 10}, Misbehaviour::noise, 7),
              planOf({0x392, 10}, Misbehaviour::noise, 8));
}

TEST(IoBoxReply, ALevelHoldsFromItsTransitionOn)
{
    const Plan plan{{10, true}, {20, false}};
    EXPECT_FALSE(fcsim::levelAt(plan, 9, false));
    EXPECT_TRUE(fcsim::levelAt(plan, 9, true));
    EXPECT_TRUE(fcsim::levelAt(plan, 10, false));
    EXPECT_TRUE(fcsim::levelAt(plan, 19, false));
    EXPECT_FALSE(fcsim::levelAt(plan, 20, true));
    EXPECT_TRUE(fcsim::levelAt({}, 20, true));
}

} // namespace
