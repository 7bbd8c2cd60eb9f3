// The report on a clock, word by word.
#include "clock/clock_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using kxhost::ClockFit;
using kxhost::clockJson;
using kxhost::clockText;

ClockFit someFit()
{
    ClockFit fit;
    fit.frames = 6001;
    fit.seconds = 60;
    fit.rateNs = 35'012.4;
    fit.uncertaintyNs = 38.2;
    fit.offsetUs = 1'699'999'999'005'899;
    fit.atCameraUs = 60'992'100;
    fit.residual = {154.6, 300.3, 3120.7};
    fit.windowSeconds = 10;
    fit.windows = {{0, 10, 35'100, 300}, {5, 15, 34'900, 280}};
    fit.spreadNs = 190;
    return fit;
}

TEST(ClockReport, AGoodClockTakesAFewLines)
{
    EXPECT_EQ(clockText(someFit()),
              "frames    6001 in 60.0 s, 100.0 a second\n"
              "rate      the camera's clock is fast by 35012 ns/s, +- 38 (35.012 ppm)\n"
              "offset    1699999999005899 us from the camera's time to this computer's, delivery "
              "included,\n"
              "          when the camera showed 60.992100 s\n"
              "residual  median 155 us, 99 of 100 within 300 us, largest 3121 us\n"
              "step      none\n"
              "wander    none beyond the uncertainty, in 2 windows of 10 s\n"
              "\n"
              "For time stamps from the camera's clock, good to 2.3 us a minute:\n"
              "\n"
              "[timestamps]\n"
              "clock_correction = \"-35012 ns/s\"\n");
}

/// The line that begins with this word, and those that follow it with a blank.
std::string part(const ClockFit& fit, const std::string& word)
{
    const std::string text = "\n" + clockText(fit);
    const std::size_t begin = text.find("\n" + word) + 1;
    std::size_t end = text.find('\n', begin);
    while (end + 1 < text.size() && text[end + 1] == ' ') {
        end = text.find('\n', end + 1);
    }
    return text.substr(begin, end + 1 - begin);
}

TEST(ClockReport, ASlowClockIsCalledSo)
{
    ClockFit fit = someFit();
    fit.rateNs = -512.34;
    fit.uncertaintyNs = 0.28;
    EXPECT_EQ(part(fit, "rate"),
              "rate      the camera's clock is slow by 512.3 ns/s, +- 0.3 (0.512 ppm)\n");
    EXPECT_EQ(part(fit, "clock_correction"), "clock_correction = \"512 ns/s\"\n");
}

TEST(ClockReport, StepsAreListedWithTheirClock)
{
    ClockFit fit = someFit();
    fit.steps = {{20.004, 4999.6, false}, {30, -1'500'000, true}};
    const std::string text = clockText(fit);
    EXPECT_NE(text.find("step      at 20.00 s the camera's clock, or else the delivery of frames, "
                        "jumped by +5000 us\n"
                        "step      at 30.00 s this computer's clock jumped by -1500000 us\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find("step      none"), std::string::npos);
}

TEST(ClockReport, AWanderingClockGetsATable)
{
    ClockFit fit = someFit();
    fit.wanders = true;
    EXPECT_EQ(part(fit, "wander"), "wander    the rate changes by 190 ns/s within 10 s:\n"
                                   "            from s      to s   rate ns/s      +-\n"
                                   "               0.0      10.0       35100     300\n"
                                   "               5.0      15.0       34900     280\n");
    EXPECT_NE(clockText(fit).find("good to 2.3 us a minute on average while it wanders:\n"),
              std::string::npos);
}

TEST(ClockReport, AShortRunSaysThatItCannotTellAWander)
{
    ClockFit fit = someFit();
    fit.windows.clear();
    EXPECT_EQ(part(fit, "wander"), "wander    not looked for, the run is too short\n");
}

TEST(ClockReport, AnUncertainRateIsNoAdvice)
{
    ClockFit fit = someFit();
    const auto correction = [&] {
        return nlohmann::json::parse(clockJson(fit, 0, ""))["clock_correction"];
    };
    fit.rateNs = -2'944'807;
    fit.uncertaintyNs = 5'727'413;
    EXPECT_TRUE(clockText(fit).ends_with("\n\nThe rate is less certain than it is large: look "
                                         "longer for a clock_correction.\n"))
        << clockText(fit);
    EXPECT_EQ(clockText(fit).find("[timestamps]"), std::string::npos);
    EXPECT_TRUE(correction().is_null());
    fit.uncertaintyNs = 2'944'807;
    EXPECT_NE(clockText(fit).find("clock_correction = \"2944807 ns/s\"\n"), std::string::npos);
    EXPECT_EQ(correction(), 2'944'807);
    // A millionth is good enough for a clock that runs better than that.
    fit.rateNs = 3;
    fit.uncertaintyNs = 1000;
    EXPECT_EQ(correction(), -3);
    fit.uncertaintyNs = 1000.1;
    EXPECT_TRUE(correction().is_null());
}

TEST(ClockReport, TheJsonHasItAll)
{
    ClockFit fit = someFit();
    fit.steps = {{20, 5000, false}, {30, -1.5e6, true}};
    const auto json = nlohmann::json::parse(clockJson(fit, 0, "Finished."));
    EXPECT_EQ(json, nlohmann::json::parse(R"({
        "exit_code": 0, "reason": "Finished.", "frames": 6001, "seconds": 60.0,
        "rate_ns_per_s": 35012.4, "uncertainty_ns_per_s": 38.2, "confidence": 0.95,
        "clock_correction": -35012, "offset_us": 1699999999005899, "at_camera_us": 60992100,
        "residual_us": {"median": 154.6, "p99": 300.3, "largest": 3120.7},
        "steps": [{"at_s": 20.0, "clock": "camera", "size_us": 5000.0},
                  {"at_s": 30.0, "clock": "host", "size_us": -1500000.0}],
        "wanders": false, "spread_ns_per_s": 190.0, "window_s": 10.0,
        "windows": [{"from_s": 0.0, "to_s": 10.0, "rate_ns_per_s": 35100.0,
                     "uncertainty_ns_per_s": 300.0},
                    {"from_s": 5.0, "to_s": 15.0, "rate_ns_per_s": 34900.0,
                     "uncertainty_ns_per_s": 280.0}]})"));
}

TEST(ClockReport, TheJsonOfARunWithoutAFitSaysWhy)
{
    EXPECT_EQ(clockJson(std::nullopt, 12, "too few"),
              "{\n  \"exit_code\": 12,\n  \"reason\": \"too few\"\n}\n");
}

} // namespace
