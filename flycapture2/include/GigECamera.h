// Cameras on a network.
#ifndef KX_FLYCAPTURE2_GIG_ECAMERA_H
#define KX_FLYCAPTURE2_GIG_ECAMERA_H

#include "CameraBase.h"
#include "Error.h"
#include "FlyCapture2Defs.h"

namespace FlyCapture2 {

/// A camera on a network; its threads and errors are those of CameraBase.
class FC2_API GigECamera : public CameraBase {
public:
    GigECamera();
    GigECamera(const GigECamera&) = delete;
    GigECamera& operator=(const GigECamera&) = delete;
    /// Disconnects.
    ~GigECamera() override;

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

    // Registers of the control protocol (GVCP)

    /// Writes one register.
    virtual Error WriteGVCPRegister(unsigned int address, unsigned int value,
                                    bool broadcast = false);
    /// Reads one register.
    virtual Error ReadGVCPRegister(unsigned int address, unsigned int* value);
    /// Writes `length` registers of 4 bytes.
    virtual Error WriteGVCPRegisterBlock(unsigned int address, const unsigned int* buffer,
                                         unsigned int length);
    /// Reads `length` registers of 4 bytes.
    virtual Error ReadGVCPRegisterBlock(unsigned int address, unsigned int* buffer,
                                        unsigned int length);
    /// Writes `length` bytes of the camera's memory.
    virtual Error WriteGVCPMemory(unsigned int address, const unsigned char* buffer,
                                  unsigned int length);
    /// Reads `length` bytes of the camera's memory.
    virtual Error ReadGVCPMemory(unsigned int address, unsigned char* buffer, unsigned int length);

    // Network settings

    /// Reads the setting `property->propType`.
    virtual Error GetGigEProperty(GigEProperty* property);
    /// Sets one setting.
    virtual Error SetGigEProperty(const GigEProperty* property);
    /// Finds the greatest packet in bytes that gets through to this host; takes a while.
    virtual Error DiscoverGigEPacketSize(unsigned int* packetSize);

    // Image format

    /// Says whether the camera has this mode.
    virtual Error QueryGigEImagingMode(Mode mode, bool* supported);
    /// Reads the mode.
    virtual Error GetGigEImagingMode(Mode* mode);
    /// Sets the mode. Before capture only.
    virtual Error SetGigEImagingMode(Mode mode);
    /// Reads what region and pixel format may be in the mode in force.
    virtual Error GetGigEImageSettingsInfo(GigEImageSettingsInfo* info);
    /// Reads region and pixel format.
    virtual Error GetGigEImageSettings(GigEImageSettings* settings);
    /// Sets region and pixel format. Before capture only.
    virtual Error SetGigEImageSettings(const GigEImageSettings* settings);
    /// Reads how many pixels are summed in each direction.
    virtual Error GetGigEImageBinningSettings(unsigned int* horizontal, unsigned int* vertical);
    /// Sets how many pixels are summed in each direction. Before capture only.
    virtual Error SetGigEImageBinningSettings(unsigned int horizontal, unsigned int vertical);

    // Stream channels

    /// Counts the channels the camera can send on.
    virtual Error GetNumStreamChannels(unsigned int* count);
    /// Reads a channel, from 0.
    virtual Error GetGigEStreamChannelInfo(unsigned int channel, GigEStreamChannel* info);
    /// Sets a channel, from 0. Before capture only.
    virtual Error SetGigEStreamChannelInfo(unsigned int channel, GigEStreamChannel* info);
    /// Reads how the library repairs losses.
    virtual Error GetGigEConfig(GigEConfig* config);
    /// Sets how the library repairs losses. Before capture only.
    virtual Error SetGigEConfig(const GigEConfig* config);

    /// Starts capture on several cameras at the same time; the arrays have `count` elements.
    static Error StartSyncCapture(unsigned int count, const GigECamera** cameras,
                                  const ImageEventCallback* callbacks, const void** userData);
    /// Name of a register for people; never null.
    static const char* GetRegisterString(unsigned int address);
};

} // namespace FlyCapture2

#endif
