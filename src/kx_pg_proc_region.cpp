// Region of interest: the configured offsets and size against the camera's limits.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_format7.h"
#include "kx_pg_proc.h"

#include <array>

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::Format7ImageSettings;
using FlyCapture2::Format7Info;

namespace KxPGrey {

namespace {

/// Bits of the rejected values, as `ProcParametrizeCamAoi` returns them.
enum RegionBit : unsigned int { kOffsetX = 1, kOffsetY = 2, kWidth = 4, kHeight = 8 };

/// One configured value and what the camera allows. Signed, as the host's configuration is.
struct RegionValue {
    RegionBit bit;
    unsigned int Format7ImageSettings::*setting;
    int asked;
    int min;
    int max;
    int step;
};

constexpr int kSkipped = -1;

/// A value off the grid is refused, never moved to it.
bool isAccepted(const RegionValue& value)
{
    return value.min <= value.asked && value.asked <= value.max &&
           (value.step == 0 ||
            static_cast<unsigned int>(value.asked) % static_cast<unsigned int>(value.step) == 0);
}

/// Offsets are held against the largest frame: whether offset and size fit together is for the
/// camera to say.
std::array<RegionValue, 4> configuredRegion(const Format7Info& info)
{
    const auto offsetX = static_cast<int>(KxGiMainCtx__GetOffsetX());
    const auto offsetY = static_cast<int>(KxGiMainCtx__GetOffsetY());
    const auto width = static_cast<int>(KxGiMainCtx__GetWidth());
    const auto height = static_cast<int>(KxGiMainCtx__GetHeight());
    const auto stepX = static_cast<int>(info.imageHStepSize);
    const auto stepY = static_cast<int>(info.imageVStepSize);
    return {{{kOffsetX, &Format7ImageSettings::offsetX, offsetX, 0,
              static_cast<int>(info.maxWidth - info.imageHStepSize),
              static_cast<int>(info.offsetHStepSize)},
             {kOffsetY, &Format7ImageSettings::offsetY, offsetY, 0,
              static_cast<int>(info.maxHeight - info.imageVStepSize),
              static_cast<int>(info.offsetVStepSize)},
             {kWidth, &Format7ImageSettings::width, width, stepX, static_cast<int>(info.maxWidth),
              stepX},
             {kHeight, &Format7ImageSettings::height, height, stepY,
              static_cast<int>(info.maxHeight), stepY}}};
}

void logSkipped(const RegionValue& value)
{
    switch (value.bit) {
    case kOffsetX:
        KX_LOG_I("  OffsetX config is skipped\n");
        break;
    case kOffsetY:
        KX_LOG_I("  OffsetY config is skipped\n");
        break;
    case kWidth:
        KX_LOG_I("  Width config is skipped\n");
        break;
    case kHeight:
        KX_LOG_I("  Height config is skipped\n");
        break;
    }
}

void logCurrent(const RegionValue& value, unsigned int current)
{
    switch (value.bit) {
    case kOffsetX:
        KX_LOG_I("  cur OffsX val is %i (min %i, max %i, inc %i)\n", current, value.min, value.max,
                 value.step);
        break;
    case kOffsetY:
        KX_LOG_I("  cur OffsY val is %i (min %i, max %i, inc %i)\n", current, value.min, value.max,
                 value.step);
        break;
    case kWidth:
        KX_LOG_I("  cur Width val is %i (min %i, max %i, inc %i)\n", current, value.min, value.max,
                 value.step);
        break;
    case kHeight:
        KX_LOG_I("  cur Height val is %i (min %i, max %i, inc %i)\n", current, value.min, value.max,
                 value.step);
        break;
    }
}

/// The row of possible values is shown by its first two and its last.
void logRejected(const RegionValue& value)
{
    constexpr const char* kCaller = "ProcParametrizeCamAoi";
    const int second = static_cast<int>(static_cast<unsigned int>(value.min) +
                                        static_cast<unsigned int>(value.step));
    switch (value.bit) {
    case kOffsetX:
        KX_LOG_W_AS(kCaller, "  asked OffsX val %i is out of row [%i,%i.. %i], skipped\n",
                    value.asked, value.min, second, value.max);
        break;
    case kOffsetY:
        KX_LOG_W_AS(kCaller, "  asked OffsY val %i is out of row [%i,%i.. %i], skipped\n",
                    value.asked, value.min, second, value.max);
        break;
    case kWidth:
        KX_LOG_W_AS(kCaller, "  asked Width val %i is out of bounds [%i,%i.. %i], skipped\n",
                    value.asked, value.min, second, value.max);
        break;
    case kHeight:
        KX_LOG_W_AS(kCaller, "  asked Height val %i is out of bounds [%i,%i.. %i], skipped\n",
                    value.asked, value.min, second, value.max);
        break;
    }
}

} // namespace

unsigned int CCamProc::ProcParametrizeCamAoi(Format7Info* info, Format7ImageSettings* settings)
{
    const std::array<RegionValue, 4> region = configuredRegion(*info);
    KX_LOG_I("Acquisition set handler entry: OffsX %i OffsY %i Width %i Height %i\n",
             region[0].asked, region[1].asked, region[2].asked, region[3].asked);
    for (const RegionValue& value : region) {
        if (value.asked == kSkipped) {
            logSkipped(value);
        }
    }
    unsigned int rejected = 0;
    for (const RegionValue& value : region) {
        if (value.asked == kSkipped) {
            continue;
        }
        logCurrent(value, settings->*value.setting);
        if (isAccepted(value)) {
            settings->*value.setting = static_cast<unsigned int>(value.asked);
        } else {
            logRejected(value);
            rejected |= value.bit;
        }
    }
    return rejected;
}

int CCamProc::ProcCheckCfgCamAoi(CExCam* cam)
{
    Format7State state = readFormat7State(*cam);
    const Format7ImageSettings current = state.settings;
    ProcParametrizeCamAoi(&state.info, &state.settings);
    return state.settings.width != current.width || state.settings.height != current.height ? 1 : 0;
}

} // namespace KxPGrey
