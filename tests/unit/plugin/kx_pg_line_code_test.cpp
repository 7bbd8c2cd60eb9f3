// Tests of the line code: known words, and any word against a coder and a decoder of the test's
// own, which know words only as text.
#include "kx_pg_line_code.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

namespace {

using KxPGrey::lineSymbols;
using KxPGrey::LineSymbols;
using KxPGrey::ReceivedWord;
using KxPGrey::receivedWord;

using Symbols = std::vector<unsigned>;

Symbols sent(std::uint32_t data, unsigned bits, bool withParity)
{
    const LineSymbols symbols = lineSymbols(data, bits, withParity);
    return {symbols.begin(), symbols.end()};
}

/// The lower `bits` bits as text, filled up to whole symbols, and the parity symbol behind them.
std::string frameText(std::uint32_t data, unsigned bits, bool withParity)
{
    std::string text;
    for (unsigned bit = bits; bit-- > 0;) {
        text += (data / (std::uint64_t{1} << bit)) % 2 == 1 ? '1' : '0';
    }
    text += bits % 2 == 1 ? "0" : "";
    const bool odd = std::count(text.begin(), text.end(), '1') % 2 == 1;
    if (withParity) {
        text += odd ? "01" : "00";
    }
    return text;
}

/// The levels of the line after each transition, with a blank for each longer rest.
std::string lineOf(const LineSymbols& symbols, bool idleHigh)
{
    std::string line;
    for (const std::uint8_t symbol : symbols) {
        for (unsigned number = 0; number < KxPGrey::symbolTransitions(symbol); ++number) {
            line += KxPGrey::waveLevel(number, idleHigh) ? '1' : '0';
        }
        line += ' ';
    }
    return line;
}

/// The bits that such a line carries; "?" stands for what is no symbol.
std::string decoded(const std::string& line, bool idleHigh)
{
    static const std::map<std::string, std::string> kHighPulses = {
        {"10", "00"}, {"1010", "01"}, {"101010", "10"}, {"10101010", "11"}};
    static const std::map<std::string, std::string> kLowPulses = {
        {"01", "00"}, {"0101", "01"}, {"010101", "10"}, {"01010101", "11"}};
    const auto& code = idleHigh ? kLowPulses : kHighPulses;
    std::string bits;
    std::string::size_type begin = 0;
    for (auto end = line.find(' '); end != std::string::npos; end = line.find(' ', begin)) {
        const auto found = code.find(line.substr(begin, end - begin));
        bits += found == code.end() ? "?" : found->second;
        begin = end + 1;
    }
    return bits;
}

void expectSentAsText(std::uint32_t data, unsigned bits)
{
    for (const bool withParity : {false, true}) {
        const std::string expected = frameText(data, bits, withParity);
        for (const bool idleHigh : {false, true}) {
            const std::string line = lineOf(lineSymbols(data, bits, withParity), idleHigh);
            ASSERT_EQ(decoded(line, idleHigh), expected) << data << ", " << bits << " bits";
        }
    }
}

/// What the plug-in's side makes of pulses that stand for `text`. Before them the word is all ones,
/// as a receiver starts with it.
ReceivedWord received(const std::string& text)
{
    static const std::map<std::string, unsigned> kPulses = {
        {"00", 1}, {"01", 2}, {"10", 3}, {"11", 4}};
    std::uint32_t word = 0xFFFFFFFF;
    for (std::string::size_type at = 0; at < text.size(); at += 2) {
        word = KxPGrey::appendSymbol(word, KxPGrey::symbolOfPulses(kPulses.at(text.substr(at, 2))));
    }
    return receivedWord(word, static_cast<unsigned>(text.size()));
}

void expectReceived(std::uint32_t data, unsigned bits)
{
    const std::string text = frameText(data, bits, true);
    const ReceivedWord reply = received(text);
    const std::uint64_t padded = std::uint64_t{data} * (bits % 2 == 1 ? 2 : 1);
    ASSERT_EQ(reply.payload, padded) << text;
    ASSERT_EQ(reply.word, padded * 4 + (text.back() == '1' ? 1 : 0)) << text;
    ASSERT_TRUE(reply.parityGood) << text;
    std::string wrong = text;
    wrong.back() = wrong.back() == '1' ? '0' : '1';
    ASSERT_FALSE(received(wrong).parityGood) << wrong;
}

TEST(LineCode, SendsTheMostSignificantPairFirstAndTheParityLast)
{
    EXPECT_EQ(sent(0x392, 10, true), (Symbols{3, 2, 1, 0, 2, 1}));
    EXPECT_EQ(sent(0x392, 10, false), (Symbols{3, 2, 1, 0, 2}));
    EXPECT_EQ(sent(0x391, 10, true), (Symbols{3, 2, 1, 0, 1, 1}));
    EXPECT_EQ(sent(0x390, 10, true), (Symbols{3, 2, 1, 0, 0, 0}));
}

TEST(LineCode, FillsAnOddNumberOfBitsUpAtTheLowerEnd)
{
    EXPECT_EQ(sent(0b101, 3, false), (Symbols{2, 2}));
    EXPECT_EQ(sent(1, 1, true), (Symbols{2, 1}));
    EXPECT_EQ(sent(0x7FFFFFFF, 31, false),
              (Symbols{3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 2}));
}

TEST(LineCode, BitsAboveTheWordCountNeitherAsDataNorForTheParity)
{
    EXPECT_EQ(sent(0xFFFFFFF8 + 0b101, 3, true), sent(0b101, 3, true));
    EXPECT_EQ(sent(0xFFFFFFFE, 1, true), (Symbols{0, 0}));
}

TEST(LineCode, SendsAllOf32Bits)
{
    EXPECT_EQ(sent(0x80000001, 32, true),
              (Symbols{2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0}));
    EXPECT_EQ(sent(0xFFFFFFFF, 32, false), Symbols(16, 3));
}

TEST(LineCode, SendsNothingForOtherLengths)
{
    for (const unsigned bits : {0U, 33U, 34U, 255U}) {
        EXPECT_EQ(lineSymbols(0x392, bits, true).count, 0U) << bits;
    }
    EXPECT_EQ(lineSymbols(0x392, 1, false).count, 1U);
    EXPECT_EQ(lineSymbols(0x392, 32, false).count, 16U);
}

TEST(LineCode, APulseLeadsAwayFromRestAndBack)
{
    EXPECT_EQ(lineOf(lineSymbols(0b1101, 4, false), true), "01010101 0101 ");
    EXPECT_EQ(lineOf(lineSymbols(0b1000, 4, false), false), "101010 10 ");
}

TEST(LineCode, EveryWordUpTo12BitsIsUnderstoodByAnotherDecoder)
{
    for (unsigned bits = 1; bits <= 12; ++bits) {
        for (std::uint32_t word = 0; word < (1U << bits); ++word) {
            ASSERT_NO_FATAL_FAILURE(expectSentAsText(word, bits));
        }
    }
}

TEST(LineCode, EveryWordUpTo12BitsOfAnotherCoderIsUnderstood)
{
    for (unsigned bits = 1; bits <= 12; ++bits) {
        for (std::uint32_t word = 0; word < (1U << bits); ++word) {
            ASSERT_NO_FATAL_FAILURE(expectReceived(word, bits));
        }
    }
}

RC_GTEST_PROP(LineCodeProperty, AnyWordIsUnderstoodByAnotherDecoder, (std::uint32_t word))
{
    // Bits above the word's length are part of the property: they are not sent.
    for (unsigned bits = 1; bits <= 32; ++bits) {
        expectSentAsText(word, bits);
    }
    RC_ASSERT(!testing::Test::HasFailure());
}

RC_GTEST_PROP(LineCodeProperty, AnyWordOfAnotherCoderIsUnderstood, (std::uint32_t word))
{
    // With its parity a word of 30 bits fills the 32 that are kept.
    for (unsigned bits = 1; bits <= 30; ++bits) {
        expectReceived(word % (std::uint32_t{1} << bits), bits);
    }
    RC_ASSERT(!testing::Test::HasFailure());
}

RC_GTEST_PROP(LineCodeProperty, OneWrongBitIsFoundUnlessItIsTheParitySymbolsUpperOne,
              (std::uint32_t data))
{
    const unsigned bits = *rc::gen::inRange(1U, 31U);
    const std::string text = frameText(data, bits, true);
    for (std::string::size_type at = 0; at < text.size(); ++at) {
        std::string wrong = text;
        wrong[at] = wrong[at] == '1' ? '0' : '1';
        RC_ASSERT(received(wrong).parityGood == (at == text.size() - 2));
    }
}

TEST(LineCode, ASymbolIsOneLessThanItsPulses)
{
    const std::map<std::uint32_t, std::uint32_t> symbols = {{1, 0}, {2, 1}, {3, 2}, {4, 3},
                                                            {0, 3}, {5, 0}, {8, 3}};
    for (const auto& [pulses, symbol] : symbols) {
        EXPECT_EQ(KxPGrey::symbolOfPulses(pulses), symbol) << pulses;
    }
}

TEST(LineCode, OfAReceivedWordOnlyItsOwnBitsCount)
{
    const ReceivedWord reply = receivedWord(0xFFFFFFFF, 12);
    EXPECT_EQ(reply.word, 0xFFFU);
    EXPECT_EQ(reply.payload, 0x3FFU);
    EXPECT_FALSE(reply.parityGood);
    EXPECT_EQ(receivedWord(0xFFFFFFFF, 31).word, 0x7FFFFFFFU);
    EXPECT_EQ(receivedWord(0xFFFFFFFF, 32).word, 0xFFFFFFFFU);
    EXPECT_EQ(receivedWord(0xFFFFFFFF, 32).payload, 0x3FFFFFFFU);
    EXPECT_EQ(receivedWord(0xFFFFFFFF, 255).word, 0xFFFFFFFFU);
}

TEST(LineCode, NothingReceivedIsAnEmptyWordOfGoodParity)
{
    const ReceivedWord reply = receivedWord(0xFFFFFFFF, 0);
    EXPECT_EQ(reply.word, 0U);
    EXPECT_EQ(reply.payload, 0U);
    EXPECT_TRUE(reply.parityGood);
    EXPECT_TRUE(receivedWord(0b00, 2).parityGood);
    EXPECT_FALSE(receivedWord(0b01, 2).parityGood);
}

} // namespace
