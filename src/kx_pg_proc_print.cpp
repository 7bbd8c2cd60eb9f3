// The blocks of lines in which a session shows its camera: identity and settings.
#include "kx_pg_proc_print.h"

#include "kx_log.h"
#include "kx_pg_temperature.h"

#define KX_LOG_TAG "KX_PG_PROC"

namespace KxPGrey {

void printIdentity(const FlyCapture2::CameraInfo& info)
{
    KX_LOG_I("== Camera Device Information ==\n");
    KX_LOG_I("===============================\n");
    KX_LOG_I("Vendor           : %s\n", info.vendorName);
    KX_LOG_I("Model            : %s\n", info.modelName);
    KX_LOG_I("SensorInfo       : %s\n", info.sensorInfo);
    KX_LOG_I("SensorResolution : %s\n", info.sensorResolution);
    KX_LOG_I("DeviceSerialID   : %u\n", info.serialNumber);
    KX_LOG_I("Firmware version : %s\n", info.firmwareVersion);
}

void printTemperature(CExCam& cam)
{
    FlyCapture2::CameraStats stats;
    if (cam.GetStats(&stats) == FlyCapture2::PGRERROR_OK) {
        KX_LOG_I("Temperature, C   : %.2f (%.1fK)\n", celsius(stats.temperature),
                 kelvin(stats.temperature));
    }
}

void printRegion(const FlyCapture2::Format7ImageSettings& settings)
{
    KX_LOG_I("ROI OffsX x OffsY   : %u x %u\n", settings.offsetX, settings.offsetY);
    KX_LOG_I("ROI Width x Height  : %u x %u\n", settings.width, settings.height);
}

void printPicture(CExCam& cam, float framesPerSecond,
                  const FlyCapture2::Format7ImageSettings& settings)
{
    KX_LOG_I("ResultingFrameRate  : %f\n", static_cast<double>(framesPerSecond));
    KX_LOG_I("Gain, dB            : %f\n",
             static_cast<double>(cam.ExPropertyGetAbs(FlyCapture2::GAIN)));
    KX_LOG_I("ExposureTimeAbs, us : %f\n",
             static_cast<double>(cam.ExPropertyGetAbs(FlyCapture2::SHUTTER) * 1000.0F));
    KX_LOG_I("Gamma               : %f\n",
             static_cast<double>(cam.ExPropertyGetAbs(FlyCapture2::GAMMA)));
    KX_LOG_I("PixelFormat         : 0x%08X\n", static_cast<unsigned int>(settings.pixelFormat));
}

} // namespace KxPGrey
