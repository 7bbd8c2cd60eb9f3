// Appliers of single values: frame rate, rotation, saturation, manual gain, manual exposure, gamma.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_number.h"
#include "kx_pg_proc.h"
#include "kx_pg_shared.h"

#include <optional>

#define KX_LOG_TAG "KX_PG_PROC"

namespace KxPGrey {

namespace {

/// Both ends belong to it. All zero when the camera does not tell.
struct Range {
    float min = 0;
    float max = 0;
};

/// One configured value: what sets its applier apart from the others.
struct Applier {
    FlyCapture2::PropertyType property;
    float scale;                 ///< configured units in one of the camera's
    bool (*isKept)(float asked); ///< it asks for what the camera has
    float (*current)(const CCamProc& proc, CExCam& cam); ///< shown as the value in force
    void (*logKept)();
    void (*logCurrent)(const Applier& applier, const CCamProc& proc, CExCam& cam, Range range);
    void (*warnTooLow)(float asked, float min);
    void (*warnTooHigh)(float asked, float max);
};

/// The messages of an applier, which call the value NAME and the camera's one CURRENT. A current
/// value is asked for once for each sink that is written.
#define KX_APPLIER_MESSAGES(FUNCTION, NAME, CURRENT)                                               \
    [] { KX_LOG_I("  " NAME " config is skipped\n"); },                                            \
        [](const Applier& applier, const CCamProc& proc, CExCam& cam, Range range) {               \
            KX_LOG_I("  cur " CURRENT " val is %f (min %f, max %f)\n",                             \
                     wide(applier.current(proc, cam)), wide(range.min), wide(range.max));          \
        },                                                                                         \
        [](float asked, float min) {                                                               \
            KX_LOG_W_AS(FUNCTION, "  asked " NAME " val %f is lower than min %f, skipped\n",       \
                        wide(asked), wide(min));                                                   \
        },                                                                                         \
        [](float asked, float max) {                                                               \
            KX_LOG_W_AS(FUNCTION, "  asked " NAME " val %f exceeds max %f, skipped\n",             \
                        wide(asked), wide(max));                                                   \
        }

/// As printf takes it.
constexpr double wide(float value)
{
    return static_cast<double>(value);
}

/// Exactly this value is kept.
template <int sentinel>
constexpr bool is(float asked)
{
    return asked == static_cast<float>(sentinel);
}

/// What lies about -1 is kept. In double precision, which decides at the ends of the band.
constexpr bool isAboutMinusOne(float asked)
{
    return -1.001 <= wide(asked) && wide(asked) <= -0.999;
}

template <FlyCapture2::PropertyType property>
float fresh(const CCamProc& /*proc*/, CExCam& cam)
{
    return cam.ExPropertyGetAbs(property);
}

template <float CCamProc::*value>
float remembered(const CCamProc& proc, CExCam& /*cam*/)
{
    return proc.*value;
}

constexpr Applier kFrameRate = {FlyCapture2::FRAME_RATE, 1.0F, isAboutMinusOne,
                                fresh<FlyCapture2::FRAME_RATE>,
                                KX_APPLIER_MESSAGES("ProcParametrizeCamFps", "Fps", "CamFps")};

constexpr Applier kSaturation = {
    FlyCapture2::SATURATION, 1.0F, is<-1>, remembered<&CCamProc::curSaturation>,
    KX_APPLIER_MESSAGES("ProcParametrizeCamSatur", "Saturation", "Saturation")};

constexpr Applier kGain = {FlyCapture2::GAIN, 1.0F, is<-100>, remembered<&CCamProc::curGainDb>,
                           KX_APPLIER_MESSAGES("ProcParametrizeCamManGain", "Gain", "Gain")};

/// The camera counts in milliseconds.
constexpr Applier kExposure = {
    FlyCapture2::SHUTTER, 1000.0F, is<-1>, remembered<&CCamProc::curExpoUs>,
    KX_APPLIER_MESSAGES("ProcParametrizeCamManExpo", "ExpoTime", "ExpoTime")};

constexpr Applier kGamma = {FlyCapture2::GAMMA, 1.0F, isAboutMinusOne, fresh<FlyCapture2::GAMMA>,
                            KX_APPLIER_MESSAGES("ProcParametrizeCamGamma", "Gamma", "Gamma")};

/// The range that the asked value is held against, shown with the value in force; nothing when that
/// one is to be kept.
std::optional<Range> rangeFor(const Applier& applier, const CCamProc& proc, CExCam& cam,
                              float asked)
{
    if (applier.isKept(asked)) {
        applier.logKept();
        return std::nullopt;
    }
    Range range;
    cam.ExPropertyGetAbsRange(applier.property, &range.min, &range.max);
    range.min *= applier.scale;
    range.max *= applier.scale;
    applier.logCurrent(applier, proc, cam, range);
    return range;
}

/// Sets the asked value if it is in range. Returns whether it was.
bool setInRange(const Applier& applier, CExCam& cam, float asked, Range range)
{
    if (asked < range.min) {
        applier.warnTooLow(asked, range.min);
        return false;
    }
    if (asked > range.max) {
        applier.warnTooHigh(asked, range.max);
        return false;
    }
    cam.ExPropertySetAbs(applier.property, asked / applier.scale);
    return true;
}

/// Both of the above. Returns whether the camera was told, so that what it made of it can be shown.
bool apply(const Applier& applier, const CCamProc& proc, CExCam& cam, float asked)
{
    const std::optional<Range> range = rangeFor(applier, proc, cam, asked);
    return range && setInRange(applier, cam, asked, *range);
}

} // namespace

void CCamProc::ProcParametrizeCamFps(CExCam* cam)
{
    const float asked = KxGiMainCtx__GetFps();
    KX_LOG_I("Fps settings handler entry val: Fps %f (CamFps %f)\n", wide(asked),
             wide(cam->ExPropertyGetAbs(FlyCapture2::FRAME_RATE)));
    if (apply(kFrameRate, *this, *cam, asked)) {
        KX_LOG_I("  new CamFps val is %f\n", wide(cam->ExPropertyGetAbs(FlyCapture2::FRAME_RATE)));
    }
}

void CCamProc::ProcParametrizeCamRotate(CExCam* /*cam*/)
{
    constexpr int kKept = 0;
    constexpr int kRotated = 2;
    const int asked = KxGiMainCtx__GetRotate();
    KX_LOG_I("Rotate settings handler entry val: Rotate %i\n", asked);
    if (asked == kKept) {
        KX_LOG_I("  Rotate config is skipped\n");
        return;
    }
    KX_LOG_I("  cur swRotate val is: %i\n", static_cast<int>(swRotate));
    swRotate = asked == kRotated;
    KX_LOG_I("  new swRotate val is: %i\n", static_cast<int>(swRotate));
}

void CCamProc::ProcParametrizeCamSatur(CExCam* cam)
{
    const auto asked = static_cast<float>(KxGiMainCtx__GetSatur());
    // The label came with the message from the exposure's.
    KX_LOG_I("Saturation settings handler entry val: expt %f\n", wide(asked));
    if (apply(kSaturation, *this, *cam, asked)) {
        curSaturation = cam->ExPropertyGetAbs(FlyCapture2::SATURATION);
        KX_LOG_I("  new Saturation val is %f\n", wide(curSaturation));
    }
}

void CCamProc::ProcParametrizeCamManGain(CExCam* cam)
{
    const float asked = KxGiMainCtx__GetGainMan();
    KX_LOG_I("Gain settings handler entry val: gain %f\n", wide(asked));
    if (apply(kGain, *this, *cam, asked)) {
        KX_LOG_I("  new Gain val is %f\n", wide(cam->ExPropertyGetAbs(FlyCapture2::GAIN)));
    }
}

void CCamProc::ProcParametrizeCamManExpo(CExCam* cam)
{
    const float asked = KxGiMainCtx__GetExptMan();
    KX_LOG_I("ExpoTime settings handler entry val: expt %f\n", wide(asked));
    if (apply(kExposure, *this, *cam, asked)) {
        const float newUs = cam->ExPropertyGetAbs(FlyCapture2::SHUTTER) * kExposure.scale;
        shared::set(cam->expoTimeUs, truncateToU32(wide(newUs)));
        KX_LOG_I("  new ExpoTime val is %f (%u)us\n", wide(newUs), cam->expoTimeUs);
    }
}

void CCamProc::ProcParametrizeCamGamma(CExCam* cam)
{
    const float asked = KxGiMainCtx__GetGamma();
    KX_LOG_I("Gamma settings handler entry val: Gamma %f\n", wide(asked));
    const std::optional<Range> range = rangeFor(kGamma, *this, *cam, asked);
    if (!range) {
        return;
    }
    if (wide(asked) < 0.2) {
        KX_LOG_W("  asked Gamma val %f is not allowed, skipped\n", wide(asked));
        return;
    }
    // A straight line is what the camera does without gamma.
    if (0.999 <= wide(asked) && wide(asked) <= 1.001) {
        cam->ExPropertySetEna(FlyCapture2::GAMMA, false);
        KX_LOG_I("  Gamma control is turned off\n");
        return;
    }
    if (setInRange(kGamma, *cam, asked, *range)) {
        KX_LOG_I("  new Gamma val is %f\n", wide(cam->ExPropertyGetAbs(FlyCapture2::GAMMA)));
    }
}

} // namespace KxPGrey
