// Records that only cameras on a network have.
#ifndef KX_FLYCAPTURE2_RECORDS_GIG_E_H
#define KX_FLYCAPTURE2_RECORDS_GIG_E_H

#include "FlyCapture2Enums.h"
#include "RecordsBus.h"

namespace FlyCapture2 {

/// One setting of the network protocol. Set `propType` before asking.
struct GigEProperty {
    GigEProperty() = default;

    GigEPropertyType propType = HEARTBEAT; ///< Which setting.
    bool isReadable = false;               ///< Whether it can be read.
    bool isWritable = false;               ///< Whether it can be set.
    unsigned int min = 0;                  ///< Least value.
    unsigned int max = 0;                  ///< Greatest value.
    unsigned int value = 0;                ///< Value: ms, bytes or ticks, as the setting has it.
};

/// Where and how a camera sends its images.
struct GigEStreamChannel {
    GigEStreamChannel() = default;

    unsigned int networkInterfaceIndex = 0; ///< Interface of the camera.
    unsigned int hostPort = 0;              ///< Port of the host that receives.
    bool doNotFragment = false;             ///< Packets must not be split on the way.
    unsigned int packetSize = 0;            ///< Bytes of a packet, headers included.
    unsigned int interPacketDelay = 0;      ///< Pause between packets in ticks of the camera.
    IPAddress destinationIpAddress;         ///< Host that receives.
    unsigned int sourcePort = 0;            ///< Port of the camera that sends.
};

/// How the library repairs what a network loses.
struct GigEConfig {
    GigEConfig() = default;

    bool enablePacketResend = false;         ///< Ask again for packets that did not come.
    unsigned int registerTimeoutRetries = 3; ///< Attempts after a register access timed out.
    unsigned int registerTimeout = 20000;    ///< Limit of one register access in us.
};

/// What the region of interest of a network camera allows.
struct GigEImageSettingsInfo {
    GigEImageSettingsInfo() = default;

    unsigned int maxWidth = 0;                  ///< Width of the whole image in pixels.
    unsigned int maxHeight = 0;                 ///< Height of the whole image in pixels.
    unsigned int offsetHStepSize = 0;           ///< Step of the left edge in pixels.
    unsigned int offsetVStepSize = 0;           ///< Step of the upper edge in pixels.
    unsigned int imageHStepSize = 0;            ///< Step of the width in pixels.
    unsigned int imageVStepSize = 0;            ///< Step of the height in pixels.
    unsigned int pixelFormatBitField = 0;       ///< Pixel formats of the standard, or-ed.
    unsigned int vendorPixelFormatBitField = 0; ///< Pixel formats of the maker, or-ed.
    unsigned int reserved[16] = {};
};

/// Region of interest and pixel format of a network camera.
struct GigEImageSettings {
    GigEImageSettings() = default;

    unsigned int offsetX = 0;                           ///< Left edge in pixels.
    unsigned int offsetY = 0;                           ///< Upper edge in pixels.
    unsigned int width = 0;                             ///< Width in pixels.
    unsigned int height = 0;                            ///< Height in pixels.
    PixelFormat pixelFormat = UNSPECIFIED_PIXEL_FORMAT; ///< Pixel format.
    unsigned int reserved[8] = {};
};

} // namespace FlyCapture2

#endif
