// Codes of signals: order, and how long each stays.
#include "grab/pending_signals.h"

#include <gtest/gtest.h>

#include <thread>

namespace kxhost {
namespace {

TEST(PendingSignalsTest, NothingPendsAtFirst)
{
    PendingSignals signals;
    EXPECT_EQ(signals.pollInLoop(), kNoSignal);
    EXPECT_EQ(signals.pollOutside(), kNoSignal);
    EXPECT_FALSE(signals.finishAsked());
    EXPECT_FALSE(signals.finishPending());
    signals.acted(kReload);
    signals.frameArrived();
    EXPECT_EQ(signals.pollInLoop(), kNoSignal);
}

TEST(PendingSignalsTest, CodesComeInTheirOrder)
{
    PendingSignals signals;
    signals.post(kLut12);
    signals.post(kReload);
    signals.post(kLut);
    EXPECT_EQ(signals.pollInLoop(), kLut12);
    signals.frameArrived();
    EXPECT_EQ(signals.pollInLoop(), kReload);
    signals.acted(kReload);
    EXPECT_EQ(signals.pollInLoop(), kLut);
    signals.frameArrived();
    EXPECT_EQ(signals.pollInLoop(), kNoSignal);
}

TEST(PendingSignalsTest, ACodeThatWaitsIsNotAddedAgain)
{
    for (const SignalCode code : {kReload, kLut, kLut12}) {
        PendingSignals signals;
        signals.post(code);
        signals.post(code);
        EXPECT_EQ(signals.pollInLoop(), code);
        signals.frameArrived();
        signals.acted(code);
        EXPECT_EQ(signals.pollInLoop(), kNoSignal);
        signals.post(code);
        EXPECT_EQ(signals.pollInLoop(), code) << "a later signal counts anew";
    }
}

TEST(PendingSignalsTest, FinishingGoesFirst)
{
    PendingSignals signals;
    signals.post(kReload);
    signals.post(kLut);
    signals.post(kFinishTerminate);
    EXPECT_EQ(signals.pollInLoop(), kFinishTerminate);
    signals.acted(kFinishTerminate);
    EXPECT_EQ(signals.pollInLoop(), kReload);
}

TEST(PendingSignalsTest, OnlyTheFirstFinishingCodeCounts)
{
    PendingSignals signals;
    signals.post(kFinishInterrupt);
    signals.post(kFinishTerminate);
    EXPECT_EQ(signals.pollInLoop(), kFinishInterrupt);
    signals.acted(kFinishInterrupt);
    signals.post(kFinishTerminate);
    EXPECT_EQ(signals.pollInLoop(), kNoSignal);
    EXPECT_TRUE(signals.finishAsked());
    EXPECT_FALSE(signals.finishPending());
}

TEST(PendingSignalsTest, ATableCodeStaysUntilAFrameArrivesBehindThePoll)
{
    for (const SignalCode code : {kLut, kLut12}) {
        PendingSignals signals;
        signals.post(code);
        signals.frameArrived(); // of a poll that came before the signal
        EXPECT_EQ(signals.pollInLoop(), code);
        signals.frameMissing();
        signals.frameArrived();
        EXPECT_EQ(signals.pollInLoop(), code) << "polled for a frame that was missing";
        signals.frameArrived();
        EXPECT_EQ(signals.pollInLoop(), kNoSignal);
    }
}

TEST(PendingSignalsTest, FinishingAndReloadStayBehindAFrame)
{
    for (const SignalCode code : {kFinishInterrupt, kFinishTerminate, kReload}) {
        PendingSignals signals;
        signals.post(code);
        EXPECT_EQ(signals.pollInLoop(), code);
        signals.frameArrived(); // a pass may have put a code of its own in its place
        EXPECT_EQ(signals.pollInLoop(), code);
        signals.acted(code);
        EXPECT_EQ(signals.pollInLoop(), kNoSignal);
    }
}

TEST(PendingSignalsTest, AFrameTakesAwayOnlyWhatWasPolledForIt)
{
    PendingSignals signals;
    signals.post(kLut);
    EXPECT_EQ(signals.pollInLoop(), kLut);
    signals.post(kFinishInterrupt);
    signals.frameArrived();
    EXPECT_EQ(signals.pollInLoop(), kFinishInterrupt);
    signals.acted(kFinishInterrupt);
    EXPECT_EQ(signals.pollInLoop(), kNoSignal);
}

TEST(PendingSignalsTest, OutsideTheLoopOnlyAReloadIsGiven)
{
    PendingSignals signals;
    signals.post(kLut);
    signals.post(kFinishTerminate);
    EXPECT_EQ(signals.pollOutside(), kNoSignal);
    signals.post(kReload);
    EXPECT_EQ(signals.pollOutside(), kReload);
    signals.acted(kReload);
    EXPECT_EQ(signals.pollOutside(), kNoSignal);
    EXPECT_EQ(signals.pollInLoop(), kFinishTerminate) << "kept for the next loop";
    signals.acted(kFinishTerminate);
    EXPECT_EQ(signals.pollInLoop(), kLut);
}

TEST(PendingSignalsTest, ASleepEndsWithASignal)
{
    using namespace std::chrono_literals;
    PendingSignals signals;
    signals.sleep(1ms);
    std::thread other([&] { signals.post(kFinishInterrupt); });
    signals.sleep(1h);
    other.join();
    EXPECT_TRUE(signals.finishAsked());
    signals.sleep(1h); // the end stays asked for
}

TEST(PendingSignalsTest, NothingIsLostBetweenThreads)
{
    PendingSignals signals;
    constexpr int kRounds = 2000;
    std::thread sender([&] {
        for (int round = 0; round < kRounds; ++round) {
            signals.post(kReload);
            signals.post(kLut);
        }
        signals.post(kFinishTerminate);
    });
    int last = kNoSignal;
    int reloads = 0;
    while (last != kFinishTerminate) {
        last = signals.pollInLoop();
        signals.frameArrived();
        reloads += last == kReload ? 1 : 0;
        if (last != kNoSignal) {
            signals.acted(last);
        }
    }
    sender.join();
    for (int code = signals.pollInLoop(); code != kNoSignal; code = signals.pollInLoop()) {
        reloads += code == kReload ? 1 : 0;
        signals.acted(code);
    }
    EXPECT_GE(reloads, 1);
    EXPECT_LE(reloads, kRounds);
}

} // namespace
} // namespace kxhost
