// FlyCapture2::GigECamera.
#include "sdk/sdk_camera_data.h"

#include <FlyCapture2.h>

namespace FlyCapture2 {

#define FCSIM_CLASS GigECamera
#define FCSIM_NAME "GigECamera"
#define FCSIM_GIGE_ONLY true
#include "sdk/sdk_camera_common.inc"

Error GigECamera::GetNumStreamChannels(unsigned int* numChannels)
{
    return m_pCameraData->getNumStreamChannels(numChannels);
}

Error GigECamera::GetGigEStreamChannelInfo(unsigned int channel, GigEStreamChannel* pChannel)
{
    return m_pCameraData->getStreamChannel(channel, pChannel);
}

Error GigECamera::SetGigEStreamChannelInfo(unsigned int channel, GigEStreamChannel* pChannel)
{
    return m_pCameraData->setStreamChannel(channel, pChannel);
}

Error GigECamera::WriteGVCPRegister(unsigned int, unsigned int, bool)
{
    return m_pCameraData->leftOut("WriteGVCPRegister");
}

Error GigECamera::ReadGVCPRegister(unsigned int, unsigned int*)
{
    return m_pCameraData->leftOut("ReadGVCPRegister");
}

Error GigECamera::WriteGVCPRegisterBlock(unsigned int, const unsigned int*, unsigned int)
{
    return m_pCameraData->leftOut("WriteGVCPRegisterBlock");
}

Error GigECamera::ReadGVCPRegisterBlock(unsigned int, unsigned int*, unsigned int)
{
    return m_pCameraData->leftOut("ReadGVCPRegisterBlock");
}

Error GigECamera::WriteGVCPMemory(unsigned int, const unsigned char*, unsigned int)
{
    return m_pCameraData->leftOut("WriteGVCPMemory");
}

Error GigECamera::ReadGVCPMemory(unsigned int, unsigned char*, unsigned int)
{
    return m_pCameraData->leftOut("ReadGVCPMemory");
}

Error GigECamera::GetGigEProperty(GigEProperty*)
{
    return m_pCameraData->leftOut("GetGigEProperty");
}

Error GigECamera::SetGigEProperty(const GigEProperty*)
{
    return m_pCameraData->leftOut("SetGigEProperty");
}

Error GigECamera::DiscoverGigEPacketSize(unsigned int*)
{
    return m_pCameraData->leftOut("DiscoverGigEPacketSize");
}

Error GigECamera::QueryGigEImagingMode(Mode, bool*)
{
    return m_pCameraData->leftOut("QueryGigEImagingMode");
}

Error GigECamera::GetGigEImagingMode(Mode*)
{
    return m_pCameraData->leftOut("GetGigEImagingMode");
}

Error GigECamera::SetGigEImagingMode(Mode)
{
    return m_pCameraData->leftOut("SetGigEImagingMode");
}

Error GigECamera::GetGigEImageSettingsInfo(GigEImageSettingsInfo*)
{
    return m_pCameraData->leftOut("GetGigEImageSettingsInfo");
}

Error GigECamera::GetGigEImageSettings(GigEImageSettings*)
{
    return m_pCameraData->leftOut("GetGigEImageSettings");
}

Error GigECamera::SetGigEImageSettings(const GigEImageSettings*)
{
    return m_pCameraData->leftOut("SetGigEImageSettings");
}

Error GigECamera::GetGigEImageBinningSettings(unsigned int*, unsigned int*)
{
    return m_pCameraData->leftOut("GetGigEImageBinningSettings");
}

Error GigECamera::SetGigEImageBinningSettings(unsigned int, unsigned int)
{
    return m_pCameraData->leftOut("SetGigEImageBinningSettings");
}

Error GigECamera::GetGigEConfig(GigEConfig*)
{
    return m_pCameraData->leftOut("GetGigEConfig");
}

Error GigECamera::SetGigEConfig(const GigEConfig*)
{
    return m_pCameraData->leftOut("SetGigEConfig");
}

} // namespace FlyCapture2
