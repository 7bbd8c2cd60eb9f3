// The Format7 mode of one camera: region, pixel format, packets.
#ifndef FCSIM_FORMAT7_UNIT_H
#define FCSIM_FORMAT7_UNIT_H

#include "description/bus_description.h"

#include <FlyCapture2.h>

namespace fcsim {

/// Rules and present state of MODE_0, the only mode. Not thread-safe.
class Format7Unit {
public:
    /// REQUIRES: all numbers of `description` are filled in.
    explicit Format7Unit(const Format7Description& description);

    FlyCapture2::Error info(FlyCapture2::Format7Info& info, bool& supported) const;
    /// Answers OK with `valid` false for settings that the camera cannot take.
    FlyCapture2::Error validate(const FlyCapture2::Format7ImageSettings& settings, bool& valid,
                                FlyCapture2::Format7PacketInfo& packets) const;
    FlyCapture2::Error get(FlyCapture2::Format7ImageSettings& settings, unsigned& packetSize,
                           float& percentage) const;
    /// Fails, and changes nothing, for settings or packet sizes that the camera cannot take.
    FlyCapture2::Error set(const FlyCapture2::Format7ImageSettings& settings, unsigned packetSize);
    /// The same with the packet size as a percentage of the largest.
    FlyCapture2::Error set(const FlyCapture2::Format7ImageSettings& settings, float percentage);

    const FlyCapture2::Format7ImageSettings& settings() const { return settings_; }
    /// Bytes of one frame.
    std::size_t frameSize() const;
    /// Part of the bus's bandwidth that the packet size leaves to the camera, above 0 to 1.
    double share() const;

private:
    /// What is wrong with the settings; empty = nothing.
    std::string objection(const FlyCapture2::Format7ImageSettings& settings) const;

    Format7Description description_;
    unsigned formats_ = 0; ///< bit field of the pixel formats
    FlyCapture2::Format7ImageSettings settings_;
    unsigned packetSize_;
};

} // namespace fcsim

#endif
