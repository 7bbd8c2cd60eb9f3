// The ledger of frames: what each history of the camera's counter comes to.
#include "export/frame_ledger.h"

#include <gtest/gtest.h>

#include <set>

#include <rapidcheck/gtest.h>

namespace kxhost {
namespace {

using Counter = std::optional<std::uint32_t>;

class Ledger : public testing::Test {
protected:
    ~Ledger() override { EXPECT_EQ(ledger_.totals().imbalance(), 0); }

    void deliver(std::initializer_list<std::uint32_t> counters)
    {
        for (const std::uint32_t counter : counters) {
            ledger_.delivered(counter);
        }
    }
    std::uint64_t lost(FrameCause cause) const { return ledger_.totals().causes[cause]; }
    std::uint64_t lost() const { return ledger_.totals().causes.sum(); }

    void expectRange(std::size_t which, std::uint64_t first, std::uint64_t last, FrameCause cause,
                     std::uint64_t count, std::uint64_t stretch = 1)
    {
        ASSERT_LT(which, ledger_.ranges().size());
        const LostRange& range = ledger_.ranges()[which];
        EXPECT_EQ(range.stretch, stretch);
        EXPECT_EQ(range.first, first);
        EXPECT_EQ(range.last, last);
        EXPECT_EQ(range.counts[cause], count);
    }
    void expectStretch(std::size_t which, CountBegin begin, std::uint64_t first, std::uint64_t last)
    {
        ASSERT_LT(which, ledger_.stretches().size());
        const CountStretch& stretch = ledger_.stretches()[which];
        EXPECT_EQ(stretch.begin, begin);
        EXPECT_EQ(stretch.first, first);
        EXPECT_EQ(stretch.last, last);
    }

    FrameLedger ledger_;
};

TEST_F(Ledger, KnowsNothingAtFirst)
{
    const LedgerTotals totals = ledger_.totals();
    EXPECT_FALSE(totals.counted);
    EXPECT_EQ(totals.values, 0U);
    EXPECT_EQ(totals.arrived, 0U);
    EXPECT_TRUE(ledger_.ranges().empty());
    EXPECT_TRUE(ledger_.stretches().empty());
}

TEST_F(Ledger, CountsFromTheFirstValueThatItSees)
{
    ledger_.captureStarted();
    ledger_.lost(7, FrameCause::kTiming);
    deliver({8, 9, 10});
    const LedgerTotals totals = ledger_.totals();
    EXPECT_TRUE(totals.counted);
    EXPECT_EQ(totals.values, 4U);
    EXPECT_EQ(totals.delivered, 3U);
    EXPECT_EQ(totals.arrived, 4U);
    EXPECT_EQ(lost(FrameCause::kTiming), 1U);
    expectStretch(0, CountBegin::kStart, 7, 10);
    expectRange(0, 7, 7, FrameCause::kTiming, 1);
}

TEST_F(Ledger, AGapIsTheCamerasWhenNothingElseWasReported)
{
    deliver({100, 101, 105});
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 3U);
    EXPECT_EQ(ledger_.totals().values, 6U);
    expectRange(0, 102, 104, FrameCause::kCameraSkipped, 3);
}

TEST_F(Ledger, FailedRetrievalsExplainAsManyFramesAsWereReported)
{
    deliver({1});
    ledger_.retrievalFailed();
    ledger_.retrievalFailed();
    deliver({5, 8});
    EXPECT_EQ(lost(FrameCause::kRetrievalFailed), 2U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 3U) << "one beside them, two later";
    expectRange(0, 2, 4, FrameCause::kRetrievalFailed, 2);
    expectRange(0, 2, 4, FrameCause::kCameraSkipped, 1);
    expectRange(1, 6, 7, FrameCause::kCameraSkipped, 2);
}

TEST_F(Ledger, AWaitInVainIsNoLostFrame)
{
    deliver({1});
    for (int i = 0; i < 5; ++i) {
        ledger_.retrievalFailed();
    }
    deliver({2, 4});
    EXPECT_EQ(lost(FrameCause::kRetrievalFailed), 0U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 1U) << "no failure was reported in this gap";
    EXPECT_EQ(ledger_.totals().failedRetrievals, 5U);
    EXPECT_EQ(ledger_.totals().failedWithoutFrame(), 5U);
    EXPECT_EQ(ledger_.totals().failedTakenForLost(), 0U);
    EXPECT_EQ(ledger_.totals().lostByCamera(), 1U);
    EXPECT_EQ(ledger_.totals().lost(), 1U);
}

TEST_F(Ledger, AFailedRetrievalInAGapIsLostOnce)
{
    deliver({1});
    ledger_.retrievalFailed();
    ledger_.retrievalFailed();
    deliver({3, 5});
    EXPECT_EQ(ledger_.totals().failedWithoutFrame(), 1U);
    EXPECT_EQ(ledger_.totals().lostByCamera(), 2U) << "one failed, one was skipped";
    EXPECT_EQ(ledger_.totals().lost(), 2U);
}

TEST_F(Ledger, WithoutNumbersAFailedRetrievalIsAllThatIsKnownOfALoss)
{
    ledger_.retrievalFailed();
    EXPECT_EQ(ledger_.totals().lost(), 0U) << "no frame has come: nothing says that one was missed";
    ledger_.delivered({});
    EXPECT_EQ(ledger_.totals().failedTakenForLost(), 1U);
    EXPECT_EQ(ledger_.totals().lostByCamera(), 1U);
    EXPECT_EQ(ledger_.totals().lost(), 1U);
    deliver({1});
    EXPECT_EQ(ledger_.totals().lost(), 0U) << "the camera numbers frames after all";
}

TEST_F(Ledger, WaitingForAPlaceExplainsWhatFailuresDoNot)
{
    deliver({1});
    ledger_.retrievalFailed();
    ledger_.heldUp(1);
    ledger_.heldUp(1);
    deliver({7});
    EXPECT_EQ(lost(FrameCause::kRetrievalFailed), 1U);
    EXPECT_EQ(lost(FrameCause::kNoBuffer), 2U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 2U);
    deliver({9});
    EXPECT_EQ(lost(FrameCause::kNoBuffer), 2U) << "that wait was before the frame before";
}

TEST_F(Ledger, FramesThatArrivedAndWereRefusedKeepTheirValues)
{
    deliver({1});
    ledger_.lost(2, FrameCause::kQueueFull);
    ledger_.lost(3, FrameCause::kQueueFull);
    ledger_.lost(4, FrameCause::kUnusable);
    ledger_.lost(6, FrameCause::kQueueFull);
    deliver({7});
    EXPECT_EQ(lost(FrameCause::kQueueFull), 3U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 1U);
    ASSERT_EQ(ledger_.ranges().size(), 4U);
    expectRange(0, 2, 3, FrameCause::kQueueFull, 2);
    expectRange(1, 4, 4, FrameCause::kUnusable, 1);
    expectRange(2, 5, 5, FrameCause::kCameraSkipped, 1);
    expectRange(3, 6, 6, FrameCause::kQueueFull, 1);
}

TEST_F(Ledger, AFrameWithoutMemoryDoesNotRunIntoTheGapBeforeIt)
{
    deliver({1});
    ledger_.lost(2, FrameCause::kNoBuffer);
    ledger_.heldUp(1);
    ledger_.lost(40, FrameCause::kNoBuffer);
    EXPECT_EQ(lost(FrameCause::kNoBuffer), 3U);
    ledger_.lost(4, FrameCause::kUnusable); // so that 40 proves wrong, and nothing was missed
    EXPECT_EQ(lost(FrameCause::kNoBuffer), 2U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 0U);
    expectRange(0, 2, 2, FrameCause::kNoBuffer, 1);
}

TEST_F(Ledger, TheCounterWrapsAndTheValuesGoOn)
{
    deliver({0xFFFFFFFE, 0xFFFFFFFF, 0, 2});
    EXPECT_EQ(ledger_.totals().values, 5U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 1U);
    expectStretch(0, CountBegin::kStart, 0xFFFFFFFE, 0x100000002);
    expectRange(0, 0x100000001, 0x100000001, FrameCause::kCameraSkipped, 1);
    ledger_.notWritten(0);
    expectRange(1, 0x100000000, 0x100000000, FrameCause::kExportFailed, 1);
}

TEST_F(Ledger, HalfOfTheCountersRangeIsBehind)
{
    deliver({0, 0x7FFFFFFF});
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 0x7FFFFFFEU);
    deliver({0xFFFFFFFF});
    EXPECT_EQ(ledger_.totals().offCounter, 1U) << "that is 2^31 ahead, or behind";
}

TEST_F(Ledger, ARestartedCaptureBeginsItsOwnCount)
{
    deliver({0, 1, 2, 3});
    ledger_.captureStarted();
    deliver({0, 1});
    EXPECT_EQ(lost(), 0U);
    EXPECT_EQ(ledger_.totals().values, 6U);
    expectStretch(0, CountBegin::kStart, 0, 3);
    expectStretch(1, CountBegin::kRestart, 0, 1);
}

TEST_F(Ledger, ALostCameraThatCountsAnewLeavesAnUnknownNumber)
{
    deliver({40, 41});
    ledger_.retrievalFailed();
    ledger_.cameraLost();
    ledger_.captureStarted();
    deliver({3, 4});
    EXPECT_EQ(lost(), 0U);
    expectStretch(1, CountBegin::kDetached, 3, 4);
    ledger_.captureStarted();
    deliver({0});
    expectStretch(2, CountBegin::kRestart, 0, 0);
}

TEST_F(Ledger, ALostCameraThatCountsOnHasDetachedFrames)
{
    deliver({40, 41});
    ledger_.retrievalFailed();
    ledger_.cameraLost();
    ledger_.captureStarted();
    ledger_.lost(50, FrameCause::kTiming);
    deliver({51, 53});
    EXPECT_EQ(lost(FrameCause::kDetached), 8U);
    EXPECT_EQ(lost(FrameCause::kRetrievalFailed), 0U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 1U);
    EXPECT_EQ(ledger_.stretches().size(), 1U);
    expectRange(0, 42, 49, FrameCause::kDetached, 8);
}

TEST_F(Ledger, AStoppedCaptureThatCountsOnHasStoppedFrames)
{
    deliver({15});
    ledger_.captureStarted();
    deliver({18});
    EXPECT_EQ(lost(FrameCause::kStopped), 2U);
    EXPECT_EQ(ledger_.stretches().size(), 1U);
}

TEST_F(Ledger, TheFirstSixteenValuesOfACaptureAreTakenForANewCount)
{
    deliver({2});
    ledger_.captureStarted();
    deliver({15});
    EXPECT_EQ(ledger_.stretches().size(), 2U);
    ledger_.captureStarted();
    deliver({16});
    EXPECT_EQ(ledger_.stretches().size(), 2U);
    EXPECT_EQ(lost(), 0U);
}

TEST_F(Ledger, ACaptureThatBeginsWithTheSameValueBeginsAnew)
{
    deliver({20});
    ledger_.captureStarted();
    deliver({20});
    EXPECT_EQ(ledger_.stretches().size(), 2U);
}

TEST_F(Ledger, FailuresBeforeTheFirstFrameOfACaptureConcernNoKnownFrame)
{
    ledger_.retrievalFailed();
    ledger_.captureStarted();
    ledger_.retrievalFailed();
    deliver({4, 6});
    EXPECT_EQ(lost(FrameCause::kRetrievalFailed), 0U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 1U);
}

TEST_F(Ledger, ACameraWithoutCounterIsNotCounted)
{
    ledger_.lost({}, FrameCause::kTiming);
    ledger_.delivered({});
    ledger_.retrievalFailed();
    ledger_.lost({}, FrameCause::kQueueFull);
    const LedgerTotals totals = ledger_.totals();
    EXPECT_FALSE(totals.counted);
    EXPECT_EQ(totals.values, 0U);
    EXPECT_EQ(totals.offCounter, 3U);
    EXPECT_EQ(totals.delivered, 1U);
    EXPECT_TRUE(ledger_.ranges().empty());
}

TEST_F(Ledger, FramesWithoutANumberStandForWhatTheCounterLacks)
{
    deliver({1});
    ledger_.delivered({});
    ledger_.delivered({});
    deliver({5});
    EXPECT_EQ(ledger_.totals().standIns, 2U);
    EXPECT_EQ(ledger_.totals().offCounter, 0U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 1U);
    expectRange(0, 2, 4, FrameCause::kCameraSkipped, 1);
}

TEST_F(Ledger, ARepeatedValueIsOffTheCounter)
{
    deliver({1, 2, 2, 3});
    EXPECT_EQ(ledger_.totals().values, 3U);
    EXPECT_EQ(ledger_.totals().offCounter, 1U);
    EXPECT_EQ(lost(), 0U);
}

TEST_F(Ledger, ACounterThatStandsStillCountsOneValue)
{
    deliver({0, 0, 0, 0});
    EXPECT_EQ(ledger_.totals().values, 1U);
    EXPECT_EQ(ledger_.totals().offCounter, 3U);
    EXPECT_EQ(ledger_.stretches().size(), 1U);
}

TEST_F(Ledger, ASingleValueTooLargeIsTakenBack)
{
    deliver({1, 2, 1003, 4, 5});
    EXPECT_EQ(lost(), 0U);
    EXPECT_EQ(ledger_.totals().standIns, 1U);
    EXPECT_EQ(ledger_.totals().values, 5U);
    EXPECT_TRUE(ledger_.ranges().empty());
    EXPECT_EQ(ledger_.stretches().size(), 1U);
}

TEST_F(Ledger, SeveralValuesTooLargeAreTakenBackTogether)
{
    deliver({1, 2, 1003, 1004, 1005, 6});
    EXPECT_EQ(lost(), 0U);
    EXPECT_EQ(ledger_.totals().standIns, 3U);
    EXPECT_EQ(ledger_.totals().values, 6U);
}

TEST_F(Ledger, WhatWasLostBesideAWrongValueStays)
{
    deliver({1, 1003, 5});
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 2U) << "two of 2 to 4; one was the wrong one";
    expectRange(0, 2, 4, FrameCause::kCameraSkipped, 2);
}

TEST_F(Ledger, AValueThatDoesNotFitBehindTheJumpProvesNothing)
{
    deliver({10, 20, 21, 12}); // three frames, and 12 is only the second value
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 9U);
    EXPECT_EQ(ledger_.totals().offCounter, 1U);
    deliver({22});
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 9U);
}

TEST_F(Ledger, ARepetitionBehindAGapDoesNotTakeItBack)
{
    deliver({1, 5, 5, 6});
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 3U);
    EXPECT_EQ(ledger_.totals().offCounter, 1U);
}

TEST_F(Ledger, ASingleValueTooSmallStandsForItsPlace)
{
    deliver({10, 11, 2, 13, 14});
    EXPECT_EQ(lost(), 0U);
    EXPECT_EQ(ledger_.totals().standIns, 1U);
    EXPECT_EQ(ledger_.totals().values, 5U);
    EXPECT_EQ(ledger_.totals().offCounter, 0U);
}

TEST_F(Ledger, TwoSmallerValuesThatCountOnAreANewCount)
{
    deliver({10, 11});
    ledger_.retrievalFailed();
    ledger_.lost(0, FrameCause::kQueueFull);
    deliver({2});
    expectStretch(0, CountBegin::kStart, 10, 11);
    expectStretch(1, CountBegin::kReset, 0, 2);
    EXPECT_EQ(ledger_.totals().offCounter, 0U);
    EXPECT_EQ(lost(FrameCause::kRetrievalFailed), 0U) << "it failed before the count began";
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), 1U);
    expectRange(0, 0, 0, FrameCause::kQueueFull, 1, 2);
    expectRange(1, 1, 1, FrameCause::kCameraSkipped, 1, 2);
}

TEST_F(Ledger, AFrameThatCouldNotBeWrittenIsNoLongerDelivered)
{
    deliver({3, 4, 5, 6});
    ledger_.notWritten(4);
    ledger_.notWritten(5);
    EXPECT_EQ(ledger_.totals().delivered, 2U);
    EXPECT_EQ(lost(FrameCause::kExportFailed), 2U);
    expectRange(0, 4, 5, FrameCause::kExportFailed, 2);
    ledger_.notWritten({});
    ledger_.notWritten(99);
    EXPECT_EQ(lost(FrameCause::kExportFailed), 4U);
    EXPECT_EQ(ledger_.ranges().size(), 1U) << "without a value there is no range";
}

TEST_F(Ledger, AFrameThatCouldNotBeWrittenIsLookedForInTheLatestCount)
{
    deliver({0, 1, 2});
    ledger_.captureStarted();
    deliver({0, 1});
    ledger_.notWritten(1);
    ledger_.notWritten(2);
    expectRange(0, 1, 1, FrameCause::kExportFailed, 1, 2);
    expectRange(1, 2, 2, FrameCause::kExportFailed, 1, 1);
}

TEST_F(Ledger, RangesBeyondTheLimitAreCountedOnly)
{
    for (std::uint32_t i = 0; i <= FrameLedger::kMostRanges + 1; ++i) {
        deliver({2 * i});
    }
    EXPECT_EQ(ledger_.ranges().size(), FrameLedger::kMostRanges);
    EXPECT_EQ(ledger_.totals().rangesNotListed, 1U);
    EXPECT_EQ(lost(FrameCause::kCameraSkipped), FrameLedger::kMostRanges + 1);
    deliver({2000});
    EXPECT_EQ(ledger_.totals().rangesNotListed, 2U);
    deliver({2 * (FrameLedger::kMostRanges + 1) + 2}); // which takes that jump back
    EXPECT_EQ(ledger_.totals().rangesNotListed, 1U);
}

TEST_F(Ledger, OldStretchesAreSummedUp)
{
    for (std::size_t i = 0; i <= FrameLedger::kMostStretches; ++i) {
        ledger_.captureStarted();
        deliver({0, 2});
    }
    const LedgerTotals totals = ledger_.totals();
    EXPECT_EQ(totals.values, 3 * (FrameLedger::kMostStretches + 1));
    EXPECT_EQ(totals.stretchesNotListed, 1U);
    EXPECT_EQ(ledger_.stretches().size(), FrameLedger::kMostStretches);
    expectRange(FrameLedger::kMostStretches, 1, 1, FrameCause::kCameraSkipped, 1,
                FrameLedger::kMostStretches + 1);
}

TEST_F(Ledger, EveryCauseAndBeginningHasAWordOfItsOwn)
{
    std::set<std::string> words;
    for (std::size_t i = 0; i < kFrameCauses; ++i) {
        words.insert(causeWord(static_cast<FrameCause>(i)));
    }
    EXPECT_EQ(words.size(), kFrameCauses);
    EXPECT_STREQ(causeWord(FrameCause::kTiming), "timing");
    EXPECT_STREQ(causeWord(FrameCause::kDetached), "detached");
    EXPECT_STREQ(countBeginWord(CountBegin::kStart), "start");
    EXPECT_STREQ(countBeginWord(CountBegin::kReset), "reset");
}

/// What truly happens to one frame of the camera's.
enum class Truth : std::uint8_t { delivered, queueFull, skipped, failed };

RC_GTEST_PROP(LedgerProperty, AttributesWhatHappenedExactly, ())
{
    const auto start = *rc::gen::arbitrary<std::uint32_t>();
    const auto truth = *rc::gen::container<std::vector<Truth>>(
        rc::gen::element(Truth::delivered, Truth::queueFull, Truth::skipped, Truth::failed));
    FrameLedger ledger;
    ledger.delivered(start);
    std::array<std::uint64_t, 4> happened{1, 0, 0, 0};
    std::array<std::uint64_t, 4> pending{};
    std::uint32_t counter = start;
    for (const Truth each : truth) {
        ++counter;
        ++pending[static_cast<std::size_t>(each)];
        if (each == Truth::failed) {
            ledger.retrievalFailed();
        } else if (each == Truth::delivered) {
            ledger.delivered(counter);
        } else if (each == Truth::queueFull) {
            ledger.lost(counter, FrameCause::kQueueFull);
        }
        if (each == Truth::delivered || each == Truth::queueFull) { // what came before is known
            for (std::size_t i = 0; i < pending.size(); ++i) {
                happened[i] += std::exchange(pending[i], 0);
            }
        }
    }
    const LedgerTotals totals = ledger.totals();
    RC_ASSERT(totals.imbalance() == 0);
    RC_ASSERT(totals.delivered == happened[0]);
    RC_ASSERT(totals.causes[FrameCause::kQueueFull] == happened[1]);
    RC_ASSERT(totals.causes[FrameCause::kCameraSkipped] == happened[2]);
    RC_ASSERT(totals.causes[FrameCause::kRetrievalFailed] == happened[3]);
    RC_ASSERT(totals.causes.sum() == happened[1] + happened[2] + happened[3]);
}

RC_GTEST_PROP(LedgerProperty, BalancesWhateverItIsTold, ())
{
    FrameLedger ledger;
    std::uint64_t delivered = 0;
    std::uint64_t arrived = 0;
    const auto steps = *rc::gen::container<std::vector<std::pair<unsigned, std::uint32_t>>>(
        rc::gen::pair(rc::gen::inRange(0U, 8U), rc::gen::inRange(0U, 12U)));
    for (const auto& [what, number] : steps) {
        const Counter counter = number == 0 ? Counter() : Counter(number * 5 % 29);
        switch (what) {
        case 0:
            ledger.captureStarted();
            break;
        case 1:
            ledger.cameraLost();
            break;
        case 2:
            ledger.retrievalFailed();
            break;
        case 3:
            ledger.heldUp(number);
            break;
        case 4:
            ledger.lost(counter, FrameCause::kUnusable);
            ++arrived;
            break;
        case 5:
            if (delivered > 0) {
                ledger.notWritten(counter);
                --delivered;
            }
            break;
        default:
            ledger.delivered(counter);
            ++arrived;
            ++delivered;
        }
        const LedgerTotals totals = ledger.totals();
        RC_ASSERT(totals.imbalance() == 0);
        RC_ASSERT(totals.delivered == delivered);
        RC_ASSERT(totals.arrived == arrived);
        RC_ASSERT(totals.offCounter <= arrived);
        RC_ASSERT(totals.causes.sum() < (1ULL << 40U)); // none has gone below zero
        for (const LostRange& range : ledger.ranges()) {
            RC_ASSERT(range.counts.sum() >= 1 &&
                      range.counts.sum() <= range.last - range.first + 1);
        }
    }
}

} // namespace
} // namespace kxhost
