// The metadata of one frame as a line of NDJSON.
#ifndef KXHOST_EXPORT_METADATA_H
#define KXHOST_EXPORT_METADATA_H

#include "export/export_frame.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace kxhost {

/// One picture of a frame, as it went to disk.
struct PictureRecord {
    FrameInfo info;
    std::string file;          ///< name within the folder; empty = no file was written
    std::size_t fileBytes = 0; ///< size of that file
};

/// One JSON object and a newline: the frame's number, every scenario parameter that was published
/// and the frame's pictures. Values that were not published are absent. docs/configuration.md lists
/// the keys.
std::string metadataLine(std::uint64_t number, const ScenarioValues& values,
                         std::span<const PictureRecord> pictures);

} // namespace kxhost

#endif
