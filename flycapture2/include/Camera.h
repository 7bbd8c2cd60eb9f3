// The camera maker's interface, first declaration.
#pragma once
#include "CameraBase.h"
namespace FlyCapture2 {
class FC2_API Camera : public CameraBase {
public:
    virtual ~Camera();
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
    virtual Error GetVideoModeAndFrameRateInfo(VideoMode, FrameRate, bool*);
    virtual Error GetVideoModeAndFrameRate(VideoMode*, FrameRate*);
    virtual Error SetVideoModeAndFrameRate(VideoMode, FrameRate);
    virtual Error GetFormat7Info(Format7Info*, bool*);
    virtual Error ValidateFormat7Settings(const Format7ImageSettings*, bool*, Format7PacketInfo*);
    virtual Error GetFormat7Configuration(Format7ImageSettings*, unsigned int*, float*);
    virtual Error SetFormat7Configuration(const Format7ImageSettings*, unsigned int);
    virtual Error SetFormat7Configuration(const Format7ImageSettings*, float);
    Camera();
    static Error StartSyncCapture(unsigned int, const Camera**, const ImageEventCallback*,
                                  const void**);
    static const char* GetRegisterString(unsigned int);

private:
    Camera(const Camera&);
    Camera& operator=(const Camera&);
};
} // namespace FlyCapture2
