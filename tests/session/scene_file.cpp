// Scenes for a simulated camera: PNG files whose light a test knows pixel by pixel.
#include "scene_file.h"

#include <png.h>

#include <sstream>
#include <stdexcept>
#include <vector>

namespace kxtest {

namespace {

void write(const std::string& path, unsigned width, unsigned height, unsigned format,
           const std::vector<std::uint16_t>& samples)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = format;
    if (png_image_write_to_file(&image, path.c_str(), 0, samples.data(), 0, nullptr) == 0) {
        throw std::runtime_error("cannot write " + path + ": " + image.message);
    }
}

} // namespace

void writeGreyScene(const std::string& path, unsigned width, unsigned height,
                    const GreyLight& light)
{
    std::vector<std::uint16_t> samples;
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            samples.push_back(light(x, y));
        }
    }
    write(path, width, height, PNG_FORMAT_LINEAR_Y, samples);
}

void writeColourScene(const std::string& path, unsigned width, unsigned height,
                      const ColourLight& light)
{
    std::vector<std::uint16_t> samples;
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            const std::array<std::uint16_t, 3> colour = light(x, y);
            samples.insert(samples.end(), colour.begin(), colour.end());
        }
    }
    write(path, width, height, PNG_FORMAT_LINEAR_RGB, samples);
}

std::string sceneTable(const std::string& path, double brightness)
{
    std::ostringstream table;
    table << "[camera.scene]\nkind = \"pictures\"\npath = \"" << path
          << "\"\nbrightness = " << std::fixed << brightness << "\n";
    return table.str();
}

} // namespace kxtest
