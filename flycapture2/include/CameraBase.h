// The camera maker's interface, first declaration.
#pragma once
#include "Error.h"
#include "Image.h"
namespace FlyCapture2 {
class CameraBase {
public:
    CameraBase() {}
    virtual ~CameraBase() {}
    virtual Error Connect(PGRGuid* = nullptr) = 0;
    virtual Error Disconnect() = 0;
    virtual bool IsConnected() = 0;
    virtual Error SetCallback(ImageEventCallback, const void* = nullptr) = 0;
    virtual Error StartCapture(ImageEventCallback = nullptr, const void* = nullptr) = 0;
    virtual Error RetrieveBuffer(Image*) = 0;
    virtual Error StopCapture() = 0;
    virtual Error WaitForBufferEvent(Image*, unsigned int) = 0;
    virtual Error SetUserBuffers(unsigned char* const, int, int) = 0;
    virtual Error GetConfiguration(FC2Config*) = 0;
    virtual Error SetConfiguration(const FC2Config*) = 0;
    virtual Error GetCameraInfo(CameraInfo*) = 0;
    virtual Error GetPropertyInfo(PropertyInfo*) = 0;
    virtual Error GetProperty(Property*) = 0;
    virtual Error SetProperty(const Property*, bool broadcast = false) = 0;
    virtual Error GetGPIOPinDirection(unsigned int, unsigned int*) = 0;
    virtual Error SetGPIOPinDirection(unsigned int, unsigned int, bool broadcast = false) = 0;
    virtual Error GetTriggerModeInfo(TriggerModeInfo*) = 0;
    virtual Error GetTriggerMode(TriggerMode*) = 0;
    virtual Error SetTriggerMode(const TriggerMode*, bool broadcast = false) = 0;
    virtual Error FireSoftwareTrigger(bool broadcast = false) = 0;
    virtual Error GetTriggerDelayInfo(TriggerDelayInfo*) = 0;
    virtual Error GetTriggerDelay(TriggerDelay*) = 0;
    virtual Error SetTriggerDelay(const TriggerDelay*, bool broadcast = false) = 0;
    virtual Error GetStrobeInfo(StrobeInfo*) = 0;
    virtual Error GetStrobe(StrobeControl*) = 0;
    virtual Error SetStrobe(const StrobeControl*, bool broadcast = false) = 0;
    virtual Error GetLUTInfo(LUTData*) = 0;
    virtual Error GetLUTBankInfo(unsigned int, bool*, bool*) = 0;
    virtual Error GetActiveLUTBank(unsigned int*) = 0;
    virtual Error SetActiveLUTBank(unsigned int) = 0;
    virtual Error EnableLUT(bool) = 0;
    virtual Error GetLUTChannel(unsigned int, unsigned int, unsigned int, unsigned int*) = 0;
    virtual Error SetLUTChannel(unsigned int, unsigned int, unsigned int, const unsigned int*) = 0;
    virtual Error GetMemoryChannel(unsigned int*) = 0;
    virtual Error SaveToMemoryChannel(unsigned int) = 0;
    virtual Error RestoreFromMemoryChannel(unsigned int) = 0;
    virtual Error GetMemoryChannelInfo(unsigned int*) = 0;
    virtual Error GetEmbeddedImageInfo(EmbeddedImageInfo*) = 0;
    virtual Error SetEmbeddedImageInfo(EmbeddedImageInfo*) = 0;
    virtual Error WriteRegister(unsigned int, unsigned int, bool broadcast = false) = 0;
    virtual Error ReadRegister(unsigned int, unsigned int*) = 0;
    virtual Error WriteRegisterBlock(unsigned short, unsigned int, const unsigned int*,
                                     unsigned int) = 0;
    virtual Error ReadRegisterBlock(unsigned short, unsigned int, unsigned int*, unsigned int) = 0;
    virtual Error GetCycleTime(TimeStamp*) = 0;
    virtual Error GetStats(CameraStats*) = 0;
    virtual Error ResetStats() = 0;
    virtual Error RegisterEvent(EventOptions*) = 0;
    virtual Error DeregisterEvent(EventOptions*) = 0;
    virtual Error RegisterAllEvents(EventOptions*) = 0;
    virtual Error DeregisterAllEvents() = 0;
    FC2_API static Error StartSyncCapture(unsigned int, const CameraBase**,
                                          const ImageEventCallback*, const void**);
    FC2_API static const char* GetRegisterString(unsigned int);

protected:
    struct CameraData;
    CameraData* m_pCameraData = nullptr;

private:
    CameraBase(const CameraBase&);
    CameraBase& operator=(const CameraBase&);
};
} // namespace FlyCapture2
