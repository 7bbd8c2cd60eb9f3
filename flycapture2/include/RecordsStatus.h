// Record of a camera's counters and health.
#ifndef KX_FLYCAPTURE2_RECORDS_STATUS_H
#define KX_FLYCAPTURE2_RECORDS_STATUS_H

#include "RecordsImage.h"

namespace FlyCapture2 {

/// Counters since the last reset, and what the camera measures of itself.
struct CameraStats {
    CameraStats() = default;

    unsigned int imageDropped = 0;              ///< Images that nobody fetched in time.
    unsigned int imageCorrupt = 0;              ///< Images whose content is damaged.
    unsigned int imageXmitFailed = 0;           ///< Images the bus did not carry whole.
    unsigned int imageDriverDropped = 0;        ///< Images the kernel driver had no room for.
    unsigned int regReadFailed = 0;             ///< Register reads that failed.
    unsigned int regWriteFailed = 0;            ///< Register writes that failed.
    unsigned int portErrors = 0;                ///< Errors of the bus port.
    bool cameraPowerUp = false;                 ///< Whether the camera has power.
    float cameraVoltages[8] = {};               ///< Supply voltages in V.
    unsigned int numVoltages = 0;               ///< How many of them count.
    float cameraCurrents[8] = {};               ///< Supply currents in A.
    unsigned int numCurrents = 0;               ///< How many of them count.
    unsigned int temperature = 0;               ///< Tenths of a kelvin.
    unsigned int timeSinceInitialization = 0;   ///< Seconds since power-up.
    unsigned int timeSinceBusReset = 0;         ///< Seconds since the last bus reset.
    TimeStamp timeStamp;                        ///< When these were read.
    unsigned int numResendPacketsRequested = 0; ///< Packets asked for again, GigE only.
    unsigned int numResendPacketsReceived = 0;  ///< Packets that then came, GigE only.
    unsigned int reserved[16] = {};
};

} // namespace FlyCapture2

#endif
