// Scenes for a simulated camera: PNG files whose light a test knows pixel by pixel.
#ifndef KX_TEST_SCENE_FILE_H
#define KX_TEST_SCENE_FILE_H

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace kxtest {

/// Light of one pixel, 0 to 65535: grey, or red, green and blue.
using GreyLight = std::function<std::uint16_t(unsigned x, unsigned y)>;
using ColourLight = std::function<std::array<std::uint16_t, 3>(unsigned x, unsigned y)>;

/// Writes a PNG of 16 bits. Throws when it cannot be written.
void writeGreyScene(const std::string& path, unsigned width, unsigned height,
                    const GreyLight& light);
void writeColourScene(const std::string& path, unsigned width, unsigned height,
                      const ColourLight& light);

/// The tables of a camera in a bus description that show the scene of this file.
std::string sceneTable(const std::string& path, double brightness = 1.0);

} // namespace kxtest

#endif
