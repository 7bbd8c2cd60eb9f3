// The bus that is there when nobody describes another.
#ifndef FCSIM_DEFAULT_BUS_H
#define FCSIM_DEFAULT_BUS_H

#include <string_view>

namespace fcsim {

/// One colour USB 3 camera, one monochrome GigE camera, one USB 2 camera.
inline constexpr std::string_view kDefaultBus = R"TOML(
[[camera]]
model = "Flea3 FL3-U3-13S2C"
serial = 14120301
interface = "usb3"
firmware = "2.7.3.0"
[camera.sensor]
info = "1/3\" Color CMOS"
width = 1280
height = 1024
colour = true
bayer_tile = "GRBG"
frame_rate = 120.0

[[camera]]
model = "Blackfly BFLY-PGE-13E4M"
serial = 15340477
interface = "gige"
firmware = "1.46.3.0"
[camera.sensor]
info = "1/1.8\" Mono CMOS"
width = 1280
height = 1024
frame_rate = 60.0

[[camera]]
model = "Chameleon CMLN-13S2M"
serial = 12340128
interface = "usb2"
firmware = "1.12.3.0"
[camera.sensor]
info = "1/3\" Mono CCD"
width = 1296
height = 964
frame_rate = 18.0
)TOML";

} // namespace fcsim

#endif
