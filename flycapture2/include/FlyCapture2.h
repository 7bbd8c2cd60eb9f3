// The camera maker's interface, first declaration.
#pragma once
#include "BusManager.h"
#include "Camera.h"
#include "CameraBase.h"
#include "Error.h"
#include "GigECamera.h"
#include "Image.h"
