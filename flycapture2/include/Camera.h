// Cameras on IEEE 1394 and USB buses.
#ifndef KX_FLYCAPTURE2_CAMERA_H
#define KX_FLYCAPTURE2_CAMERA_H

#include "CameraBase.h"
#include "Error.h"
#include "FlyCapture2Defs.h"

namespace FlyCapture2 {

/// A camera on an IEEE 1394 or USB bus; its threads and errors are those of CameraBase.
class FC2_API Camera : public CameraBase {
public:
    Camera();
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;
    /// Disconnects.
    ~Camera() override;

    // As CameraBase describes them, in its order, which is the order of the virtual table.

    Error Connect(PGRGuid* guid = nullptr) override;
    Error Disconnect() override;
    bool IsConnected() override;
    Error SetCallback(ImageEventCallback callback, const void* userData = nullptr) override;
    Error StartCapture(ImageEventCallback callback = nullptr,
                       const void* userData = nullptr) override;
    Error RetrieveBuffer(Image* image) override;
    Error StopCapture() override;
    Error WaitForBufferEvent(Image* image, unsigned int eventNumber) override;
    Error SetUserBuffers(unsigned char* const memory, int size, int bufferCount) override;
    Error GetConfiguration(FC2Config* config) override;
    Error SetConfiguration(const FC2Config* config) override;
    Error GetCameraInfo(CameraInfo* info) override;
    Error GetPropertyInfo(PropertyInfo* info) override;
    Error GetProperty(Property* property) override;
    Error SetProperty(const Property* property, bool broadcast = false) override;
    Error GetGPIOPinDirection(unsigned int pin, unsigned int* direction) override;
    Error SetGPIOPinDirection(unsigned int pin, unsigned int direction,
                              bool broadcast = false) override;
    Error GetTriggerModeInfo(TriggerModeInfo* info) override;
    Error GetTriggerMode(TriggerMode* mode) override;
    Error SetTriggerMode(const TriggerMode* mode, bool broadcast = false) override;
    Error FireSoftwareTrigger(bool broadcast = false) override;
    Error GetTriggerDelayInfo(TriggerDelayInfo* info) override;
    Error GetTriggerDelay(TriggerDelay* delay) override;
    Error SetTriggerDelay(const TriggerDelay* delay, bool broadcast = false) override;
    Error GetStrobeInfo(StrobeInfo* info) override;
    Error GetStrobe(StrobeControl* strobe) override;
    Error SetStrobe(const StrobeControl* strobe, bool broadcast = false) override;
    Error GetLUTInfo(LUTData* info) override;
    Error GetLUTBankInfo(unsigned int bank, bool* readable, bool* writable) override;
    Error GetActiveLUTBank(unsigned int* bank) override;
    Error SetActiveLUTBank(unsigned int bank) override;
    Error EnableLUT(bool on) override;
    Error GetLUTChannel(unsigned int bank, unsigned int channel, unsigned int entryCount,
                        unsigned int* entries) override;
    Error SetLUTChannel(unsigned int bank, unsigned int channel, unsigned int entryCount,
                        const unsigned int* entries) override;
    Error GetMemoryChannel(unsigned int* channel) override;
    Error SaveToMemoryChannel(unsigned int channel) override;
    Error RestoreFromMemoryChannel(unsigned int channel) override;
    Error GetMemoryChannelInfo(unsigned int* channelCount) override;
    Error GetEmbeddedImageInfo(EmbeddedImageInfo* info) override;
    Error SetEmbeddedImageInfo(EmbeddedImageInfo* info) override;
    Error WriteRegister(unsigned int address, unsigned int value, bool broadcast = false) override;
    Error ReadRegister(unsigned int address, unsigned int* value) override;
    Error WriteRegisterBlock(unsigned short addressHigh, unsigned int addressLow,
                             const unsigned int* buffer, unsigned int length) override;
    Error ReadRegisterBlock(unsigned short addressHigh, unsigned int addressLow,
                            unsigned int* buffer, unsigned int length) override;
    Error GetCycleTime(TimeStamp* timeStamp) override;
    Error GetStats(CameraStats* stats) override;
    Error ResetStats() override;
    Error RegisterEvent(EventOptions* options) override;
    Error DeregisterEvent(EventOptions* options) override;
    Error RegisterAllEvents(EventOptions* options) override;
    Error DeregisterAllEvents() override;

    // Fixed video modes

    /// Says whether the camera has this mode at this rate.
    virtual Error GetVideoModeAndFrameRateInfo(VideoMode videoMode, FrameRate frameRate,
                                               bool* supported);
    /// Reads mode and rate.
    virtual Error GetVideoModeAndFrameRate(VideoMode* videoMode, FrameRate* frameRate);
    /// Sets mode and rate. Before capture only.
    virtual Error SetVideoModeAndFrameRate(VideoMode videoMode, FrameRate frameRate);

    // Regions of interest (Format 7)

    /// Reads what the mode `info->mode` allows, and whether the camera has it.
    virtual Error GetFormat7Info(Format7Info* info, bool* supported);
    /// Says whether the camera takes these settings, and which packet sizes then suit.
    virtual Error ValidateFormat7Settings(const Format7ImageSettings* settings, bool* valid,
                                          Format7PacketInfo* packetInfo);
    /// Reads the settings in force. PGRERROR_NOT_IN_FORMAT7 in a fixed mode.
    virtual Error GetFormat7Configuration(Format7ImageSettings* settings, unsigned int* packetSize,
                                          float* percentage);
    /// Sets region and pixel format with a packet size in bytes. Before capture only.
    virtual Error SetFormat7Configuration(const Format7ImageSettings* settings,
                                          unsigned int packetSize);
    /// Sets region and pixel format with a speed in percent of the greatest. Before capture only.
    virtual Error SetFormat7Configuration(const Format7ImageSettings* settings, float percentSpeed);

    /// Starts capture on several cameras at the same time; the arrays have `count` elements.
    static Error StartSyncCapture(unsigned int count, const Camera** cameras,
                                  const ImageEventCallback* callbacks, const void** userData);
    /// Name of a register for people; never null.
    static const char* GetRegisterString(unsigned int address);
};

} // namespace FlyCapture2

#endif
