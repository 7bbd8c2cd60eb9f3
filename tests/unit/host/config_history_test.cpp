// Which configuration a frame is said to be made by.
#include "export/config_history.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

constexpr std::uint64_t kPeriodUs = 10'000;
constexpr std::uint64_t kExposureUs = 2'000;
/// How far a time stamp must lie behind the change.
constexpr std::uint64_t kLateUs = kExposureUs + 2 * kPeriodUs;

class History : public testing::Test {
protected:
    History() { history_.start({{"acquisition.gain", "3 dB"}}, 500); }

    /// The number and the newest one of a frame that starts then.
    std::pair<std::uint32_t, std::uint32_t> mark(std::uint64_t startUs,
                                                 std::uint64_t exposureUs = kExposureUs)
    {
        const ConfigurationMark mark = history_.mark({startUs, exposureUs, kPeriodUs});
        return {mark.number, mark.newest};
    }
    void change() { history_.taken(ChangeKind::kLive, {}, 0); }

    using Mark = std::pair<std::uint32_t, std::uint32_t>;
    ConfigHistory history_;
};

TEST_F(History, BeginsWithTheFirst)
{
    EXPECT_EQ(history_.newest(), 1U);
    EXPECT_EQ(mark(0), Mark(1, 1));
    ASSERT_EQ(history_.changes().size(), 1U);
    EXPECT_EQ(history_.changes()[0]->kind, ChangeKind::kStart);
    EXPECT_EQ(history_.changes()[0]->atUs, 500U);
    EXPECT_EQ(history_.changes()[0]->changed,
              (std::vector<KeyValue>{{"acquisition.gain", "3 dB"}}));
}

TEST_F(History, AChangeIsCertainForFramesThatBeganWellBehindIt)
{
    mark(1'000'000);
    change();
    history_.retrievalEnded(2'000'000);
    EXPECT_EQ(mark(2'000'000 + kLateUs - 1), Mark(1, 2));
    EXPECT_EQ(mark(2'000'000 + kLateUs), Mark(2, 2));
    EXPECT_EQ(mark(2'000'000), Mark(2, 2)) << "and stays so";
}

TEST_F(History, WithoutARetrievalBehindItAChangeIsNotCertain)
{
    change();
    EXPECT_EQ(mark(~0ULL), Mark(1, 2));
    history_.retrievalEnded(100);
    history_.retrievalEnded(1'000'000); // the first one counts
    EXPECT_EQ(mark(100 + kLateUs), Mark(2, 2));
}

TEST_F(History, TheLongerExposureOfBeforeAndAfterCounts)
{
    mark(0, 8'000);
    change();
    history_.retrievalEnded(1'000'000);
    EXPECT_EQ(mark(1'000'000 + 8'000 + 2 * kPeriodUs - 1), Mark(1, 2));
    EXPECT_EQ(mark(1'000'000 + 8'000 + 2 * kPeriodUs - 1, 9'000), Mark(1, 2));
    EXPECT_EQ(mark(1'000'000 + 8'000 + 2 * kPeriodUs), Mark(2, 2));
}

TEST_F(History, TimeStampsThatMakeNoSenseHoldItUpForSixteenFrames)
{
    change();
    history_.retrievalEnded(1'000'000);
    for (unsigned i = 0; i < ConfigHistory::kMostOnTheWay; ++i) {
        EXPECT_EQ(mark(0), Mark(1, 2));
    }
    EXPECT_EQ(mark(0), Mark(2, 2));
}

TEST_F(History, ChangesInARowAreTakenOneByOne)
{
    change();
    history_.retrievalEnded(1'000'000);
    change();
    EXPECT_EQ(mark(1'000'000), Mark(1, 3));
    history_.retrievalEnded(1'010'000);
    EXPECT_EQ(mark(1'000'000 + kLateUs), Mark(2, 3));
    EXPECT_EQ(mark(1'010'000 + kLateUs), Mark(3, 3));
}

TEST_F(History, ANewCaptureHasEverythingThatWasTaken)
{
    change();
    change();
    history_.captureStarted();
    EXPECT_EQ(mark(0), Mark(3, 3));
}

TEST_F(History, ManyChangesAtOnceEndWithTheNewest)
{
    for (int i = 0; i < 20; ++i) {
        change();
    }
    EXPECT_EQ(mark(0), Mark(1, 21));
    history_.retrievalEnded(1'000'000);
    EXPECT_EQ(mark(1'000'000), Mark(1, 21)) << "none of those that were not waited for";
    EXPECT_EQ(mark(1'000'000 + kLateUs), Mark(21, 21));
}

TEST_F(History, EachChangeIsNewsOnce)
{
    ASSERT_EQ(history_.takeNews().size(), 1U);
    EXPECT_TRUE(history_.takeNews().empty());
    history_.taken(ChangeKind::kReload, {{"region.width", "64"}}, 77);
    history_.taken(ChangeKind::kFallBack, {{"region.width", ""}}, 78);
    const auto news = history_.takeNews();
    ASSERT_EQ(news.size(), 2U);
    EXPECT_EQ(news[0]->number, 2U);
    EXPECT_EQ(news[0]->kind, ChangeKind::kReload);
    EXPECT_EQ(news[0]->atUs, 77U);
    EXPECT_EQ(news[1]->number, 3U);
    EXPECT_EQ(news[1]->changed[0].second, "");
}

TEST_F(History, OnlyTheLatestChangesAreListed)
{
    for (std::size_t i = 0; i < ConfigHistory::kMostListed; ++i) {
        change();
    }
    EXPECT_EQ(history_.changes().size(), ConfigHistory::kMostListed);
    EXPECT_EQ(history_.changes().front()->number, 2U);
    EXPECT_EQ(history_.takeNews().size(), ConfigHistory::kMostListed);
    EXPECT_EQ(history_.keysInForce(), (KeysInForce{{"acquisition.gain", {"3 dB", 1}}}))
        << "the change that set it is not listed any more";
}

TEST_F(History, KnowsWhichKeysAreInForceAndSinceWhen)
{
    history_.taken(ChangeKind::kReload, {{"region.width", "64"}, {"grab.frames", "5"}}, 77);
    history_.taken(ChangeKind::kLive, {{"region.width", ""}, {"acquisition.gain", "4 dB"}}, 78);
    EXPECT_EQ(history_.keysInForce(),
              (KeysInForce{{"acquisition.gain", {"4 dB", 3}}, {"grab.frames", {"5", 2}}}));
    history_.start({}, 0);
    EXPECT_EQ(history_.keysInForce(), KeysInForce());
}

TEST(ChangeKind, HasAWordOfItsOwn)
{
    EXPECT_STREQ(changeKindWord(ChangeKind::kStart), "start");
    EXPECT_STREQ(changeKindWord(ChangeKind::kLive), "live");
    EXPECT_STREQ(changeKindWord(ChangeKind::kReload), "reload");
    EXPECT_STREQ(changeKindWord(ChangeKind::kFallBack), "fall_back");
    EXPECT_STREQ(changeKindWord(ChangeKind::kAgain), "again");
}

} // namespace
} // namespace kxhost
