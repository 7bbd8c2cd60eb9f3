// Region of interest: which configured values are accepted, and what is said about each.
#include "camera_test.h"

using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::ElementsAre;

namespace {

class RegionTest : public kxtest::CameraTest {
protected:
    RegionTest()
    {
        limits_.maxWidth = 1280;
        limits_.maxHeight = 1024;
        limits_.offsetHStepSize = 2;
        limits_.offsetVStepSize = 4;
        limits_.imageHStepSize = 16;
        limits_.imageVStepSize = 8;
        settings_.offsetX = 2;
        settings_.offsetY = 4;
        settings_.width = 640;
        settings_.height = 480;
    }
    unsigned apply() { return proc_->ProcParametrizeCamAoi(&limits_, &settings_); }

    FlyCapture2::Format7Info limits_;
    FlyCapture2::Format7ImageSettings settings_;
};

TEST_F(RegionTest, KeepsWhatIsNotConfigured)
{
    EXPECT_EQ(apply(), 0U);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("Acquisition set handler entry: OffsX -1 OffsY -1 Width -1 "
                                 "Height -1"),
                            info("  OffsetX config is skipped"),
                            info("  OffsetY config is skipped"), info("  Width config is skipped"),
                            info("  Height config is skipped")));
    EXPECT_EQ(settings_.offsetX, 2U);
    EXPECT_EQ(settings_.offsetY, 4U);
    EXPECT_EQ(settings_.width, 640U);
    EXPECT_EQ(settings_.height, 480U);
}

TEST_F(RegionTest, WritesWhatFits)
{
    host().config.offsetX = 100;
    host().config.offsetY = 200;
    host().config.width = 320;
    host().config.height = 240;
    EXPECT_EQ(apply(), 0U);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("Acquisition set handler entry: OffsX 100 OffsY 200 Width 320 "
                                 "Height 240"),
                            info("  cur OffsX val is 2 (min 0, max 1264, inc 2)"),
                            info("  cur OffsY val is 4 (min 0, max 1016, inc 4)"),
                            info("  cur Width val is 640 (min 16, max 1280, inc 16)"),
                            info("  cur Height val is 480 (min 8, max 1024, inc 8)")));
    EXPECT_EQ(settings_.offsetX, 100U);
    EXPECT_EQ(settings_.offsetY, 200U);
    EXPECT_EQ(settings_.width, 320U);
    EXPECT_EQ(settings_.height, 240U);
}

TEST_F(RegionTest, RejectsEachValueByItself)
{
    host().config.offsetX = 1265;
    host().config.offsetY = 1018;
    host().config.width = 1288;
    host().config.height = 4;
    EXPECT_EQ(apply(), 15U);
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(
            info("Acquisition set handler entry: OffsX 1265 OffsY 1018 Width 1288 Height 4"),
            info("  cur OffsX val is 2 (min 0, max 1264, inc 2)"),
            warning("ProcParametrizeCamAoi",
                    "  asked OffsX val 1265 is out of row [0,2.. 1264], skipped"),
            info("  cur OffsY val is 4 (min 0, max 1016, inc 4)"),
            warning("ProcParametrizeCamAoi",
                    "  asked OffsY val 1018 is out of row [0,4.. 1016], skipped"),
            info("  cur Width val is 640 (min 16, max 1280, inc 16)"),
            warning("ProcParametrizeCamAoi",
                    "  asked Width val 1288 is out of bounds [16,32.. 1280], skipped"),
            info("  cur Height val is 480 (min 8, max 1024, inc 8)"),
            warning("ProcParametrizeCamAoi",
                    "  asked Height val 4 is out of bounds [8,16.. 1024], skipped")));
    EXPECT_EQ(settings_.offsetX, 2U);
    EXPECT_EQ(settings_.offsetY, 4U);
    EXPECT_EQ(settings_.width, 640U);
    EXPECT_EQ(settings_.height, 480U);
}

struct Value {
    const char* name;
    std::uint32_t kxtest::HostConfig::*field;
    std::uint32_t asked;
    unsigned rejected; ///< the mask
};

class RegionValueTest : public RegionTest, public testing::WithParamInterface<Value> {};

TEST_P(RegionValueTest, IsCheckedAgainstTheCamera)
{
    host().config.*GetParam().field = GetParam().asked;
    EXPECT_EQ(apply(), GetParam().rejected);
    EXPECT_EQ(journal().logsWith("skipped").size(), GetParam().rejected == 0 ? 3U : 4U);
}

using kxtest::HostConfig;

INSTANTIATE_TEST_SUITE_P(
    Region, RegionValueTest,
    testing::Values(Value{"LargestOffsetX", &HostConfig::offsetX, 1264, 0},
                    Value{"OddOffsetX", &HostConfig::offsetX, 1265, 1},
                    Value{"OffsetXOverTheMaximum", &HostConfig::offsetX, 1266, 1},
                    Value{"NoOffsetX", &HostConfig::offsetX, 0, 0},
                    Value{"NegativeOffsetX", &HostConfig::offsetX, 0xFFFFFFFE, 1},
                    Value{"LargestOffsetY", &HostConfig::offsetY, 1016, 0},
                    Value{"OffsetYOffTheGrid", &HostConfig::offsetY, 2, 2},
                    Value{"OffsetYOverTheMaximum", &HostConfig::offsetY, 1020, 2},
                    Value{"LargestWidth", &HostConfig::width, 1280, 0},
                    Value{"SmallestWidth", &HostConfig::width, 16, 0},
                    Value{"WidthOffTheGrid", &HostConfig::width, 1288, 4},
                    Value{"WidthOffTheGridInRange", &HostConfig::width, 648, 4},
                    Value{"WidthUnderTheMinimum", &HostConfig::width, 8, 4},
                    Value{"NoWidth", &HostConfig::width, 0, 4},
                    Value{"NegativeWidth", &HostConfig::width, 0x80000000, 4},
                    Value{"LargestHeight", &HostConfig::height, 1024, 0},
                    Value{"HeightOffTheGrid", &HostConfig::height, 12, 8},
                    Value{"HeightOverTheMaximum", &HostConfig::height, 1032, 8}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(RegionTest, AcceptsAnyValueInRangeWithoutStep)
{
    limits_.offsetHStepSize = 0;
    limits_.imageHStepSize = 0;
    host().config.offsetX = 1279;
    host().config.width = 641;
    EXPECT_EQ(apply(), 0U);
    EXPECT_EQ(settings_.offsetX, 1279U);
    EXPECT_EQ(settings_.width, 641U);
}

TEST_F(RegionTest, LeavesOffsetPlusSizeToTheCamera)
{
    host().config.offsetX = 1264;
    host().config.width = 1280;
    EXPECT_EQ(apply(), 0U);
}

/// A camera of 1280 x 1024 that runs with 640 x 480.
class RegionCheckTest : public RegionTest {
protected:
    RegionCheckTest()
    {
        kxtest::CameraText camera;
        camera.sensor = "width = 1280, height = 1024, colour = false";
        connect(camera);
        FlyCapture2::Format7ImageSettings current;
        unsigned packet = 0;
        float percentage = 0;
        EXPECT_EQ(cam_->GetFormat7Configuration(&current, &packet, &percentage),
                  FlyCapture2::PGRERROR_OK);
        current.width = 640;
        current.height = 480;
        EXPECT_EQ(cam_->SetFormat7Configuration(&current, packet), FlyCapture2::PGRERROR_OK);
        journal().clear();
    }
};

TEST_F(RegionCheckTest, FindsNoDifferenceWithoutConfiguration)
{
    EXPECT_EQ(proc_->ProcCheckCfgCamAoi(cam_.get()), 0);
    EXPECT_THAT(journal().lines(kxtest::Kind::sdk),
                ElementsAre(testing::HasSubstr("GetFormat7Info"),
                            testing::HasSubstr("GetFormat7Configuration")));
}

struct Check {
    const char* name;
    std::uint32_t kxtest::HostConfig::*field;
    std::uint32_t asked;
    int result;
};

class RegionDifferenceTest : public RegionCheckTest, public testing::WithParamInterface<Check> {};

TEST_P(RegionDifferenceTest, IsThatOfTheSize)
{
    host().config.*GetParam().field = GetParam().asked;
    EXPECT_EQ(proc_->ProcCheckCfgCamAoi(cam_.get()), GetParam().result);
    EXPECT_EQ(journal().count("Camera.SetFormat7Configuration"), 0U);
}

INSTANTIATE_TEST_SUITE_P(Region, RegionDifferenceTest,
                         testing::Values(Check{"SameWidth", &HostConfig::width, 640, 0},
                                         Check{"OtherWidth", &HostConfig::width, 320, 1},
                                         Check{"SameHeight", &HostConfig::height, 480, 0},
                                         Check{"OtherHeight", &HostConfig::height, 240, 1},
                                         Check{"RejectedWidth", &HostConfig::width, 647, 0},
                                         Check{"OtherOffset", &HostConfig::offsetX, 64, 0}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(RegionCheckTest, ChecksNothingThatTheCameraDoesNotTell)
{
    failCalls("GetFormat7Info");
    failCalls("GetFormat7Configuration");
    host().config.width = 640;
    // Without limits no width is accepted.
    EXPECT_EQ(proc_->ProcCheckCfgCamAoi(cam_.get()), 0);
    EXPECT_EQ(journal().logsWith("out of bounds").size(), 1U);
}

} // namespace
