// FlyCapture2::CameraBase: what does not belong to one camera.
#include "base/sdk_error.h"

#include <FlyCapture2.h>

namespace FlyCapture2 {

Error CameraBase::StartSyncCapture(unsigned int, const CameraBase**, const ImageEventCallback*,
                                   const void**)
{
    return fcsim::notImplemented();
}

const char* CameraBase::GetRegisterString(unsigned int address)
{
    switch (address) {
    case 0x610:
        return "CAMERA_POWER";
    case 0x1040:
        return "BAYER_TILE_MAPPING";
    case 0x1098:
        return "AUTO_SHUTTER_RANGE";
    case 0x10A0:
        return "AUTO_GAIN_RANGE";
    case 0x1EA8:
        return "CYCLE_TIME";
    default:
        return "UNKNOWN_REGISTER";
    }
}

} // namespace FlyCapture2
