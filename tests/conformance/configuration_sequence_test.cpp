// Configuration sequence: every step in its order, what it prints, and every failure.
#include "configuration_fixture.h"
#include "kx_scenario.h"

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

class ConfigurationSequenceTest : public kxtest::ConfigurationTest {};

TEST_F(ConfigurationSequenceTest, ShowsTheCamera)
{
    ASSERT_EQ(configure(), 0);
    EXPECT_THAT(
        linesFrom("== Camera Device Information ==", 9),
        ElementsAre(info("== Camera Device Information =="),
                    info("==============================="),
                    info(format("Vendor           : %s", info_.vendorName)),
                    info("Model            : Cricket C1"), info("SensorInfo       : Small CMOS"),
                    info("SensorResolution : 640x480"), info("DeviceSerialID   : 1000"),
                    info("Firmware version : 1.2.3.4"), info("Temperature, C   : 41.45 (314.6K)")));
}

TEST_F(ConfigurationSequenceTest, ShowsTheCurrentSettings)
{
    ASSERT_EQ(configure(), 0);
    EXPECT_THAT(
        linesFrom("~~ Camera Device Current Settings ~~", 10),
        ElementsAre(info("~~ Camera Device Current Settings ~~"), info(std::string(36, '~')),
                    info("ROI OffsX x OffsY   : 0 x 0"), info("ROI Width x Height  : 640 x 480"),
                    info("ResultingFrameRate  : 30.000000"), info("Gain, dB            : 2.500000"),
                    info("ExposureTimeAbs, us : 10000.000000"),
                    info("Gamma               : 1.250000"),
                    info("PixelFormat         : 0x80000000"), info(std::string(36, '~'))));
}

TEST_F(ConfigurationSequenceTest, ShowsTheNewSettings)
{
    host().config.format = 3;
    host().config.offsetX = 64;
    host().config.width = 320;
    ASSERT_EQ(configure(), 0);
    EXPECT_THAT(
        linesFrom("~~ Camera Device New Settings ~~", 12),
        ElementsAre(info("~~ Camera Device New Settings ~~"), info(std::string(32, '~')),
                    info("ROI OffsX x OffsY   : 64 x 0"), info("ROI Width x Height  : 320 x 480"),
                    info("ResultingFrameRate  : 30.000000"), info("Gain, dB            : 2.500000"),
                    info("ExposureTimeAbs, us : 10000.000000"),
                    info("Gamma               : 1.250000"),
                    info("PixelFormat         : 0x04000000"), info("Stride              : 640"),
                    info("Full frame size     : 307200"), info(std::string(32, '~'))));
}

TEST_F(ConfigurationSequenceTest, SpeaksInItsOrder)
{
    ASSERT_EQ(configure(), 0);
    std::vector<std::string> order;
    for (const std::string& line : journal().logs()) {
        for (const char* const mark :
             {"Device Information", "Temperature", "Current Settings", "Configure pixel format",
              "Acquisition set handler", "recommendedBytesPerPacket", "Set gBufferFrameSize",
              "Chunks enabling", "Applying initial", "New Settings", "REGULAR mode",
              "...initial"}) {
            if (line.find(mark) != std::string::npos) {
                order.emplace_back(mark);
            }
        }
    }
    EXPECT_THAT(order, ElementsAre("Device Information", "Temperature", "Current Settings",
                                   "Configure pixel format", "Acquisition set handler",
                                   "recommendedBytesPerPacket", "Set gBufferFrameSize",
                                   "Chunks enabling", "Applying initial", "Acquisition set handler",
                                   "New Settings", "REGULAR mode", "...initial"));
    EXPECT_THAT(journal().logs(), AllOf(Contains(info("Applying initial configuration...")),
                                        Contains(info("...initial configuration is applied")),
                                        Contains(info("REGULAR mode - TS is obtained using box "
                                                      "gettimeofday"))));
}

TEST_F(ConfigurationSequenceTest, CallsTheCameraInItsOrder)
{
    gKxLogLevelLib = 0;
    ASSERT_EQ(configure(), 0);
    std::vector<std::string> calls;
    for (const auto& event : journal().events()) {
        if (event.kind == kxtest::Kind::sdk) {
            calls.push_back(event.name.substr(event.name.find('.') + 1));
        }
    }
    // Values that are only printed are not read.
    EXPECT_THAT(calls, ElementsAre("GetFormat7Info", "GetStats", "GetFormat7Configuration",
                                   "GetPropertyInfo", "GetProperty", // frame rate
                                   "ValidateFormat7Settings", "SetFormat7Configuration",
                                   "SetConfiguration", "GetEmbeddedImageInfo",
                                   "SetEmbeddedImageInfo", "GetPropertyInfo", "GetProperty", // gain
                                   "GetPropertyInfo", "GetProperty", // exposure
                                   "IsConnected", "GetFormat7Info", "GetFormat7Configuration",
                                   "GetPropertyInfo", "GetProperty", // frame rate
                                   "GetFormat7Info", "GetFormat7Configuration"));
}

TEST_F(ConfigurationSequenceTest, TellsTheHostInItsOrder)
{
    ASSERT_EQ(configure(), 0);
    EXPECT_THAT(journal().lines(kxtest::Kind::host),
                ElementsAre("KxSc__SetParamVal(4)", "KxSc__SetParamVal(8)",
                            "KxGi__SetCurrFpsUs(33333)", "KxSc__SetParamVal(1)",
                            "KxSc__SetParamVal(2)", "KxGiMemInst__SetActFsize(0, 307200)"));
    EXPECT_EQ(*static_cast<const std::uint32_t*>(host().published.at(kKxScWidth)), 640U);
    EXPECT_EQ(*static_cast<const std::uint32_t*>(host().published.at(kKxScHeight)), 480U);
    EXPECT_EQ(*static_cast<const std::uint32_t*>(host().published.at(kKxScUnit)), 1000U);
}

TEST_F(ConfigurationSequenceTest, ConfiguresCaptureFromScratch)
{
    ASSERT_EQ(configure(9), 0);
    ASSERT_THAT(cam_->configurations, SizeIs(1));
    const FlyCapture2::FC2Config& config = cam_->configurations[0];
    EXPECT_EQ(config.numBuffers, 9U);
    EXPECT_EQ(config.numImageNotifications, 1U);
    EXPECT_EQ(config.minNumImageNotifications, 0U);
    EXPECT_EQ(config.grabTimeout, 2000);
    EXPECT_EQ(config.grabMode, FlyCapture2::DROP_FRAMES);
    EXPECT_FALSE(config.highPerformanceRetrieveBuffer);
    EXPECT_EQ(config.isochBusSpeed, FlyCapture2::BUSSPEED_ANY);
    EXPECT_EQ(config.asyncBusSpeed, FlyCapture2::BUSSPEED_ANY);
    EXPECT_EQ(config.bandwidthAllocation, FlyCapture2::BANDWIDTH_ALLOCATION_UNSPECIFIED);
    EXPECT_EQ(config.registerTimeoutRetries, 0U);
    EXPECT_EQ(config.registerTimeout, 0U);
    EXPECT_THAT(config.reserved, testing::Each(0U));
    EXPECT_EQ(proc_->numBuffers, 9U);
    EXPECT_EQ(journal().count("Camera.GetConfiguration"), 0U);
}

TEST_F(ConfigurationSequenceTest, LeavesItsResultsInTheSession)
{
    host().config.format = 2;
    host().config.tsadjns = -7;
    ASSERT_EQ(configure(), 0);
    EXPECT_EQ(proc_->roiWidth, 640U);
    EXPECT_EQ(proc_->roiHeight, 480U);
    EXPECT_EQ(proc_->pixelFormat, FlyCapture2::PIXEL_FORMAT_MONO12);
    EXPECT_EQ(proc_->cfgFormat, 2);
    EXPECT_EQ(proc_->bitsPerPixel, 12);
    EXPECT_EQ(proc_->dataBits, 12);
    EXPECT_EQ(proc_->stride, 960U);
    EXPECT_EQ(proc_->activeFrameSize, 460'800U);
    EXPECT_EQ(proc_->gBufferFrameSize, 460'800U);
    EXPECT_EQ(proc_->clockRegister, 0x1EA8U);
    EXPECT_EQ(proc_->chunkMask, 15U);
    EXPECT_EQ(proc_->curGainDb, 2.5F);
    EXPECT_EQ(proc_->curExpoUs, 10'000.0F);
    EXPECT_EQ(cam_->expoTimeUs, 10'000U);
    EXPECT_EQ(proc_->resultingFps, 30.0F);
    EXPECT_EQ(proc_->framePeriodUs, 33'333U);
    EXPECT_EQ(proc_->tsOffsetUs, 5U);
    EXPECT_EQ(proc_->exposureUs, 10);
    EXPECT_EQ(proc_->tsAdjNs, -7);
    EXPECT_FALSE(proc_->storeMode);
    EXPECT_FALSE(proc_->swRotate);
}

TEST_F(ConfigurationSequenceTest, ReadsColourOnlyOfColourFormats)
{
    cam_->absValues[FlyCapture2::SATURATION] = 133;
    host().config.format = 9;
    ASSERT_EQ(configure(), 0);
    EXPECT_THAT(journal().lines({"Camera.GetProperty"}), Not(Contains(HasSubstr("SATURATION"))));
    host().config.format = 5;
    ASSERT_EQ(configure(), 0);
    EXPECT_TRUE(proc_->isColor);
    EXPECT_EQ(proc_->curSaturation, 133);
    EXPECT_EQ(proc_->curWbRed, 512U);
    EXPECT_EQ(proc_->curWbBlue, 512U);
}

struct Failure {
    const char* operation;
    int code;
    const char* notReached; ///< call that does not follow
};

class ConfigurationFailureTest : public ConfigurationSequenceTest,
                                 public testing::WithParamInterface<Failure> {};

TEST_P(ConfigurationFailureTest, HasACodeAndAMessage)
{
    failCalls(GetParam().operation);
    EXPECT_EQ(configure(), GetParam().code);
    EXPECT_EQ(journal().logs().back(),
              warning("ProcSetCamConfig", format("Error during %s: %s", GetParam().operation,
                                                 failureOf(GetParam().operation).c_str())));
    EXPECT_EQ(journal().count(GetParam().notReached), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Configuration, ConfigurationFailureTest,
    testing::Values(Failure{"GetFormat7Info", -1, "Camera.GetStats"},
                    Failure{"ValidateFormat7Settings", -7, "Camera.SetFormat7Configuration"},
                    Failure{"SetFormat7Configuration", -5, "Camera.SetConfiguration"},
                    Failure{"SetConfiguration", -6, "Camera.GetEmbeddedImageInfo"}),
    [](const auto& one) { return std::string(one.param.operation); });

TEST_F(ConfigurationSequenceTest, FailsWithoutFormat7)
{
    camera_.extra += "format7 = { supported = false }\n";
    connect(camera_);
    EXPECT_EQ(configure(), -2);
    EXPECT_EQ(journal().logs().back(),
              warning("ProcSetCamConfig", "The format 7 mode is not valid for this camera"));
    EXPECT_THAT(cam_->configurations, IsEmpty());
}

TEST_F(ConfigurationSequenceTest, FailsWithAFormatThatIsNotSupported)
{
    host().config.format = 77;
    EXPECT_EQ(configure(), -1);
    EXPECT_THAT(journal().logs().back(),
                testing::MatchesRegex("3 \\[e\\|.*kx_pg_proc.*\\.cpp:[0-9]+\\] The asked pixel "
                                      "format is not supported by device!"));
    EXPECT_EQ(journal().count("Camera.ValidateFormat7Settings"), 0U);
}

TEST_F(ConfigurationSequenceTest, FallsBackToMono)
{
    camera_.extra += "format7 = { pixel_formats = [\"MONO8\"] }\n";
    connect(camera_);
    host().config.format = 3;
    EXPECT_EQ(configure(), 0);
    EXPECT_EQ(proc_->cfgFormat, 1);
    ASSERT_THAT(cam_->format7, SizeIs(1));
    EXPECT_EQ(cam_->format7[0].pixelFormat, FlyCapture2::PIXEL_FORMAT_MONO8);
}

TEST_F(ConfigurationSequenceTest, SaysNothingOfAMissingTemperature)
{
    failCalls("GetStats");
    EXPECT_EQ(configure(), 0);
    EXPECT_THAT(journal().logsWith("Temperature"), IsEmpty());
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
}

TEST_F(ConfigurationSequenceTest, GoesOnWithoutTheCurrentFormat)
{
    failCalls("GetFormat7Configuration");
    configure();
    EXPECT_THAT(journal().logs(), Contains(info("ROI Width x Height  : 0 x 0")));
}

TEST_F(ConfigurationSequenceTest, TrustsOnlyTheErrorOfTheValidation)
{
    // An answer of "not valid" without an error, and without packet sizes.
    fcsim::Fault fault;
    fault.operation = "ValidateFormat7Settings";
    fault.skipEffect = true;
    fcsim::addFault(fault);
    configure();
    EXPECT_THAT(journal().logs(), Contains(info("recommendedBytesPerPacket : 0 (max 0 unit 0)")));
    EXPECT_EQ(journal().count("Camera.SetFormat7Configuration"), 1U);
}

TEST_F(ConfigurationSequenceTest, SendsTheRecommendedPacketSize)
{
    camera_.extra +=
        "format7 = { packet_size = { recommended = 1024, min = 512, max = 4096, unit = "
        "32 } }\n";
    connect(camera_);
    ASSERT_EQ(configure(), 0);
    EXPECT_THAT(journal().logs(),
                Contains(info("recommendedBytesPerPacket : 1024 (max 4096 unit 32)")));
    EXPECT_THAT(cam_->packetSizes, ElementsAre(1024U));
}

TEST_F(ConfigurationSequenceTest, SendsTheConfiguredRegion)
{
    host().config.offsetX = 32;
    host().config.offsetY = 16;
    host().config.width = 320;
    host().config.height = 240;
    ASSERT_EQ(configure(), 0);
    ASSERT_THAT(cam_->format7, SizeIs(1));
    EXPECT_EQ(cam_->format7[0].offsetX, 32U);
    EXPECT_EQ(cam_->format7[0].offsetY, 16U);
    EXPECT_EQ(cam_->format7[0].width, 320U);
    EXPECT_EQ(cam_->format7[0].height, 240U);
    EXPECT_EQ(proc_->roiWidth, 320U);
    EXPECT_EQ(proc_->roiHeight, 240U);
}

TEST_F(ConfigurationSequenceTest, KnowsTheSizeOfItsFramesThoughTheCameraDoesNotTellItAgain)
{
    // Whoever reads the pixels goes by it: the former size would lead past the frame's end.
    host().config.width = 320;
    host().config.height = 240;
    failCalls("GetFormat7Configuration", 1, 0);
    ASSERT_EQ(configure(), 0);
    EXPECT_EQ(proc_->roiWidth, 320U);
    EXPECT_EQ(proc_->roiHeight, 240U);
}

} // namespace
