// Records of the partial-image format (Format 7): region, pixel format, packets.
#ifndef KX_FLYCAPTURE2_RECORDS_FORMAT_H
#define KX_FLYCAPTURE2_RECORDS_FORMAT_H

#include "FlyCapture2Enums.h"

namespace FlyCapture2 {

/// A region of interest with its pixel format.
struct Format7ImageSettings {
    Format7ImageSettings() = default;

    Mode mode = MODE_0;                                 ///< Sensor mode, as binning.
    unsigned int offsetX = 0;                           ///< Left edge in pixels.
    unsigned int offsetY = 0;                           ///< Upper edge in pixels.
    unsigned int width = 0;                             ///< Width in pixels.
    unsigned int height = 0;                            ///< Height in pixels.
    PixelFormat pixelFormat = UNSPECIFIED_PIXEL_FORMAT; ///< Pixel format.
    unsigned int reserved[8] = {};
};

/// What one mode allows. Set `mode` before asking.
struct Format7Info {
    Format7Info() = default;

    Mode mode = MODE_0;                         ///< Sensor mode.
    unsigned int maxWidth = 0;                  ///< Width of the whole image in pixels.
    unsigned int maxHeight = 0;                 ///< Height of the whole image in pixels.
    unsigned int offsetHStepSize = 0;           ///< Step of the left edge in pixels.
    unsigned int offsetVStepSize = 0;           ///< Step of the upper edge in pixels.
    unsigned int imageHStepSize = 0;            ///< Step of the width in pixels.
    unsigned int imageVStepSize = 0;            ///< Step of the height in pixels.
    unsigned int pixelFormatBitField = 0;       ///< Pixel formats of the standard, or-ed.
    unsigned int vendorPixelFormatBitField = 0; ///< Pixel formats of the maker, or-ed.
    unsigned int packetSize = 0;                ///< Bytes of a packet now.
    unsigned int minPacketSize = 0;             ///< Least bytes of a packet.
    unsigned int maxPacketSize = 0;             ///< Most bytes of a packet.
    float percentage = 0.0F;                    ///< `packetSize` in percent of the greatest.
    unsigned int reserved[16] = {};
};

/// Packet sizes that suit a validated region.
struct Format7PacketInfo {
    Format7PacketInfo() = default;

    unsigned int recommendedBytesPerPacket = 0; ///< What the camera advises.
    unsigned int maxBytesPerPacket = 0;         ///< Most it can send.
    unsigned int unitBytesPerPacket = 0;        ///< Sizes are multiples of this.
    unsigned int reserved[8] = {};
};

} // namespace FlyCapture2

#endif
