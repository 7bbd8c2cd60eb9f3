// The decoder of the simulated I/O box: all short words, random long ones, and what goes wrong.
#include "line_fixture.h"

#include <gtest/gtest.h>

#include <random>

#include <pins/io_box_decoder.h>

using fcsim::HeardFrame;
using fcsim::IoBoxVerdict;
using fcsim::LineDecoder;
using line::Plan;

namespace {

constexpr std::uint64_t kHalfUs = 2000;
constexpr std::uint64_t kFrameEndUs = 34 * kHalfUs;

/// What a decoder hears, asked for nothing until long after the last transition.
std::vector<HeardFrame> hear(const Plan& plan, bool idleHigh = false,
                             std::uint64_t halfUs = kHalfUs)
{
    LineDecoder decoder(fcsim::timingOfSender(halfUs), idleHigh);
    std::vector<HeardFrame> frames;
    const auto keep = [&](const std::optional<HeardFrame>& frame) {
        if (frame) {
            frames.push_back(*frame);
        }
    };
    for (const fcsim::LineTransition& transition : plan) {
        keep(decoder.change(transition));
    }
    keep(decoder.wait(plan.empty() ? 1'000'000 : plan.back().atUs + 1'000'000));
    return frames;
}

void expectWord(const std::vector<HeardFrame>& frames, std::uint32_t word, unsigned bits)
{
    ASSERT_EQ(frames.size(), 1U);
    ASSERT_EQ(frames[0].verdict, IoBoxVerdict::good) << std::hex << word << "/" << bits;
    ASSERT_EQ(frames[0].word, word);
    ASSERT_EQ(frames[0].bits, bits);
}

TEST(IoBoxDecoder, HearsEveryWordOfUpToTwelveBits)
{
    for (unsigned bits = 2; bits <= 12; bits += 2) {
        for (std::uint32_t word = 0; word < 1U << bits; ++word) {
            for (const bool idleHigh : {false, true}) {
                Plan plan = line::sent(line::symbolsOf(word, bits), kHalfUs, idleHigh, 5000);
                plan.insert(plan.begin(), {1, idleHigh});
                expectWord(hear(plan, idleHigh), word, bits);
            }
        }
    }
}

TEST(IoBoxDecoder, HearsLongWords)
{
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        const auto bits = static_cast<unsigned>(14 + 2 * (random() % 10));
        const auto word = static_cast<std::uint32_t>(random() & ((1ULL << bits) - 1));
        expectWord(hear(line::sent(line::symbolsOf(word, bits), kHalfUs, false, 5000)), word, bits);
    }
}

TEST(IoBoxDecoder, PulsesMayComeLateByTenHalfPeriods)
{
    std::mt19937 random(2);
    for (int i = 0; i < 500; ++i) {
        const auto word = static_cast<std::uint32_t>(random() & 0xFFFU);
        Plan plan;
        line::send(plan, line::symbolsOf(word, 12), kHalfUs, false, 0,
                   [&](std::size_t) { return random() % (10 * kHalfUs); });
        expectWord(hear(plan), word, 12);
    }
}

TEST(IoBoxDecoder, AnIdleTimeOfTwelveHalfPeriodsEndsASymbol)
{
    const Plan within{{0, true}, {2000, false}, {25'999, true}, {27'999, false}};
    EXPECT_EQ(hear(within)[0].verdict, IoBoxVerdict::garbled); // one symbol is no word
    const Plan apart{{0, true}, {2000, false}, {26'000, true}, {28'000, false}};
    expectWord(hear(apart), 0, 2);
}

TEST(IoBoxDecoder, AnIdleTimeOf34HalfPeriodsEndsTheFrame)
{
    const auto plan = line::sent({3, 2, 1, 0, 2, 1}, kHalfUs, false, 1000);
    LineDecoder decoder(fcsim::timingOfSender(kHalfUs), false);
    for (const fcsim::LineTransition& transition : plan) {
        EXPECT_FALSE(decoder.change(transition));
    }
    const std::uint64_t endUs = plan.back().atUs + kFrameEndUs;
    EXPECT_FALSE(decoder.wait(endUs - 1));
    const auto frame = decoder.wait(endUs);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->word, 0x392U);
    EXPECT_EQ(frame->bits, 10U);
    EXPECT_EQ(frame->firstEdgeUs, 1000U);
    EXPECT_EQ(frame->lastEdgeUs, plan.back().atUs);
    EXPECT_EQ(frame->endUs, endUs);
    EXPECT_FALSE(decoder.wait(endUs + 1'000'000));
}

TEST(IoBoxDecoder, TheNextFrameMayComeBeforeAnybodyLooks)
{
    Plan plan = line::sent({1, 1}, kHalfUs, false, 0);
    const Plan second = line::sent({2, 1}, kHalfUs, false, plan.back().atUs + 41 * kHalfUs);
    plan.insert(plan.end(), second.begin(), second.end());
    const auto frames = hear(plan);
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_EQ(frames[0].word, 1U);
    EXPECT_EQ(frames[1].word, 2U);
}

TEST(IoBoxDecoder, TheParitySymbolIsCheckedAsAWhole)
{
    for (unsigned parity = 0; parity < 4; ++parity) {
        const auto frames = hear(line::sent({1, 2, 2, parity}, kHalfUs, false, 0));
        ASSERT_EQ(frames.size(), 1U);
        EXPECT_EQ(frames[0].verdict, parity == 1 ? IoBoxVerdict::good : IoBoxVerdict::wrongParity);
        EXPECT_EQ(frames[0].word, 0b011010U);
    }
}

TEST(IoBoxDecoder, FivePulsesAreNoSymbol)
{
    EXPECT_EQ(hear(line::sent({4, 0}, kHalfUs, false, 0))[0].verdict, IoBoxVerdict::garbled);
}

TEST(IoBoxDecoder, SeventeenSymbolsAreTheMost)
{
    EXPECT_EQ(hear(line::sent(std::vector(17, 0U), kHalfUs, false, 0))[0].bits, 32U);
    EXPECT_EQ(hear(line::sent(std::vector(17, 0U), kHalfUs, false, 0))[0].verdict,
              IoBoxVerdict::good);
    EXPECT_EQ(hear(line::sent(std::vector(18, 0U), kHalfUs, false, 0))[0].verdict,
              IoBoxVerdict::garbled);
}

TEST(IoBoxDecoder, AQuarterOfAHalfPeriodIsTheShortestPulse)
{
    EXPECT_TRUE(hear({{0, true}, {499, false}}).empty());
    EXPECT_EQ(hear({{0, true}, {500, false}}).size(), 1U);
}

TEST(IoBoxDecoder, ShortDisturbancesDoNotCount)
{
    Plan plan;
    for (const fcsim::LineTransition& edge : line::sent({1, 2, 0, 0}, kHalfUs, false, 0)) {
        plan.push_back(edge); // each level is interrupted for 400 us
        plan.push_back({edge.atUs + 900, !edge.level});
        plan.push_back({edge.atUs + 1300, edge.level});
    }
    expectWord(hear(plan), 0b011000, 6);
}

TEST(IoBoxDecoder, ALineThatStaysActiveEndsTheFrame)
{
    Plan plan = line::sent({1, 1}, kHalfUs, false, 0);
    plan.pop_back();
    const auto frames = hear(plan);
    ASSERT_EQ(frames.size(), 1U);
    EXPECT_EQ(frames[0].verdict, IoBoxVerdict::stuck);
    EXPECT_EQ(frames[0].endUs, plan.back().atUs + kFrameEndUs);
}

TEST(IoBoxDecoder, AfterAStuckLineTheNextFrameIsHeard)
{
    Plan plan{{0, true}, {500'000, false}};
    const Plan second = line::sent({2, 1}, kHalfUs, false, 600'000);
    plan.insert(plan.end(), second.begin(), second.end());
    const auto frames = hear(plan);
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_EQ(frames[0].verdict, IoBoxVerdict::stuck);
    EXPECT_EQ(frames[0].firstEdgeUs, 0U);
    EXPECT_EQ(frames[1].verdict, IoBoxVerdict::good);
    EXPECT_EQ(frames[1].word, 2U);
}

TEST(IoBoxDecoder, ALineThatRisesToItsIdleLevelIsNoPulse)
{
    Plan plan{{100, true}};
    EXPECT_TRUE(hear(plan, true).empty());
    const Plan frame = line::sent({0, 0}, kHalfUs, true, 200'000);
    plan.insert(plan.end(), frame.begin(), frame.end());
    expectWord(hear(plan, true), 0, 2);
}

TEST(IoBoxDecoder, SilenceIsNoFrame)
{
    EXPECT_TRUE(hear({}).empty());
}

} // namespace
