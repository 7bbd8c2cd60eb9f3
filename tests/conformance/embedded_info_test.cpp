// Embedded image information: switched on before the grab and off again after it.
#include "camera_test.h"

using kxtest::format;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct Offer {
    const char* name;
    const char* items; ///< what the camera offers, as a TOML list
    unsigned mask;
};

const char* const kOn[] = {
    "  Enabled gain chunks sending", "  Enabled exposure time chunks sending",
    "  Enabled timestamp chunks sending", "  Enabled counter value chunks sending"};
const char* const kOff[] = {
    "  Disabled gain chunks sending", "  Disabled exposure time chunks sending",
    "  Disabled timestamp chunks sending", "  Disabled counter value chunks sending"};

class EmbeddedInfoTest : public kxtest::CameraTest {
protected:
    void connectOffering(const std::string& items)
    {
        kxtest::CameraText camera;
        camera.extra = "embedded = [" + items + "]";
        connect(camera);
    }
    static std::vector<std::string> linesFor(unsigned mask, const char* const (&texts)[4])
    {
        std::vector<std::string> lines;
        for (unsigned bit = 0; bit < 4; ++bit) {
            if ((mask & (1U << bit)) != 0) {
                lines.push_back(info(texts[bit]));
            }
        }
        return lines;
    }
};

const char* const kAllFour = "\"gain\", \"shutter\", \"timestamp\", \"frameCounter\"";

class EmbeddedOfferTest : public EmbeddedInfoTest, public testing::WithParamInterface<Offer> {
protected:
    EmbeddedOfferTest() { connectOffering(GetParam().items); }
    /// The items of the record that are switched on, as bits of the mask.
    static unsigned switchedOn(const FlyCapture2::EmbeddedImageInfo& record)
    {
        return (record.gain.onOff ? 1U : 0U) | (record.shutter.onOff ? 2U : 0U) |
               (record.timestamp.onOff ? 4U : 0U) | (record.frameCounter.onOff ? 8U : 0U);
    }
};

TEST_P(EmbeddedOfferTest, IsSwitchedOn)
{
    proc_->chunkMask = 0x80;
    proc_->ProcSetCamConfigChunks(cam_.get());
    EXPECT_EQ(proc_->chunkMask, GetParam().mask);
    ASSERT_THAT(cam_->embedded, SizeIs(1));
    EXPECT_EQ(switchedOn(cam_->embedded[0]), GetParam().mask);
    auto expected = linesFor(GetParam().mask, kOn);
    expected.push_back(info(format("Chunks enabling is finished (%u)", GetParam().mask)));
    EXPECT_EQ(journal().logs(), expected);
}

TEST_P(EmbeddedOfferTest, IsSwitchedOffAgain)
{
    proc_->ProcSetCamConfigChunks(cam_.get());
    journal().clear();
    cam_->embedded.clear();
    proc_->ProcSetCamConfigEnd(cam_.get());
    EXPECT_EQ(proc_->chunkMask, 0U);
    EXPECT_THAT(cam_->embedded, SizeIs(GetParam().mask == 0 ? 0 : 1));
    for (const auto& record : cam_->embedded) {
        EXPECT_EQ(switchedOn(record), 0U);
    }
    auto expected = linesFor(GetParam().mask, kOff);
    expected.insert(expected.begin(),
                    info(format("Restore some changed camera values (%u)", GetParam().mask)));
    expected.push_back(info("Camera config restore is done"));
    EXPECT_EQ(journal().logs(), expected);
}

TEST_P(EmbeddedOfferTest, IsSwitchedWithoutLogToo)
{
    gKxLogLevelLib = 0;
    proc_->ProcSetCamConfigChunks(cam_.get());
    EXPECT_EQ(proc_->chunkMask, GetParam().mask);
    proc_->ProcSetCamConfigEnd(cam_.get());
    EXPECT_EQ(proc_->chunkMask, 0U);
    EXPECT_EQ(switchedOn(cam_->embedded.back()), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    EmbeddedInfo, EmbeddedOfferTest,
    testing::Values(Offer{"AllFour", kAllFour, 15}, Offer{"Nothing", "", 0},
                    Offer{"TimestampAndCounter", "\"timestamp\", \"frameCounter\"", 12},
                    Offer{"Gain", "\"gain\"", 1}, Offer{"Exposure", "\"shutter\"", 2},
                    Offer{"OtherItems", "\"brightness\", \"ROIPosition\"", 0}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(EmbeddedInfoTest, KeepsItsMaskWhenTheCameraDoesNotTell)
{
    connectOffering(kAllFour);
    proc_->chunkMask = 5;
    failCalls("GetEmbeddedImageInfo");
    proc_->ProcSetCamConfigChunks(cam_.get());
    EXPECT_EQ(proc_->chunkMask, 5U);
    EXPECT_THAT(cam_->embedded, IsEmpty());
    EXPECT_THAT(journal().logs(), ElementsAre(warning("ProcSetCamConfigChunks",
                                                      "Error during GetEmbeddedImageInfo: " +
                                                          failureOf("GetEmbeddedImageInfo"))));
}

TEST_F(EmbeddedInfoTest, KeepsTheBitsOfARefusedSwitchingOn)
{
    connectOffering(kAllFour);
    failCalls("SetEmbeddedImageInfo");
    proc_->ProcSetCamConfigChunks(cam_.get());
    EXPECT_EQ(proc_->chunkMask, 15U);
    EXPECT_EQ(journal().logs().back(),
              warning("ProcSetCamConfigChunks",
                      "Error during SetEmbeddedImageInfo: " + failureOf("SetEmbeddedImageInfo")));
    EXPECT_THAT(journal().logsWith("Chunks enabling is finished"), IsEmpty());
}

TEST_F(EmbeddedInfoTest, LeavesTheOtherItemsAsTheyAre)
{
    connectOffering("\"gain\", \"brightness\"");
    FlyCapture2::EmbeddedImageInfo record;
    ASSERT_EQ(cam_->GetEmbeddedImageInfo(&record), FlyCapture2::PGRERROR_OK);
    record.brightness.onOff = true;
    ASSERT_EQ(cam_->SetEmbeddedImageInfo(&record), FlyCapture2::PGRERROR_OK);
    proc_->ProcSetCamConfigChunks(cam_.get());
    EXPECT_TRUE(cam_->embedded.back().brightness.onOff);
    proc_->ProcSetCamConfigEnd(cam_.get());
    EXPECT_TRUE(cam_->embedded.back().brightness.onOff);
}

TEST_F(EmbeddedInfoTest, EndsWithoutACallWhenNothingIsOn)
{
    connectOffering(kAllFour);
    proc_->chunkMask = 0;
    proc_->ProcSetCamConfigEnd(cam_.get());
    EXPECT_THAT(journal().lines(kxtest::Kind::sdk), IsEmpty());
    EXPECT_THAT(journal().logs(), ElementsAre(info("Restore some changed camera values (0)"),
                                              info("Camera config restore is done")));
}

class EmbeddedRestoreFailureTest : public EmbeddedInfoTest,
                                   public testing::WithParamInterface<const char*> {};

TEST_P(EmbeddedRestoreFailureTest, KeepsTheMask)
{
    connectOffering(kAllFour);
    proc_->chunkMask = 15;
    failCalls(GetParam());
    proc_->ProcSetCamConfigEnd(cam_.get());
    EXPECT_EQ(proc_->chunkMask, 15U);
    EXPECT_EQ(journal().logs().back(),
              warning("ProcSetCamConfigEnd",
                      std::string("Error during ") + GetParam() + ": " + failureOf(GetParam())));
    EXPECT_THAT(journal().logsWith("restore is done"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(EmbeddedInfo, EmbeddedRestoreFailureTest,
                         testing::Values("GetEmbeddedImageInfo", "SetEmbeddedImageInfo"),
                         [](const auto& one) { return std::string(one.param); });

} // namespace
