// The camera maker's interface, first declaration.
#pragma once
#include "CameraBase.h"
namespace FlyCapture2 {
class FC2_API GigECamera : public CameraBase {
public:
    virtual ~GigECamera();
    virtual Error Connect(PGRGuid* = nullptr);
    virtual Error Disconnect();
    virtual bool IsConnected();
    virtual Error SetCallback(ImageEventCallback, const void* = nullptr);
    virtual Error StartCapture(ImageEventCallback = nullptr, const void* = nullptr);
    virtual Error RetrieveBuffer(Image*);
    virtual Error StopCapture();
    virtual Error WaitForBufferEvent(Image*, unsigned int);
    virtual Error SetUserBuffers(unsigned char* const, int, int);
    virtual Error GetConfiguration(FC2Config*);
    virtual Error SetConfiguration(const FC2Config*);
    virtual Error GetCameraInfo(CameraInfo*);
    virtual Error GetPropertyInfo(PropertyInfo*);
    virtual Error GetProperty(Property*);
    virtual Error SetProperty(const Property*, bool broadcast = false);
    virtual Error GetGPIOPinDirection(unsigned int, unsigned int*);
    virtual Error SetGPIOPinDirection(unsigned int, unsigned int, bool broadcast = false);
    virtual Error GetTriggerModeInfo(TriggerModeInfo*);
    virtual Error GetTriggerMode(TriggerMode*);
    virtual Error SetTriggerMode(const TriggerMode*, bool broadcast = false);
    virtual Error FireSoftwareTrigger(bool broadcast = false);
    virtual Error GetTriggerDelayInfo(TriggerDelayInfo*);
    virtual Error GetTriggerDelay(TriggerDelay*);
    virtual Error SetTriggerDelay(const TriggerDelay*, bool broadcast = false);
    virtual Error GetStrobeInfo(StrobeInfo*);
    virtual Error GetStrobe(StrobeControl*);
    virtual Error SetStrobe(const StrobeControl*, bool broadcast = false);
    virtual Error GetLUTInfo(LUTData*);
    virtual Error GetLUTBankInfo(unsigned int, bool*, bool*);
    virtual Error GetActiveLUTBank(unsigned int*);
    virtual Error SetActiveLUTBank(unsigned int);
    virtual Error EnableLUT(bool);
    virtual Error GetLUTChannel(unsigned int, unsigned int, unsigned int, unsigned int*);
    virtual Error SetLUTChannel(unsigned int, unsigned int, unsigned int, const unsigned int*);
    virtual Error GetMemoryChannel(unsigned int*);
    virtual Error SaveToMemoryChannel(unsigned int);
    virtual Error RestoreFromMemoryChannel(unsigned int);
    virtual Error GetMemoryChannelInfo(unsigned int*);
    virtual Error GetEmbeddedImageInfo(EmbeddedImageInfo*);
    virtual Error SetEmbeddedImageInfo(EmbeddedImageInfo*);
    virtual Error WriteRegister(unsigned int, unsigned int, bool broadcast = false);
    virtual Error ReadRegister(unsigned int, unsigned int*);
    virtual Error WriteRegisterBlock(unsigned short, unsigned int, const unsigned int*,
                                     unsigned int);
    virtual Error ReadRegisterBlock(unsigned short, unsigned int, unsigned int*, unsigned int);
    virtual Error GetCycleTime(TimeStamp*);
    virtual Error GetStats(CameraStats*);
    virtual Error ResetStats();
    virtual Error RegisterEvent(EventOptions*);
    virtual Error DeregisterEvent(EventOptions*);
    virtual Error RegisterAllEvents(EventOptions*);
    virtual Error DeregisterAllEvents();
    virtual Error WriteGVCPRegister(unsigned int, unsigned int, bool broadcast = false);
    virtual Error ReadGVCPRegister(unsigned int, unsigned int*);
    virtual Error WriteGVCPRegisterBlock(unsigned int, const unsigned int*, unsigned int);
    virtual Error ReadGVCPRegisterBlock(unsigned int, unsigned int*, unsigned int);
    virtual Error WriteGVCPMemory(unsigned int, const unsigned char*, unsigned int);
    virtual Error ReadGVCPMemory(unsigned int, unsigned char*, unsigned int);
    virtual Error GetGigEProperty(GigEProperty*);
    virtual Error SetGigEProperty(const GigEProperty*);
    virtual Error DiscoverGigEPacketSize(unsigned int*);
    virtual Error QueryGigEImagingMode(Mode, bool*);
    virtual Error GetGigEImagingMode(Mode*);
    virtual Error SetGigEImagingMode(Mode);
    virtual Error GetGigEImageSettingsInfo(GigEImageSettingsInfo*);
    virtual Error GetGigEImageSettings(GigEImageSettings*);
    virtual Error SetGigEImageSettings(const GigEImageSettings*);
    virtual Error GetGigEImageBinningSettings(unsigned int*, unsigned int*);
    virtual Error SetGigEImageBinningSettings(unsigned int, unsigned int);
    virtual Error GetNumStreamChannels(unsigned int*);
    virtual Error GetGigEStreamChannelInfo(unsigned int, GigEStreamChannel*);
    virtual Error SetGigEStreamChannelInfo(unsigned int, GigEStreamChannel*);
    virtual Error GetGigEConfig(GigEConfig*);
    virtual Error SetGigEConfig(const GigEConfig*);
    GigECamera();
    static Error StartSyncCapture(unsigned int, const GigECamera**, const ImageEventCallback*,
                                  const void**);
    static const char* GetRegisterString(unsigned int);

private:
    GigECamera(const GigECamera&);
    GigECamera& operator=(const GigECamera&);
};
} // namespace FlyCapture2
