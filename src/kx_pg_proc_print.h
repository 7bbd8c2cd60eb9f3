// The blocks of lines in which a session shows its camera: identity and settings.
#ifndef KX_PG_PROC_PRINT_H
#define KX_PG_PROC_PRINT_H

#include "kx_pg_excam.h"

#include <FlyCapture2.h>

namespace KxPGrey {

/// Who made the camera, what it is, and its temperature if it tells.
void printIdentity(const FlyCapture2::CameraInfo& info);
void printTemperature(CExCam& cam);

/// Region of interest.
void printRegion(const FlyCapture2::Format7ImageSettings& settings);

/// Rate, gain, exposure, gamma and pixel format. Gain, exposure and gamma are asked from the camera
/// for these lines only: once for each sink that is written, and not at all when none is.
void printPicture(CExCam& cam, float framesPerSecond,
                  const FlyCapture2::Format7ImageSettings& settings);

} // namespace KxPGrey

#endif
