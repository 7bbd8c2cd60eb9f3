// The plug-in's receiver under noise, in counted trials: what never makes a word, what always
// arrives, and how often a wrong word passes at most.
#include "line_channel.h"

#include <gtest/gtest.h>

using line::Tally;
using line::Trial;
using line::tryReplies;

namespace {

constexpr unsigned kReplies = 300;

Trial trial(double flips, double pulsesPerSecond)
{
    Trial trial;
    trial.replies = kReplies;
    trial.noise = {flips, pulsesPerSecond};
    return trial;
}

Trial silence(double flips, double pulsesPerSecond)
{
    Trial silent = trial(flips, pulsesPerSecond);
    silent.bits = 0;
    return silent;
}

TEST(LineNoise, WithoutNoiseEachWordArrives)
{
    for (const unsigned bits : {2U, 12U, 30U}) {
        Trial clean = trial(0, 0);
        clean.bits = bits;
        clean.polls = 2000;
        EXPECT_EQ(tryReplies(clean).right, kReplies) << bits;
    }
}

TEST(LineNoise, ShortPulsesAloneNeverMakeAWord)
{
    for (const double perSecond : {1.0, 10.0, 50.0, 150.0}) {
        EXPECT_EQ(tryReplies(silence(0, perSecond)).timedOut, kReplies) << perSecond;
    }
}

TEST(LineNoise, SilenceUnderRareFlipsIsNoWord)
{
    const Tally tally = tryReplies(silence(0.003, 0));
    EXPECT_EQ(tally.timedOut, kReplies);
}

/// Most words arrive, and few wrong ones pass; of those nearly all have another length.
void expectBounds(const Trial& noisy, double leastRight, double mostWrong)
{
    const Tally tally = tryReplies(noisy);
    EXPECT_GE(tally.right, leastRight * kReplies);
    EXPECT_LE(tally.otherLength + tally.otherBits, mostWrong * kReplies);
    EXPECT_LE(tally.otherBits, 0.05 * kReplies);
    // The bounds say something: noise does get through.
    EXPECT_GT(tally.wrongParity + tally.timedOut, 0U);
}

TEST(LineNoise, FlippedSamplesCostWords)
{
    expectBounds(trial(0.001, 0), 0.80, 0.10);
    expectBounds(trial(0.01, 0), 0.15, 0.35);
    expectBounds(trial(0.10, 0), 0.0, 0.05);
}

TEST(LineNoise, ShortPulsesCostWords)
{
    expectBounds(trial(0, 0.3), 0.85, 0.08);
    expectBounds(trial(0, 3), 0.35, 0.30);
    expectBounds(trial(0, 100), 0.0, 0.02);
}

} // namespace
