// Reads bus descriptions in TOML: files, and the list of cameras.
#include "description/bus_parser.h"

#include "description/camera_parser.h"
#include "description/toml_reader.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace fcsim {

namespace {

BusDescription readBus(const toml::table& root, const std::string& name,
                       const std::filesystem::path& folder)
{
    TableReader reader(root, "", name);
    BusDescription bus;
    for (TableReader& camera : reader.tables("camera")) {
        bus.cameras.push_back(readCamera(camera, folder));
        const unsigned serial = bus.cameras.back().serial;
        for (std::size_t i = 0; i + 1 < bus.cameras.size(); ++i) {
            if (bus.cameras[i].serial == serial) {
                camera.fail("serial", std::to_string(serial) + " is already taken");
            }
        }
    }
    reader.finish();
    return bus;
}

ParsedBus parse(std::string_view toml, const std::string& name, const std::filesystem::path& folder)
{
    ParsedBus result;
    try {
        result.bus = readBus(toml::parse(toml, name), name, folder);
    } catch (const toml::parse_error& error) {
        const std::string place = name + ":" + std::to_string(error.source().begin.line);
        result.problem = DescriptionError(place + ": " + std::string(error.description())).what();
    } catch (const DescriptionError& error) {
        result.problem = error.what();
    }
    return result;
}

} // namespace

ParsedBus parseBus(std::string_view toml, std::string_view name)
{
    return parse(toml, std::string(name), {});
}

ParsedBus parseBusFile(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    if (stream) {
        content << stream.rdbuf();
    }
    if (!stream) {
        return {{}, file + ": cannot be read"};
    }
    return parse(content.str(), file, std::filesystem::path(file).parent_path());
}

} // namespace fcsim
