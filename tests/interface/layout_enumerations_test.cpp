// Pins the values of the enumerations that the camera library and its clients exchange.
#include <FlyCapture2.h>

namespace FlyCapture2 {

template <typename Enumeration>
constexpr bool hasValue(Enumeration member, long long value)
{
    return static_cast<long long>(member) == value;
}

static_assert(sizeof(ErrorType) == 4);
static_assert(hasValue(PGRERROR_UNDEFINED, -1));
static_assert(hasValue(PGRERROR_OK, 0));
static_assert(hasValue(PGRERROR_FAILED, 1));
static_assert(hasValue(PGRERROR_NOT_IMPLEMENTED, 2));
static_assert(hasValue(PGRERROR_FAILED_BUS_MASTER_CONNECTION, 3));
static_assert(hasValue(PGRERROR_NOT_CONNECTED, 4));
static_assert(hasValue(PGRERROR_INIT_FAILED, 5));
static_assert(hasValue(PGRERROR_NOT_INTITIALIZED, 6));
static_assert(hasValue(PGRERROR_INVALID_PARAMETER, 7));
static_assert(hasValue(PGRERROR_INVALID_SETTINGS, 8));
static_assert(hasValue(PGRERROR_INVALID_BUS_MANAGER, 9));
static_assert(hasValue(PGRERROR_MEMORY_ALLOCATION_FAILED, 10));
static_assert(hasValue(PGRERROR_LOW_LEVEL_FAILURE, 11));
static_assert(hasValue(PGRERROR_NOT_FOUND, 12));
static_assert(hasValue(PGRERROR_FAILED_GUID, 13));
static_assert(hasValue(PGRERROR_INVALID_PACKET_SIZE, 14));
static_assert(hasValue(PGRERROR_INVALID_MODE, 15));
static_assert(hasValue(PGRERROR_NOT_IN_FORMAT7, 16));
static_assert(hasValue(PGRERROR_NOT_SUPPORTED, 17));
static_assert(hasValue(PGRERROR_TIMEOUT, 18));
static_assert(hasValue(PGRERROR_BUS_MASTER_FAILED, 19));
static_assert(hasValue(PGRERROR_INVALID_GENERATION, 20));
static_assert(hasValue(PGRERROR_LUT_FAILED, 21));
static_assert(hasValue(PGRERROR_IIDC_FAILED, 22));
static_assert(hasValue(PGRERROR_STROBE_FAILED, 23));
static_assert(hasValue(PGRERROR_TRIGGER_FAILED, 24));
static_assert(hasValue(PGRERROR_PROPERTY_FAILED, 25));
static_assert(hasValue(PGRERROR_PROPERTY_NOT_PRESENT, 26));
static_assert(hasValue(PGRERROR_REGISTER_FAILED, 27));
static_assert(hasValue(PGRERROR_READ_REGISTER_FAILED, 28));
static_assert(hasValue(PGRERROR_WRITE_REGISTER_FAILED, 29));
static_assert(hasValue(PGRERROR_ISOCH_FAILED, 30));
static_assert(hasValue(PGRERROR_ISOCH_ALREADY_STARTED, 31));
static_assert(hasValue(PGRERROR_ISOCH_NOT_STARTED, 32));
static_assert(hasValue(PGRERROR_ISOCH_START_FAILED, 33));
static_assert(hasValue(PGRERROR_ISOCH_RETRIEVE_BUFFER_FAILED, 34));
static_assert(hasValue(PGRERROR_ISOCH_STOP_FAILED, 35));
static_assert(hasValue(PGRERROR_ISOCH_SYNC_FAILED, 36));
static_assert(hasValue(PGRERROR_ISOCH_BANDWIDTH_EXCEEDED, 37));
static_assert(hasValue(PGRERROR_IMAGE_CONVERSION_FAILED, 38));
static_assert(hasValue(PGRERROR_IMAGE_LIBRARY_FAILURE, 39));
static_assert(hasValue(PGRERROR_BUFFER_TOO_SMALL, 40));
static_assert(hasValue(PGRERROR_IMAGE_CONSISTENCY_ERROR, 41));
static_assert(hasValue(PGRERROR_INCOMPATIBLE_DRIVER, 42));

static_assert(sizeof(GrabMode) == 4);
static_assert(hasValue(DROP_FRAMES, 0));
static_assert(hasValue(BUFFER_FRAMES, 1));
static_assert(hasValue(UNSPECIFIED_GRAB_MODE, 2));

static_assert(sizeof(GrabTimeout) == 4);
static_assert(hasValue(TIMEOUT_NONE, 0));
static_assert(hasValue(TIMEOUT_INFINITE, -1));
static_assert(hasValue(TIMEOUT_UNSPECIFIED, -2));

static_assert(sizeof(BandwidthAllocation) == 4);
static_assert(hasValue(BANDWIDTH_ALLOCATION_OFF, 0));
static_assert(hasValue(BANDWIDTH_ALLOCATION_ON, 1));
static_assert(hasValue(BANDWIDTH_ALLOCATION_UNSUPPORTED, 2));
static_assert(hasValue(BANDWIDTH_ALLOCATION_UNSPECIFIED, 3));

static_assert(sizeof(InterfaceType) == 4);
static_assert(hasValue(INTERFACE_IEEE1394, 0));
static_assert(hasValue(INTERFACE_USB2, 1));
static_assert(hasValue(INTERFACE_USB3, 2));
static_assert(hasValue(INTERFACE_GIGE, 3));
static_assert(hasValue(INTERFACE_UNKNOWN, 4));

static_assert(sizeof(PropertyType) == 4);
static_assert(hasValue(BRIGHTNESS, 0));
static_assert(hasValue(AUTO_EXPOSURE, 1));
static_assert(hasValue(SHARPNESS, 2));
static_assert(hasValue(WHITE_BALANCE, 3));
static_assert(hasValue(HUE, 4));
static_assert(hasValue(SATURATION, 5));
static_assert(hasValue(GAMMA, 6));
static_assert(hasValue(IRIS, 7));
static_assert(hasValue(FOCUS, 8));
static_assert(hasValue(ZOOM, 9));
static_assert(hasValue(PAN, 10));
static_assert(hasValue(TILT, 11));
static_assert(hasValue(SHUTTER, 12));
static_assert(hasValue(GAIN, 13));
static_assert(hasValue(TRIGGER_MODE, 14));
static_assert(hasValue(TRIGGER_DELAY, 15));
static_assert(hasValue(FRAME_RATE, 16));
static_assert(hasValue(TEMPERATURE, 17));
static_assert(hasValue(UNSPECIFIED_PROPERTY_TYPE, 18));

static_assert(sizeof(Mode) == 4);
static_assert(hasValue(MODE_0, 0));
static_assert(hasValue(MODE_1, 1));
static_assert(hasValue(MODE_2, 2));
static_assert(hasValue(MODE_3, 3));
static_assert(hasValue(MODE_4, 4));
static_assert(hasValue(MODE_5, 5));
static_assert(hasValue(MODE_6, 6));
static_assert(hasValue(MODE_7, 7));
static_assert(hasValue(MODE_8, 8));
static_assert(hasValue(MODE_9, 9));
static_assert(hasValue(MODE_10, 10));
static_assert(hasValue(MODE_11, 11));
static_assert(hasValue(MODE_12, 12));
static_assert(hasValue(MODE_13, 13));
static_assert(hasValue(MODE_14, 14));
static_assert(hasValue(MODE_15, 15));
static_assert(hasValue(MODE_16, 16));
static_assert(hasValue(MODE_17, 17));
static_assert(hasValue(MODE_18, 18));
static_assert(hasValue(MODE_19, 19));
static_assert(hasValue(MODE_20, 20));
static_assert(hasValue(MODE_21, 21));
static_assert(hasValue(MODE_22, 22));
static_assert(hasValue(MODE_23, 23));
static_assert(hasValue(MODE_24, 24));
static_assert(hasValue(MODE_25, 25));
static_assert(hasValue(MODE_26, 26));
static_assert(hasValue(MODE_27, 27));
static_assert(hasValue(MODE_28, 28));
static_assert(hasValue(MODE_29, 29));
static_assert(hasValue(MODE_30, 30));
static_assert(hasValue(MODE_31, 31));
static_assert(hasValue(NUM_MODES, 32));

static_assert(sizeof(PixelFormat) == 4);
static_assert(hasValue(PIXEL_FORMAT_MONO8, 0x80000000));
static_assert(hasValue(PIXEL_FORMAT_411YUV8, 0x40000000));
static_assert(hasValue(PIXEL_FORMAT_422YUV8, 0x20000000));
static_assert(hasValue(PIXEL_FORMAT_444YUV8, 0x10000000));
static_assert(hasValue(PIXEL_FORMAT_RGB8, 0x08000000));
static_assert(hasValue(PIXEL_FORMAT_MONO16, 0x04000000));
static_assert(hasValue(PIXEL_FORMAT_RGB16, 0x02000000));
static_assert(hasValue(PIXEL_FORMAT_S_MONO16, 0x01000000));
static_assert(hasValue(PIXEL_FORMAT_S_RGB16, 0x00800000));
static_assert(hasValue(PIXEL_FORMAT_RAW8, 0x00400000));
static_assert(hasValue(PIXEL_FORMAT_RAW16, 0x00200000));
static_assert(hasValue(PIXEL_FORMAT_MONO12, 0x00100000));
static_assert(hasValue(PIXEL_FORMAT_RAW12, 0x00080000));
static_assert(hasValue(PIXEL_FORMAT_BGR, 0x80000008));
static_assert(hasValue(PIXEL_FORMAT_BGRU, 0x40000008));
static_assert(hasValue(PIXEL_FORMAT_RGB, 0x08000000));
static_assert(hasValue(PIXEL_FORMAT_RGBU, 0x40000002));
static_assert(hasValue(PIXEL_FORMAT_BGR16, 0x02000001));
static_assert(hasValue(PIXEL_FORMAT_BGRU16, 0x02000002));
static_assert(hasValue(PIXEL_FORMAT_422YUV8_JPEG, 0x40000001));
static_assert(hasValue(NUM_PIXEL_FORMATS, 0x00000014));
static_assert(hasValue(UNSPECIFIED_PIXEL_FORMAT, 0x00000000));

static_assert(sizeof(BusSpeed) == 4);
static_assert(hasValue(BUSSPEED_S100, 0));
static_assert(hasValue(BUSSPEED_S200, 1));
static_assert(hasValue(BUSSPEED_S400, 2));
static_assert(hasValue(BUSSPEED_S480, 3));
static_assert(hasValue(BUSSPEED_S800, 4));
static_assert(hasValue(BUSSPEED_S1600, 5));
static_assert(hasValue(BUSSPEED_S3200, 6));
static_assert(hasValue(BUSSPEED_S5000, 7));
static_assert(hasValue(BUSSPEED_10BASE_T, 8));
static_assert(hasValue(BUSSPEED_100BASE_T, 9));
static_assert(hasValue(BUSSPEED_1000BASE_T, 10));
static_assert(hasValue(BUSSPEED_10000BASE_T, 11));
static_assert(hasValue(BUSSPEED_S_FASTEST, 12));
static_assert(hasValue(BUSSPEED_ANY, 13));
static_assert(hasValue(BUSSPEED_SPEED_UNKNOWN, -1));

static_assert(sizeof(PCIeBusSpeed) == 4);
static_assert(hasValue(PCIE_BUSSPEED_2_5, 0));
static_assert(hasValue(PCIE_BUSSPEED_5_0, 1));
static_assert(hasValue(PCIE_BUSSPEED_UNKNOWN, -1));

static_assert(sizeof(DriverType) == 4);
static_assert(hasValue(DRIVER_1394_CAM, 0));
static_assert(hasValue(DRIVER_1394_PRO, 1));
static_assert(hasValue(DRIVER_1394_JUJU, 2));
static_assert(hasValue(DRIVER_1394_VIDEO1394, 3));
static_assert(hasValue(DRIVER_1394_RAW1394, 4));
static_assert(hasValue(DRIVER_USB_NONE, 5));
static_assert(hasValue(DRIVER_USB_CAM, 6));
static_assert(hasValue(DRIVER_USB3_PRO, 7));
static_assert(hasValue(DRIVER_GIGE_NONE, 8));
static_assert(hasValue(DRIVER_GIGE_FILTER, 9));
static_assert(hasValue(DRIVER_GIGE_PRO, 10));
static_assert(hasValue(DRIVER_GIGE_LWF, 11));
static_assert(hasValue(DRIVER_UNKNOWN, -1));

static_assert(sizeof(ColorProcessingAlgorithm) == 4);
static_assert(hasValue(DEFAULT, 0));
static_assert(hasValue(NO_COLOR_PROCESSING, 1));
static_assert(hasValue(NEAREST_NEIGHBOR, 2));
static_assert(hasValue(EDGE_SENSING, 3));
static_assert(hasValue(HQ_LINEAR, 4));
static_assert(hasValue(RIGOROUS, 5));
static_assert(hasValue(IPP, 6));
static_assert(hasValue(DIRECTIONAL_FILTER, 7));

static_assert(sizeof(BayerTileFormat) == 4);
static_assert(hasValue(NONE, 0));
static_assert(hasValue(RGGB, 1));
static_assert(hasValue(GRBG, 2));
static_assert(hasValue(GBRG, 3));
static_assert(hasValue(BGGR, 4));

static_assert(sizeof(BusCallbackType) == 4);
static_assert(hasValue(BUS_RESET, 0));
static_assert(hasValue(ARRIVAL, 1));
static_assert(hasValue(REMOVAL, 2));

static_assert(sizeof(FrameRate) == 4);
static_assert(hasValue(FRAMERATE_1_875, 0));
static_assert(hasValue(FRAMERATE_3_75, 1));
static_assert(hasValue(FRAMERATE_7_5, 2));
static_assert(hasValue(FRAMERATE_15, 3));
static_assert(hasValue(FRAMERATE_30, 4));
static_assert(hasValue(FRAMERATE_60, 5));
static_assert(hasValue(FRAMERATE_120, 6));
static_assert(hasValue(FRAMERATE_240, 7));
static_assert(hasValue(FRAMERATE_FORMAT7, 8));
static_assert(hasValue(NUM_FRAMERATES, 9));

static_assert(sizeof(VideoMode) == 4);
static_assert(hasValue(VIDEOMODE_160x120YUV444, 0));
static_assert(hasValue(VIDEOMODE_320x240YUV422, 1));
static_assert(hasValue(VIDEOMODE_640x480YUV411, 2));
static_assert(hasValue(VIDEOMODE_640x480YUV422, 3));
static_assert(hasValue(VIDEOMODE_640x480RGB, 4));
static_assert(hasValue(VIDEOMODE_640x480Y8, 5));
static_assert(hasValue(VIDEOMODE_640x480Y16, 6));
static_assert(hasValue(VIDEOMODE_800x600YUV422, 7));
static_assert(hasValue(VIDEOMODE_800x600RGB, 8));
static_assert(hasValue(VIDEOMODE_800x600Y8, 9));
static_assert(hasValue(VIDEOMODE_800x600Y16, 10));
static_assert(hasValue(VIDEOMODE_1024x768YUV422, 11));
static_assert(hasValue(VIDEOMODE_1024x768RGB, 12));
static_assert(hasValue(VIDEOMODE_1024x768Y8, 13));
static_assert(hasValue(VIDEOMODE_1024x768Y16, 14));
static_assert(hasValue(VIDEOMODE_1280x960YUV422, 15));
static_assert(hasValue(VIDEOMODE_1280x960RGB, 16));
static_assert(hasValue(VIDEOMODE_1280x960Y8, 17));
static_assert(hasValue(VIDEOMODE_1280x960Y16, 18));
static_assert(hasValue(VIDEOMODE_1600x1200YUV422, 19));
static_assert(hasValue(VIDEOMODE_1600x1200RGB, 20));
static_assert(hasValue(VIDEOMODE_1600x1200Y8, 21));
static_assert(hasValue(VIDEOMODE_1600x1200Y16, 22));
static_assert(hasValue(VIDEOMODE_FORMAT7, 23));
static_assert(hasValue(NUM_VIDEOMODES, 24));

static_assert(sizeof(ImageFileFormat) == 4);
static_assert(hasValue(FROM_FILE_EXT, -1));
static_assert(hasValue(PGM, 0));
static_assert(hasValue(PPM, 1));
static_assert(hasValue(BMP, 2));
static_assert(hasValue(JPEG, 3));
static_assert(hasValue(JPEG2000, 4));
static_assert(hasValue(TIFF, 5));
static_assert(hasValue(PNG, 6));
static_assert(hasValue(RAW, 7));

static_assert(sizeof(GigEPropertyType) == 4);
static_assert(hasValue(HEARTBEAT, 0));
static_assert(hasValue(HEARTBEAT_TIMEOUT, 1));
static_assert(hasValue(PACKET_SIZE, 2));
static_assert(hasValue(PACKET_DELAY, 3));

} // namespace FlyCapture2
