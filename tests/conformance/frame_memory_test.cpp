// Frame memory: how the host's pools are set up, and how finished frames are handed over.
#include "kx_pg_proc.h"
#include "kx_scenario.h"
#include "plugin_test.h"

using kxtest::host;
using kxtest::info;
using kxtest::journal;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A session object that looks as after a configuration; set-up needs no camera.
class FrameMemoryTest : public kxtest::PluginTest {
protected:
    FrameMemoryTest()
    {
        proc_.gBufferFrameSize = 5000;
        proc_.pixelFormat = FlyCapture2::PIXEL_FORMAT_RAW8;
    }
    std::vector<std::string> hostCalls() { return journal().lines(kxtest::Kind::host); }
    std::string convertedCodec(int instance)
    {
        const auto found = host().publishedInst.find(100 * instance + kKxScCodec);
        return found == host().publishedInst.end() ? "" : static_cast<const char*>(found->second);
    }

    KxPGrey::CCamProc proc_;
    unsigned char raw_ = 0;
    unsigned char converted_ = 0;
};

TEST_F(FrameMemoryTest, SetsUpThePlainPool)
{
    proc_.ProcInitMem(nullptr, 7);
    EXPECT_THAT(hostCalls(), ElementsAre("KxGiMem__Init(7, 0)", "KxGiMem__SetActFsize(5000)"));
    EXPECT_EQ(proc_.memInstance, -1);
    EXPECT_FALSE(proc_.convEnabled);
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(FrameMemoryTest, GivesConvertedFramesAnInstance)
{
    host().config.cformat = 1;
    proc_.ProcInitMem(nullptr, 7);
    EXPECT_THAT(hostCalls(),
                ElementsAre("KxGiMem__Init(7, 0)", "KxGiMem__SetActFsize(5000)",
                            "KxGiMemInst__Init(1, 7, 0)", "KxGiMemInst__SetActFsize(1, 5000)",
                            "KxSc__InstSetParamVal(1, 4)"));
    EXPECT_THAT(journal().logs(), ElementsAre(info("Conv: asking convertion from 4194304 -> 1"),
                                              info("Use pixel format: 'MONO8T'"),
                                              info("Initialize conversion to: \"MONO8T\"")));
    EXPECT_EQ(proc_.memInstance, 1);
    EXPECT_TRUE(proc_.convEnabled);
    EXPECT_EQ(proc_.convTarget, FlyCapture2::PIXEL_FORMAT_MONO8);
    EXPECT_EQ(convertedCodec(1), "MONO8T");
}

TEST_F(FrameMemoryTest, UsesInstancesAtASecondSetUpWithConversion)
{
    host().config.cformat = 5;
    proc_.ProcInitMem(nullptr, 7);
    journal().clear();
    // The configured conversion counts only at the first set-up.
    host().config.cformat = 0;
    proc_.ProcInitMem(nullptr, 8);
    EXPECT_THAT(hostCalls(),
                ElementsAre("KxGiMemInst__Init(0, 8, 0)", "KxGiMemInst__SetActFsize(0, 5000)",
                            "KxSc__InstSetParamVal(0, 4)"));
    EXPECT_EQ(journal().count("KxGiMainCtx__GetCformat"), 0U);
    EXPECT_EQ(proc_.memInstance, 0);
    EXPECT_TRUE(proc_.convEnabled);
    EXPECT_EQ(convertedCodec(0), "UYVY");
}

TEST_F(FrameMemoryTest, StaysWithThePlainPoolWhenTheConversionIsRefused)
{
    host().config.cformat = 7;
    proc_.ProcInitMem(nullptr, 7);
    EXPECT_THAT(hostCalls(), ElementsAre("KxGiMem__Init(7, 0)", "KxGiMem__SetActFsize(5000)"));
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("Conv: asking convertion from 4194304 -> 7"),
                            kxtest::warning("ProcInitMem", "The asked pixel conversion way is not "
                                                           "supported (rc=-1)")));
    EXPECT_EQ(proc_.memInstance, -1);
    EXPECT_FALSE(proc_.convEnabled);
}

TEST_F(FrameMemoryTest, ShowsTheSourceFormatSigned)
{
    host().config.cformat = 2;
    proc_.pixelFormat = FlyCapture2::PIXEL_FORMAT_MONO8;
    proc_.ProcInitMem(nullptr, 1);
    EXPECT_EQ(journal().logs().front(), info("Conv: asking convertion from -2147483648 -> 2"));
}

TEST_F(FrameMemoryTest, HandsNothingOverWhenNothingIsPending)
{
    host().trigger = [](int) { return 9; };
    EXPECT_EQ(proc_.ProcLoopMem(123, 0), 0);
    EXPECT_THAT(hostCalls(), IsEmpty());
}

TEST_F(FrameMemoryTest, HandsTheRawFrameOver)
{
    proc_.pendingFrame = {&raw_, nullptr};
    EXPECT_EQ(proc_.ProcLoopMem(1'700'000'000'000'123, 1), 0);
    EXPECT_THAT(hostCalls(), ElementsAre("KxGiMemInst__Trigger(0, 0, 1700000000000123, 1)"));
    EXPECT_EQ(host().frames.at(0).frame, &raw_);
    EXPECT_EQ(proc_.pendingFrame[0], nullptr);
}

TEST_F(FrameMemoryTest, HandsTheConvertedFrameOverFirst)
{
    proc_.pendingFrame = {&raw_, &converted_};
    EXPECT_EQ(proc_.ProcLoopMem(55, 0), 0);
    EXPECT_THAT(hostCalls(), ElementsAre("KxGiMemInst__Trigger(1, 0, 55, 0)",
                                         "KxGiMemInst__Trigger(0, 0, 55, 0)"));
    EXPECT_EQ(host().frames.at(0).frame, &converted_);
    EXPECT_EQ(host().frames.at(1).frame, &raw_);
    EXPECT_EQ(proc_.pendingFrame[0], nullptr);
    EXPECT_EQ(proc_.pendingFrame[1], nullptr);
}

TEST_F(FrameMemoryTest, HandsOnlyAConvertedFrameOver)
{
    proc_.pendingFrame = {nullptr, &converted_};
    host().trigger = [](int) { return 4; };
    EXPECT_EQ(proc_.ProcLoopMem(55, 0), 4);
    EXPECT_EQ(host().frames.size(), 1U);
}

TEST_F(FrameMemoryTest, KeepsTheRawFrameBackWhenTheConvertedIsRefused)
{
    proc_.pendingFrame = {&raw_, &converted_};
    host().trigger = [](int instance) { return instance == 1 ? -3 : 0; };
    EXPECT_EQ(proc_.ProcLoopMem(55, 0), -3);
    EXPECT_THAT(hostCalls(), ElementsAre("KxGiMemInst__Trigger(1, 0, 55, 0)"));
    EXPECT_EQ(proc_.pendingFrame[0], nullptr);
    EXPECT_EQ(proc_.pendingFrame[1], nullptr);
}

TEST_F(FrameMemoryTest, ReturnsTheRefusalOfTheRawFrame)
{
    proc_.pendingFrame = {&raw_, &converted_};
    host().trigger = [](int instance) { return instance == 0 ? 2 : 0; };
    EXPECT_EQ(proc_.ProcLoopMem(55, 0), 2);
    EXPECT_EQ(proc_.pendingFrame[0], nullptr);
}

} // namespace
