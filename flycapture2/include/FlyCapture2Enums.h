// The enumerations of the camera library's interface; the names are the interface's own.
#ifndef KX_FLYCAPTURE2_ENUMS_H
#define KX_FLYCAPTURE2_ENUMS_H

namespace FlyCapture2 {

/// Kinds of outcome that an Error has. The last member keeps it at 32 bits.
enum ErrorType {
    PGRERROR_UNDEFINED = -1,      ///< Nothing known.
    PGRERROR_OK = 0,              ///< The call succeeded.
    PGRERROR_FAILED = 1,          ///< Failed without a better name.
    PGRERROR_NOT_IMPLEMENTED = 2, ///< The library has no such function.
    PGRERROR_FAILED_BUS_MASTER_CONNECTION = 3,
    PGRERROR_NOT_CONNECTED = 4, ///< There is no connection to a camera.
    PGRERROR_INIT_FAILED = 5,
    PGRERROR_NOT_INTITIALIZED = 6,  ///< Used before it was set up; the spelling is the interface's.
    PGRERROR_INVALID_PARAMETER = 7, ///< An argument is null or out of range.
    PGRERROR_INVALID_SETTINGS = 8,  ///< A record's values do not go together.
    PGRERROR_INVALID_BUS_MANAGER = 9,
    PGRERROR_MEMORY_ALLOCATION_FAILED = 10,
    PGRERROR_LOW_LEVEL_FAILURE = 11,
    PGRERROR_NOT_FOUND = 12, ///< No such camera.
    PGRERROR_FAILED_GUID = 13,
    PGRERROR_INVALID_PACKET_SIZE = 14,
    PGRERROR_INVALID_MODE = 15,
    PGRERROR_NOT_IN_FORMAT7 = 16, ///< A fixed video mode is in force.
    PGRERROR_NOT_SUPPORTED = 17,  ///< This camera cannot.
    PGRERROR_TIMEOUT = 18,        ///< Nothing came in time.
    PGRERROR_BUS_MASTER_FAILED = 19,
    PGRERROR_INVALID_GENERATION = 20,
    PGRERROR_LUT_FAILED = 21,
    PGRERROR_IIDC_FAILED = 22,
    PGRERROR_STROBE_FAILED = 23,
    PGRERROR_TRIGGER_FAILED = 24,
    PGRERROR_PROPERTY_FAILED = 25,
    PGRERROR_PROPERTY_NOT_PRESENT = 26, ///< The camera lacks the property.
    PGRERROR_REGISTER_FAILED = 27,
    PGRERROR_READ_REGISTER_FAILED = 28,
    PGRERROR_WRITE_REGISTER_FAILED = 29,
    PGRERROR_ISOCH_FAILED = 30,
    PGRERROR_ISOCH_ALREADY_STARTED = 31, ///< Capture runs already.
    PGRERROR_ISOCH_NOT_STARTED = 32,     ///< Capture does not run.
    PGRERROR_ISOCH_START_FAILED = 33,
    PGRERROR_ISOCH_RETRIEVE_BUFFER_FAILED = 34,
    PGRERROR_ISOCH_STOP_FAILED = 35,
    PGRERROR_ISOCH_SYNC_FAILED = 36,
    PGRERROR_ISOCH_BANDWIDTH_EXCEEDED = 37, ///< The bus has no room for these images.
    PGRERROR_IMAGE_CONVERSION_FAILED = 38,
    PGRERROR_IMAGE_LIBRARY_FAILURE = 39,
    PGRERROR_BUFFER_TOO_SMALL = 40,        ///< The caller's memory does not hold the answer.
    PGRERROR_IMAGE_CONSISTENCY_ERROR = 41, ///< Parts of the image did not arrive.
    PGRERROR_INCOMPATIBLE_DRIVER = 42,     ///< Kernel driver and library do not fit.
    PGRERROR_FORCE_32BITS = 0x7FFFFFFF,
};

/// What happens to images that nobody fetched in time. The last member keeps it at 32 bits.
enum GrabMode {
    DROP_FRAMES = 0,           ///< Keep the newest, drop the others.
    BUFFER_FRAMES = 1,         ///< Keep all, deliver the oldest first.
    UNSPECIFIED_GRAB_MODE = 2, ///< Leave the setting as it is.
    GRAB_MODE_FORCE_32BITS = 0x7FFFFFFF,
};

/// Special values of FC2Config::grabTimeout, which else counts milliseconds. The last member keeps
/// it at 32 bits.
enum GrabTimeout {
    TIMEOUT_NONE = 0,         ///< Do not wait.
    TIMEOUT_INFINITE = -1,    ///< Wait for ever.
    TIMEOUT_UNSPECIFIED = -2, ///< Leave the setting as it is.
    GRAB_TIMEOUT_FORCE_32BITS = 0x7FFFFFFF,
};

/// Whether a 1394 camera reserves its share of the bus before it sends. The last member keeps it at
/// 32 bits.
enum BandwidthAllocation {
    BANDWIDTH_ALLOCATION_OFF = 0,
    BANDWIDTH_ALLOCATION_ON = 1,
    BANDWIDTH_ALLOCATION_UNSUPPORTED = 2,
    BANDWIDTH_ALLOCATION_UNSPECIFIED = 3,
    BANDWIDTH_ALLOCATION_FORCE_32BITS = 0x7FFFFFFF,
};

/// Kinds of bus. The last member keeps it at 32 bits.
enum InterfaceType {
    INTERFACE_IEEE1394 = 0,
    INTERFACE_USB2 = 1,
    INTERFACE_USB3 = 2,
    INTERFACE_GIGE = 3,
    INTERFACE_UNKNOWN = 4,
    INTERFACE_TYPE_FORCE_32BITS = 0x7FFFFFFF,
};

/// What of a camera can be adjusted through GetProperty and SetProperty. The last member keeps it
/// at 32 bits.
enum PropertyType {
    BRIGHTNESS = 0,    ///< Black level, percent.
    AUTO_EXPOSURE = 1, ///< Aim of the automatic exposure, EV.
    SHARPNESS = 2,
    WHITE_BALANCE = 3, ///< Red and blue against green.
    HUE = 4,
    SATURATION = 5,
    GAMMA = 6,
    IRIS = 7,
    FOCUS = 8,
    ZOOM = 9,
    PAN = 10,
    TILT = 11,
    SHUTTER = 12, ///< Exposure time, ms.
    GAIN = 13,    ///< Gain, dB.
    TRIGGER_MODE = 14,
    TRIGGER_DELAY = 15, ///< From trigger to exposure.
    FRAME_RATE = 16,    ///< Images a second.
    TEMPERATURE = 17,   ///< Of the camera board; read only.
    UNSPECIFIED_PROPERTY_TYPE = 18,
    PROPERTY_TYPE_FORCE_32BITS = 0x7FFFFFFF,
};

/// Sensor modes; a camera has a few of them, mode 0 reads all pixels. The last member keeps it at
/// 32 bits.
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
    MODE_FORCE_32BITS = 0x7FFFFFFF,
};

/// Pixel formats: one bit each as registers have them, plus formats that only Convert makes.
enum PixelFormat : unsigned int {
    PIXEL_FORMAT_MONO8 = 0x80000000U,    ///< 8 bits of grey.
    PIXEL_FORMAT_411YUV8 = 0x40000000U,  ///< 6 bytes for 4 pixels: U Y Y V Y Y.
    PIXEL_FORMAT_422YUV8 = 0x20000000U,  ///< 4 bytes for 2 pixels: U Y V Y.
    PIXEL_FORMAT_444YUV8 = 0x10000000U,  ///< 3 bytes: U Y V.
    PIXEL_FORMAT_RGB8 = 0x08000000U,     ///< 3 bytes: R G B.
    PIXEL_FORMAT_MONO16 = 0x04000000U,   ///< 16 bits of grey.
    PIXEL_FORMAT_RGB16 = 0x02000000U,    ///< 3 times 16 bits.
    PIXEL_FORMAT_S_MONO16 = 0x01000000U, ///< 16 bits of grey, signed.
    PIXEL_FORMAT_S_RGB16 = 0x00800000U,  ///< 3 times 16 bits, signed.
    PIXEL_FORMAT_RAW8 = 0x00400000U,     ///< 8 bits of the tile's colour.
    PIXEL_FORMAT_RAW16 = 0x00200000U,    ///< 16 bits of the tile's colour.
    PIXEL_FORMAT_MONO12 = 0x00100000U,   ///< 12 bits of grey, 3 bytes for 2 pixels.
    PIXEL_FORMAT_RAW12 = 0x00080000U,    ///< 12 bits of the tile's colour, 3 bytes for 2 pixels.
    PIXEL_FORMAT_BGR = 0x80000008U,      ///< 3 bytes: B G R.
    PIXEL_FORMAT_BGRU = 0x40000008U,     ///< 4 bytes: B G R and one unused.
    PIXEL_FORMAT_RGB = 0x08000000U,      ///< The same as PIXEL_FORMAT_RGB8.
    PIXEL_FORMAT_RGBU = 0x40000002U,     ///< 4 bytes: R G B and one unused.
    PIXEL_FORMAT_BGR16 = 0x02000001U,    ///< 3 times 16 bits: B G R.
    PIXEL_FORMAT_BGRU16 = 0x02000002U,   ///< 4 times 16 bits: B G R and one unused.
    PIXEL_FORMAT_422YUV8_JPEG = 0x40000001U, ///< Compressed images.
    NUM_PIXEL_FORMATS = 0x00000014U,         ///< How many there are.
    UNSPECIFIED_PIXEL_FORMAT = 0x00000000U,  ///< None chosen.
};

/// Speeds of a bus: 1394 and USB in Mbit/s, then Ethernet. The last member keeps it at 32 bits.
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
    BUSSPEED_S_FASTEST = 12, ///< The fastest the bus allows.
    BUSSPEED_ANY = 13,       ///< Whatever there is.
    BUSSPEED_SPEED_UNKNOWN = -1,
    BUSSPEED_FORCE_32BITS = 0x7FFFFFFF,
};

/// Speeds of the link that a host adapter sits on, in Gbit/s of a lane. The last member keeps it at
/// 32 bits.
enum PCIeBusSpeed {
    PCIE_BUSSPEED_2_5 = 0,
    PCIE_BUSSPEED_5_0 = 1,
    PCIE_BUSSPEED_UNKNOWN = -1,
    PCIE_BUSSPEED_FORCE_32BITS = 0x7FFFFFFF,
};

/// Kernel drivers that a camera may be served by. The last member keeps it at 32 bits.
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
    DRIVER_FORCE_32BITS = 0x7FFFFFFF,
};

/// How Image::Convert makes colour of tiles, from fast to thorough. The last member keeps it at 32
/// bits.
enum ColorProcessingAlgorithm {
    DEFAULT = 0,             ///< The library's choice.
    NO_COLOR_PROCESSING = 1, ///< Leave the tiles.
    NEAREST_NEIGHBOR = 2,    ///< Fast, coarse.
    EDGE_SENSING = 3,        ///< Follows edges.
    HQ_LINEAR = 4,           ///< Good, faster than the next ones.
    RIGOROUS = 5,            ///< Best, slow.
    IPP = 6,
    DIRECTIONAL_FILTER = 7,
    COLOR_PROCESSING_ALGORITHM_FORCE_32BITS = 0x7FFFFFFF,
};

/// Colours of the upper left four pixels of a sensor with a tile filter. The last member keeps it
/// at 32 bits.
enum BayerTileFormat {
    NONE = 0, ///< No tiles: grey or colour already.
    RGGB = 1,
    GRBG = 2,
    GBRG = 3,
    BGGR = 4,
    BT_FORCE_32BITS = 0x7FFFFFFF,
};

/// Bus events that a callback can be registered for. The last member keeps it at 32 bits.
enum BusCallbackType {
    BUS_RESET = 0, ///< The bus was reset.
    ARRIVAL = 1,   ///< A camera came.
    REMOVAL = 2,   ///< A camera went.
    CALLBACK_TYPE_FORCE_32BITS = 0x7FFFFFFF,
};

/// Rates of the fixed video modes, in images a second. The last member keeps it at 32 bits.
enum FrameRate {
    FRAMERATE_1_875 = 0,
    FRAMERATE_3_75 = 1,
    FRAMERATE_7_5 = 2,
    FRAMERATE_15 = 3,
    FRAMERATE_30 = 4,
    FRAMERATE_60 = 5,
    FRAMERATE_120 = 6,
    FRAMERATE_240 = 7,
    FRAMERATE_FORMAT7 = 8, ///< Given by region and packets.
    NUM_FRAMERATES = 9,
    FRAMERATE_FORCE_32BITS = 0x7FFFFFFF,
};

/// Fixed video modes of IEEE 1394 cameras: width, height and coding. The last member keeps it at 32
/// bits.
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
    VIDEOMODE_FORMAT7 = 23, ///< Region of interest instead of a fixed mode.
    NUM_VIDEOMODES = 24,
    VIDEOMODE_FORCE_32BITS = 0x7FFFFFFF,
};

/// File formats that Image::Save writes. The last member keeps it at 32 bits.
enum ImageFileFormat {
    FROM_FILE_EXT = -1, ///< By the name's ending.
    PGM = 0,
    PPM = 1,
    BMP = 2,
    JPEG = 3,
    JPEG2000 = 4,
    TIFF = 5,
    PNG = 6,
    RAW = 7,
    IMAGE_FILE_FORMAT_FORCE_32BITS = 0x7FFFFFFF,
};

/// Settings of the network protocol.
enum GigEPropertyType {
    HEARTBEAT = 0,         ///< Whether the camera watches for a living host.
    HEARTBEAT_TIMEOUT = 1, ///< Silence in ms after which it gives the host up.
    PACKET_SIZE = 2,       ///< Bytes of an image packet.
    PACKET_DELAY = 3,      ///< Pause between packets in ticks.
};

} // namespace FlyCapture2

#endif
