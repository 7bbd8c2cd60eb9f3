// The rate below delays: how good it is, and whether what it says of its own uncertainty is true.
#include "clock/clock_rate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

namespace {

using kxhost::fitRate;
using kxhost::kFewestFrames;
using kxhost::Point;
using kxhost::RateFit;

using Random = std::mt19937_64;

double share(Random& random)
{
    return std::uniform_real_distribution<double>(0, 1)(random);
}

/// Delays at 100 frames a second on a line of `slope`, in whole microseconds as clocks give them.
std::vector<Point> delaysOf(std::size_t frames, double slope, const std::function<double()>& lateUs)
{
    std::vector<Point> delays;
    for (std::size_t i = 0; i < frames; ++i) {
        const double seconds = static_cast<double>(i) / 100;
        delays.push_back({seconds, std::round(1000 + slope * seconds + lateUs())});
    }
    return delays;
}

TEST(ClockRate, AnExactLineIsFoundToTheResolutionOfTheClocks)
{
    const std::vector<Point> delays = delaysOf(1001, -35, [] { return 0.0; });
    const RateFit fit = fitRate(delays).value();
    EXPECT_NEAR(fit.line.slope, -35, 0.1);
    EXPECT_LE(std::abs(fit.line.slope + 35), fit.uncertainty);
    EXPECT_GE(fit.uncertainty, 0.1); // one microsecond in ten seconds
    EXPECT_LT(fit.uncertainty, 0.3);
}

TEST(ClockRate, NeedsSixteenFrames)
{
    std::vector<Point> delays = delaysOf(kFewestFrames, 3, [] { return 0.0; });
    EXPECT_TRUE(fitRate(delays).has_value());
    delays.pop_back();
    EXPECT_FALSE(fitRate(delays).has_value());
    EXPECT_FALSE(fitRate({}).has_value());
}

TEST(ClockRate, NeedsTimeBetweenThem)
{
    const std::vector<Point> delays(100, {7, 1000});
    EXPECT_FALSE(fitRate(delays).has_value());
}

TEST(ClockRate, FramesThatArriveInBurstsAreFine)
{
    std::vector<Point> delays;
    delays.reserve(400);
    for (int i = 0; i < 400; ++i) { // four at a time, the last one without delay
        const int burst = i / 4;
        const double at = burst * 0.04;
        delays.push_back({at, std::round(2 * at + (3 - i % 4) * 10'000)});
    }
    const RateFit fit = fitRate(delays).value();
    EXPECT_NEAR(fit.line.slope, 2, 0.5);
    EXPECT_LT(fit.uncertainty, 1);
}

/// How frames are late. `least`: of 100 intervals so many hold the true rate.
struct Lateness {
    const char* name;
    std::function<double(Random&)> us;
    double least;
};

void PrintTo(const Lateness& each, std::ostream* out)
{
    *out << each.name;
}

class ClockRateCoverage : public testing::TestWithParam<Lateness> {};

/// Of 400 runs, the share whose interval holds the truth has a standard deviation of 1.1 % at 95 %.
TEST_P(ClockRateCoverage, TheTrueRateLiesWithinTheUncertaintyAsOftenAsIsSaid)
{
    for (const std::size_t frames : {std::size_t{32}, std::size_t{200}, std::size_t{1500}}) {
        constexpr int kRuns = 400;
        int held = 0;
        for (int run = 0; run < kRuns; ++run) {
            Random random(static_cast<std::size_t>(run) * 7919U + frames);
            const double slope = 100 * (share(random) - 0.5);
            const RateFit fit =
                fitRate(delaysOf(frames, slope, [&] { return GetParam().us(random); })).value();
            held += std::abs(fit.line.slope - slope) <= fit.uncertainty ? 1 : 0;
        }
        EXPECT_GE(held * 100.0 / kRuns, GetParam().least - 3.3) << frames;
    }
}

INSTANTIATE_TEST_SUITE_P(
    ClockRate, ClockRateCoverage,
    testing::Values(Lateness{"Even", [](Random& random) { return 300 * share(random); }, 95},
                    Lateness{"EvenWithSpikes",
                             [](Random& random) {
                                 return 300 * share(random) + (share(random) < 0.01 ? 4000.0 : 0.0);
                             },
                             95},
                    Lateness{"Exponential",
                             [](Random& random) { return -100 * std::log(1 - share(random)); }, 95},
                    Lateness{"ThinAtTheShortest",
                             [](Random& random) {
                                 return -100 * std::log((1 - share(random)) * (1 - share(random)));
                             },
                             95},
                    // Delays without a shortest one: the documented exception.
                    Lateness{"Normal",
                             [](Random& random) {
                                 return std::normal_distribution<double>(1000, 100)(random);
                             },
                             85}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(ClockRate, TheUncertaintyIsNoMereCaution)
{
    double errors = 0;
    double uncertainties = 0;
    for (unsigned run = 0; run < 100; ++run) {
        Random random(run);
        const RateFit fit =
            fitRate(delaysOf(1500, 20, [&] { return 300 * share(random); })).value();
        errors += std::abs(fit.line.slope - 20);
        uncertainties += fit.uncertainty;
    }
    EXPECT_LT(uncertainties, 6 * errors); // two to three errors, if all were normal
}

TEST(ClockRate, LateFramesMoveNothing)
{
    Random random(5);
    std::vector<Point> delays = delaysOf(2000, 10, [&] { return 300 * share(random); });
    const double slope = fitRate(delays).value().line.slope;
    for (std::size_t i = 0; i < delays.size(); i += 50) {
        delays[i].y += 1e6; // unless it is one that the line touches
    }
    EXPECT_NEAR(fitRate(delays).value().line.slope, slope, 0.3);
}

RC_GTEST_PROP(ClockRate, ShiftsAndSlopesGoThroughUnchanged, ())
{
    Random random(*rc::gen::arbitrary<unsigned>());
    std::vector<Point> delays = delaysOf(200, 0, [&] { return 300 * share(random); });
    for (Point& delay : delays) {
        delay.y += share(random); // which of two equal delays counts is nobody's business
    }
    const double more = *rc::gen::inRange(-100'000, 100'000);
    const double later = *rc::gen::inRange(-1'000'000, 1'000'000);
    const double slope = *rc::gen::inRange(-1000, 1000);
    std::vector<Point> moved;
    moved.reserve(delays.size());
    for (const Point& delay : delays) {
        moved.push_back({delay.x + later, delay.y + more + slope * delay.x});
    }
    const RateFit fit = fitRate(delays).value();
    const RateFit other = fitRate(moved).value();
    RC_ASSERT(std::abs(other.line.slope - fit.line.slope - slope) < 1e-3);
    RC_ASSERT(std::abs(other.uncertainty - fit.uncertainty) < 1e-3 + fit.uncertainty * 1e-3);
    RC_ASSERT(std::abs(other.line.at(later + 1) - fit.line.at(1) - more - slope) < 1e-2);
}

} // namespace
