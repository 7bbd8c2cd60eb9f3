// Where and how frames are exported: the configuration of the export side.
#ifndef KXHOST_EXPORT_SETTINGS_H
#define KXHOST_EXPORT_SETTINGS_H

#include "picture/picture_decode.h"

#include <cstddef>
#include <string>

namespace kxhost {

enum class PictureFormat {
    kNone, ///< no pictures; metadata only
    kPng,  ///< 8-bit grey or colour, 16-bit grey for formats of more than 8 bits
    kTiff, ///< the same in TIFF, uncompressed
    kRaw,  ///< the bytes as they came
};

/// What becomes of a frame that finds no free place in the queue.
enum class WhenFull {
    kWait, ///< the grab waits for the writers (the camera may then drop frames, which it counts)
    kDrop, ///< the frame is refused and counted
};

/// Digits of the number in a picture's name, in a grab of few frames.
inline constexpr std::size_t kFewestDigits = 6;

struct ExportSettings {
    std::string folder;            ///< created when it is missing; empty = nothing goes to disk
    std::string prefix = "frame_"; ///< without slashes; file names: prefix, number, extension
    std::size_t digits = kFewestDigits; ///< of the numbers in file names, filled up with zeros
    PictureFormat format = PictureFormat::kPng;
    BayerPicture bayer = BayerPicture::kColour;
    int compression = 1;         ///< PNG only: 0 (none, fastest) to 9 (smallest)
    bool metadata = true;        ///< write frames.ndjson beside the pictures
    bool overwrite = false;      ///< files of an earlier grab in the folder may be replaced
    std::size_t queueDepth = 16; ///< frames that may wait for a writer, at least 1
    unsigned writerThreads = 2;  ///< at least 1
    WhenFull whenFull = WhenFull::kWait;
};

} // namespace kxhost

#endif
