// Reads the description of one camera.
#ifndef FCSIM_CAMERA_PARSER_H
#define FCSIM_CAMERA_PARSER_H

#include "description/bus_description.h"
#include "description/toml_reader.h"

#include <filesystem>

namespace fcsim {

/// Reads a `[[camera]]` table; relative paths in it start at `folder`. Throws `DescriptionError`.
CameraDescription readCamera(TableReader& table, const std::filesystem::path& folder);
/// Reads `[camera.properties]` over what is set already. Throws `DescriptionError`.
void readProperties(TableReader& table, CameraDescription& camera);

} // namespace fcsim

#endif
