// Applier of the white balance: both colours' checks, and the pair that is written all the same.
#include "appliers_fixture.h"

using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr unsigned kKept = 0xFFFFFFFF;
constexpr int kMax = 0x7FFFFFFF;

class WhiteBalanceTest : public kxtest::AppliersTest {
protected:
    WhiteBalanceTest()
    {
        proc_->curWbRed = 401;
        proc_->curWbBlue = 402;
    }
    void apply(int red, int blue)
    {
        host().config.wbred = red;
        host().config.wbblu = blue;
        proc_->ProcParametrizeCamWB(cam_.get());
    }
    /// With the pair that is in force, at first 512 and 512.
    static std::string newLine(unsigned red, unsigned blue)
    {
        return info(kxtest::format("  new WhiteBalance vals are: Red %u, Blue %u", red, blue));
    }
    static std::string entryLine(int red, int blue)
    {
        return info(
            kxtest::format("WhiteBalance settings handler entry vals: Red %i, Blue %i", red, blue));
    }
    static std::string currentLine()
    {
        return info("  cur WhiteBalance vals are: Red 401 Blue 402 (min 10 max 1000)");
    }
};

TEST_F(WhiteBalanceTest, IsKeptWhenBothColoursAre)
{
    apply(-1, -1);
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(-1, -1), info("  WhiteBalance config is skipped")));
    EXPECT_THAT(cameraCalls(), IsEmpty());
    EXPECT_EQ(proc_->curWbRed, 401U);
}

TEST_F(WhiteBalanceTest, IsWrittenAndReadBack)
{
    apply(10, 1000);
    EXPECT_THAT(applierLogs(), ElementsAre(entryLine(10, 1000), currentLine(), newLine(10, 1000)));
    EXPECT_EQ(proc_->curWbRed, 10U);
    EXPECT_EQ(proc_->curWbBlue, 1000U);
    EXPECT_THAT(cameraCalls(),
                ElementsAre("GetPropertyInfo(WHITE_BALANCE)", "GetProperty(WHITE_BALANCE)",
                            "GetPropertyInfo(WHITE_BALANCE)", "GetProperty(WHITE_BALANCE)",
                            "SetProperty(WHITE_BALANCE)", "GetPropertyInfo(WHITE_BALANCE)",
                            "GetProperty(WHITE_BALANCE)"));
}

struct Pair {
    const char* name;
    int red;
    int blue;
    std::vector<std::string> warnings;
    unsigned writtenRed; ///< 512 = what the camera has
    unsigned writtenBlue;
};

class WhiteBalancePairTest : public WhiteBalanceTest, public testing::WithParamInterface<Pair> {};

TEST_P(WhiteBalancePairTest, IsCheckedAndPassedOnAllTheSame)
{
    const Pair& pair = GetParam();
    apply(pair.red, pair.blue);
    std::vector<std::string> expected = {entryLine(pair.red, pair.blue), currentLine()};
    for (const std::string& text : pair.warnings) {
        expected.push_back(warning("ProcParametrizeCamWB", "  asked WhiteBalance " + text));
    }
    expected.push_back(newLine(pair.writtenRed, pair.writtenBlue));
    EXPECT_EQ(applierLogs(), expected);
    ASSERT_EQ(cam_->written.size(), 1U);
    EXPECT_EQ(cam_->written[0].valueA, pair.writtenRed);
    EXPECT_EQ(cam_->written[0].valueB, pair.writtenBlue);
    EXPECT_EQ(proc_->curWbRed, pair.writtenRed);
    EXPECT_EQ(proc_->curWbBlue, pair.writtenBlue);
}

INSTANTIATE_TEST_SUITE_P(
    Appliers, WhiteBalancePairTest,
    testing::Values(
        Pair{"RedAlone", 500, -1, {}, 500, 512}, Pair{"BlueAlone", -1, 500, {}, 512, 500},
        Pair{"RedLow", 9, 500, {"Red val 9 is lower than min 10, skipped"}, 512, 500},
        Pair{"RedHigh", 1001, 500, {"Red val 1001 exceeds max 1000, skipped"}, 512, 500},
        Pair{"BlueLow", 500, 9, {"Blue val 9 is lower than min 10, skipped"}, 500, 512},
        Pair{"BlueHigh", 500, 1001, {"Blue val 1001 exceeds max 1000, skipped"}, 500, 512},
        Pair{"Both",
             0,
             kMax,
             {"Red val 0 is lower than min 10, skipped",
              "Blue val 2147483647 exceeds max 1000, skipped"},
             512,
             512},
        Pair{"Signed", -2, 500, {"Red val -2 is lower than min 10, skipped"}, 512, 500}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(WhiteBalanceTest, PairReachesACameraThatTakesAnything)
{
    // Even what stands for "as it is" is written when the camera's range holds it.
    relRange = {0, kKept};
    apply(500, -1);
    ASSERT_EQ(cam_->written.size(), 1U);
    EXPECT_EQ(cam_->written[0].valueA, 500U);
    EXPECT_EQ(cam_->written[0].valueB, kKept);
}

TEST_F(WhiteBalanceTest, RangeIsComparedAsSigned)
{
    // A maximum of all ones is -1, which everything exceeds.
    relRange = {0, kKept};
    apply(500, -1);
    EXPECT_THAT(journal().logsWith("[w|ProcParametrizeCamWB]"),
                ElementsAre(warning("ProcParametrizeCamWB", "  asked WhiteBalance Red val 500 "
                                                            "exceeds max 4294967295, skipped")));
}

TEST_F(WhiteBalanceTest, KeepsWhatItKnewWhenTheCameraFails)
{
    failCalls("GetPropertyInfo", 0, 0);
    apply(500, 501);
    EXPECT_THAT(
        applierLogs(),
        ElementsAre(entryLine(500, 501),
                    warning("ExPropertyGetRelRange", "can't get property info 3 (WHITE_BALANCE)"),
                    info("  cur WhiteBalance vals are: Red 401 Blue 402 (min 0 max 0)"),
                    warning("ProcParametrizeCamWB",
                            "  asked WhiteBalance Red val 500 exceeds max 0, skipped"),
                    warning("ProcParametrizeCamWB",
                            "  asked WhiteBalance Blue val 501 exceeds max 0, skipped"),
                    warning("ExPropertySetRel", "can't get property info 3 (WHITE_BALANCE)"),
                    warning("ExPropertyGetRel", "can't get property info 3 (WHITE_BALANCE)"),
                    newLine(401, 402)));
}

} // namespace
