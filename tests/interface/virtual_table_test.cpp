// Pins the order of the virtual tables: clients call by slot, not by name.
#include <FlyCapture2.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace FlyCapture2; // NOLINT(google-build-using-namespace): the table is nothing else

struct Slot {
    std::size_t place;
    const char* name;
    std::size_t measured;
};

constexpr std::size_t kNotVirtual = static_cast<std::size_t>(-1);

/// Slot of a virtual function. The Itanium C++ ABI has the slot's offset plus one in the first word
/// of a pointer to it.
template <typename Function, typename Class>
std::size_t slotOf(Function Class::*member)
{
    static_assert(sizeof member == 2 * sizeof(std::size_t));
    std::size_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    return word % 2 == 1 ? word / sizeof(void*) : kNotVirtual;
}

void expectSlots(const std::vector<Slot>& slots)
{
    for (const Slot& slot : slots) {
        EXPECT_EQ(slot.measured, slot.place) << slot.name;
    }
}

/// What all cameras have, as `Class` overrides it. The two destructors come first.
template <typename Class>
std::vector<Slot> cameraSlots()
{
    return {
        {2, "Connect", slotOf(&Class::Connect)},
        {3, "Disconnect", slotOf(&Class::Disconnect)},
        {4, "IsConnected", slotOf(&Class::IsConnected)},
        {5, "SetCallback", slotOf(&Class::SetCallback)},
        {6, "StartCapture", slotOf(&Class::StartCapture)},
        {7, "RetrieveBuffer", slotOf(&Class::RetrieveBuffer)},
        {8, "StopCapture", slotOf(&Class::StopCapture)},
        {9, "WaitForBufferEvent", slotOf(&Class::WaitForBufferEvent)},
        {10, "SetUserBuffers", slotOf(&Class::SetUserBuffers)},
        {11, "GetConfiguration", slotOf(&Class::GetConfiguration)},
        {12, "SetConfiguration", slotOf(&Class::SetConfiguration)},
        {13, "GetCameraInfo", slotOf(&Class::GetCameraInfo)},
        {14, "GetPropertyInfo", slotOf(&Class::GetPropertyInfo)},
        {15, "GetProperty", slotOf(&Class::GetProperty)},
        {16, "SetProperty", slotOf(&Class::SetProperty)},
        {17, "GetGPIOPinDirection", slotOf(&Class::GetGPIOPinDirection)},
        {18, "SetGPIOPinDirection", slotOf(&Class::SetGPIOPinDirection)},
        {19, "GetTriggerModeInfo", slotOf(&Class::GetTriggerModeInfo)},
        {20, "GetTriggerMode", slotOf(&Class::GetTriggerMode)},
        {21, "SetTriggerMode", slotOf(&Class::SetTriggerMode)},
        {22, "FireSoftwareTrigger", slotOf(&Class::FireSoftwareTrigger)},
        {23, "GetTriggerDelayInfo", slotOf(&Class::GetTriggerDelayInfo)},
        {24, "GetTriggerDelay", slotOf(&Class::GetTriggerDelay)},
        {25, "SetTriggerDelay", slotOf(&Class::SetTriggerDelay)},
        {26, "GetStrobeInfo", slotOf(&Class::GetStrobeInfo)},
        {27, "GetStrobe", slotOf(&Class::GetStrobe)},
        {28, "SetStrobe", slotOf(&Class::SetStrobe)},
        {29, "GetLUTInfo", slotOf(&Class::GetLUTInfo)},
        {30, "GetLUTBankInfo", slotOf(&Class::GetLUTBankInfo)},
        {31, "GetActiveLUTBank", slotOf(&Class::GetActiveLUTBank)},
        {32, "SetActiveLUTBank", slotOf(&Class::SetActiveLUTBank)},
        {33, "EnableLUT", slotOf(&Class::EnableLUT)},
        {34, "GetLUTChannel", slotOf(&Class::GetLUTChannel)},
        {35, "SetLUTChannel", slotOf(&Class::SetLUTChannel)},
        {36, "GetMemoryChannel", slotOf(&Class::GetMemoryChannel)},
        {37, "SaveToMemoryChannel", slotOf(&Class::SaveToMemoryChannel)},
        {38, "RestoreFromMemoryChannel", slotOf(&Class::RestoreFromMemoryChannel)},
        {39, "GetMemoryChannelInfo", slotOf(&Class::GetMemoryChannelInfo)},
        {40, "GetEmbeddedImageInfo", slotOf(&Class::GetEmbeddedImageInfo)},
        {41, "SetEmbeddedImageInfo", slotOf(&Class::SetEmbeddedImageInfo)},
        {42, "WriteRegister", slotOf(&Class::WriteRegister)},
        {43, "ReadRegister", slotOf(&Class::ReadRegister)},
        {44, "WriteRegisterBlock", slotOf(&Class::WriteRegisterBlock)},
        {45, "ReadRegisterBlock", slotOf(&Class::ReadRegisterBlock)},
        {46, "GetCycleTime", slotOf(&Class::GetCycleTime)},
        {47, "GetStats", slotOf(&Class::GetStats)},
        {48, "ResetStats", slotOf(&Class::ResetStats)},
        {49, "RegisterEvent", slotOf(&Class::RegisterEvent)},
        {50, "DeregisterEvent", slotOf(&Class::DeregisterEvent)},
        {51, "RegisterAllEvents", slotOf(&Class::RegisterAllEvents)},
        {52, "DeregisterAllEvents", slotOf(&Class::DeregisterAllEvents)},
    };
}

// The const on the returned pointer means nothing, but belongs to the function's type.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-qualifiers"
using ConstGetData = unsigned char* const() const;
#pragma GCC diagnostic pop

} // namespace

TEST(VirtualTable, Error)
{
    expectSlots({
        {2, "operator=", slotOf(&Error::operator=)},
        {3, "operator==", slotOf<bool(const Error&) const>(&Error::operator==)},
        {4, "operator==", slotOf<bool(const ErrorType&) const>(&Error::operator==)},
        {5, "operator!=", slotOf<bool(const Error&) const>(&Error::operator!=)},
        {6, "operator!=", slotOf<bool(const ErrorType&) const>(&Error::operator!=)},
        {7, "GetType", slotOf(&Error::GetType)},
        {8, "GetDescription", slotOf(&Error::GetDescription)},
        {9, "GetLine", slotOf(&Error::GetLine)},
        {10, "GetFilename", slotOf(&Error::GetFilename)},
        {11, "GetCause", slotOf(&Error::GetCause)},
        {12, "GetBuildDate", slotOf(&Error::GetBuildDate)},
        {13, "CollectSupportInformation", slotOf(&Error::CollectSupportInformation)},
        {14, "PrintErrorTrace", slotOf(&Error::PrintErrorTrace)},
    });
}

TEST(VirtualTable, BusManager)
{
    expectSlots({
        {2, "FireBusReset", slotOf(&BusManager::FireBusReset)},
        {3, "GetNumOfCameras", slotOf(&BusManager::GetNumOfCameras)},
        {4, "GetCameraFromIPAddress", slotOf(&BusManager::GetCameraFromIPAddress)},
        {5, "GetCameraFromIndex", slotOf(&BusManager::GetCameraFromIndex)},
        {6, "GetCameraFromSerialNumber", slotOf(&BusManager::GetCameraFromSerialNumber)},
        {7, "GetCameraSerialNumberFromIndex", slotOf(&BusManager::GetCameraSerialNumberFromIndex)},
        {8, "GetInterfaceTypeFromGuid", slotOf(&BusManager::GetInterfaceTypeFromGuid)},
        {9, "GetNumOfDevices", slotOf(&BusManager::GetNumOfDevices)},
        {10, "GetDeviceFromIndex", slotOf(&BusManager::GetDeviceFromIndex)},
        {11, "ReadPhyRegister", slotOf(&BusManager::ReadPhyRegister)},
        {12, "WritePhyRegister", slotOf(&BusManager::WritePhyRegister)},
        {13, "GetUsbLinkInfo", slotOf(&BusManager::GetUsbLinkInfo)},
        {14, "GetUsbPortStatus", slotOf(&BusManager::GetUsbPortStatus)},
        {15, "GetTopology", slotOf(&BusManager::GetTopology)},
        {16, "RegisterCallback", slotOf(&BusManager::RegisterCallback)},
        {17, "UnregisterCallback", slotOf(&BusManager::UnregisterCallback)},
        {18, "RescanBus", slotOf(&BusManager::RescanBus)},
    });
}

TEST(VirtualTable, Image)
{
    expectSlots({
        {2, "operator=", slotOf(&Image::operator=)},
        {3, "operator[]", slotOf(&Image::operator[])},
        {4, "operator()", slotOf(&Image::operator())},
        {5, "DeepCopy", slotOf(&Image::DeepCopy)},
        {6, "SetDimensions", slotOf(&Image::SetDimensions)},
        {7, "SetData", slotOf(&Image::SetData)},
        {8, "SetBlockId", slotOf(&Image::SetBlockId)},
        {9, "GetBlockId", slotOf(&Image::GetBlockId)},
        {10, "GetPixelFormat", slotOf(&Image::GetPixelFormat)},
        {11, "GetColorProcessing", slotOf(&Image::GetColorProcessing)},
        {12, "SetColorProcessing", slotOf(&Image::SetColorProcessing)},
        {13, "GetCols", slotOf(&Image::GetCols)},
        {14, "GetRows", slotOf(&Image::GetRows)},
        {15, "GetStride", slotOf(&Image::GetStride)},
        {16, "GetBitsPerPixel", slotOf(&Image::GetBitsPerPixel)},
        {17, "GetBayerTileFormat", slotOf(&Image::GetBayerTileFormat)},
        {18, "GetDataSize", slotOf(&Image::GetDataSize)},
        {19, "GetReceivedDataSize", slotOf(&Image::GetReceivedDataSize)},
        {20, "GetDimensions", slotOf(&Image::GetDimensions)},
        {21, "GetData", slotOf<unsigned char*()>(&Image::GetData)},
        {22, "GetData const", slotOf<ConstGetData>(&Image::GetData)},
        {23, "GetMetadata", slotOf(&Image::GetMetadata)},
        {24, "CalculateStatistics", slotOf(&Image::CalculateStatistics)},
        {25, "GetTimeStamp", slotOf(&Image::GetTimeStamp)},
        {26, "Save", slotOf<Error(const char*, ImageFileFormat)>(&Image::Save)},
        {27, "Save", slotOf<Error(const char*, PNGOption*)>(&Image::Save)},
        {28, "Save", slotOf<Error(const char*, PPMOption*)>(&Image::Save)},
        {29, "Save", slotOf<Error(const char*, PGMOption*)>(&Image::Save)},
        {30, "Save", slotOf<Error(const char*, TIFFOption*)>(&Image::Save)},
        {31, "Save", slotOf<Error(const char*, JPEGOption*)>(&Image::Save)},
        {32, "Save", slotOf<Error(const char*, JPG2Option*)>(&Image::Save)},
        {33, "Save", slotOf<Error(const char*, BMPOption*)>(&Image::Save)},
        {34, "Convert", slotOf<Error(PixelFormat, Image*) const>(&Image::Convert)},
        {35, "Convert", slotOf<Error(Image*) const>(&Image::Convert)},
        {36, "ReleaseBuffer", slotOf(&Image::ReleaseBuffer)},
    });
}

TEST(VirtualTable, CameraBase)
{
    expectSlots(cameraSlots<CameraBase>());
}

TEST(VirtualTable, Camera)
{
    expectSlots(cameraSlots<Camera>());
    expectSlots({
        {53, "GetVideoModeAndFrameRateInfo", slotOf(&Camera::GetVideoModeAndFrameRateInfo)},
        {54, "GetVideoModeAndFrameRate", slotOf(&Camera::GetVideoModeAndFrameRate)},
        {55, "SetVideoModeAndFrameRate", slotOf(&Camera::SetVideoModeAndFrameRate)},
        {56, "GetFormat7Info", slotOf(&Camera::GetFormat7Info)},
        {57, "ValidateFormat7Settings", slotOf(&Camera::ValidateFormat7Settings)},
        {58, "GetFormat7Configuration", slotOf(&Camera::GetFormat7Configuration)},
        {59, "SetFormat7Configuration",
         slotOf<Error(const Format7ImageSettings*, unsigned int)>(
             &Camera::SetFormat7Configuration)},
        {60, "SetFormat7Configuration",
         slotOf<Error(const Format7ImageSettings*, float)>(&Camera::SetFormat7Configuration)},
    });
}

TEST(VirtualTable, GigECamera)
{
    expectSlots(cameraSlots<GigECamera>());
    expectSlots({
        {53, "WriteGVCPRegister", slotOf(&GigECamera::WriteGVCPRegister)},
        {54, "ReadGVCPRegister", slotOf(&GigECamera::ReadGVCPRegister)},
        {55, "WriteGVCPRegisterBlock", slotOf(&GigECamera::WriteGVCPRegisterBlock)},
        {56, "ReadGVCPRegisterBlock", slotOf(&GigECamera::ReadGVCPRegisterBlock)},
        {57, "WriteGVCPMemory", slotOf(&GigECamera::WriteGVCPMemory)},
        {58, "ReadGVCPMemory", slotOf(&GigECamera::ReadGVCPMemory)},
        {59, "GetGigEProperty", slotOf(&GigECamera::GetGigEProperty)},
        {60, "SetGigEProperty", slotOf(&GigECamera::SetGigEProperty)},
        {61, "DiscoverGigEPacketSize", slotOf(&GigECamera::DiscoverGigEPacketSize)},
        {62, "QueryGigEImagingMode", slotOf(&GigECamera::QueryGigEImagingMode)},
        {63, "GetGigEImagingMode", slotOf(&GigECamera::GetGigEImagingMode)},
        {64, "SetGigEImagingMode", slotOf(&GigECamera::SetGigEImagingMode)},
        {65, "GetGigEImageSettingsInfo", slotOf(&GigECamera::GetGigEImageSettingsInfo)},
        {66, "GetGigEImageSettings", slotOf(&GigECamera::GetGigEImageSettings)},
        {67, "SetGigEImageSettings", slotOf(&GigECamera::SetGigEImageSettings)},
        {68, "GetGigEImageBinningSettings", slotOf(&GigECamera::GetGigEImageBinningSettings)},
        {69, "SetGigEImageBinningSettings", slotOf(&GigECamera::SetGigEImageBinningSettings)},
        {70, "GetNumStreamChannels", slotOf(&GigECamera::GetNumStreamChannels)},
        {71, "GetGigEStreamChannelInfo", slotOf(&GigECamera::GetGigEStreamChannelInfo)},
        {72, "SetGigEStreamChannelInfo", slotOf(&GigECamera::SetGigEStreamChannelInfo)},
        {73, "GetGigEConfig", slotOf(&GigECamera::GetGigEConfig)},
        {74, "SetGigEConfig", slotOf(&GigECamera::SetGigEConfig)},
    });
}
