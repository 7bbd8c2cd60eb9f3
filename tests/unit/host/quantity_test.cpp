// Quantities with units, as configurations hold them.
#include "config/quantity.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

TEST(Quantity, ReadsEveryUnitIntoTheBaseUnit)
{
    EXPECT_DOUBLE_EQ(*parseQuantity("10 ms", Dimension::kTime), 10000);
    EXPECT_DOUBLE_EQ(*parseQuantity("500us", Dimension::kTime), 500);
    EXPECT_DOUBLE_EQ(*parseQuantity("1500 ns", Dimension::kTime), 1.5);
    EXPECT_DOUBLE_EQ(*parseQuantity(" 0.25 s ", Dimension::kTime), 250000);
    EXPECT_DOUBLE_EQ(*parseQuantity("2 min", Dimension::kSeconds), 120);
    EXPECT_DOUBLE_EQ(*parseQuantity("300 ms", Dimension::kSeconds), 0.3);
    EXPECT_DOUBLE_EQ(*parseQuantity("29.97 fps", Dimension::kRate), 29.97);
    EXPECT_DOUBLE_EQ(*parseQuantity("60 Hz", Dimension::kRate), 60);
    EXPECT_DOUBLE_EQ(*parseQuantity("-3.5 dB", Dimension::kGain), -3.5);
    EXPECT_DOUBLE_EQ(*parseQuantity("9 kB", Dimension::kBytes), 9000);
    EXPECT_DOUBLE_EQ(*parseQuantity("50 %", Dimension::kShare), 0.5);
    EXPECT_DOUBLE_EQ(*parseQuantity("12 ppm", Dimension::kDrift), 12000);
}

TEST(Quantity, IsTheSameInEachUnit)
{
    EXPECT_EQ(formatQuantity(*parseQuantity("1.1 ms", Dimension::kSeconds), Dimension::kSeconds),
              "0.0011 s");
    EXPECT_EQ(formatQuantity(*parseQuantity("7.7 ns", Dimension::kTime), Dimension::kTime),
              "0.0077 us");
}

TEST(Quantity, TakesABareNumberOnlyWhereItIsPlain)
{
    EXPECT_DOUBLE_EQ(*parseQuantity("+30", Dimension::kRate), 30);
    EXPECT_DOUBLE_EQ(*parseQuantity("3", Dimension::kGain), 3);
    EXPECT_FALSE(parseQuantity("10", Dimension::kTime));
    EXPECT_FALSE(parseQuantity("10", Dimension::kSeconds));
    EXPECT_FALSE(parseQuantity("10", Dimension::kDrift));
}

TEST(Quantity, RefusesForeignUnitsAndNoise)
{
    for (const char* text :
         {"", "ms", "10 dB", "10 m s", "ten ms", "10 ms 5 us", "10,5 ms", "++1 ms"}) {
        EXPECT_FALSE(parseQuantity(text, Dimension::kTime)) << text;
    }
}

TEST(Quantity, WritesWhatItReadsBack)
{
    for (const double value : {10000.0, 0.5, 1234567.0, 33333.25}) {
        const std::string text = formatQuantity(value, Dimension::kTime);
        EXPECT_DOUBLE_EQ(*parseQuantity(text, Dimension::kTime), value) << text;
    }
    for (const double value : {0.1, 1.0 / 3.0, 0.123456789012345, 4294967294.0, 1e15}) {
        EXPECT_EQ(parseQuantity(formatQuantity(value, Dimension::kNone), Dimension::kNone), value);
    }
    EXPECT_EQ(formatQuantity(30, Dimension::kRate), "30 fps");
    EXPECT_EQ(formatQuantity(30, Dimension::kNone), "30");
}

} // namespace
} // namespace kxhost
