// Tests of the sizes and periods that follow from the image format and the frame rate.
#include "kx_pg_sizes.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using KxPGrey::BusKind;
using KxPGrey::framePeriod;
using KxPGrey::lineStride;
using KxPGrey::paddedFrameSize;
using KxPGrey::statusInterval;

TEST(LineStride, RoundsUpToWholeBytes)
{
    EXPECT_EQ(lineStride(12, 641), 962U);
    EXPECT_EQ(lineStride(12, 640), 960U);
    EXPECT_EQ(lineStride(8, 640), 640U);
    EXPECT_EQ(lineStride(16, 2448), 4896U);
    EXPECT_EQ(lineStride(8, 0), 0U);
}

TEST(PaddedFrameSize, Usb3TransfersWholeKilobytes)
{
    EXPECT_EQ(paddedFrameSize(307200, BusKind::kUsb3, 7), 307200U);
    EXPECT_EQ(paddedFrameSize(307201, BusKind::kUsb3, 7), 308224U);
}

TEST(PaddedFrameSize, OtherBusesTransfer32Bytes)
{
    EXPECT_EQ(paddedFrameSize(1001, BusKind::kOther, 7), 1024U);
    EXPECT_EQ(paddedFrameSize(1024, BusKind::kOther, 7), 1024U);
}

TEST(PaddedFrameSize, Usb2TransfersPackets)
{
    EXPECT_EQ(paddedFrameSize(5000, BusKind::kUsb2, 4096), 8192U);
    EXPECT_EQ(paddedFrameSize(8192, BusKind::kUsb2, 4096), 8192U);
    EXPECT_EQ(paddedFrameSize(5000, BusKind::kUsb2, 0), 5000U);
}

TEST(FramePeriod, IsRoundedToMicroseconds)
{
    EXPECT_EQ(framePeriod(30.0F), 33333U);
    EXPECT_EQ(framePeriod(60.0F), 16667U);
    EXPECT_EQ(framePeriod(0.5F), 2000000U);
}

TEST(FramePeriod, IsDefinedWithoutAUsableRate)
{
    EXPECT_EQ(framePeriod(0.0F), 0U);
    EXPECT_EQ(framePeriod(std::numeric_limits<float>::max()), 0U);
    EXPECT_EQ(framePeriod(-1.0F), static_cast<std::uint32_t>(-1000000));
    EXPECT_EQ(framePeriod(std::numeric_limits<float>::quiet_NaN()), 0U);
}

TEST(StatusInterval, IsSixTenthsOfASecond)
{
    EXPECT_EQ(statusInterval(30.0F), 18U);
    EXPECT_EQ(statusInterval(5.0F), 3U);
}

TEST(StatusInterval, IsAtLeastOne)
{
    for (const float rate : {-1.0F, 0.0F, 1.0F, 1.1F, 1.6F, std::numeric_limits<float>::max()}) {
        EXPECT_EQ(statusInterval(rate), 1U) << rate;
    }
    EXPECT_EQ(statusInterval(std::numeric_limits<float>::quiet_NaN()), 1U);
}

} // namespace
