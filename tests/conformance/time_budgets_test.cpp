// Time budgets: storing a frame, its whole scene, and the whole iteration against the frame period.
#include "camera_test.h"

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class TimeBudgetsTest : public kxtest::CameraTest {
protected:
    TimeBudgetsTest() { connect(); }

    /// Two frames; the host call `name` takes `us` for the second one.
    std::vector<std::string> budgetLines(const char* name, std::uint64_t us)
    {
        host().onCall = [name, us, armed = false](std::string_view call) mutable {
            armed = armed || call == "KxGiMemInst__Trigger";
            if (armed && call == name) {
                fcsim::advanceClock(us);
            }
        };
        EXPECT_EQ(grab({{50'000, 1'000'000, false}, {83'333, 1'033'333, false}}), 0);
        EXPECT_THAT(host().exports, SizeIs(1));
        return journal().logsWith("budget");
    }
    static unsigned long long stamp() { return host().exports.at(0).timestampUs; }
    /// The prediction for the next frame, which the report of the whole iteration shows.
    unsigned long long nextStamp() const { return proc_->frameClock.frameTs; }

    static std::string frameBudget(unsigned us)
    {
        return warning("ProcLoop", format("Loop_2(2): Frame %llu export time budget is over (%uus "
                                          ">= 33333us)",
                                          stamp(), us));
    }
    static std::string sceneBudget(unsigned us)
    {
        return info(format("Loop_2(2): Scene %llu export time budget is over (%uus >= 33333us)",
                           stamp(), us));
    }
    std::string totalBudget(unsigned us) const
    {
        return info(
            format("total time budget is over (%uus >= 33333us), frame %llu", us, nextStamp()));
    }
};

TEST_F(TimeBudgetsTest, AreAllOverWithASlowStore)
{
    const auto lines = budgetLines("KxGiMemInst__Trigger", 40'000);
    EXPECT_THAT(lines, ElementsAre(frameBudget(40'000), sceneBudget(40'000), totalBudget(40'000)));
}

TEST_F(TimeBudgetsTest, OfTheSceneIncludesTheExport)
{
    const auto lines = budgetLines("KxSc__ProcExport", 35'000);
    EXPECT_THAT(lines, ElementsAre(sceneBudget(35'000), totalBudget(35'000)));
}

TEST_F(TimeBudgetsTest, OfTheIterationIncludesTheAnnouncement)
{
    const auto lines = budgetLines("KxGi__CommTriggerAll", 34'000);
    EXPECT_THAT(lines, ElementsAre(totalBudget(34'000)));
}

TEST_F(TimeBudgetsTest, AreOverWithTheWholePeriod)
{
    EXPECT_THAT(budgetLines("KxGiMemInst__Trigger", 33'333), SizeIs(3));
}

TEST_F(TimeBudgetsTest, AreKeptJustUnderThePeriod)
{
    EXPECT_THAT(budgetLines("KxGiMemInst__Trigger", 33'332), IsEmpty());
}

TEST_F(TimeBudgetsTest, CountNoWholeSeconds)
{
    EXPECT_THAT(budgetLines("KxGiMemInst__Trigger", 1'010'000), IsEmpty());
}

TEST_F(TimeBudgetsTest, OfTheIterationHoldsForTheFirstFrameToo)
{
    host().onCall = [](std::string_view call) {
        if (call == "KxGi__HaltStop") {
            fcsim::advanceClock(34'000);
        }
    };
    EXPECT_EQ(grab({{50'000, 1'000'000, false}}), 0);
    EXPECT_THAT(journal().logsWith("budget"), ElementsAre(totalBudget(34'000)));
}

TEST_F(TimeBudgetsTest, OfTheStoreLeavesTheRestOut)
{
    host().onCall = [](std::string_view call) {
        if (call == "KxGi__HaltStop" || call == "KxSc__ProcExport") {
            fcsim::advanceClock(20'000);
        }
    };
    EXPECT_EQ(grab({{50'000, 1'000'000, false}, {83'333, 1'033'333, false}}), 0);
    EXPECT_THAT(journal().logsWith("budget"),
                ElementsAre(sceneBudget(40'000), totalBudget(40'000)));
}

} // namespace
