// What the SDK's camera objects point to.
#ifndef FCSIM_SDK_CAMERA_DATA_H
#define FCSIM_SDK_CAMERA_DATA_H

#include "sdk/camera_calls.h"

#include <FlyCapture2.h>

/// The calls of one camera object.
struct FlyCapture2::CameraBase::CameraData final : public fcsim::CameraCalls {
    using CameraCalls::CameraCalls;
};

#endif
