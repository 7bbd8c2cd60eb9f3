// The identity of a camera, as the SDK reports it.
#ifndef FCSIM_DEVICE_INFO_H
#define FCSIM_DEVICE_INFO_H

#include "description/bus_description.h"

#include <FlyCapture2.h>

#include <array>

namespace fcsim {

/// What GetCameraInfo answers for the camera at bus index `index`.
FlyCapture2::CameraInfo makeCameraInfo(const CameraDescription& description, unsigned index);
/// The same for its embeddable items, all switched off.
FlyCapture2::EmbeddedImageInfo makeEmbeddedInfo(const CameraDescription& description);
/// The stream channel as it is at power-up.
FlyCapture2::GigEStreamChannel makeStreamChannel(const CameraDescription& description);

/// Names of the embeddable items, in the order of `embeddedItems`.
inline constexpr std::array<const char*, kEmbeddedCount> kEmbeddedNames{
    "timestamp",    "gain",         "shutter",       "brightness",   "exposure",
    "whiteBalance", "frameCounter", "strobePattern", "GPIOPinState", "ROIPosition"};

/// The items of an EmbeddedImageInfo in its own order, for loops.
template <class Info>
auto embeddedItems(Info& info)
{
    return std::array{&info.timestamp,    &info.gain,          &info.shutter,
                      &info.brightness,   &info.exposure,      &info.whiteBalance,
                      &info.frameCounter, &info.strobePattern, &info.GPIOPinState,
                      &info.ROIPosition};
}

} // namespace fcsim

#endif
