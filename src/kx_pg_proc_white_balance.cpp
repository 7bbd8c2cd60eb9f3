// Applier of the white balance: a pair of raw values.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_proc.h"

#define KX_LOG_TAG "KX_PG_PROC"

namespace KxPGrey {

namespace {

constexpr std::uint32_t kKept = 0xFFFFFFFF;

enum class Colour { kRed, kBlue };

/// Says that a value is out of range, compared as signed numbers.
void warnIfOutside(Colour colour, std::uint32_t value, unsigned int min, unsigned int max)
{
    constexpr const char* kCaller = "ProcParametrizeCamWB";
    const auto asked = static_cast<std::int32_t>(value);
    if (asked < static_cast<std::int32_t>(min)) {
        if (colour == Colour::kRed) {
            KX_LOG_W_AS(kCaller, "  asked WhiteBalance Red val %i is lower than min %u, skipped\n",
                        asked, min);
        } else {
            KX_LOG_W_AS(kCaller, "  asked WhiteBalance Blue val %i is lower than min %u, skipped\n",
                        asked, min);
        }
    } else if (asked > static_cast<std::int32_t>(max)) {
        if (colour == Colour::kRed) {
            KX_LOG_W_AS(kCaller, "  asked WhiteBalance Red val %i exceeds max %u, skipped\n", asked,
                        max);
        } else {
            KX_LOG_W_AS(kCaller, "  asked WhiteBalance Blue val %i exceeds max %u, skipped\n",
                        asked, max);
        }
    }
}

} // namespace

void CCamProc::ProcParametrizeCamWB(CExCam* cam)
{
    const auto red = static_cast<std::uint32_t>(KxGiMainCtx__GetWbred());
    const auto blue = static_cast<std::uint32_t>(KxGiMainCtx__GetWbblu());
    KX_LOG_I("WhiteBalance settings handler entry vals: Red %i, Blue %i\n",
             static_cast<std::int32_t>(red), static_cast<std::int32_t>(blue));
    if (red == kKept && blue == kKept) {
        KX_LOG_I("  WhiteBalance config is skipped\n");
        return;
    }
    unsigned int min = 0;
    unsigned int max = 0;
    cam->ExPropertyGetRelRange(FlyCapture2::WHITE_BALANCE, &min, &max);
    KX_LOG_I("  cur WhiteBalance vals are: Red %u Blue %u (min %u max %u)\n", curWbRed, curWbBlue,
             min, max);
    if (red != kKept) {
        warnIfOutside(Colour::kRed, red, min, max);
    }
    if (blue != kKept) {
        warnIfOutside(Colour::kBlue, blue, min, max);
    }
    // The pair is passed on as it was asked for: the camera keeps what it has of each value that is
    // out of range, so that the other one still takes effect.
    cam->ExPropertySetRel(FlyCapture2::WHITE_BALANCE, red, blue);
    cam->ExPropertyGetRel(FlyCapture2::WHITE_BALANCE, &curWbRed, &curWbBlue);
    KX_LOG_I("  new WhiteBalance vals are: Red %u, Blue %u\n", curWbRed, curWbBlue);
}

} // namespace KxPGrey
