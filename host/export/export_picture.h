// Writes one picture of a frame into the export folder: its name, its encoding, its file.
#ifndef KXHOST_EXPORT_PICTURE_H
#define KXHOST_EXPORT_PICTURE_H

#include "export/export_frame.h"
#include "export/export_metadata.h"
#include "export/export_settings.h"
#include "picture/picture.h"
#include "picture/picture_codec.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

/// "frame_000001.png", "frame_000001_converted.tiff", ...
std::string pictureName(const ExportSettings& settings, std::uint64_t number, Instance instance);

/// Whether a picture of such a grab has this name, in whatever format.
bool isPictureName(const ExportSettings& settings, const std::string& name);

/// A file in the folder that a grab with these settings could replace (its name); empty = none.
std::string findEarlierFile(const ExportSettings& settings);

/// Name of the metadata file within the folder.
inline constexpr const char* kMetadataName = "frames.ndjson";

/// Writes pictures; keeps its working memory from one to the next. One object per thread.
class PictureWriter {
public:
    explicit PictureWriter(const ExportSettings& settings) : settings_(settings) {}

    /// Writes the pixels as `record.info` describes them and completes `record`. With the format
    /// "none" or without a folder nothing is written. Returns an empty text or the reason.
    /// REQUIRES: the codec is known.
    std::string write(std::uint64_t number, const std::vector<std::uint8_t>& pixels,
                      PictureRecord& record);

private:
    std::string encode(const Codec& codec, const FrameInfo& info, const std::uint8_t* pixels);

    const ExportSettings& settings_;
    Picture picture_;
    std::vector<std::uint8_t> file_;
};

} // namespace kxhost

#endif
