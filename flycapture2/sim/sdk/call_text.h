// How the arguments of calls are written in the record of calls.
#ifndef FCSIM_CALL_TEXT_H
#define FCSIM_CALL_TEXT_H

#include <FlyCapture2.h>

#include <cstdint>
#include <string>

namespace fcsim {

/// Description of a call without arguments worth noting.
inline std::string noArguments()
{
    return {};
}
/// Ending of a call that was meant for all cameras of the bus.
inline std::string broadcastText(bool broadcast)
{
    return broadcast ? " broadcast" : "";
}
std::string hexText(std::uint32_t value);                                   ///< "0x1EA8"
std::string propertyText(const FlyCapture2::Property& property);            ///< "GAIN abs=3.5 on"
std::string format7Text(const FlyCapture2::Format7ImageSettings& settings); ///< "640x480+0+0 MONO8"
std::string
configText(const FlyCapture2::FC2Config& config); ///< "buffers=8 timeout=2000 DROP_FRAMES"
std::string embeddedText(const FlyCapture2::EmbeddedImageInfo& info); ///< "timestamp gain"

} // namespace fcsim

#endif
