// Records that configure a camera: capture, properties, trigger, strobe, table, events.
#ifndef KX_FLYCAPTURE2_RECORDS_CONTROL_H
#define KX_FLYCAPTURE2_RECORDS_CONTROL_H

#include "FlyCapture2Enums.h"
#include "RecordsBus.h"

#include <cstddef>

namespace FlyCapture2 {

/// Called by the library's own thread for a camera event; the argument is an EventCallbackData.
using CameraEventCallback = void (*)(void*);

/// How the library receives images and talks to the camera.
struct FC2Config {
    FC2Config() = default;

    unsigned int numBuffers = 0;               ///< Image buffers the library keeps.
    unsigned int numImageNotifications = 0;    ///< Images asked for ahead.
    unsigned int minNumImageNotifications = 0; ///< Fewest images that can be asked for ahead.
    int grabTimeout = TIMEOUT_UNSPECIFIED; ///< Longest wait for an image in ms, or a GrabTimeout.
    GrabMode grabMode = UNSPECIFIED_GRAB_MODE;  ///< What happens to images nobody fetched.
    bool highPerformanceRetrieveBuffer = false; ///< Deliver without the check for late packets.
    BusSpeed isochBusSpeed = BUSSPEED_ANY;      ///< Speed of image transfer, 1394 only.
    BusSpeed asyncBusSpeed = BUSSPEED_ANY;      ///< Speed of register access, 1394 only.
    BandwidthAllocation bandwidthAllocation =
        BANDWIDTH_ALLOCATION_UNSPECIFIED;    ///< Whether bandwidth is reserved on the bus.
    unsigned int registerTimeoutRetries = 0; ///< Attempts after a register access timed out.
    unsigned int registerTimeout = 0;        ///< Limit of one register access in us.
    unsigned int reserved[16] = {};
};

/// What a camera's property can do. Set `type` before asking.
struct PropertyInfo {
    PropertyInfo() = default;
    /// Asks about `propertyType`.
    explicit PropertyInfo(PropertyType propertyType) : type(propertyType) {}

    PropertyType type = UNSPECIFIED_PROPERTY_TYPE; ///< Which property.
    bool present = false;                          ///< Whether the camera has it at all.
    bool autoSupported = false;                    ///< The camera can control it by itself.
    bool manualSupported = false;                  ///< It can be set to a value.
    bool onOffSupported = false;                   ///< It can be switched off.
    bool onePushSupported = false;                 ///< The camera can adjust it once.
    bool absValSupported = false;                  ///< It can be set in its physical unit.
    bool readOutSupported = false;                 ///< Its value can be read.
    unsigned int min = 0;                          ///< Least register value.
    unsigned int max = 0;                          ///< Greatest register value.
    float absMin = 0.0F;                           ///< Least value in `pUnits`.
    float absMax = 0.0F;                           ///< Greatest value in `pUnits`.
    char pUnits[sk_maxStringLength] = {};          ///< Unit, spelt out.
    char pUnitAbbr[sk_maxStringLength] = {};       ///< Unit, abbreviated.
    unsigned int reserved[8] = {};
};

/// State of a camera's property. Set `type` before asking.
struct Property {
    Property() = default;
    /// Speaks of `propertyType`.
    explicit Property(PropertyType propertyType) : type(propertyType) {}

    PropertyType type = UNSPECIFIED_PROPERTY_TYPE; ///< Which property.
    bool present = false;                          ///< Whether the camera has it at all.
    bool absControl = false;                       ///< `absValue` counts, not `valueA`.
    bool onePush = false;                          ///< One-time adjustment asked for or running.
    bool onOff = false;                            ///< Whether it is on.
    bool autoManualMode = false;                   ///< True: the camera controls it by itself.
    unsigned int valueA = 0;                       ///< Register value; white balance: red.
    unsigned int valueB = 0;                       ///< White balance: blue; else unused.
    float absValue = 0.0F;                         ///< Value in the unit of the PropertyInfo.
    unsigned int reserved[8] = {};
};

/// The delay between a trigger and its exposure is a property like the others.
using TriggerDelay = Property;

/// What the trigger delay can do.
using TriggerDelayInfo = PropertyInfo;

/// What a camera's trigger can do.
struct TriggerModeInfo {
    TriggerModeInfo() = default;

    bool present = false;                  ///< Whether the camera can be triggered at all.
    bool readOutSupported = false;         ///< The state can be read.
    bool onOffSupported = false;           ///< It can be switched off.
    bool polaritySupported = false;        ///< The edge can be chosen.
    bool valueReadable = false;            ///< The level of the input can be read.
    unsigned int sourceMask = 0;           ///< One bit for each usable source.
    bool softwareTriggerSupported = false; ///< A register can fire it.
    unsigned int modeMask = 0;             ///< One bit for each usable mode.
    unsigned int reserved[8] = {};
};

/// State of a camera's trigger.
struct TriggerMode {
    TriggerMode() = default;

    bool onOff = false;         ///< Whether images wait for a trigger.
    unsigned int polarity = 0;  ///< 0: low or falling, 1: high or rising.
    unsigned int source = 0;    ///< Number of the input; 7 is the software trigger.
    unsigned int mode = 0;      ///< Trigger mode, 0 to 15.
    unsigned int parameter = 0; ///< Parameter of the modes that take one.
    unsigned int reserved[8] = {};
};

/// What one strobe output can do. Set `source` before asking.
struct StrobeInfo {
    StrobeInfo() = default;

    unsigned int source = 0;        ///< Number of the output.
    bool present = false;           ///< Whether this output can be a strobe.
    bool readOutSupported = false;  ///< The state can be read.
    bool onOffSupported = false;    ///< It can be switched off.
    bool polaritySupported = false; ///< The level can be chosen.
    float minValue = 0.0F;          ///< Least delay or duration in ms.
    float maxValue = 0.0F;          ///< Greatest delay or duration in ms.
    unsigned int reserved[8] = {};
};

/// State of one strobe output. Set `source` before asking.
struct StrobeControl {
    StrobeControl() = default;

    unsigned int source = 0;   ///< Number of the output.
    bool onOff = false;        ///< Whether it pulses.
    unsigned int polarity = 0; ///< 0: active low, 1: active high.
    float delay = 0.0F;        ///< From start of exposure, in ms.
    float duration = 0.0F;     ///< Length of the pulse in ms; 0: as long as the exposure.
    unsigned int reserved[8] = {};
};

/// Shape of a camera's look-up table.
struct LUTData {
    LUTData() = default;

    bool supported = false;          ///< Whether the camera has one.
    bool enabled = false;            ///< Whether it is in force.
    unsigned int numBanks = 0;       ///< Tables stored.
    unsigned int numChannels = 0;    ///< Colour channels of each.
    unsigned int inputBitDepth = 0;  ///< Bits of an index.
    unsigned int outputBitDepth = 0; ///< Bits of an entry.
    unsigned int numEntries = 0;     ///< Entries of a channel.
    unsigned int reserved[8] = {};
};

/// Whether one piece of information is written into each image.
struct EmbeddedImageInfoProperty {
    EmbeddedImageInfoProperty() = default;

    bool available = false; ///< Whether the camera can write it.
    bool onOff = false;     ///< Whether it does.
};

/// What a camera writes over the first pixels of each image; ImageMetadata is what it wrote.
struct EmbeddedImageInfo {
    EmbeddedImageInfo() = default;

    EmbeddedImageInfoProperty timestamp;     ///< Cycle time of the exposure.
    EmbeddedImageInfoProperty gain;          ///< Gain.
    EmbeddedImageInfoProperty shutter;       ///< Exposure time.
    EmbeddedImageInfoProperty brightness;    ///< Brightness.
    EmbeddedImageInfoProperty exposure;      ///< Auto exposure.
    EmbeddedImageInfoProperty whiteBalance;  ///< White balance.
    EmbeddedImageInfoProperty frameCounter;  ///< Number of the image.
    EmbeddedImageInfoProperty strobePattern; ///< Position in the strobe pattern.
    EmbeddedImageInfoProperty GPIOPinState;  ///< Levels of the pins.
    EmbeddedImageInfoProperty ROIPosition;   ///< Corner of the region of interest.
};

/// One camera event to listen for. The strings and data stay with the caller, who keeps them.
struct EventOptions {
    EventOptions() = default;

    CameraEventCallback EventCallbackFcn = nullptr; ///< Called when it happens.
    const char* EventName = nullptr;                ///< Name of the event.
    const void* EventUserData = nullptr;            ///< Handed through to the callback.
    std::size_t EventUserDataSize = 0;              ///< Bytes behind `EventUserData`.
};

/// What an event callback is given; valid during the call only.
struct EventCallbackData {
    EventCallbackData() = default;

    void* EventUserData = nullptr;         ///< As registered.
    std::size_t EventUserDataSize = 0;     ///< As registered.
    const char* EventName = nullptr;       ///< Name of the event.
    unsigned long long EventID = 0;        ///< The camera's number for the event.
    unsigned long long EventTimestamp = 0; ///< The camera's time of the event, in its ticks.
    void* EventData = nullptr;             ///< What the event carries.
    std::size_t EventDataSize = 0;         ///< Bytes behind `EventData`.
};

} // namespace FlyCapture2

#endif
