// Pixel conversion: converted frames beside the raw ones, their memory, and failures.
#include "camera_test.h"
#include "kx_scenario.h"

#include <set>

using kxtest::host;
using kxtest::journal;
using kxtest::warning;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class ConversionTest : public kxtest::CameraTest {
protected:
    ConversionTest()
    {
        kxtest::CameraText camera;
        camera.sensor = "width = 160, height = 120, colour = true, bayer_tile = \"GRBG\"";
        connect(camera);
        host().config.format = 9;
        host().config.cformat = 1;
    }
    static void failConversions(unsigned count)
    {
        fcsim::Fault fault;
        fault.operation = "Convert";
        fault.count = count;
        fault.error = FlyCapture2::PGRERROR_IMAGE_CONVERSION_FAILED;
        fault.description = "no way";
        fcsim::addFault(fault);
    }
    static std::vector<int> instances()
    {
        std::vector<int> all;
        for (const auto& frame : host().frames) {
            all.push_back(frame.instance);
        }
        return all;
    }
    static std::set<const void*> framesOf(int instance)
    {
        std::set<const void*> all;
        for (const auto& frame : host().frames) {
            if (frame.instance == instance) {
                all.insert(frame.frame);
            }
        }
        return all;
    }
};

TEST_F(ConversionTest, HandsBothFramesOverConvertedFirst)
{
    ASSERT_EQ(grab(3), 0);
    EXPECT_THAT(instances(), ElementsAre(1, 0, 1, 0));
    EXPECT_EQ(host().frames[0].timestampUs, host().frames[1].timestampUs);
    EXPECT_THAT(host().exports, SizeIs(2));
    EXPECT_STREQ(host().exports[0].texts.at(kKxScCodec).c_str(), "BayerGR8T");
}

TEST_F(ConversionTest, KeepsTheConvertedPixelsInOnePlace)
{
    ASSERT_EQ(grab(8), 0);
    EXPECT_THAT(framesOf(1), SizeIs(1));
    EXPECT_GT(framesOf(0).size(), 1U);
}

TEST_F(ConversionTest, TellsTheHostTheSizeOfConvertedFramesOnce)
{
    host().config.cformat = 5;
    ASSERT_EQ(grab(4), 0);
    // 160 x 120 as raw Bayer, then with two bytes for each pixel.
    EXPECT_THAT(journal().lines({"KxGiMemInst__SetActFsize"}),
                ElementsAre("KxGiMemInst__SetActFsize(0, 19200)",
                            "KxGiMemInst__SetActFsize(1, 19456)",
                            "KxGiMemInst__SetActFsize(1, 38400)"));
    EXPECT_EQ(proc_->convFrameSize, 38'400U);
}

TEST_F(ConversionTest, ReplacesTheRawFrameAtASecondSetUp)
{
    ASSERT_EQ(grab(2), 0);
    host().frames.clear();
    journal().clear();
    ASSERT_EQ(grab(3), 0);
    EXPECT_EQ(proc_->memInstance, 0);
    EXPECT_THAT(instances(), ElementsAre(0, 0));
    EXPECT_THAT(framesOf(0), ElementsAre(proc_->convImage.GetData()));
}

TEST_F(ConversionTest, ConvertsNothingUnlessConfigured)
{
    host().config.cformat = 0;
    ASSERT_EQ(grab(3), 0);
    EXPECT_THAT(instances(), Each(0));
    EXPECT_EQ(journal().count("Image.Convert"), 0U);
}

TEST_F(ConversionTest, ConvertsNothingWhenTheWayIsNotSupported)
{
    host().config.cformat = 8;
    ASSERT_EQ(grab(3), 0);
    EXPECT_THAT(instances(), ElementsAre(0, 0));
    EXPECT_EQ(journal().count("Image.Convert"), 0U);
    EXPECT_THAT(host().exports, SizeIs(2));
}

TEST_F(ConversionTest, StoresTheRawFrameAfterAFailure)
{
    failConversions(1);
    ASSERT_EQ(grab(3), 0);
    EXPECT_THAT(instances(), ElementsAre(0, 1, 0));
    EXPECT_THAT(host().exports, SizeIs(2));
}

TEST_F(ConversionTest, ReportsOnlyTheFirstFailureOfTheProcess)
{
    KX_IN_FRESH_PROCESS({
        failConversions(2);
        ASSERT_EQ(grab(5), 0);
        failConversions(1);
        ASSERT_EQ(grab(3), 0);
        EXPECT_THAT(journal().logsWith("onversion error"),
                    ElementsAre(warning("ProcLoopConv",
                                        "got pixel Conversion error (38): simulated: no way")));
    });
}

TEST_F(ConversionTest, ReportsItOnlyAtTheLevelOfWarnings)
{
    KX_IN_FRESH_PROCESS({
        gKxLogLevelLib = 1;
        failConversions(0);
        ASSERT_EQ(grab(3), 0);
        EXPECT_THAT(journal().logs(), IsEmpty());
        // The one chance was used up.
        gKxLogLevelLib = 5;
        journal().clear();
        ASSERT_EQ(grab(3), 0);
        EXPECT_THAT(journal().logsWith("onversion error"), IsEmpty());
    });
}

TEST_F(ConversionTest, ForgetsTheLastFramesConversion)
{
    static unsigned char stale = 0;
    proc_->pendingFrame[1] = &stale;
    FlyCapture2::Image image;
    proc_->ProcLoopConv(&image);
    EXPECT_EQ(proc_->pendingFrame[1], nullptr);
}

TEST_F(ConversionTest, DropsTheExportWhenTheConvertedFrameIsRefused)
{
    host().trigger = [](int instance) { return instance == 1 ? 1 : 0; };
    ASSERT_EQ(grab(3), 0);
    EXPECT_THAT(instances(), ElementsAre(1, 1));
    EXPECT_THAT(host().exports, IsEmpty());
}

} // namespace
