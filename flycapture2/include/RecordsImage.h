// Records that travel with an image, and the types its functions only point to.
#ifndef KX_FLYCAPTURE2_RECORDS_IMAGE_H
#define KX_FLYCAPTURE2_RECORDS_IMAGE_H

namespace FlyCapture2 {

class Image;
class ImageStatistics;
struct BMPOption;
struct JPEGOption;
struct JPG2Option;
struct PGMOption;
struct PNGOption;
struct PPMOption;
struct TIFFOption;

/// Called by the library's own thread with each image, valid during the call, and the user data.
using ImageEventCallback = void (*)(Image*, const void*);

/// When an image was taken, on the host's clock and on the camera's.
struct TimeStamp {
    TimeStamp() = default;

    long long seconds = 0;         ///< Host clock: seconds since 1970.
    unsigned int microSeconds = 0; ///< Host clock: microseconds of the second.
    unsigned int cycleSeconds = 0; ///< Camera clock: seconds, 0 to 127.
    unsigned int cycleCount = 0;   ///< Camera clock: cycles of 125 us, 0 to 7999.
    unsigned int cycleOffset = 0;  ///< Camera clock: ticks of 1/24.576 us, 0 to 3071.
    unsigned int reserved[8] = {};
};

/// What the camera wrote over the first pixels of an image; 0 where its embedding is off.
struct ImageMetadata {
    ImageMetadata() = default;

    unsigned int embeddedTimeStamp = 0;     ///< Cycle time: 7 bits s, 13 bits 125 us, 12 bits.
    unsigned int embeddedGain = 0;          ///< Gain register.
    unsigned int embeddedShutter = 0;       ///< Shutter register.
    unsigned int embeddedBrightness = 0;    ///< Brightness register.
    unsigned int embeddedExposure = 0;      ///< Auto exposure register.
    unsigned int embeddedWhiteBalance = 0;  ///< White balance register.
    unsigned int embeddedFrameCounter = 0;  ///< Number of the image since power-up.
    unsigned int embeddedStrobePattern = 0; ///< Position in the strobe pattern.
    unsigned int embeddedGPIOPinState = 0;  ///< Levels of the pins.
    unsigned int embeddedROIPosition = 0;   ///< Left edge, upper edge: 16 bits each.
    unsigned int reserved[31] = {};
};

} // namespace FlyCapture2

#endif
