// Appliers of single values: what is kept, what fits the range, what is written, and every message.
#include "appliers_fixture.h"

#include <cmath>

using FlyCapture2::FRAME_RATE;
using FlyCapture2::GAIN;
using FlyCapture2::GAMMA;
using FlyCapture2::PropertyType;
using FlyCapture2::SATURATION;
using FlyCapture2::SHUTTER;
using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Cam = KxPGrey::CExCam;
using Proc = KxPGrey::CCamProc;

/// One applier as it is seen from outside. Values are in the configuration's unit.
struct Applier {
    const char* name;
    const char* function;
    PropertyType property;
    float unit; ///< configured units in one of the camera's
    void (*configure)(kxtest::HostConfig&, float);
    void (Proc::*call)(Cam*);
    float kept;        ///< the value that means "as it is"
    float fits;        ///< a value in range
    float low;         ///< the last value in range, the one under it
    float tooLow;      ///<
    float high;        ///< the same at the upper end
    float tooHigh;     ///<
    const char* entry; ///< messages
    const char* valueName;
    const char* currentName;
};

class ApplierTest : public kxtest::AppliersTest, public testing::WithParamInterface<Applier> {
protected:
    ApplierTest()
    {
        proc_->curGainDb = 3.25F;
        proc_->curExpoUs = 7'500.0F;
        proc_->curSaturation = 33.5F;
        cam_->absValues[FRAME_RATE] = 40.0F;
        cam_->absValues[GAMMA] = 1.75F;
    }
    void apply(float asked)
    {
        GetParam().configure(host().config, asked);
        (proc_.get()->*GetParam().call)(cam_.get());
    }
    /// What the value's messages show as in force.
    static double current()
    {
        switch (GetParam().property) {
        case FRAME_RATE:
            return 40.0;
        case SATURATION:
            return 33.5;
        case GAIN:
            return 3.25;
        case SHUTTER:
            return 7'500.0;
        default:
            return 1.75;
        }
    }
    std::string entryLine(float asked) const
    {
        std::string text = format("%s%f", GetParam().entry, static_cast<double>(asked));
        if (GetParam().property == FRAME_RATE) {
            text += " (CamFps 40.000000)";
        }
        return info(text);
    }
    std::string currentLine() const
    {
        const auto [min, max] = absRanges.at(GetParam().property);
        return info(format("  cur %s val is %f (min %f, max %f)", GetParam().currentName, current(),
                           static_cast<double>(min * GetParam().unit),
                           static_cast<double>(max * GetParam().unit)));
    }
};

TEST_P(ApplierTest, LeavesWhatIsToBeKept)
{
    apply(GetParam().kept);
    EXPECT_THAT(journal().logs(),
                ElementsAre(entryLine(GetParam().kept),
                            info(format("  %s config is skipped", GetParam().valueName))));
    EXPECT_THAT(cam_->written, IsEmpty());
    // The frame rate is read for the first message.
    EXPECT_THAT(cameraCalls(), SizeIs(GetParam().property == FRAME_RATE ? 2 : 0));
}

TEST_P(ApplierTest, WritesWhatFitsAndShowsWhatTheCameraMadeOfIt)
{
    cam_->absValues[GetParam().property] = GetParam().property == FRAME_RATE ? 40.0F : 1.75F;
    apply(GetParam().fits);
    ASSERT_THAT(cam_->written, SizeIs(1));
    EXPECT_EQ(cam_->written[0].type, GetParam().property);
    EXPECT_FLOAT_EQ(cam_->written[0].absValue, GetParam().fits / GetParam().unit);
    const double reported = cam_->absValues[GetParam().property] * GetParam().unit;
    const std::string tail = GetParam().property == SHUTTER ? " (1750)us" : "";
    EXPECT_THAT(applierLogs(),
                ElementsAre(entryLine(GetParam().fits), currentLine(),
                            info(format("  new %s val is %f%s", GetParam().currentName, reported,
                                        tail.c_str()))));
}

TEST_P(ApplierTest, WritesTheEndsOfTheRange)
{
    apply(GetParam().low);
    apply(GetParam().high);
    ASSERT_THAT(cam_->written, SizeIs(2));
    EXPECT_FLOAT_EQ(cam_->written[0].absValue, GetParam().low / GetParam().unit);
    EXPECT_FLOAT_EQ(cam_->written[1].absValue, GetParam().high / GetParam().unit);
    EXPECT_THAT(journal().logsWith("skipped"), IsEmpty());
}

TEST_P(ApplierTest, WarnsOfWhatIsTooLow)
{
    apply(GetParam().tooLow);
    const double min = absRanges.at(GetParam().property).first * GetParam().unit;
    EXPECT_THAT(applierLogs(),
                ElementsAre(entryLine(GetParam().tooLow), currentLine(),
                            warning(GetParam().function,
                                    format("  asked %s val %f is lower than min %f, skipped",
                                           GetParam().valueName,
                                           static_cast<double>(GetParam().tooLow), min))));
    EXPECT_THAT(cam_->written, IsEmpty());
}

TEST_P(ApplierTest, WarnsOfWhatIsTooHigh)
{
    apply(GetParam().tooHigh);
    const double max = absRanges.at(GetParam().property).second * GetParam().unit;
    EXPECT_THAT(applierLogs(),
                ElementsAre(entryLine(GetParam().tooHigh), currentLine(),
                            warning(GetParam().function,
                                    format("  asked %s val %f exceeds max %f, skipped",
                                           GetParam().valueName,
                                           static_cast<double>(GetParam().tooHigh), max))));
    EXPECT_THAT(cam_->written, IsEmpty());
}

TEST_P(ApplierTest, ReadsNothingForMessagesThatAreOff)
{
    gKxLogLevelLib = 2;
    apply(GetParam().fits);
    std::vector<std::string> expected = {"GetPropertyInfo", "GetProperty", // range
                                         "GetPropertyInfo", "GetProperty", "SetProperty"};
    if (GetParam().property == SATURATION || GetParam().property == SHUTTER) {
        // These are remembered.
        expected.insert(expected.end(), {"GetPropertyInfo", "GetProperty"});
    }
    for (std::string& call : expected) {
        call += format("(%s)", cam_->propNames[GetParam().property].name);
    }
    EXPECT_THAT(cameraCalls(), ElementsAreArray(expected));
}

TEST_P(ApplierTest, WithoutARangeRefusesWhatIsNotZero)
{
    failCalls("GetPropertyInfo", 0, 0);
    apply(GetParam().fits);
    EXPECT_EQ(journal().logs().back(),
              warning(GetParam().function,
                      format("  asked %s val %f exceeds max %f, skipped", GetParam().valueName,
                             static_cast<double>(GetParam().fits), 0.0)));
    EXPECT_THAT(cam_->written, IsEmpty());
}

TEST_P(ApplierTest, GoesOnWhenTheCameraRefuses)
{
    failCalls("SetProperty");
    apply(GetParam().fits);
    const auto logs = applierLogs();
    const char* const property = cam_->propNames[GetParam().property].name;
    ASSERT_THAT(logs, SizeIs(4));
    EXPECT_EQ(logs[2], warning("ExPropertySetAbs",
                               format("can't set property %u (%s)",
                                      static_cast<unsigned>(GetParam().property), property)));
    EXPECT_THAT(logs[3], testing::HasSubstr(format("  new %s val is", GetParam().currentName)));
}

constexpr float below(float value)
{
    return std::nextafter(value, -1e9F);
}
constexpr float above(float value)
{
    return std::nextafter(value, 1e9F);
}

using Config = kxtest::HostConfig;

const Applier kAppliers[] = {
    {"Fps", "ProcParametrizeCamFps", FRAME_RATE, 1.0F,
     [](Config& config, float value) { config.fps = value; }, &Proc::ProcParametrizeCamFps, -1.0F,
     25.0F, 5.0F, below(5.0F), 60.0F, above(60.0F), "Fps settings handler entry val: Fps ", "Fps",
     "CamFps"},
    {"Saturation", "ProcParametrizeCamSatur", SATURATION, 1.0F,
     [](Config& config, float value) { config.satur = static_cast<int>(value); },
     &Proc::ProcParametrizeCamSatur, -1.0F, 100.0F, 1.0F, 0.0F, 200.0F, 201.0F,
     "Saturation settings handler entry val: expt ", "Saturation", "Saturation"},
    {"Gain", "ProcParametrizeCamManGain", GAIN, 1.0F,
     [](Config& config, float value) { config.gainMan = value; }, &Proc::ProcParametrizeCamManGain,
     -100.0F, 6.0F, -2.5F, below(-2.5F), 24.0F, above(24.0F),
     "Gain settings handler entry val: gain ", "Gain", "Gain"},
    {"Exposure", "ProcParametrizeCamManExpo", SHUTTER, 1000.0F,
     [](Config& config, float value) { config.exptMan = value; }, &Proc::ProcParametrizeCamManExpo,
     -1.0F, 20'000.0F, 20.0F, below(20.0F), 30'000.0F, above(30'000.0F),
     "ExpoTime settings handler entry val: expt ", "ExpoTime", "ExpoTime"},
    {"Gamma", "ProcParametrizeCamGamma", GAMMA, 1.0F,
     [](Config& config, float value) { config.gamma = value; }, &Proc::ProcParametrizeCamGamma,
     -1.0F, 2.0F, 0.5F, below(0.5F), 4.0F, above(4.0F), "Gamma settings handler entry val: Gamma ",
     "Gamma", "Gamma"},
};

INSTANTIATE_TEST_SUITE_P(Appliers, ApplierTest, testing::ValuesIn(kAppliers),
                         [](const auto& one) { return std::string(one.param.name); });

} // namespace
