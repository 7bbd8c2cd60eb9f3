// Frame chunks: the values that are read and published for each frame.
#include "camera_test.h"
#include "kx_scenario.h"

#include <limits>

using kxtest::host;
using kxtest::journal;
using testing::ElementsAre;

namespace {

class ChunksTest : public kxtest::CameraTest {
protected:
    ChunksTest() { connect(); }

    template <typename T>
    static T published(int id)
    {
        const auto found = host().published.find(id);
        EXPECT_NE(found, host().published.end()) << id;
        return found == host().published.end() ? T{} : *static_cast<const T*>(found->second);
    }
    std::uint64_t startOf(unsigned seconds, unsigned count, unsigned offset)
    {
        FlyCapture2::TimeStamp stamp;
        stamp.cycleSeconds = seconds;
        stamp.cycleCount = count;
        stamp.cycleOffset = offset;
        kxtest::scriptTimeStamp(stamp);
        FlyCapture2::Image image;
        return proc_->ProcFrameChunks(cam_.get(), &image);
    }
};

TEST_F(ChunksTest, PublishesGainAndExposureOfTheCamera)
{
    cam_->absValues[FlyCapture2::GAIN] = 6.25F;
    cam_->absValues[FlyCapture2::SHUTTER] = 12.3456F;
    startOf(0, 0, 0);
    EXPECT_EQ(published<float>(kKxScGainDb), 6.25F);
    EXPECT_EQ(published<float>(kKxScExposureUs), 12.3456F * 1000.0F);
    EXPECT_EQ(proc_->exposureUs, 12345);
    EXPECT_EQ(cam_->expoTimeUs, 12345U);
    EXPECT_EQ(proc_->curGainDb, 6.25F);
}

TEST_F(ChunksTest, ReadsThemAnewForEachFrame)
{
    cam_->absValues[FlyCapture2::SHUTTER] = 1;
    startOf(0, 0, 0);
    EXPECT_EQ(proc_->exposureUs, 1000);
    cam_->absValues[FlyCapture2::SHUTTER] = 2;
    startOf(0, 0, 0);
    EXPECT_EQ(proc_->exposureUs, 2000);
    EXPECT_EQ(published<float>(kKxScExposureUs), 2000);
}

TEST_F(ChunksTest, UsesWhatAFailedReadGives)
{
    failCalls("GetPropertyInfo", 0, 2);
    startOf(0, 0, 0);
    EXPECT_EQ(published<float>(kKxScGainDb), -1);
    EXPECT_EQ(published<float>(kKxScExposureUs), -1000);
    EXPECT_EQ(proc_->exposureUs, -1000);
    EXPECT_EQ(cam_->expoTimeUs, static_cast<std::uint32_t>(-1000));
}

TEST_F(ChunksTest, SurvivesAnExposureOutOfRange)
{
    cam_->absValues[FlyCapture2::SHUTTER] = std::numeric_limits<float>::max();
    startOf(0, 0, 0);
    EXPECT_EQ(published<float>(kKxScExposureUs), std::numeric_limits<float>::infinity());
}

struct CycleTime {
    const char* name;
    unsigned seconds;
    unsigned count;
    unsigned offset;
    std::uint64_t us;
};

class ChunksTimeTest : public ChunksTest, public testing::WithParamInterface<CycleTime> {};

TEST_P(ChunksTimeTest, IsDecodedAndPublished)
{
    const CycleTime& time = GetParam();
    EXPECT_EQ(startOf(time.seconds, time.count, time.offset), time.us);
    EXPECT_EQ(published<std::uint64_t>(kKxScCameraTimeUs), time.us);
}

INSTANTIATE_TEST_SUITE_P(Chunks, ChunksTimeTest,
                         testing::Values(CycleTime{"Zero", 0, 0, 0, 0},
                                         CycleTime{"Last", 127, 7999, 3071, 127'999'968},
                                         CycleTime{"HalfCycle", 5, 4000, 0x800, 5'500'062},
                                         CycleTime{"LowBitsDoNotCount", 1, 1, 0x00F, 1'000'125},
                                         CycleTime{"OnlyEightBitsOfTheOffset", 0, 0, 0x1010, 0},
                                         CycleTime{"ThirtyTwoBits", 5000, 0, 0, 705'032'704},
                                         CycleTime{"Unsigned", 3000, 0, 0, 3'000'000'000}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(ChunksTest, PublishesNoCounterWithoutItsBit)
{
    proc_->chunkMask = 7;
    startOf(0, 0, 0);
    EXPECT_THAT(
        journal().lines({"KxSc__SetParamVal"}),
        ElementsAre("KxSc__SetParamVal(6)", "KxSc__SetParamVal(7)", "KxSc__SetParamVal(9)"));
}

TEST_F(ChunksTest, PublishesTheCounterLast)
{
    proc_->chunkMask = 8;
    startOf(0, 0, 0);
    EXPECT_THAT(journal().lines({"KxSc__SetParamVal"}),
                ElementsAre("KxSc__SetParamVal(6)", "KxSc__SetParamVal(7)", "KxSc__SetParamVal(9)",
                            "KxSc__SetParamVal(10)"));
}

TEST_F(ChunksTest, ReadsTheMetadataOnlyWhenSomethingIsEmbedded)
{
    FlyCapture2::Image image;
    proc_->chunkMask = 0;
    proc_->ProcFrameChunks(cam_.get(), &image);
    EXPECT_EQ(journal().count("Image.GetMetadata"), 0U);
    proc_->chunkMask = 1;
    proc_->ProcFrameChunks(cam_.get(), &image);
    EXPECT_EQ(journal().count("Image.GetMetadata"), 1U);
}

TEST_F(ChunksTest, ExportsTheCameraCounterOfEachFrame)
{
    ASSERT_EQ(grab(5), 0);
    ASSERT_EQ(host().exports.size(), 4U);
    const double first = host().exports[0].numbers.at(kKxScFrameCounter);
    for (std::size_t index = 0; index < host().exports.size(); ++index) {
        EXPECT_EQ(host().exports[index].numbers.at(kKxScFrameCounter),
                  first + static_cast<double>(index));
        EXPECT_EQ(host().exports[index].numbers.at(kKxScUnit), 1000);
    }
}

TEST_F(ChunksTest, ExportsNoCounterOfACameraWithoutOne)
{
    kxtest::CameraText camera;
    camera.extra = "embedded = [\"timestamp\"]";
    connect(camera);
    ASSERT_EQ(grab(3), 0);
    ASSERT_EQ(host().exports.size(), 2U);
    EXPECT_EQ(host().exports[0].numbers.count(kKxScFrameCounter), 0U);
}

TEST_F(ChunksTest, NeedsNoLog)
{
    gKxLogLevelLib = 0;
    EXPECT_EQ(startOf(1, 0, 0), 1'000'000U);
    EXPECT_THAT(journal().logs(), testing::IsEmpty());
}

} // namespace
