// Results of the configuration: buffer sizes, frame period, and what a later pass changes.
#include "configuration_fixture.h"

#include <algorithm>
#include <limits>

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ConfigurationResultsTest : public kxtest::ConfigurationTest {};

struct BufferSize {
    const char* name;
    const char* interface;
    unsigned width;
    unsigned height;
    unsigned packet; ///< recommended; 0 = the camera's own
    unsigned char format;
    unsigned stride;
    unsigned bytes;
};

class BufferSizeTest : public ConfigurationResultsTest,
                       public testing::WithParamInterface<BufferSize> {};

TEST_P(BufferSizeTest, IsPaddedForTheBus)
{
    const BufferSize& size = GetParam();
    camera_.interface = size.interface;
    camera_.sensor = "width = 1280, height = 1024, colour = false";
    camera_.extra = "format7 = { size_steps = [1, 1], packet_size = { unit = 8, min = 8, max = "
                    "65536, recommended = " +
                    std::to_string(size.packet == 0 ? 1024 : size.packet) + " } }\n";
    connect(camera_);
    host().config.format = size.format;
    host().config.width = size.width;
    host().config.height = size.height;
    ASSERT_EQ(configure(), 0);
    EXPECT_EQ(proc_->gBufferFrameSize, size.bytes);
    EXPECT_EQ(proc_->stride, size.stride);
    EXPECT_EQ(proc_->activeFrameSize, size.stride * size.height);
    EXPECT_THAT(journal().logs(), Contains(info(format("Set gBufferFrameSize to %u", size.bytes))));
}

INSTANTIATE_TEST_SUITE_P(
    Configuration, BufferSizeTest,
    testing::Values(BufferSize{"Usb3Fits", "usb3", 640, 480, 0, 1, 640, 307'200},
                    BufferSize{"Usb3OneTooMany", "usb3", 307, 1001, 0, 1, 307, 308'224},
                    BufferSize{"GigE", "gige", 77, 13, 0, 1, 77, 1024},
                    BufferSize{"GigEFits", "gige", 64, 16, 0, 1, 64, 1024},
                    BufferSize{"Ieee1394", "ieee1394", 77, 13, 0, 1, 77, 1024},
                    BufferSize{"Usb2", "usb2", 100, 50, 4096, 1, 100, 8192},
                    BufferSize{"Usb2OddPacket", "usb2", 100, 50, 2504, 1, 100, 5008},
                    BufferSize{"WidthOf16Bits", "gige", 100, 16, 0, 3, 200, 3200}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(ConfigurationResultsTest, RoundsTheLineOfAnOddWidthUp)
{
    camera_.extra = "format7 = { size_steps = [1, 1] }\n";
    camera_.sensor = "width = 1280, height = 1024, colour = false";
    connect(camera_);
    host().config.format = 2;
    host().config.width = 641;
    // The simulated camera packs pairs of pixels and refuses the width, after the line was
    // computed.
    EXPECT_EQ(configure(), -5);
    EXPECT_EQ(proc_->stride, 962U);
}

struct Rate {
    const char* name;
    float fps;
    std::uint32_t periodUs;
};

class FramePeriodTest : public ConfigurationResultsTest,
                        public testing::WithParamInterface<Rate> {};

TEST_P(FramePeriodTest, IsRoundedAndReported)
{
    cam_->absValues[FlyCapture2::FRAME_RATE] = GetParam().fps;
    ASSERT_EQ(configure(), 0);
    EXPECT_EQ(proc_->framePeriodUs, GetParam().periodUs);
    EXPECT_THAT(journal().lines({"KxGi__SetCurrFpsUs"}),
                ElementsAre(format("KxGi__SetCurrFpsUs(%u)", GetParam().periodUs)));
}

INSTANTIATE_TEST_SUITE_P(Configuration, FramePeriodTest,
                         testing::Values(Rate{"Thirty", 30, 33'333}, Rate{"Sixty", 60, 16'667},
                                         Rate{"Half", 0.5F, 2'000'000},
                                         Rate{"Absent", std::numeric_limits<float>::max(), 0},
                                         Rate{"Failed", -1, 0xFFF0BDC0}, Rate{"Zero", 0, 0}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(ConfigurationResultsTest, ToleratesARegionThatIsNotInForce)
{
    // The camera does not take the new width over, so the check finds a difference.
    fcsim::Fault fault;
    fault.operation = "SetFormat7Configuration";
    fault.skipEffect = true;
    fcsim::addFault(fault);
    host().config.width = 320;
    EXPECT_EQ(configure(), 0);
    EXPECT_THAT(journal().logs(), Contains(info("...initial configuration is applied")));
    EXPECT_THAT(journal().logsWith("New Settings"), IsEmpty());
    EXPECT_EQ(journal().count("KxGi__SetCurrFpsUs"), 0U);
}

TEST_F(ConfigurationResultsTest, ReportsARegionThatIsNotInForceToOthers)
{
    host().config.width = 320;
    EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), false), 1);
    EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), true), 0);
}

TEST_F(ConfigurationResultsTest, LeavesGeometryAloneWhenLive)
{
    ASSERT_EQ(configure(), 0);
    journal().clear();
    host().config.tsadjns = 55;
    EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), true), 0);
    EXPECT_EQ(journal().count("Camera.GetFormat7Info"), 0U);
    EXPECT_EQ(journal().count("KxGi__SetCurrFpsUs"), 0U);
    EXPECT_THAT(journal().logsWith("New Settings"), IsEmpty());
    EXPECT_EQ(proc_->tsAdjNs, 0);
}

TEST_F(ConfigurationResultsTest, ConnectsACameraThatIsNot)
{
    ASSERT_EQ(cam_->Disconnect(), FlyCapture2::PGRERROR_OK);
    journal().clear();
    proc_->ProcParametrizeCam(cam_.get(), true);
    EXPECT_TRUE(cam_->IsConnected());
    EXPECT_THAT(journal().logs(), Contains(info("Camera is connected")));
    EXPECT_EQ(journal().count("Camera.Connect"), 1U);
    journal().clear();
    proc_->ProcParametrizeCam(cam_.get(), true);
    EXPECT_THAT(journal().logsWith("Camera is connected"), IsEmpty());
}

TEST_F(ConfigurationResultsTest, SaysConnectedWhateverTheCameraAnswered)
{
    ASSERT_EQ(cam_->Disconnect(), FlyCapture2::PGRERROR_OK);
    journal().clear();
    failCalls("Connect");
    EXPECT_EQ(proc_->ProcParametrizeCam(cam_.get(), true), 0);
    EXPECT_FALSE(cam_->IsConnected());
    EXPECT_THAT(journal().logs(), Contains(info("Camera is connected")));
}

TEST_F(ConfigurationResultsTest, TakesAnExposureThatCannotBeReadAsItReads)
{
    cam_->onGetPropertyInfo = [](FlyCapture2::PropertyInfo& property) {
        property.present = property.type != FlyCapture2::SHUTTER;
    };
    ASSERT_EQ(configure(), 0);
    // The largest number in milliseconds has no end in microseconds.
    EXPECT_EQ(proc_->curExpoUs, std::numeric_limits<float>::infinity());
    EXPECT_EQ(cam_->expoTimeUs, 0U);

    gKxLogLevelLib = 0;
    cam_->onGetPropertyInfo = nullptr;
    journal().clear();
    ASSERT_EQ(configure(), 0);
    const auto asked = journal().lines({"Camera.GetPropertyInfo"});
    const auto shutter = std::find(asked.begin(), asked.end(), "Camera.GetPropertyInfo(SHUTTER)");
    ASSERT_NE(shutter, asked.end());
    failCalls("GetPropertyInfo", static_cast<unsigned>(shutter - asked.begin()));
    ASSERT_EQ(configure(), 0);
    EXPECT_EQ(proc_->curExpoUs, -1000.0F);
    EXPECT_EQ(cam_->expoTimeUs, static_cast<std::uint32_t>(-1000));
}

TEST_F(ConfigurationResultsTest, ForgetsColourWithTheFormat)
{
    host().config.format = 5;
    ASSERT_EQ(configure(), 0);
    EXPECT_TRUE(proc_->isColor);
    EXPECT_THAT(journal().logsWith("WhiteBalance settings handler"), testing::SizeIs(1));
    for (const std::uint8_t format : {std::uint8_t{1}, std::uint8_t{9}}) {
        proc_->isColor = true;
        journal().clear();
        host().config.format = format;
        ASSERT_EQ(configure(), 0);
        EXPECT_FALSE(proc_->isColor);
        EXPECT_THAT(journal().logsWith("WhiteBalance settings handler"), IsEmpty());
        EXPECT_THAT(journal().logsWith("Saturation settings handler"), IsEmpty());
    }
}

TEST_F(ConfigurationResultsTest, TakesTheConfigurationAnewEachTime)
{
    ASSERT_EQ(configure(), 0);
    host().config.format = 3;
    host().config.height = 240;
    ASSERT_EQ(configure(2), 0);
    EXPECT_EQ(proc_->activeFrameSize, 640U * 2 * 240);
    EXPECT_EQ(proc_->numBuffers, 2U);
}

} // namespace
