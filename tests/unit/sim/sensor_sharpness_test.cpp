// Softer and crisper edges.
#include "scene/sensor_sharpness.h"
#include "scene/sensor_state.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using fcsim::Level;
using Levels = std::vector<Level>;

Levels sharpened(const Levels& levels, float strength)
{
    Levels out(levels.size());
    fcsim::sharpenRow(levels.data(), static_cast<unsigned>(levels.size()), strength, out.data());
    return out;
}

const Levels kEdge = {10000, 10000, 10000, 30000, 30000, 30000};

TEST(SensorSharpness, StrengthIsZeroAtTheNeutralValue)
{
    EXPECT_EQ(fcsim::sharpnessStrength(fcsim::kNeutralSharpness), 0);
    EXPECT_FLOAT_EQ(fcsim::sharpnessStrength(0), -0.5F);
    EXPECT_FLOAT_EQ(fcsim::sharpnessStrength(4096), 1.5F);
    EXPECT_GT(fcsim::sharpnessStrength(fcsim::kNeutralSharpness + 1), 0);
    EXPECT_LT(fcsim::sharpnessStrength(fcsim::kNeutralSharpness - 1), 0);
}

TEST(SensorSharpness, CrisperEdgesOvershootOnBothSides)
{
    EXPECT_EQ(sharpened(kEdge, 0.5F), (Levels{10000, 10000, 5000, 35000, 30000, 30000}));
}

TEST(SensorSharpness, SofterEdgesAreSpread)
{
    EXPECT_EQ(sharpened(kEdge, -0.5F), (Levels{10000, 10000, 15000, 25000, 30000, 30000}));
}

TEST(SensorSharpness, NoStrengthChangesNothing)
{
    EXPECT_EQ(sharpened(kEdge, 0), kEdge);
}

TEST(SensorSharpness, LevelsStayInRange)
{
    EXPECT_EQ(sharpened({0, 0, 65535, 65535}, 1.5F), (Levels{0, 0, 65535, 65535}));
}

TEST(SensorSharpness, EndsLookAtTheNeighbourThatIsThere)
{
    EXPECT_EQ(sharpened({20000, 10000}, 1), (Levels{25000, 5000}));
    EXPECT_EQ(sharpened({20000}, 1), (Levels{20000}));
}

} // namespace
