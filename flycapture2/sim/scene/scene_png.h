// PNG files as pictures of 16-bit levels.
#ifndef FCSIM_SCENE_PNG_H
#define FCSIM_SCENE_PNG_H

#include "scene/scene_canvas.h"

#include <filesystem>

namespace fcsim {

/// Looks at the head and the end of a PNG file. Throws `SceneError` that names the file when it
/// cannot be opened, is no PNG, or is cut off.
void checkPng(const std::filesystem::path& path);

/// Reads a PNG file: grey, colour or palette, 1 to 16 bits, of which 8-bit values v become v << 8;
/// transparency is ignored. Throws `SceneError`.
Canvas readPng(const std::filesystem::path& path);

} // namespace fcsim

#endif
