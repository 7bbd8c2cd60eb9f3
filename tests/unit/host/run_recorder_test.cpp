// Tests of what is remembered of a grab for its report.
#include "report/run_recorder.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using kxhost::ContactSheet;
using kxhost::FrameInfo;
using kxhost::Instance;
using kxhost::RunRecord;
using kxhost::RunRecorder;
using kxhost::ScenarioValues;
using kxhost::Thumbnail;

std::vector<std::uint64_t> numbersOf(const std::vector<Thumbnail>& thumbnails)
{
    std::vector<std::uint64_t> numbers;
    for (const Thumbnail& each : thumbnails) {
        numbers.push_back(each.number);
    }
    return numbers;
}

Thumbnail numbered(std::uint64_t number)
{
    Thumbnail thumbnail;
    thumbnail.number = number;
    return thumbnail;
}

/// Offers frames 1 to `last`, as writers do. Returns how many were made into pictures.
std::size_t offer(ContactSheet& sheet, std::uint64_t last)
{
    std::size_t made = 0;
    for (std::uint64_t number = 1; number <= last; ++number) {
        if (sheet.wants(number)) {
            sheet.add(numbered(number));
            ++made;
        }
    }
    sheet.addLast(numbered(last));
    return made;
}

TEST(ContactSheet, AShortRunIsShownWhole)
{
    ContactSheet sheet;
    offer(sheet, 5);
    EXPECT_EQ(numbersOf(sheet.chosen()), (std::vector<std::uint64_t>{1, 2, 3, 4, 5}));
}

TEST(ContactSheet, ALongRunIsShownEvenlyWithBothEnds)
{
    constexpr std::uint64_t kLast = 100'000;
    ContactSheet sheet;
    EXPECT_LT(offer(sheet, kLast), 400U) << "pictures are made of few frames";
    const std::vector<std::uint64_t> numbers = numbersOf(sheet.chosen());
    ASSERT_GT(numbers.size(), ContactSheet::kShown / 2);
    ASSERT_LE(numbers.size(), ContactSheet::kShown + 1);
    EXPECT_EQ(numbers.front(), 1U);
    EXPECT_EQ(numbers.back(), kLast);
    for (std::size_t i = 2; i + 1 < numbers.size(); ++i) {
        EXPECT_EQ(numbers[i] - numbers[i - 1], numbers[1] - numbers[0]) << i;
    }
    EXPECT_LE(numbers.back() - numbers[numbers.size() - 2], numbers[1] - numbers[0]);
}

TEST(ContactSheet, IsEvenWhateverTheLength)
{
    for (std::uint64_t last = 1; last < 300; ++last) {
        ContactSheet sheet;
        offer(sheet, last);
        const std::vector<std::uint64_t> numbers = numbersOf(sheet.chosen());
        ASSERT_LE(numbers.size(), ContactSheet::kShown + 1) << last;
        EXPECT_EQ(numbers.front(), 1U);
        EXPECT_EQ(numbers.back(), last);
        for (std::size_t i = 2; i + 1 < numbers.size(); ++i) {
            EXPECT_EQ(numbers[i] - numbers[i - 1], numbers[1] - numbers[0]) << last;
        }
    }
}

TEST(ContactSheet, FramesMayComeInAnyOrderAndLate)
{
    ContactSheet sheet;
    EXPECT_TRUE(sheet.wants(4));
    for (std::uint64_t number = 50; number >= 5; --number) {
        sheet.add(numbered(number));
    }
    sheet.add(numbered(1));
    sheet.add(numbered(2));
    sheet.add(numbered(3)); // the 49th: every second one is let go
    EXPECT_FALSE(sheet.wants(4));
    sheet.add(numbered(4)); // was wanted when its picture was begun
    sheet.addLast(numbered(50));
    for (const std::uint64_t number : numbersOf(sheet.chosen())) {
        EXPECT_TRUE(number % 2 == 1 || number == 50) << number;
    }
}

/// Frames of 2 x 1 pixels, as the queue shows them: 1000 us apart, arrived 300 us after they began.
class Recorder : public testing::Test {
protected:
    ScenarioValues next()
    {
        ++number_;
        ScenarioValues values;
        values.timestampUs = 5'000'000 + 1000 * number_;
        values.cameraTimeUs = 1000 * number_; // whole cycles
        values.ledger.stretch = 1;
        values.times = {.arrivedUs = *values.timestampUs + 300,
                        .steadyUs = 70'000 + 1000 * number_,
                        .handedUs = 20,
                        .handOverUs = 30};
        return values;
    }

    /// What the disk had room for.
    enum class Written { kAll, kPicture, kNothing };

    void show(const ScenarioValues& values, Written written = Written::kAll)
    {
        const FrameInfo info{Instance::kRaw, 2, 1, "MONO8T", *values.timestampUs};
        const std::vector<std::uint8_t> pixels = {static_cast<std::uint8_t>(number_), 255};
        if (written != Written::kNothing) {
            recorder_.look({number_, info, pixels, values});
        }
        const bool isWhole = written == Written::kAll;
        recorder_.released({number_, *values.timestampUs, values, isWhole, 40, 50});
    }

    RunRecord finish(const ScenarioValues& last)
    {
        const FrameInfo info{Instance::kRaw, 2, 1, "MONO8T", *last.timestampUs};
        const std::vector<std::uint8_t> pixels = {static_cast<std::uint8_t>(number_), 255};
        recorder_.last({number_, info, pixels, last});
        return recorder_.record();
    }

    std::uint64_t number_ = 0;
    RunRecorder recorder_;
};

TEST_F(Recorder, KnowsTimesAndPictures)
{
    EXPECT_TRUE(recorder_.wantsPixels());
    ScenarioValues values;
    for (int frame = 0; frame < 3; ++frame) {
        values = next();
        show(values);
    }
    const RunRecord record = finish(values);
    EXPECT_EQ(record.frames, 3U);
    EXPECT_EQ(record.firstTimestampUs, 5'001'000U);
    EXPECT_EQ(record.lastTimestampUs, 5'003'000U);
    EXPECT_EQ(record.firstSteadyUs, 71'000U);
    EXPECT_EQ(record.shape.width, 2U);
    EXPECT_EQ(record.shape.codec, "MONO8T");
    EXPECT_EQ(record.first.number, 1U);
    EXPECT_EQ(record.first.histogram.each[0].bins[1], 1U);
    EXPECT_EQ(record.last.number, 3U);
    EXPECT_EQ(record.last.histogram.each[0].bins[3], 1U);
    EXPECT_EQ(record.last.histogram.each[0].brightest, 1U);
    EXPECT_EQ(numbersOf(record.thumbnails), (std::vector<std::uint64_t>{1, 2, 3}));
    EXPECT_EQ(record.thumbnails[2].width, 2U);
    EXPECT_EQ(record.thumbnails[2].height, 1U);
    EXPECT_EQ(record.thumbnails[2].steadyUs, 73'000U);
    EXPECT_EQ(record.thumbnails[2].timestampUs, 5'003'000U);
    EXPECT_EQ(record.thumbnails[2].png[1], 'P');
    ASSERT_EQ(record.series.buckets().size(), 3U);
    const kxhost::RunBucket& last = record.series.buckets()[2];
    EXPECT_EQ(last.fromUs, 2000);
    EXPECT_EQ(last.interval.median(), 1000);
    EXPECT_EQ(last.stampError.median(), 0);
    EXPECT_EQ(last.delivery.median(), 300);
    EXPECT_EQ(record.series.buckets()[0].interval.count(), 0U);
    EXPECT_EQ(record.delivery.largest(), 300);
    EXPECT_EQ(record.processing.largest(), 20);
    EXPECT_EQ(record.handOver.largest(), 30);
    EXPECT_EQ(record.queued.largest(), 40);
    EXPECT_EQ(record.writing.largest(), 50);
}

TEST_F(Recorder, AStampThatIsLateIsAnErrorAgainstTheCamerasClock)
{
    show(next());
    ScenarioValues late = next();
    *late.timestampUs += 70;
    show(late);
    show(next());
    const RunRecord record = recorder_.record();
    EXPECT_EQ(record.series.buckets()[1].interval.median(), 1070);
    EXPECT_EQ(record.series.buckets()[1].stampError.median(), 70);
    EXPECT_EQ(record.series.buckets()[1].delivery.median(), 230);
    EXPECT_EQ(record.series.buckets()[2].stampError.median(), -70);
}

TEST_F(Recorder, ACameraWithoutClockHasNoStampError)
{
    for (int frame = 0; frame < 2; ++frame) {
        ScenarioValues values = next();
        values.cameraTimeUs.reset();
        show(values);
    }
    const RunRecord record = recorder_.record();
    EXPECT_EQ(record.series.buckets()[1].interval.count(), 1U);
    EXPECT_EQ(record.series.buckets()[1].stampError.count(), 0U);
}

TEST_F(Recorder, ATimeThatStandsStillIsNoClock)
{
    for (int frame = 0; frame < 200; ++frame) { // to beyond half of its wrap
        ScenarioValues values = next();
        values.cameraTimeUs = 0;
        values.times.steadyUs = 1'000'000U * static_cast<unsigned>(frame);
        show(values);
    }
    const RunRecord record = recorder_.record();
    for (const kxhost::RunBucket& bucket : record.series.buckets()) {
        EXPECT_EQ(bucket.stampError.count(), 0U);
    }
}

TEST_F(Recorder, ACameraThatCountsNothingShowsAnotherCaptureByItsFirstFrame)
{
    for (int frame = 0; frame < 3; ++frame) {
        ScenarioValues values = next();
        values.ledger.stretch = 0;
        values.ledger.lostBefore[kxhost::FrameCause::kTiming] = frame == 2 ? 1 : 0;
        show(values);
    }
    const RunRecord record = recorder_.record();
    EXPECT_EQ(record.series.buckets()[1].interval.count(), 1U);
    EXPECT_EQ(record.series.buckets()[2].interval.count(), 0U);
    EXPECT_EQ(record.series.buckets()[2].stampError.count(), 0U);
    EXPECT_EQ(record.series.buckets()[2].lost, 0);
}

TEST_F(Recorder, FramesOfTwoCapturesAreNotCompared)
{
    show(next());
    ScenarioValues restarted = next();
    restarted.ledger.stretch = 2;
    show(restarted);
    ScenarioValues stopped = next();
    stopped.ledger.stretch = 2;
    stopped.ledger.lostBefore[kxhost::FrameCause::kStopped] = 4;
    show(stopped);
    ScenarioValues detached = next();
    detached.ledger.stretch = 2;
    detached.ledger.lostBefore[kxhost::FrameCause::kDetached] = 4;
    show(detached);
    const RunRecord record = recorder_.record();
    for (const kxhost::RunBucket& bucket : record.series.buckets()) {
        EXPECT_EQ(bucket.interval.count(), 0U);
        EXPECT_EQ(bucket.stampError.count(), 0U);
    }
    EXPECT_EQ(record.series.buckets()[2].lost, 0) << "the host's own doing";
    EXPECT_EQ(record.series.buckets()[3].lost, 4);
}

TEST_F(Recorder, ChangesAndGapsAreMarked)
{
    ScenarioValues first = next();
    first.changes = {std::make_shared<kxhost::ConfigurationChange>()};
    show(first);
    ScenarioValues back = next();
    back.awaySeconds = 0.0005F;
    auto second = std::make_shared<kxhost::ConfigurationChange>();
    second->number = 2;
    back.changes = {second};
    show(back);
    const RunRecord record = recorder_.record();
    ASSERT_EQ(record.configurations.size(), 2U);
    EXPECT_EQ(record.configurations[1].number, 2U);
    EXPECT_EQ(record.configurations[1].atUs, 1000);
    ASSERT_EQ(record.gaps.size(), 1U);
    EXPECT_EQ(record.gaps[0].fromUs, 500);
    EXPECT_EQ(record.gaps[0].toUs, 1000);
    EXPECT_EQ(record.series.buckets()[1].interval.count(), 0U);
    EXPECT_EQ(record.marksNotListed, 0U);
    EXPECT_EQ(record.changes, 0U) << "both are beginnings";
}

TEST_F(Recorder, TheSameConfigurationAppliedAgainIsNoChange)
{
    using kxhost::ChangeKind;
    for (const ChangeKind kind : {ChangeKind::kStart, ChangeKind::kLive, ChangeKind::kAgain,
                                  ChangeKind::kReload, ChangeKind::kFallBack}) {
        ScenarioValues values = next();
        auto change = std::make_shared<kxhost::ConfigurationChange>();
        change->kind = kind;
        values.changes = {change};
        show(values);
    }
    EXPECT_EQ(recorder_.record().changes, 3U);
}

TEST_F(Recorder, MarksAreBounded)
{
    for (int frame = 0; frame < 300; ++frame) {
        ScenarioValues values = next();
        values.awaySeconds = 0.0001F;
        show(values);
    }
    const RunRecord record = recorder_.record();
    EXPECT_EQ(record.gaps.size(), RunRecord::kMostMarks);
    EXPECT_EQ(record.marksNotListed, 300 - RunRecord::kMostMarks);
    EXPECT_EQ(record.timesAway, 300U);
    EXPECT_EQ(record.awayUs, 300 * 100);
}

TEST_F(Recorder, AFrameThatWasNotWrittenIsNotShown)
{
    show(next());
    show(next(), Written::kNothing);
    show(next());
    const RunRecord record = recorder_.record();
    EXPECT_EQ(record.frames, 2U);
    EXPECT_EQ(record.series.buckets().size(), 2U);
    EXPECT_EQ(record.series.buckets()[1].interval.median(), 2000);
    EXPECT_EQ(numbersOf(record.thumbnails), (std::vector<std::uint64_t>{1, 3}));
}

TEST_F(Recorder, AFrameWhoseMetadataIsNotWrittenIsNotShownEither)
{
    show(next(), Written::kPicture);
    EXPECT_EQ(recorder_.record().frames, 0U);
    EXPECT_EQ(recorder_.record().first.number, 0U);
    EXPECT_EQ(numbersOf(recorder_.record().thumbnails), (std::vector<std::uint64_t>{}));
    show(next());
    show(next(), Written::kPicture);
    EXPECT_EQ(numbersOf(recorder_.record().thumbnails), (std::vector<std::uint64_t>{2}));
}

} // namespace
