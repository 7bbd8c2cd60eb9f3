// The line code between the plug-in and the simulated I/O box, which know it independently: words
// go both ways, every short one and any long one.
#include "line_channel.h"
#include "pins/io_box_decoder.h"

#include <gtest/gtest.h>

#include <bit>
#include <optional>

#include <rapidcheck/gtest.h>

using line::Ending;
using line::LineWord;
using line::Plan;
using line::Reception;

namespace {

constexpr std::uint64_t kHalfUs = 2000;
constexpr unsigned kShort = 12; ///< every word up to this many bits is sent

/// As both ends fill an odd number of bits up.
LineWord filledUp(const LineWord& word)
{
    const auto padding = word.bits % 2;
    return {static_cast<std::uint32_t>(word.word << padding), word.bits + padding};
}

std::uint32_t lowest(std::uint32_t word, unsigned bits)
{
    return static_cast<std::uint32_t>(word % (std::uint64_t{1} << bits));
}

/// What the box hears of a command, the frame's end included.
std::optional<fcsim::HeardFrame> heardByBox(const LineWord& command, bool idleHigh)
{
    fcsim::LineDecoder decoder(fcsim::timingOfSender(kHalfUs), idleHigh);
    static_cast<void>(decoder.change({0, idleHigh}));
    const Plan plan = line::commandPlan(command, kHalfUs, idleHigh, 100'000);
    for (const fcsim::LineTransition& transition : plan) {
        if (decoder.change(transition)) {
            return std::nullopt; // a frame that ends within the word
        }
    }
    return decoder.wait(plan.back().atUs + 41 * kHalfUs);
}

void expectHeard(const LineWord& command)
{
    const LineWord expected = filledUp(command);
    for (const bool idleHigh : {false, true}) {
        const auto heard = heardByBox(command, idleHigh);
        ASSERT_TRUE(heard) << command.word << ", " << command.bits << " bits";
        ASSERT_EQ(heard->verdict, fcsim::IoBoxVerdict::good);
        ASSERT_EQ(heard->word, expected.word) << command.bits << " bits";
        ASSERT_EQ(heard->bits, expected.bits);
    }
}

/// What the plug-in receives of an answer.
Reception received(const LineWord& answer, bool idleHigh, std::mt19937_64& random)
{
    constexpr std::uint32_t kPolls = 10'000;
    fcsim::ReplyShape shape;
    shape.idleHigh = idleHigh;
    const Plan plan =
        fcsim::planReply(answer, shape, 50'000 + random() % 2000, fcsim::Misbehaviour::none, 0);
    return line::receive(plan, idleHigh, {}, kPolls, random);
}

void expectReceived(const LineWord& answer, std::mt19937_64& random)
{
    const LineWord expected = filledUp(answer);
    for (const bool idleHigh : {false, true}) {
        const Reception reception = received(answer, idleHigh, random);
        ASSERT_EQ(reception.ending, Ending::accepted) << answer.word << ", " << answer.bits;
        ASSERT_EQ(reception.reply.word, expected.word) << answer.bits << " bits";
        ASSERT_EQ(reception.reply.bits, expected.bits);
    }
}

TEST(LineExchange, TheBoxHearsEveryShortWord)
{
    for (unsigned bits = 1; bits <= kShort; ++bits) {
        for (std::uint32_t word = 0; word < 1U << bits; ++word) {
            ASSERT_NO_FATAL_FAILURE(expectHeard({word, bits}));
        }
    }
}

TEST(LineExchange, EveryShortAnswerIsReceived)
{
    std::mt19937_64 random(1);
    for (unsigned bits = 1; bits <= kShort; ++bits) {
        for (std::uint32_t word = 0; word < 1U << bits; ++word) {
            ASSERT_NO_FATAL_FAILURE(expectReceived({word, bits}, random));
        }
    }
}

RC_GTEST_PROP(LineExchangeProperty, TheBoxHearsAnyLongWord, (std::uint32_t word))
{
    for (unsigned bits = kShort + 1; bits <= 32; ++bits) {
        expectHeard({lowest(word, bits), bits});
    }
    RC_ASSERT(!testing::Test::HasFailure());
}

RC_GTEST_PROP(LineExchangeProperty, AnyLongAnswerIsReceived, (std::uint32_t word))
{
    // With its parity a word of 30 bits fills the 32 that the receiver keeps.
    std::mt19937_64 random(word);
    for (unsigned bits = kShort + 1; bits <= 30; ++bits) {
        expectReceived({lowest(word, bits), bits}, random);
    }
    RC_ASSERT(!testing::Test::HasFailure());
}

RC_GTEST_PROP(LineExchangeProperty, OfA32BitAnswerTheUpperBitsCountAndTheNextMustBeTheirParity,
              (std::uint32_t word))
{
    // The parity symbol does not fit any more: the word's own last symbol is taken for it.
    std::mt19937_64 random(word);
    for (const unsigned bits : {31U, 32U}) {
        const LineWord answer = filledUp({lowest(word, bits), bits});
        const std::uint32_t upper = answer.word >> 2U;
        const bool accepted = std::popcount(upper) % 2 == static_cast<int>(answer.word & 1U);
        const Reception reception = received({lowest(word, bits), bits}, false, random);
        RC_ASSERT(reception.ending == (accepted ? Ending::accepted : Ending::wrongParity));
        if (accepted) {
            RC_ASSERT(reception.reply.word == upper);
            RC_ASSERT(reception.reply.bits == 30U);
        }
    }
}

} // namespace
