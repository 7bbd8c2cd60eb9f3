// The camera maker's interface, first declaration.
#pragma once
#include <cstddef>
namespace FlyCapture2 {
constexpr unsigned int sk_maxStringLength = 512;
typedef void (*BusEventCallback)(void*, unsigned int);
typedef void* CallbackHandle;
typedef void (*CameraEventCallback)(void*);
enum ErrorType {
    PGRERROR_UNDEFINED = -1,
    PGRERROR_OK = 0,
    PGRERROR_FAILED = 1,
    PGRERROR_NOT_IMPLEMENTED = 2,
    PGRERROR_FAILED_BUS_MASTER_CONNECTION = 3,
    PGRERROR_NOT_CONNECTED = 4,
    PGRERROR_INIT_FAILED = 5,
    PGRERROR_NOT_INTITIALIZED = 6,
    PGRERROR_INVALID_PARAMETER = 7,
    PGRERROR_INVALID_SETTINGS = 8,
    PGRERROR_INVALID_BUS_MANAGER = 9,
    PGRERROR_MEMORY_ALLOCATION_FAILED = 10,
    PGRERROR_LOW_LEVEL_FAILURE = 11,
    PGRERROR_NOT_FOUND = 12,
    PGRERROR_FAILED_GUID = 13,
    PGRERROR_INVALID_PACKET_SIZE = 14,
    PGRERROR_INVALID_MODE = 15,
    PGRERROR_NOT_IN_FORMAT7 = 16,
    PGRERROR_NOT_SUPPORTED = 17,
    PGRERROR_TIMEOUT = 18,
    PGRERROR_BUS_MASTER_FAILED = 19,
    PGRERROR_INVALID_GENERATION = 20,
    PGRERROR_LUT_FAILED = 21,
    PGRERROR_IIDC_FAILED = 22,
    PGRERROR_STROBE_FAILED = 23,
    PGRERROR_TRIGGER_FAILED = 24,
    PGRERROR_PROPERTY_FAILED = 25,
    PGRERROR_PROPERTY_NOT_PRESENT = 26,
    PGRERROR_REGISTER_FAILED = 27,
    PGRERROR_READ_REGISTER_FAILED = 28,
    PGRERROR_WRITE_REGISTER_FAILED = 29,
    PGRERROR_ISOCH_FAILED = 30,
    PGRERROR_ISOCH_ALREADY_STARTED = 31,
    PGRERROR_ISOCH_NOT_STARTED = 32,
    PGRERROR_ISOCH_START_FAILED = 33,
    PGRERROR_ISOCH_RETRIEVE_BUFFER_FAILED = 34,
    PGRERROR_ISOCH_STOP_FAILED = 35,
    PGRERROR_ISOCH_SYNC_FAILED = 36,
    PGRERROR_ISOCH_BANDWIDTH_EXCEEDED = 37,
    PGRERROR_IMAGE_CONVERSION_FAILED = 38,
    PGRERROR_IMAGE_LIBRARY_FAILURE = 39,
    PGRERROR_BUFFER_TOO_SMALL = 40,
    PGRERROR_IMAGE_CONSISTENCY_ERROR = 41,
    PGRERROR_INCOMPATIBLE_DRIVER = 42,
    PGRERROR_FORCE_32BITS = 2147483647,
};

enum GrabMode {
    DROP_FRAMES = 0,
    BUFFER_FRAMES = 1,
    UNSPECIFIED_GRAB_MODE = 2,
    GRAB_MODE_FORCE_32BITS = 2147483647,
};

enum GrabTimeout {
    TIMEOUT_NONE = 0,
    TIMEOUT_INFINITE = -1,
    TIMEOUT_UNSPECIFIED = -2,
    GRAB_TIMEOUT_FORCE_32BITS = 2147483647,
};

enum BandwidthAllocation {
    BANDWIDTH_ALLOCATION_OFF = 0,
    BANDWIDTH_ALLOCATION_ON = 1,
    BANDWIDTH_ALLOCATION_UNSUPPORTED = 2,
    BANDWIDTH_ALLOCATION_UNSPECIFIED = 3,
    BANDWIDTH_ALLOCATION_FORCE_32BITS = 2147483647,
};

enum InterfaceType {
    INTERFACE_IEEE1394 = 0,
    INTERFACE_USB2 = 1,
    INTERFACE_USB3 = 2,
    INTERFACE_GIGE = 3,
    INTERFACE_UNKNOWN = 4,
    INTERFACE_TYPE_FORCE_32BITS = 2147483647,
};

enum PropertyType {
    BRIGHTNESS = 0,
    AUTO_EXPOSURE = 1,
    SHARPNESS = 2,
    WHITE_BALANCE = 3,
    HUE = 4,
    SATURATION = 5,
    GAMMA = 6,
    IRIS = 7,
    FOCUS = 8,
    ZOOM = 9,
    PAN = 10,
    TILT = 11,
    SHUTTER = 12,
    GAIN = 13,
    TRIGGER_MODE = 14,
    TRIGGER_DELAY = 15,
    FRAME_RATE = 16,
    TEMPERATURE = 17,
    UNSPECIFIED_PROPERTY_TYPE = 18,
    PROPERTY_TYPE_FORCE_32BITS = 2147483647,
};

enum Mode {
    MODE_0 = 0,
    MODE_1 = 1,
    MODE_2 = 2,
    MODE_3 = 3,
    MODE_4 = 4,
    MODE_5 = 5,
    MODE_6 = 6,
    MODE_7 = 7,
    MODE_8 = 8,
    MODE_9 = 9,
    MODE_10 = 10,
    MODE_11 = 11,
    MODE_12 = 12,
    MODE_13 = 13,
    MODE_14 = 14,
    MODE_15 = 15,
    MODE_16 = 16,
    MODE_17 = 17,
    MODE_18 = 18,
    MODE_19 = 19,
    MODE_20 = 20,
    MODE_21 = 21,
    MODE_22 = 22,
    MODE_23 = 23,
    MODE_24 = 24,
    MODE_25 = 25,
    MODE_26 = 26,
    MODE_27 = 27,
    MODE_28 = 28,
    MODE_29 = 29,
    MODE_30 = 30,
    MODE_31 = 31,
    NUM_MODES = 32,
    MODE_FORCE_32BITS = 2147483647,
};

enum PixelFormat : unsigned int {
    PIXEL_FORMAT_MONO8 = 0x80000000U,
    PIXEL_FORMAT_411YUV8 = 0x40000000U,
    PIXEL_FORMAT_422YUV8 = 0x20000000U,
    PIXEL_FORMAT_444YUV8 = 0x10000000U,
    PIXEL_FORMAT_RGB8 = 0x8000000U,
    PIXEL_FORMAT_MONO16 = 0x4000000U,
    PIXEL_FORMAT_RGB16 = 0x2000000U,
    PIXEL_FORMAT_S_MONO16 = 0x1000000U,
    PIXEL_FORMAT_S_RGB16 = 0x800000U,
    PIXEL_FORMAT_RAW8 = 0x400000U,
    PIXEL_FORMAT_RAW16 = 0x200000U,
    PIXEL_FORMAT_MONO12 = 0x100000U,
    PIXEL_FORMAT_RAW12 = 0x80000U,
    PIXEL_FORMAT_BGR = 0x80000008U,
    PIXEL_FORMAT_BGRU = 0x40000008U,
    PIXEL_FORMAT_RGB = 0x8000000U,
    PIXEL_FORMAT_RGBU = 0x40000002U,
    PIXEL_FORMAT_BGR16 = 0x2000001U,
    PIXEL_FORMAT_BGRU16 = 0x2000002U,
    PIXEL_FORMAT_422YUV8_JPEG = 0x40000001U,
    NUM_PIXEL_FORMATS = 0x14U,
    UNSPECIFIED_PIXEL_FORMAT = 0x0U,
};

enum BusSpeed {
    BUSSPEED_S100 = 0,
    BUSSPEED_S200 = 1,
    BUSSPEED_S400 = 2,
    BUSSPEED_S480 = 3,
    BUSSPEED_S800 = 4,
    BUSSPEED_S1600 = 5,
    BUSSPEED_S3200 = 6,
    BUSSPEED_S5000 = 7,
    BUSSPEED_10BASE_T = 8,
    BUSSPEED_100BASE_T = 9,
    BUSSPEED_1000BASE_T = 10,
    BUSSPEED_10000BASE_T = 11,
    BUSSPEED_S_FASTEST = 12,
    BUSSPEED_ANY = 13,
    BUSSPEED_SPEED_UNKNOWN = -1,
    BUSSPEED_FORCE_32BITS = 2147483647,
};

enum PCIeBusSpeed {
    PCIE_BUSSPEED_2_5 = 0,
    PCIE_BUSSPEED_5_0 = 1,
    PCIE_BUSSPEED_UNKNOWN = -1,
    PCIE_BUSSPEED_FORCE_32BITS = 2147483647,
};

enum DriverType {
    DRIVER_1394_CAM = 0,
    DRIVER_1394_PRO = 1,
    DRIVER_1394_JUJU = 2,
    DRIVER_1394_VIDEO1394 = 3,
    DRIVER_1394_RAW1394 = 4,
    DRIVER_USB_NONE = 5,
    DRIVER_USB_CAM = 6,
    DRIVER_USB3_PRO = 7,
    DRIVER_GIGE_NONE = 8,
    DRIVER_GIGE_FILTER = 9,
    DRIVER_GIGE_PRO = 10,
    DRIVER_GIGE_LWF = 11,
    DRIVER_UNKNOWN = -1,
    DRIVER_FORCE_32BITS = 2147483647,
};

enum ColorProcessingAlgorithm {
    DEFAULT = 0,
    NO_COLOR_PROCESSING = 1,
    NEAREST_NEIGHBOR = 2,
    EDGE_SENSING = 3,
    HQ_LINEAR = 4,
    RIGOROUS = 5,
    IPP = 6,
    DIRECTIONAL_FILTER = 7,
    COLOR_PROCESSING_ALGORITHM_FORCE_32BITS = 2147483647,
};

enum BayerTileFormat {
    NONE = 0,
    RGGB = 1,
    GRBG = 2,
    GBRG = 3,
    BGGR = 4,
    BT_FORCE_32BITS = 2147483647,
};

enum BusCallbackType {
    BUS_RESET = 0,
    ARRIVAL = 1,
    REMOVAL = 2,
    CALLBACK_TYPE_FORCE_32BITS = 2147483647,
};

enum FrameRate {
    FRAMERATE_1_875 = 0,
    FRAMERATE_3_75 = 1,
    FRAMERATE_7_5 = 2,
    FRAMERATE_15 = 3,
    FRAMERATE_30 = 4,
    FRAMERATE_60 = 5,
    FRAMERATE_120 = 6,
    FRAMERATE_240 = 7,
    FRAMERATE_FORMAT7 = 8,
    NUM_FRAMERATES = 9,
    FRAMERATE_FORCE_32BITS = 2147483647,
};

enum VideoMode {
    VIDEOMODE_160x120YUV444 = 0,
    VIDEOMODE_320x240YUV422 = 1,
    VIDEOMODE_640x480YUV411 = 2,
    VIDEOMODE_640x480YUV422 = 3,
    VIDEOMODE_640x480RGB = 4,
    VIDEOMODE_640x480Y8 = 5,
    VIDEOMODE_640x480Y16 = 6,
    VIDEOMODE_800x600YUV422 = 7,
    VIDEOMODE_800x600RGB = 8,
    VIDEOMODE_800x600Y8 = 9,
    VIDEOMODE_800x600Y16 = 10,
    VIDEOMODE_1024x768YUV422 = 11,
    VIDEOMODE_1024x768RGB = 12,
    VIDEOMODE_1024x768Y8 = 13,
    VIDEOMODE_1024x768Y16 = 14,
    VIDEOMODE_1280x960YUV422 = 15,
    VIDEOMODE_1280x960RGB = 16,
    VIDEOMODE_1280x960Y8 = 17,
    VIDEOMODE_1280x960Y16 = 18,
    VIDEOMODE_1600x1200YUV422 = 19,
    VIDEOMODE_1600x1200RGB = 20,
    VIDEOMODE_1600x1200Y8 = 21,
    VIDEOMODE_1600x1200Y16 = 22,
    VIDEOMODE_FORMAT7 = 23,
    NUM_VIDEOMODES = 24,
    VIDEOMODE_FORCE_32BITS = 2147483647,
};

enum ImageFileFormat {
    FROM_FILE_EXT = -1,
    PGM = 0,
    PPM = 1,
    BMP = 2,
    JPEG = 3,
    JPEG2000 = 4,
    TIFF = 5,
    PNG = 6,
    RAW = 7,
    IMAGE_FILE_FORMAT_FORCE_32BITS = 2147483647,
};

enum GigEPropertyType {
    HEARTBEAT = 0,
    HEARTBEAT_TIMEOUT = 1,
    PACKET_SIZE = 2,
    PACKET_DELAY = 3,
};

struct PGRGuid {
    unsigned int value[4] = {};
};

struct IPAddress {
    unsigned char octets[4] = {};
};

struct MACAddress {
    unsigned char octets[6] = {};
};

struct ConfigROM {
    unsigned int nodeVendorId = 0;
    unsigned int chipIdHi = 0;
    unsigned int chipIdLo = 0;
    unsigned int unitSpecId = 0;
    unsigned int unitSWVer = 0;
    unsigned int unitSubSWVer = 0;
    unsigned int vendorUniqueInfo_0 = 0;
    unsigned int vendorUniqueInfo_1 = 0;
    unsigned int vendorUniqueInfo_2 = 0;
    unsigned int vendorUniqueInfo_3 = 0;
    char pszKeyword[sk_maxStringLength] = {};
    unsigned int reserved[16] = {};
};

struct TimeStamp {
    long long seconds = 0;
    unsigned int microSeconds = 0;
    unsigned int cycleSeconds = 0;
    unsigned int cycleCount = 0;
    unsigned int cycleOffset = 0;
    unsigned int reserved[8] = {};
};

struct GigEProperty {
    GigEPropertyType propType = static_cast<GigEPropertyType>(0);
    bool isReadable = false;
    bool isWritable = false;
    unsigned int min = 0;
    unsigned int max = 0;
    unsigned int value = 0;
};

struct GigEStreamChannel {
    unsigned int networkInterfaceIndex = 0;
    unsigned int hostPort = 0;
    bool doNotFragment = false;
    unsigned int packetSize = 0;
    unsigned int interPacketDelay = 0;
    IPAddress destinationIpAddress = {};
    unsigned int sourcePort = 0;
};

struct EventOptions {
    CameraEventCallback EventCallbackFcn = nullptr;
    const char* EventName = nullptr;
    const void* EventUserData = nullptr;
    size_t EventUserDataSize = 0;
};

struct EventCallbackData {
    void* EventUserData = nullptr;
    size_t EventUserDataSize = 0;
    const char* EventName = nullptr;
    unsigned long long EventID = 0;
    unsigned long long EventTimestamp = 0;
    void* EventData = nullptr;
    size_t EventDataSize = 0;
};

struct GigEConfig {
    bool enablePacketResend = false;
    unsigned int registerTimeoutRetries = 3;
    unsigned int registerTimeout = 20000;
};

struct GigEImageSettingsInfo {
    unsigned int maxWidth = 0;
    unsigned int maxHeight = 0;
    unsigned int offsetHStepSize = 0;
    unsigned int offsetVStepSize = 0;
    unsigned int imageHStepSize = 0;
    unsigned int imageVStepSize = 0;
    unsigned int pixelFormatBitField = 0;
    unsigned int vendorPixelFormatBitField = 0;
    unsigned int reserved[16] = {};
};

struct GigEImageSettings {
    unsigned int offsetX = 0;
    unsigned int offsetY = 0;
    unsigned int width = 0;
    unsigned int height = 0;
    PixelFormat pixelFormat = static_cast<PixelFormat>(0);
    unsigned int reserved[8] = {};
};

struct Format7ImageSettings {
    Mode mode = static_cast<Mode>(0);
    unsigned int offsetX = 0;
    unsigned int offsetY = 0;
    unsigned int width = 0;
    unsigned int height = 0;
    PixelFormat pixelFormat = static_cast<PixelFormat>(0);
    unsigned int reserved[8] = {};
};

struct Format7Info {
    Mode mode = static_cast<Mode>(0);
    unsigned int maxWidth = 0;
    unsigned int maxHeight = 0;
    unsigned int offsetHStepSize = 0;
    unsigned int offsetVStepSize = 0;
    unsigned int imageHStepSize = 0;
    unsigned int imageVStepSize = 0;
    unsigned int pixelFormatBitField = 0;
    unsigned int vendorPixelFormatBitField = 0;
    unsigned int packetSize = 0;
    unsigned int minPacketSize = 0;
    unsigned int maxPacketSize = 0;
    float percentage = 0.0F;
    unsigned int reserved[16] = {};
};

struct Format7PacketInfo {
    unsigned int recommendedBytesPerPacket = 0;
    unsigned int maxBytesPerPacket = 0;
    unsigned int unitBytesPerPacket = 0;
    unsigned int reserved[8] = {};
};

struct FC2Config {
    unsigned int numBuffers = 0;
    unsigned int numImageNotifications = 0;
    unsigned int minNumImageNotifications = 0;
    int grabTimeout = TIMEOUT_UNSPECIFIED;
    GrabMode grabMode = UNSPECIFIED_GRAB_MODE;
    bool highPerformanceRetrieveBuffer = false;
    BusSpeed isochBusSpeed = BUSSPEED_ANY;
    BusSpeed asyncBusSpeed = BUSSPEED_ANY;
    BandwidthAllocation bandwidthAllocation = BANDWIDTH_ALLOCATION_UNSPECIFIED;
    unsigned int registerTimeoutRetries = 0;
    unsigned int registerTimeout = 0;
    unsigned int reserved[16] = {};
};

struct PropertyInfo {
    PropertyType type = UNSPECIFIED_PROPERTY_TYPE;
    bool present = false;
    bool autoSupported = false;
    bool manualSupported = false;
    bool onOffSupported = false;
    bool onePushSupported = false;
    bool absValSupported = false;
    bool readOutSupported = false;
    unsigned int min = 0;
    unsigned int max = 0;
    float absMin = 0.0F;
    float absMax = 0.0F;
    char pUnits[sk_maxStringLength] = {};
    char pUnitAbbr[sk_maxStringLength] = {};
    unsigned int reserved[8] = {};

    PropertyInfo() = default;
    explicit PropertyInfo(PropertyType propertyType) : type(propertyType) {}
};

struct Property {
    PropertyType type = UNSPECIFIED_PROPERTY_TYPE;
    bool present = false;
    bool absControl = false;
    bool onePush = false;
    bool onOff = false;
    bool autoManualMode = false;
    unsigned int valueA = 0;
    unsigned int valueB = 0;
    float absValue = 0.0F;
    unsigned int reserved[8] = {};

    Property() = default;
    explicit Property(PropertyType propertyType) : type(propertyType) {}
};

struct TriggerModeInfo {
    bool present = false;
    bool readOutSupported = false;
    bool onOffSupported = false;
    bool polaritySupported = false;
    bool valueReadable = false;
    unsigned int sourceMask = 0;
    bool softwareTriggerSupported = false;
    unsigned int modeMask = 0;
    unsigned int reserved[8] = {};
};

struct TriggerMode {
    bool onOff = false;
    unsigned int polarity = 0;
    unsigned int source = 0;
    unsigned int mode = 0;
    unsigned int parameter = 0;
    unsigned int reserved[8] = {};
};

struct StrobeInfo {
    unsigned int source = 0;
    bool present = false;
    bool readOutSupported = false;
    bool onOffSupported = false;
    bool polaritySupported = false;
    float minValue = 0.0F;
    float maxValue = 0.0F;
    unsigned int reserved[8] = {};
};

struct StrobeControl {
    unsigned int source = 0;
    bool onOff = false;
    unsigned int polarity = 0;
    float delay = 0.0F;
    float duration = 0.0F;
    unsigned int reserved[8] = {};
};

struct CameraInfo {
    unsigned int serialNumber = 0;
    InterfaceType interfaceType = INTERFACE_UNKNOWN;
    DriverType driverType = DRIVER_UNKNOWN;
    bool isColorCamera = false;
    char modelName[sk_maxStringLength] = {};
    char vendorName[sk_maxStringLength] = {};
    char sensorInfo[sk_maxStringLength] = {};
    char sensorResolution[sk_maxStringLength] = {};
    char driverName[sk_maxStringLength] = {};
    char firmwareVersion[sk_maxStringLength] = {};
    char firmwareBuildTime[sk_maxStringLength] = {};
    BusSpeed maximumBusSpeed = BUSSPEED_SPEED_UNKNOWN;
    BayerTileFormat bayerTileFormat = static_cast<BayerTileFormat>(0);
    unsigned short busNumber = 0;
    unsigned short nodeNumber = 0;
    PCIeBusSpeed pcieBusSpeed = PCIE_BUSSPEED_UNKNOWN;
    unsigned int iidcVer = 0;
    ConfigROM configROM = {};
    unsigned int gigEMajorVersion = 0;
    unsigned int gigEMinorVersion = 0;
    char userDefinedName[sk_maxStringLength] = {};
    char xmlURL1[sk_maxStringLength] = {};
    char xmlURL2[sk_maxStringLength] = {};
    MACAddress macAddress = {};
    IPAddress ipAddress = {};
    IPAddress subnetMask = {};
    IPAddress defaultGateway = {};
    unsigned int ccpStatus = 0;
    unsigned int applicationIPAddress = 0;
    unsigned int applicationPort = 0;
    unsigned int reserved[16] = {};
};

struct EmbeddedImageInfoProperty {
    bool available = false;
    bool onOff = false;
};

struct EmbeddedImageInfo {
    EmbeddedImageInfoProperty timestamp = {};
    EmbeddedImageInfoProperty gain = {};
    EmbeddedImageInfoProperty shutter = {};
    EmbeddedImageInfoProperty brightness = {};
    EmbeddedImageInfoProperty exposure = {};
    EmbeddedImageInfoProperty whiteBalance = {};
    EmbeddedImageInfoProperty frameCounter = {};
    EmbeddedImageInfoProperty strobePattern = {};
    EmbeddedImageInfoProperty GPIOPinState = {};
    EmbeddedImageInfoProperty ROIPosition = {};
};

struct ImageMetadata {
    unsigned int embeddedTimeStamp = 0;
    unsigned int embeddedGain = 0;
    unsigned int embeddedShutter = 0;
    unsigned int embeddedBrightness = 0;
    unsigned int embeddedExposure = 0;
    unsigned int embeddedWhiteBalance = 0;
    unsigned int embeddedFrameCounter = 0;
    unsigned int embeddedStrobePattern = 0;
    unsigned int embeddedGPIOPinState = 0;
    unsigned int embeddedROIPosition = 0;
    unsigned int reserved[31] = {};
};

struct LUTData {
    bool supported = false;
    bool enabled = false;
    unsigned int numBanks = 0;
    unsigned int numChannels = 0;
    unsigned int inputBitDepth = 0;
    unsigned int outputBitDepth = 0;
    unsigned int numEntries = 0;
    unsigned int reserved[8] = {};
};

struct CameraStats {
    unsigned int imageDropped = 0;
    unsigned int imageCorrupt = 0;
    unsigned int imageXmitFailed = 0;
    unsigned int imageDriverDropped = 0;
    unsigned int regReadFailed = 0;
    unsigned int regWriteFailed = 0;
    unsigned int portErrors = 0;
    bool cameraPowerUp = false;
    float cameraVoltages[8] = {};
    unsigned int numVoltages = 0;
    float cameraCurrents[8] = {};
    unsigned int numCurrents = 0;
    unsigned int temperature = 0;
    unsigned int timeSinceInitialization = 0;
    unsigned int timeSinceBusReset = 0;
    TimeStamp timeStamp = {};
    unsigned int numResendPacketsRequested = 0;
    unsigned int numResendPacketsReceived = 0;
    unsigned int reserved[16] = {};
};

typedef Property TriggerDelay;
typedef PropertyInfo TriggerDelayInfo;
struct PNGOption;
struct PPMOption;
struct PGMOption;
struct TIFFOption;
struct JPEGOption;
struct JPG2Option;
struct BMPOption;
class ImageStatistics;
class TopologyNode;
class Image;
typedef void (*ImageEventCallback)(Image*, const void*);
} // namespace FlyCapture2
#define FC2_API __attribute__((visibility("default")))
