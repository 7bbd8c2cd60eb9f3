// The deviates behind the noise: their distribution, and that they come again.
#include "scene/sensor_noise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using fcsim::FrameNoise;

constexpr std::size_t kWidth = 1280;

std::vector<float> row(const FrameNoise& noise, unsigned plane, int y)
{
    const float* deviates = noise.row(plane, 0, y);
    return {deviates, deviates + kWidth};
}

/// Mean of the products of two rows: 0 when they have nothing to do with each other.
double correlation(const std::vector<float>& first, const std::vector<float>& second)
{
    double sum = 0;
    for (std::size_t i = 0; i < std::min(first.size(), second.size()); ++i) {
        sum += static_cast<double>(first[i]) * static_cast<double>(second[i]);
    }
    return sum / static_cast<double>(std::min(first.size(), second.size()));
}

TEST(SensorNoise, ComesAgain)
{
    const FrameNoise first(7, 1000);
    const FrameNoise second(7, 1000);
    EXPECT_EQ(row(first, 1, 500), row(second, 1, 500));
}

TEST(SensorNoise, DiffersBySeedFrameRowAndPlane)
{
    const std::vector<float> one = row(FrameNoise(1, 1), 0, 0);
    for (const auto& other :
         {row(FrameNoise(2, 1), 0, 0), row(FrameNoise(1, 2), 0, 0), row(FrameNoise(1, 1), 0, 1),
          row(FrameNoise(1, 1), 1, 0), row(FrameNoise(1, 1), 2, 0), row(FrameNoise(0, 2), 0, 0)}) {
        EXPECT_NEAR(correlation(one, other), 0, 0.12); // four times 1 / sqrt(1280)
    }
}

TEST(SensorNoise, BelongsToPlacesOnTheSensor)
{
    const FrameNoise noise(1, 5);
    const std::vector<float> whole = row(noise, 2, 33);
    const float* part = noise.row(2, 36, 33);
    EXPECT_TRUE(std::equal(whole.begin() + 36, whole.end(), part));
}

TEST(SensorNoise, ReachesTheEdgeOfTheWidestSensor)
{
    const float* deviates = FrameNoise(1, 1).row(0, 0, 0);
    const double last = static_cast<double>(deviates[fcsim::kMaxNoiseWidth - 1]);
    EXPECT_NE(last, 0);
    EXPECT_LT(std::abs(last), 7);
}

TEST(SensorNoise, IsNormal)
{
    const FrameNoise noise(3, 9);
    double sum = 0;
    double squares = 0;
    unsigned beyondTwo = 0;
    unsigned beyondThree = 0;
    constexpr int kRows = 1024;
    for (int y = 0; y < kRows; ++y) {
        for (const float value : row(noise, 0, y)) {
            const double deviate = static_cast<double>(value);
            sum += deviate;
            squares += deviate * deviate;
            beyondTwo += std::abs(deviate) > 2 ? 1U : 0U;
            beyondThree += std::abs(deviate) > 3 ? 1U : 0U;
        }
    }
    const double count = kRows * static_cast<double>(kWidth);
    EXPECT_NEAR(sum / count, 0, 0.01);
    EXPECT_NEAR(squares / count, 1, 0.02);
    EXPECT_NEAR(beyondTwo / count, 0.0455, 0.003);
    EXPECT_NEAR(beyondThree / count, 0.0027, 0.0006);
}

TEST(SensorNoise, NeighboursAreIndependent)
{
    const FrameNoise noise(1, 1);
    double along = 0;
    double down = 0;
    constexpr int kRows = 400;
    for (int y = 0; y < kRows; ++y) {
        const std::vector<float> here = row(noise, 0, y);
        along += correlation(here, {here.begin() + 1, here.end()});
        down += correlation(here, row(noise, 0, y + 1));
    }
    EXPECT_NEAR(along / kRows, 0, 0.01);
    EXPECT_NEAR(down / kRows, 0, 0.01);
}

} // namespace
