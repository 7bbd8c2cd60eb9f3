// What a configuration makes of the needs.
#include "doctor/doctor_needs.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

Configuration configured(const std::vector<std::string>& overrides)
{
    Configuration configuration;
    EXPECT_EQ(loadConfiguration("", overrides, configuration), ConfigErrors());
    return configuration;
}

DoctorNeeds needs(const std::vector<std::string>& overrides, DoctorHints hints = {})
{
    hints.hasConfiguration = !overrides.empty();
    return needsOf(configured(overrides), hints);
}

TEST(DoctorNeeds, WithoutAConfigurationTheyAreTheUsualOnes)
{
    const DoctorNeeds usual = needs({});
    EXPECT_EQ(usual.usbfsMb, 1000U);
    EXPECT_EQ(usual.lockBytes, 1000U * 1024 * 1024);
    EXPECT_EQ(usual.receiveBytes, 10485760U);
    EXPECT_EQ(usual.mtu, 9000U);
    EXPECT_EQ(usual.lines, Weight::kMaybe);
}

TEST(DoctorNeeds, MemoryFollowsFromFrameSizeAndBuffers)
{
    // 1024 x 1024 x 8 buffers are 8 MB, doubled.
    const DoctorNeeds even = needs({"region.width=1024", "region.height=1024"});
    EXPECT_EQ(even.usbfsMb, 16U);
    EXPECT_EQ(even.lockBytes, 8U * 1024 * 1024);
    // One row more begins another megabyte.
    EXPECT_EQ(needs({"region.width=1024", "region.height=1025"}).usbfsMb, 17U);
    EXPECT_EQ(needs({"region.width=1024", "region.height=1024", "grab.buffers=20"}).usbfsMb, 40U);
    // A size that is not whole is the camera's.
    EXPECT_EQ(needs({"region.width=1024"}).usbfsMb, 1000U);
    EXPECT_EQ(needs({"region.height=1024"}).usbfsMb, 1000U);
}

TEST(DoctorNeeds, EveryPixelFormatHasItsSize)
{
    const auto megabytes = [](const std::string& format) {
        return needs({"region.width=1024", "region.height=1024", "format.pixel_format=" + format})
            .usbfsMb;
    };
    EXPECT_EQ(megabytes("mono8"), 16U);
    EXPECT_EQ(megabytes("bayer8"), 16U);
    EXPECT_EQ(megabytes("mono12_packed"), 24U);
    EXPECT_EQ(megabytes("yuv411"), 24U);
    EXPECT_EQ(megabytes("mono12"), 32U);
    EXPECT_EQ(megabytes("yuv422"), 32U);
}

TEST(DoctorNeeds, TwoFramesFitIntoAReceiveBuffer)
{
    // 2560 x 2048 are exactly half of the usual buffer.
    EXPECT_EQ(needs({"region.width=2560", "region.height=2048"}).receiveBytes, 10485760U);
    EXPECT_EQ(needs({"region.width=2560", "region.height=2049"}).receiveBytes, 10490880U);
}

TEST(DoctorNeeds, PacketsAreAsConfigured)
{
    EXPECT_EQ(needs({"gige.packet_size=4000"}).mtu, 4000U);
    EXPECT_EQ(needs({"grab.frames=1"}).mtu, 1500U);
}

TEST(DoctorNeeds, LinesAreWeighedByTheConfiguration)
{
    Configuration configuration;
    const std::string text = "[[iobox]]\npin = \"gpio2\"\nmode = \"output\"\nsource = \"strobe\"\n";
    ASSERT_EQ(readConfiguration(text, "c.toml", ".", {}, configuration), ConfigErrors());
    EXPECT_EQ(needsOf(configuration, {true, false, false}).lines, Weight::kSure);
}

TEST(DoctorNeeds, OneKindOfCameraTakesTheWeightFromTheOther)
{
    DoctorHints usb;
    usb.usb = true;
    DoctorHints gige;
    gige.gige = true;
    DoctorHints both;
    both.usb = both.gige = true;
    const auto weights = [](const DoctorNeeds& each) { return std::pair(each.usb, each.gige); };
    EXPECT_EQ(weights(needs({})), std::pair(Weight::kMaybe, Weight::kMaybe));
    EXPECT_EQ(weights(needs({}, usb)), std::pair(Weight::kSure, Weight::kNone));
    EXPECT_EQ(weights(needs({}, gige)), std::pair(Weight::kNone, Weight::kSure));
    EXPECT_EQ(weights(needs({}, both)), std::pair(Weight::kSure, Weight::kSure));
    EXPECT_EQ(weights(needs({"gige.packet_size=1500"})), std::pair(Weight::kNone, Weight::kSure));
    EXPECT_EQ(weights(needs({"gige.packet_size=1500"}, usb)),
              std::pair(Weight::kSure, Weight::kSure));
}

TEST(DoctorNeeds, LackingMattersByWeight)
{
    EXPECT_EQ(lacking(Weight::kNone), Verdict::kSkip);
    EXPECT_EQ(lacking(Weight::kMaybe), Verdict::kWarn);
    EXPECT_EQ(lacking(Weight::kSure), Verdict::kFail);
}

} // namespace
} // namespace kxhost
