// What cameras on every kind of bus have in common.
#ifndef KX_FLYCAPTURE2_CAMERA_BASE_H
#define KX_FLYCAPTURE2_CAMERA_BASE_H

#include "Error.h"
#include "FlyCapture2Defs.h"
#include "Image.h"

namespace FlyCapture2 {

/// One connection to one camera. Camera serves IEEE 1394 and USB, GigECamera the network.
///
/// One thread may capture while another reads and writes registers and properties; connecting and
/// disconnecting tolerate neither. Unless it says otherwise a function blocks for one or a few
/// register accesses and answers PGRERROR_NOT_CONNECTED without a connection,
/// PGRERROR_INVALID_PARAMETER for a null pointer, PGRERROR_TIMEOUT when the camera does not answer
/// and one of the PGRERROR_..._FAILED when it refuses. `broadcast` repeats a setting on all cameras
/// of the bus.
class CameraBase {
public:
    CameraBase() {}
    CameraBase(const CameraBase&) = delete;
    CameraBase& operator=(const CameraBase&) = delete;
    virtual ~CameraBase() {}

    // Connection

    /// Takes control over the camera `guid`; null takes the first one found.
    virtual Error Connect(PGRGuid* guid = nullptr) = 0;
    /// Stops capture where it runs and gives the camera up.
    virtual Error Disconnect() = 0;
    /// Whether there is a connection; stays true when the camera is unplugged.
    virtual bool IsConnected() = 0;

    // Capture

    /// Has each image handed to `callback` instead of RetrieveBuffer; null ends that.
    virtual Error SetCallback(ImageEventCallback callback, const void* userData = nullptr) = 0;
    /// Starts image transfer. PGRERROR_ISOCH_ALREADY_STARTED when it runs.
    virtual Error StartCapture(ImageEventCallback callback = nullptr,
                               const void* userData = nullptr) = 0;
    /// Waits for the next image, as long as the configuration's grabTimeout, and lends it to
    /// `image`. PGRERROR_TIMEOUT when none came, PGRERROR_ISOCH_NOT_STARTED without capture,
    /// PGRERROR_IMAGE_CONSISTENCY_ERROR for an image with gaps.
    virtual Error RetrieveBuffer(Image* image) = 0;
    /// Ends image transfer; a waiting RetrieveBuffer returns with an error.
    virtual Error StopCapture() = 0;
    /// Waits until image `eventNumber` of a partial delivery is there.
    virtual Error WaitForBufferEvent(Image* image, unsigned int eventNumber) = 0;
    /// Has images written to `bufferCount` buffers of `size` bytes each, one behind the other at
    /// `memory`; it stays with the caller until capture has stopped. Before capture only.
    virtual Error SetUserBuffers(unsigned char* const memory, int size, int bufferCount) = 0;

    // Configuration and identity

    /// Reads how the library receives images.
    virtual Error GetConfiguration(FC2Config* config) = 0;
    /// Sets how the library receives images. Before capture only.
    virtual Error SetConfiguration(const FC2Config* config) = 0;
    /// Reads who the camera is.
    virtual Error GetCameraInfo(CameraInfo* info) = 0;

    // Properties

    /// Reads what the property `info->type` can do.
    virtual Error GetPropertyInfo(PropertyInfo* info) = 0;
    /// Reads the property `property->type`.
    virtual Error GetProperty(Property* property) = 0;
    /// Sets a property. PGRERROR_PROPERTY_FAILED for a value the camera refuses.
    virtual Error SetProperty(const Property* property, bool broadcast = false) = 0;

    // Pins, trigger and strobe

    /// Reads whether a pin is an input (0) or an output (1).
    virtual Error GetGPIOPinDirection(unsigned int pin, unsigned int* direction) = 0;
    /// Makes a pin an input (0) or an output (1).
    virtual Error SetGPIOPinDirection(unsigned int pin, unsigned int direction,
                                      bool broadcast = false) = 0;
    /// Reads what the trigger can do.
    virtual Error GetTriggerModeInfo(TriggerModeInfo* info) = 0;
    /// Reads the trigger's state.
    virtual Error GetTriggerMode(TriggerMode* mode) = 0;
    /// Sets the trigger.
    virtual Error SetTriggerMode(const TriggerMode* mode, bool broadcast = false) = 0;
    /// Takes one image now, where the trigger's source is the software.
    virtual Error FireSoftwareTrigger(bool broadcast = false) = 0;
    /// Reads what the trigger delay can do.
    virtual Error GetTriggerDelayInfo(TriggerDelayInfo* info) = 0;
    /// Reads the trigger delay.
    virtual Error GetTriggerDelay(TriggerDelay* delay) = 0;
    /// Sets the trigger delay.
    virtual Error SetTriggerDelay(const TriggerDelay* delay, bool broadcast = false) = 0;
    /// Reads what the strobe output `info->source` can do.
    virtual Error GetStrobeInfo(StrobeInfo* info) = 0;
    /// Reads the strobe output `strobe->source`.
    virtual Error GetStrobe(StrobeControl* strobe) = 0;
    /// Sets a strobe output.
    virtual Error SetStrobe(const StrobeControl* strobe, bool broadcast = false) = 0;

    // Look-up table

    /// Reads the shape of the look-up table.
    virtual Error GetLUTInfo(LUTData* info) = 0;
    /// Reads whether a bank can be read and written.
    virtual Error GetLUTBankInfo(unsigned int bank, bool* readable, bool* writable) = 0;
    /// Reads which bank is in force.
    virtual Error GetActiveLUTBank(unsigned int* bank) = 0;
    /// Chooses the bank in force.
    virtual Error SetActiveLUTBank(unsigned int bank) = 0;
    /// Switches the table on or off.
    virtual Error EnableLUT(bool on) = 0;
    /// Reads `entryCount` entries of one channel; `entries` has room for them.
    virtual Error GetLUTChannel(unsigned int bank, unsigned int channel, unsigned int entryCount,
                                unsigned int* entries) = 0;
    /// Writes `entryCount` entries of one channel.
    virtual Error SetLUTChannel(unsigned int bank, unsigned int channel, unsigned int entryCount,
                                const unsigned int* entries) = 0;

    // Stored settings

    /// Reads which stored set the camera starts with.
    virtual Error GetMemoryChannel(unsigned int* channel) = 0;
    /// Stores the settings in force.
    virtual Error SaveToMemoryChannel(unsigned int channel) = 0;
    /// Brings stored settings into force.
    virtual Error RestoreFromMemoryChannel(unsigned int channel) = 0;
    /// Counts the sets that can be stored.
    virtual Error GetMemoryChannelInfo(unsigned int* channelCount) = 0;

    // Embedded information

    /// Reads what the camera can and does embed in its images.
    virtual Error GetEmbeddedImageInfo(EmbeddedImageInfo* info) = 0;
    /// Chooses what the camera embeds.
    virtual Error SetEmbeddedImageInfo(EmbeddedImageInfo* info) = 0;

    // Registers

    /// Writes one register; `address` is the offset from the camera's base.
    virtual Error WriteRegister(unsigned int address, unsigned int value,
                                bool broadcast = false) = 0;
    /// Reads one register; `address` is the offset from the camera's base.
    virtual Error ReadRegister(unsigned int address, unsigned int* value) = 0;
    /// Writes `length` registers of 4 bytes from an absolute 48-bit address on.
    virtual Error WriteRegisterBlock(unsigned short addressHigh, unsigned int addressLow,
                                     const unsigned int* buffer, unsigned int length) = 0;
    /// Reads `length` registers of 4 bytes from an absolute 48-bit address on.
    virtual Error ReadRegisterBlock(unsigned short addressHigh, unsigned int addressLow,
                                    unsigned int* buffer, unsigned int length) = 0;

    // Clock, counters and events

    /// Reads the camera's clock together with the host's.
    virtual Error GetCycleTime(TimeStamp* timeStamp) = 0;
    /// Reads the counters.
    virtual Error GetStats(CameraStats* stats) = 0;
    /// Sets the counters to 0.
    virtual Error ResetStats() = 0;
    /// Starts listening for one event; missing from libraries before release 2.10.
    virtual Error RegisterEvent(EventOptions* options) = 0;
    /// Stops listening for one event; missing from libraries before release 2.10.
    virtual Error DeregisterEvent(EventOptions* options) = 0;
    /// Starts listening for all events; missing from libraries before release 2.10.
    virtual Error RegisterAllEvents(EventOptions* options) = 0;
    /// Stops listening for all events; missing from libraries before release 2.10.
    virtual Error DeregisterAllEvents() = 0;

    /// Starts capture on several cameras at the same time; the arrays have `count` elements.
    FC2_API static Error StartSyncCapture(unsigned int count, const CameraBase** cameras,
                                          const ImageEventCallback* callbacks,
                                          const void** userData);
    /// Name of a register for people; never null.
    FC2_API static const char* GetRegisterString(unsigned int address);

protected:
    struct CameraData;

    CameraData* m_pCameraData = nullptr;
};

} // namespace FlyCapture2

#endif
