// Appliers of single values: where each value that stands for "as it is" ends, and what is peculiar
// to one of them.
#include "appliers_fixture.h"

#include <cmath>

using FlyCapture2::GAIN;
using FlyCapture2::GAMMA;
using FlyCapture2::SATURATION;
using FlyCapture2::SHUTTER;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class ApplierValuesTest : public kxtest::AppliersTest {
protected:
    /// Whether the last applier said that it keeps what the camera has. Forgets the journal.
    static bool wasKept()
    {
        const bool kept = !journal().logsWith("config is skipped").empty();
        journal().clear();
        return kept;
    }
    void gain(float asked)
    {
        host().config.gainMan = asked;
        proc_->ProcParametrizeCamManGain(cam_.get());
    }
    void exposure(float asked)
    {
        host().config.exptMan = asked;
        proc_->ProcParametrizeCamManExpo(cam_.get());
    }
    void rate(float asked)
    {
        host().config.fps = asked;
        proc_->ProcParametrizeCamFps(cam_.get());
    }
    void gamma(float asked)
    {
        host().config.gamma = asked;
        proc_->ProcParametrizeCamGamma(cam_.get());
    }
    void saturation(int asked)
    {
        host().config.satur = asked;
        proc_->ProcParametrizeCamSatur(cam_.get());
    }
};

TEST_F(ApplierValuesTest, GainIsKeptByExactlyOneValue)
{
    gain(-100.0F);
    EXPECT_TRUE(wasKept());
    for (const float asked :
         {std::nextafter(-100.0F, 0.0F), std::nextafter(-100.0F, -200.0F), -99.9F, -1.0F}) {
        gain(asked);
        EXPECT_FALSE(wasKept()) << asked;
    }
    gain(-99.9F);
    EXPECT_THAT(journal().logs(),
                Contains(warning("ProcParametrizeCamManGain",
                                 "  asked Gain val -99.900002 is lower than min -2.500000, "
                                 "skipped")));
}

TEST_F(ApplierValuesTest, ExposureIsKeptByExactlyOneValue)
{
    exposure(-1.0F);
    EXPECT_TRUE(wasKept());
    for (const float asked : {std::nextafter(-1.0F, 0.0F), std::nextafter(-1.0F, -2.0F), -100.0F}) {
        exposure(asked);
        EXPECT_FALSE(wasKept()) << asked;
    }
}

TEST_F(ApplierValuesTest, SaturationIsKeptByExactlyOneValue)
{
    saturation(-1);
    EXPECT_TRUE(wasKept());
    for (const int asked : {-2, 0, -100}) {
        saturation(asked);
        EXPECT_FALSE(wasKept()) << asked;
    }
}

/// The single precision numbers next to a bound that lies between them.
struct Neighbours {
    float under;
    float over;
};

Neighbours about(double bound)
{
    const auto nearest = static_cast<float>(bound);
    return static_cast<double>(nearest) < bound
               ? Neighbours{nearest, std::nextafter(nearest, 1e9F)}
               : Neighbours{std::nextafter(nearest, -1e9F), nearest};
}

TEST_F(ApplierValuesTest, RateAndGammaAreKeptByABand)
{
    const Neighbours begin = about(-1.001);
    const Neighbours end = about(-0.999);
    for (const float asked : {begin.over, -1.0005F, -1.0F, end.under}) {
        rate(asked);
        EXPECT_TRUE(wasKept()) << asked;
        gamma(asked);
        EXPECT_TRUE(wasKept()) << asked;
    }
    for (const float asked : {-1.002F, begin.under, end.over, -0.998F, -100.0F, 0.0F}) {
        rate(asked);
        EXPECT_THAT(journal().logsWith("is lower than min"), SizeIs(1)) << asked;
        EXPECT_FALSE(wasKept()) << asked;
        gamma(asked);
        EXPECT_THAT(journal().logsWith("is not allowed"), SizeIs(1)) << asked;
        EXPECT_FALSE(wasKept()) << asked;
    }
    EXPECT_THAT(cam_->written, IsEmpty());
}

TEST_F(ApplierValuesTest, GammaUnderAFifthIsNotAllowed)
{
    absRanges[GAMMA] = {0.1F, 4.0F};
    const Neighbours bound = about(0.2);
    gamma(bound.under);
    EXPECT_EQ(journal().logs().back(),
              warning("ProcParametrizeCamGamma", "  asked Gamma val 0.200000 is not allowed, "
                                                 "skipped"));
    EXPECT_THAT(cam_->written, IsEmpty());
    gamma(bound.over);
    ASSERT_THAT(cam_->written, SizeIs(1));
    EXPECT_EQ(cam_->written[0].absValue, bound.over);
    gamma(0.1F);
    EXPECT_THAT(cam_->written, SizeIs(1));
}

TEST_F(ApplierValuesTest, GammaOfOneSwitchesGammaOff)
{
    // The range is of no matter then.
    absRanges[GAMMA] = {1.5F, 4.0F};
    const Neighbours begin = about(0.999);
    const Neighbours end = about(1.001);
    for (const float asked : {begin.over, 1.0F, 1.0005F, end.under}) {
        cam_->written.clear();
        journal().clear();
        gamma(asked);
        ASSERT_THAT(cam_->written, SizeIs(1)) << asked;
        EXPECT_FALSE(cam_->written[0].onOff);
        EXPECT_THAT(journal().logs().back(), info("  Gamma control is turned off"));
        EXPECT_THAT(journal().logsWith("on/off to 0"), SizeIs(1));
    }
    cam_->written.clear();
    for (const float asked : {begin.under, end.over}) {
        gamma(asked);
        EXPECT_THAT(journal().logs().back(), HasSubstr("is lower than min")) << asked;
    }
    EXPECT_THAT(cam_->written, IsEmpty());
}

TEST_F(ApplierValuesTest, GammaInForceIsShownWhateverBecomesOfIt)
{
    cam_->absValues[GAMMA] = 1.75F;
    const std::string current = info("  cur Gamma val is 1.750000 (min 0.500000, max 4.000000)");
    gamma(0.1F);
    EXPECT_THAT(applierLogs(), ElementsAre(HasSubstr("handler entry"), current,
                                           HasSubstr("is not allowed, skipped")));
    journal().clear();
    gamma(1.0F);
    EXPECT_THAT(applierLogs(), ElementsAre(HasSubstr("handler entry"), current,
                                           info("  Gamma control is turned off")));
}

TEST_F(ApplierValuesTest, GammaIsCalledOffWhateverTheCameraAnswers)
{
    failCalls("SetProperty");
    gamma(1.0F);
    EXPECT_EQ(journal().logs().back(), info("  Gamma control is turned off"));
}

TEST_F(ApplierValuesTest, ExposureIsWrittenInMillisecondsAndRememberedInMicroseconds)
{
    cam_->absValues[SHUTTER] = 20.0F;
    exposure(20'000.0F);
    ASSERT_THAT(cam_->written, SizeIs(1));
    EXPECT_EQ(cam_->written[0].absValue, 20.0F);
    EXPECT_EQ(cam_->expoTimeUs, 20'000U);
    EXPECT_EQ(journal().logs().back(), info("  new ExpoTime val is 20000.000000 (20000)us"));
    // What the message shows as current comes with the frames.
    EXPECT_EQ(proc_->curExpoUs, 0.0F);
}

TEST_F(ApplierValuesTest, ExposureIsTruncatedToMicroseconds)
{
    cam_->absValues[SHUTTER] = 0.0999F;
    exposure(100.0F);
    EXPECT_EQ(cam_->expoTimeUs, 99U);
    EXPECT_EQ(journal().logs().back(), info("  new ExpoTime val is 99.900002 (99)us"));
}

TEST_F(ApplierValuesTest, ExposureThatCannotBeReadBackIsTakenAsItReads)
{
    // Info for the range and for the write pass.
    failCalls("GetPropertyInfo", 2);
    exposure(100.0F);
    EXPECT_EQ(cam_->expoTimeUs, static_cast<std::uint32_t>(-1000));
    EXPECT_EQ(journal().logs().back(), info("  new ExpoTime val is -1000.000000 (4294966296)us"));
}

TEST_F(ApplierValuesTest, RefusedExposureChangesNothing)
{
    cam_->expoTimeUs = 77;
    exposure(40'000.0F);
    exposure(-1.0F);
    EXPECT_EQ(cam_->expoTimeUs, 77U);
}

TEST_F(ApplierValuesTest, SaturationIsRememberedOnlyWhenItWasWritten)
{
    proc_->curSaturation = 5.0F;
    saturation(300);
    saturation(-1);
    EXPECT_EQ(proc_->curSaturation, 5.0F);
    cam_->absValues[SATURATION] = 99.5F;
    saturation(100);
    EXPECT_EQ(proc_->curSaturation, 99.5F);
    journal().clear();
    saturation(120);
    EXPECT_THAT(journal().logs(), Contains(info("  cur Saturation val is 99.500000 (min 0.500000, "
                                                "max 200.500000)")));
}

TEST_F(ApplierValuesTest, GainInForceIsNotChangedByItsApplier)
{
    proc_->curGainDb = 1.5F;
    cam_->absValues[GAIN] = 6.0F;
    gain(6.0F);
    EXPECT_EQ(proc_->curGainDb, 1.5F);
}

TEST_F(ApplierValuesTest, ValuesForMessagesAreReadOncePerSink)
{
    gKxLogModeLib = kxlog::kToSyslog | kxlog::kToStdout;
    testing::internal::CaptureStdout();
    rate(-1.0F);
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_THAT(printed, HasSubstr("[KX_PG_PROC:i]: Fps settings handler entry val: Fps -1.000000 "
                                   "(CamFps "));
    EXPECT_EQ(journal().count("Camera.GetProperty"), 2U);
}

TEST_F(ApplierValuesTest, WarningsCarryTheTagOfTheSession)
{
    gKxLogModeLib = kxlog::kToStdout;
    testing::internal::CaptureStdout();
    gain(25.0F);
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                HasSubstr("[KX_PG_PROC:w]:   asked Gain val 25.000000 exceeds max 24.000000, "
                          "skipped\n"));
}

struct Rotation {
    const char* name;
    int asked;
    bool before;
    bool after;
};

class RotationTest : public ApplierValuesTest, public testing::WithParamInterface<Rotation> {};

TEST_P(RotationTest, IsTheHostsMatter)
{
    const auto [name, asked, before, after] = GetParam();
    proc_->swRotate = before;
    host().config.rotate = asked;
    proc_->ProcParametrizeCamRotate(cam_.get());
    EXPECT_EQ(proc_->swRotate, after);
    const std::string entry =
        info("Rotate settings handler entry val: Rotate " + std::to_string(asked));
    if (asked == 0) {
        EXPECT_THAT(journal().logs(), ElementsAre(entry, info("  Rotate config is skipped")));
    } else {
        EXPECT_THAT(journal().logs(),
                    ElementsAre(entry,
                                info(kxtest::format("  cur swRotate val is: %i", before ? 1 : 0)),
                                info(kxtest::format("  new swRotate val is: %i", after ? 1 : 0))));
    }
    EXPECT_THAT(cameraCalls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Appliers, RotationTest,
    testing::Values(Rotation{"KeptOff", 0, false, false}, Rotation{"KeptOn", 0, true, true},
                    Rotation{"Off", 1, true, false}, Rotation{"On", 2, false, true},
                    Rotation{"AnyOther", 3, true, false}, Rotation{"Negative", -1, true, false}),
    [](const auto& one) { return std::string(one.param.name); });

} // namespace
