// The simulated I/O box: which answer to which command, when, and what is kept of it.
#include "line_fixture.h"

#include <gtest/gtest.h>

#include <pins/io_box.h>

using fcsim::IoBox;
using fcsim::IoBoxDescription;
using fcsim::IoBoxEntry;
using fcsim::IoBoxVerdict;
using fcsim::Misbehaviour;
using line::Plan;

namespace {

constexpr std::uint64_t kHalfUs = 2000;
/// From the last pulse of a command to its answer, with the default delay.
constexpr std::uint64_t kReplyAfterUs = 34 * kHalfUs + 60'000;

IoBoxDescription answering()
{
    IoBoxDescription description;
    description.answersOn = 1;
    return description;
}

/// Tells `box` of a command that begins at `startUs`; returns its last transition.
std::uint64_t command(IoBox& box, std::uint32_t word, unsigned bits, std::uint64_t startUs)
{
    const Plan plan = line::sent(line::symbolsOf(word, bits), kHalfUs, false, startUs);
    for (const fcsim::LineTransition& transition : plan) {
        box.change(transition);
    }
    return plan.back().atUs;
}

/// The one entry about a command to a box of that description.
IoBoxEntry entryOf(const IoBoxDescription& description, std::uint32_t word, unsigned bits)
{
    IoBox box(description);
    box.catchUp(command(box, word, bits, 1000) + kReplyAfterUs);
    const auto log = box.takeLog();
    EXPECT_EQ(log.size(), 1U);
    return log.empty() ? IoBoxEntry() : log.front();
}

TEST(IoBoxTest, WithoutRepliesItEchoes)
{
    const IoBoxEntry entry = entryOf(answering(), 0x392, 10);
    EXPECT_EQ(entry.verdict, IoBoxVerdict::good);
    EXPECT_EQ(entry.word, 0x392U);
    EXPECT_EQ(entry.bits, 10U);
    EXPECT_EQ(entry.firstEdgeUs, 1000U);
    EXPECT_TRUE(entry.answered);
    EXPECT_EQ(entry.replyWord, 0x392U);
    EXPECT_EQ(entry.replyBits, 10U);
    EXPECT_EQ(entry.replyStartUs, entry.lastEdgeUs + kReplyAfterUs);
}

TEST(IoBoxTest, TheFirstReplyThatFitsCounts)
{
    IoBoxDescription description = answering();
    description.replies = {{0x5, {0x1, 4}}, {std::nullopt, {0x2, 6}}, {0x6, {0x3, 8}}};
    EXPECT_EQ(entryOf(description, 0x5, 4).replyWord, 0x1U);
    EXPECT_EQ(entryOf(description, 0x6, 4).replyWord, 0x2U);
    EXPECT_EQ(entryOf(description, 0x6, 4).replyBits, 6U);
}

TEST(IoBoxTest, ACommandWithoutAReplyStaysUnanswered)
{
    IoBoxDescription description = answering();
    description.replies = {{0x5, {0x1, 4}}};
    const IoBoxEntry entry = entryOf(description, 0x6, 4);
    EXPECT_EQ(entry.verdict, IoBoxVerdict::good);
    EXPECT_FALSE(entry.answered);
    EXPECT_EQ(entry.replyStartUs, 0U);
}

TEST(IoBoxTest, ABoxWithoutAnAnswerPinOnlyListens)
{
    EXPECT_FALSE(entryOf(IoBoxDescription(), 0x392, 10).answered);
}

TEST(IoBoxTest, ABadCommandIsLoggedButNotAnswered)
{
    IoBox box(answering());
    const Plan plan = line::sent({1, 2, 3}, kHalfUs, false, 0);
    for (const fcsim::LineTransition& transition : plan) {
        box.change(transition);
    }
    box.catchUp(10'000'000);
    const auto log = box.takeLog();
    ASSERT_EQ(log.size(), 1U);
    EXPECT_EQ(log[0].verdict, IoBoxVerdict::wrongParity);
    EXPECT_FALSE(log[0].answered);
}

TEST(IoBoxTest, TheAnswerLineFollowsTheAnswer)
{
    IoBox box(answering());
    const std::uint64_t startUs = command(box, 0x1, 2, 0) + kReplyAfterUs;
    box.catchUp(startUs);
    EXPECT_FALSE(box.level(startUs - 1));
    EXPECT_TRUE(box.level(startUs));
    EXPECT_TRUE(box.level(startUs + 11'999));
    EXPECT_FALSE(box.level(startUs + 12'000));
    EXPECT_TRUE(box.level(startUs + 24'000));
}

TEST(IoBoxTest, TheAnswerLineRestsAtTheIdleLevel)
{
    IoBoxDescription description = answering();
    EXPECT_FALSE(IoBox(description).level(0));
    description.shape.idleHigh = true;
    EXPECT_TRUE(IoBox(description).level(0));
}

TEST(IoBoxTest, ANewCommandEndsAnAnswer)
{
    IoBox box(answering());
    const std::uint64_t firstUs = command(box, 0xFFFF, 16, 0) + kReplyAfterUs;
    command(box, 0x3, 4, firstUs); // while the first answer is on its way
    box.catchUp(firstUs + 1'000'000);
    const auto log = box.takeLog();
    ASSERT_EQ(log.size(), 2U);
    EXPECT_FALSE(box.level(log[0].replyEndUs - 1'000));
    EXPECT_TRUE(box.level(log[1].replyStartUs));
}

TEST(IoBoxTest, AFewAnswersMayBeBad)
{
    IoBoxDescription description = answering();
    description.misbehaviour = Misbehaviour::silence;
    description.misbehaves = 2;
    IoBox box(description);
    for (unsigned i = 0; i < 3; ++i) {
        box.catchUp(command(box, i, 4, i * 10'000'000ULL) + 5'000'000);
    }
    const auto log = box.takeLog();
    ASSERT_EQ(log.size(), 3U);
    EXPECT_FALSE(log[0].answered);
    EXPECT_FALSE(log[1].answered);
    EXPECT_TRUE(log[2].answered);
}

TEST(IoBoxTest, EachNoisyAnswerIsAnother)
{
    IoBoxDescription description = answering();
    description.misbehaviour = Misbehaviour::noise;
    IoBox box(description);
    std::vector<std::vector<bool>> samples(2);
    for (unsigned i = 0; i < 2; ++i) {
        const std::uint64_t startUs = command(box, 0x392, 10, i * 10'000'000ULL) + kReplyAfterUs;
        box.catchUp(startUs);
        for (std::uint64_t us = 0; us < 1'000'000; us += 100) {
            samples[i].push_back(box.level(startUs + us));
        }
    }
    EXPECT_NE(samples[0], samples[1]);
}

TEST(IoBoxTest, TheLogKeepsTheNewestEntries)
{
    IoBox box(answering());
    for (unsigned i = 0; i < 1100; ++i) {
        command(box, i, 12, i * 10'000'000ULL);
    }
    box.catchUp(1100 * 10'000'000ULL);
    const auto log = box.takeLog();
    ASSERT_EQ(log.size(), 1024U);
    EXPECT_EQ(log.front().word, 76U);
    EXPECT_EQ(log.back().word, 1099U);
    EXPECT_TRUE(box.takeLog().empty());
}

} // namespace
