// The whole C++ interface of the camera library: what its clients include.
//
// The declarations here match `libflycapture.so.2` of releases 2.10 to 2.13 in every size, offset,
// value, virtual-table slot and mangled name, so that a program built against them runs with the
// maker's library and with the simulated cameras alike.
#ifndef KX_FLYCAPTURE2_H
#define KX_FLYCAPTURE2_H

#include "BusManager.h"
#include "Camera.h"
#include "CameraBase.h"
#include "Error.h"
#include "FlyCapture2Defs.h"
#include "GigECamera.h"
#include "Image.h"

#endif
