// Tests of numbers and axes as the report's reader wants them.
#include "base/exit_code.h"
#include "report/base64.h"
#include "report/report_axis.h"
#include "report/report_words.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace kxhost; // NOLINT(google-build-using-namespace): words of one page

TEST(ReportWords, NumbersAreGroupedByThree)
{
    EXPECT_EQ(grouped(0), "0");
    EXPECT_EQ(grouped(999), "999");
    EXPECT_EQ(grouped(1000), "1\u202F000");
    EXPECT_EQ(grouped(1234567), "1\u202F234\u202F567");
    EXPECT_EQ(counted(1, "frame"), "1 frame");
    EXPECT_EQ(counted(0, "frame"), "0 frames");
    EXPECT_EQ(counted(2000, "frame"), "2\u202F000 frames");
    EXPECT_EQ(timesText(1), "once");
    EXPECT_EQ(timesText(2), "twice");
    EXPECT_EQ(timesText(1000), "1\u202F000 times");
}

TEST(ReportWords, FixedTextHasAMinusOnlyBelowZero)
{
    EXPECT_EQ(fixedText(1.25, 1), "1.2");
    EXPECT_EQ(fixedText(-1.26, 1), "\u22121.3");
    EXPECT_EQ(fixedText(-0.04, 1), "0.0");
    EXPECT_EQ(fixedText(0, 0), "0");
}

TEST(ReportWords, MicrosecondsTakeTheUnitThatSuits)
{
    EXPECT_EQ(microseconds(0), "0 µs");
    EXPECT_EQ(microseconds(999), "999 µs");
    EXPECT_EQ(microseconds(1000), "1.00 ms");
    EXPECT_EQ(microseconds(12345), "12.3 ms");
    EXPECT_EQ(microseconds(9996), "10.0 ms");
    EXPECT_EQ(microseconds(99960), "100 ms");
    EXPECT_EQ(microseconds(999499), "999 ms");
    EXPECT_EQ(microseconds(999500), "1.00 s");
    EXPECT_EQ(microseconds(123456), "123 ms");
    EXPECT_EQ(microseconds(1500000), "1.50 s");
    EXPECT_EQ(microseconds(-2500), "\u22122.50 ms");
}

TEST(ReportWords, LengthsHaveTwoUnits)
{
    EXPECT_EQ(lengthOfTime(0), "0.00 s");
    EXPECT_EQ(lengthOfTime(9.994), "9.99 s");
    EXPECT_EQ(lengthOfTime(59.9), "59.9 s");
    EXPECT_EQ(lengthOfTime(9.996), "10.0 s");
    EXPECT_EQ(lengthOfTime(59.96), "1 min");
    EXPECT_EQ(lengthOfTime(60), "1 min");
    EXPECT_EQ(lengthOfTime(185.7), "3 min 5 s");
    EXPECT_EQ(lengthOfTime(3600), "1 h");
    EXPECT_EQ(lengthOfTime(8040), "2 h 14 min");
    EXPECT_EQ(lengthOfTime(86400), "1 d");
    EXPECT_EQ(lengthOfTime(31536000 + 7200), "365 d 2 h");
}

TEST(ReportWords, AShareIsNeverRoundedToNothingOrAll)
{
    EXPECT_EQ(percentage(0), "0 %");
    EXPECT_EQ(percentage(0.00009), "< 0.01 %");
    EXPECT_EQ(percentage(0.0001), "0.01 %");
    EXPECT_EQ(percentage(0.015), "1.5 %");
    EXPECT_EQ(percentage(0.42), "42 %");
    EXPECT_EQ(percentage(0.9995), "> 99.9 %");
    EXPECT_EQ(percentage(1), "100 %");
    EXPECT_EQ(percentage(3.5), "350 %");
}

TEST(ReportWords, TimesAreThoseOfUtc)
{
    EXPECT_EQ(utcText(1714571947'123456), "2024-05-01 13:59:07 UTC");
}

TEST(ReportWords, EveryExitCodeOfAGrabHasWords)
{
    std::vector<std::string> all;
    for (const int code :
         {kExitFine, kExitInternal, kExitUsage, kExitConfiguration, kExitNoCamera, kExitCamera,
          kExitExport, kExitLosses, kExitPlugin, kExitNoLibrary, kExitLibraryAge, kExitLive}) {
        const std::string text = exitCodeText(code);
        EXPECT_FALSE(text.empty());
        for (const std::string& other : all) {
            EXPECT_NE(text, other) << code;
        }
        all.push_back(text);
    }
    EXPECT_EQ(exitCodeText(kExitCamera), "the camera failed or was lost");
}

TEST(Base64, IsThatOfTheStandard)
{
    const auto of = [](const std::string& text) {
        return base64({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    };
    EXPECT_EQ(of(""), "");
    EXPECT_EQ(of("f"), "Zg==");
    EXPECT_EQ(of("fo"), "Zm8=");
    EXPECT_EQ(of("foo"), "Zm9v");
    EXPECT_EQ(of("foobar"), "Zm9vYmFy");
    EXPECT_EQ(of(std::string("\x00\x10\x83\xFB\xEF\xFF", 6)), "ABCD++//");
}

std::vector<std::string> textsOf(const Axis& axis)
{
    std::vector<std::string> texts;
    for (const AxisMark& mark : axis.marks) {
        texts.push_back(mark.text);
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(ReportAxis, StepsAreOneTwoOrFive)
{
    EXPECT_DOUBLE_EQ(niceStep(10, 5), 2);
    EXPECT_DOUBLE_EQ(niceStep(11, 5), 5);
    EXPECT_DOUBLE_EQ(niceStep(26, 5), 10);
    EXPECT_DOUBLE_EQ(niceStep(0.5, 5), 0.1);
    EXPECT_DOUBLE_EQ(niceStep(1, 1), 1);
}

TEST(ReportAxis, ValuesReachFromMarkToMark)
{
    const Axis axis = microsecondAxis(33'100, 33'400);
    EXPECT_DOUBLE_EQ(axis.low, 33'100);
    EXPECT_DOUBLE_EQ(axis.high, 33'400);
    EXPECT_EQ(axis.unit, "ms");
    EXPECT_EQ(textsOf(axis), (Texts{"33.1", "33.2", "33.3", "33.4"}));
    const Axis both = microsecondAxis(-120, 310);
    EXPECT_EQ(both.unit, "µs");
    EXPECT_EQ(textsOf(both), (Texts{"\u2212200", "\u2212100", "0", "100", "200", "300", "400"}));
    EXPECT_DOUBLE_EQ(both.place(100), 0.5);
    EXPECT_DOUBLE_EQ(both.place(-900), 0);
    EXPECT_DOUBLE_EQ(both.place(900), 1);
}

TEST(ReportAxis, AConstantGetsRoom)
{
    const Axis axis = microsecondAxis(5000, 5000);
    EXPECT_LT(axis.low, 5000);
    EXPECT_GT(axis.high, 5000);
    EXPECT_EQ(textsOf(axis), (Texts{"4.999", "5.000", "5.001"}));
}

TEST(ReportAxis, ElapsedTimeEndsWithTheRun)
{
    const Axis seconds = elapsedAxis(12.5e6);
    EXPECT_EQ(seconds.unit, "s");
    EXPECT_DOUBLE_EQ(seconds.low, 0);
    EXPECT_DOUBLE_EQ(seconds.high, 12.5e6);
    EXPECT_EQ(textsOf(seconds), (Texts{"0", "5", "10"}));
    EXPECT_EQ(textsOf(elapsedAxis(28e6)), (Texts{"0", "5", "10", "15", "20", "25"}));
    EXPECT_EQ(elapsedAxis(0).unit, "ms");
    EXPECT_EQ(textsOf(elapsedAxis(0)), (Texts{"0.0", "0.2", "0.4", "0.6", "0.8", "1.0"}));
    EXPECT_EQ(elapsedAxis(400e3).unit, "ms");
    EXPECT_EQ(elapsedAxis(600e6).unit, "min");
    EXPECT_EQ(textsOf(elapsedAxis(600e6)), (Texts{"0", "2", "4", "6", "8", "10"}));
    EXPECT_EQ(elapsedAxis(24 * 3600e6).unit, "h");
    const Axis year = elapsedAxis(365 * 86400e6);
    EXPECT_EQ(year.unit, "d");
    EXPECT_EQ(textsOf(year), (Texts{"0", "100", "200", "300"}));
}

} // namespace
