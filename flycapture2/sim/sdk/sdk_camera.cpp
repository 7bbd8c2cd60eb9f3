// FlyCapture2::Camera.
#include "sdk/sdk_camera_data.h"

#include <FlyCapture2.h>

namespace FlyCapture2 {

#define FCSIM_CLASS Camera
#define FCSIM_NAME "Camera"
#define FCSIM_GIGE_ONLY false
#include "sdk/sdk_camera_common.inc"

Error Camera::GetVideoModeAndFrameRateInfo(VideoMode, FrameRate, bool*)
{
    return m_pCameraData->leftOut("GetVideoModeAndFrameRateInfo");
}

Error Camera::GetVideoModeAndFrameRate(VideoMode*, FrameRate*)
{
    return m_pCameraData->leftOut("GetVideoModeAndFrameRate");
}

Error Camera::SetVideoModeAndFrameRate(VideoMode, FrameRate)
{
    return m_pCameraData->leftOut("SetVideoModeAndFrameRate");
}

Error Camera::GetFormat7Info(Format7Info* pInfo, bool* pSupported)
{
    return m_pCameraData->getFormat7Info(pInfo, pSupported);
}

Error Camera::ValidateFormat7Settings(const Format7ImageSettings* pImageSettings,
                                      bool* pSettingsAreValid, Format7PacketInfo* pPacketInfo)
{
    return m_pCameraData->validateFormat7Settings(pImageSettings, pSettingsAreValid, pPacketInfo);
}

Error Camera::GetFormat7Configuration(Format7ImageSettings* pImageSettings,
                                      unsigned int* pPacketSize, float* pPercentage)
{
    return m_pCameraData->getFormat7Configuration(pImageSettings, pPacketSize, pPercentage);
}

Error Camera::SetFormat7Configuration(const Format7ImageSettings* pImageSettings,
                                      unsigned int packetSize)
{
    return m_pCameraData->setFormat7Configuration(pImageSettings, packetSize);
}

Error Camera::SetFormat7Configuration(const Format7ImageSettings* pImageSettings,
                                      float percentSpeed)
{
    return m_pCameraData->setFormat7Configuration(pImageSettings, percentSpeed);
}

} // namespace FlyCapture2
