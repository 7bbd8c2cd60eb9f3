// The values and records of the camera library's interface, without its classes.
#ifndef KX_FLYCAPTURE2_DEFS_H
#define KX_FLYCAPTURE2_DEFS_H

#include "FlyCapture2Enums.h"
#include "FlyCapture2Platform.h"
#include "RecordsBus.h"
#include "RecordsControl.h"
#include "RecordsFormat.h"
#include "RecordsGigE.h"
#include "RecordsImage.h"
#include "RecordsStatus.h"

#endif
