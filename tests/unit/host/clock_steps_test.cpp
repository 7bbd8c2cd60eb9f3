// Steps in delays: which are found, where, and what is none.
#include "clock/clock_steps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include <rapidcheck/gtest.h>

namespace {

using kxhost::DelayStep;
using kxhost::findSteps;
using kxhost::Point;

/// Ten seconds at 100 frames a second on a slope of 200 us a second, up to 300 us late and one in
/// a hundred 3 ms more, with a level of its own for each frame.
std::vector<Point> delaysOf(const std::function<double(std::size_t)>& level, unsigned seed = 1)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> share(0, 1);
    std::vector<Point> delays;
    for (std::size_t i = 0; i < 1000; ++i) {
        const double seconds = static_cast<double>(i) / 100;
        const double spike = share(random) < 0.01 ? 3000 : 0;
        delays.push_back({seconds, 200 * seconds + 300 * share(random) + spike + level(i)});
    }
    return delays;
}

std::function<double(std::size_t)> stepAt(std::size_t frame, double sizeUs)
{
    return [=](std::size_t i) { return i >= frame ? sizeUs : 0; };
}

void expectStep(const DelayStep& step, std::size_t frame, double sizeUs)
{
    EXPECT_NEAR(static_cast<double>(step.frame), static_cast<double>(frame), 2);
    EXPECT_NEAR(step.sizeUs, sizeUs, 60);
}

TEST(ClockSteps, AnEvenRunHasNone)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        ASSERT_TRUE(findSteps(delaysOf([](std::size_t) { return 0.0; }, seed)).empty()) << seed;
    }
}

TEST(ClockSteps, BothDirectionsAreFoundWithPlaceAndSize)
{
    for (const double sizeUs : {5000.0, -5000.0, 500.0, -500.0, 1e6, -1e6}) {
        const auto steps = findSteps(delaysOf(stepAt(400, sizeUs)));
        ASSERT_EQ(steps.size(), 1U) << sizeUs;
        expectStep(steps[0], 400, sizeUs);
    }
}

TEST(ClockSteps, SeveralAreFoundInTheirOrder)
{
    const auto steps = findSteps(delaysOf([](std::size_t i) {
        return i < 200 ? 0.0 : i < 500 ? 4000.0 : i < 700 ? 1000.0 : -2000.0;
    }));
    ASSERT_EQ(steps.size(), 3U);
    expectStep(steps[0], 200, 4000);
    expectStep(steps[1], 500, -3000);
    expectStep(steps[2], 700, -3000);
}

TEST(ClockSteps, FramesThatAreLateForLessThanASecondAreNoStep)
{
    EXPECT_TRUE(findSteps(delaysOf([](std::size_t i) {
                    return i >= 400 && i < 499 ? 9000.0 : 0.0;
                })).empty());
    const auto longer =
        findSteps(delaysOf([](std::size_t i) { return i >= 400 && i < 510 ? 9000.0 : 0.0; }));
    ASSERT_EQ(longer.size(), 2U);
    expectStep(longer[0], 400, 9000);
    expectStep(longer[1], 510, -9000);
}

TEST(ClockSteps, OneFrameThatIsEarlyIsAStepForwardAndBack)
{
    const auto steps =
        findSteps(delaysOf([](std::size_t i) { return i == 400 ? -100'000.0 : 0.0; }));
    ASSERT_EQ(steps.size(), 2U);
    EXPECT_EQ(steps[0].frame, 400U);
    EXPECT_EQ(steps[1].frame, 401U);
    EXPECT_NEAR(steps[0].sizeUs, -100'000, 400);
    EXPECT_NEAR(steps[1].sizeUs, 100'000, 400);
}

TEST(ClockSteps, NearTheEndsOnlyWhatIsEarlyIsCertain)
{
    EXPECT_TRUE(findSteps(delaysOf(stepAt(970, 5000))).empty()) << "may be a few late frames";
    EXPECT_TRUE(findSteps(delaysOf(stepAt(30, -5000))).empty()) << "the same at the start";
    const auto last = findSteps(delaysOf(stepAt(999, -5000)));
    ASSERT_EQ(last.size(), 1U);
    EXPECT_EQ(last[0].frame, 999U);
    const auto first = findSteps(delaysOf(stepAt(1, 5000)));
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0].frame, 1U);
}

TEST(ClockSteps, LessThanTwentyMicrosecondsAreNone)
{
    const auto exact = [](double sizeUs) {
        std::vector<Point> delays;
        for (std::size_t i = 0; i < 1000; ++i) {
            delays.push_back({static_cast<double>(i) / 100, i < 500 ? 0 : sizeUs});
        }
        return findSteps(delays).size();
    };
    EXPECT_EQ(exact(20), 0U);
    EXPECT_EQ(exact(20.1), 1U);
    EXPECT_EQ(exact(-20.1), 1U);
}

TEST(ClockSteps, TooFewFramesHaveNone)
{
    EXPECT_TRUE(findSteps({}).empty());
    EXPECT_TRUE(findSteps(std::vector<Point>(7, {1, 1})).empty());
    EXPECT_TRUE(findSteps(std::vector<Point>(100, {1, 1})).empty()) << "at one time";
}

RC_GTEST_PROP(ClockSteps, AShiftChangesNothing, ())
{
    const auto size = static_cast<double>(*rc::gen::inRange(-20'000, 20'000));
    const auto frame = *rc::gen::inRange<std::size_t>(0, 1000);
    std::vector<Point> delays = delaysOf(stepAt(frame, size));
    const auto steps = findSteps(delays);
    for (Point& delay : delays) {
        delay = {delay.x + 4096, delay.y - 65'536};
    }
    const auto moved = findSteps(delays);
    RC_ASSERT(moved.size() == steps.size());
    for (std::size_t i = 0; i < steps.size(); ++i) {
        RC_ASSERT(moved[i].frame == steps[i].frame);
        RC_ASSERT(std::abs(moved[i].sizeUs - steps[i].sizeUs) < 1e-3);
    }
}

} // namespace
