// Writes one picture of a frame into the export folder: its name, its encoding, its file.
#include "export/export_picture.h"

#include "base/output_file.h"
#include "picture/picture_decode.h"
#include "picture/picture_encode.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <span>
#include <string_view>
#include <system_error>

namespace kxhost {

namespace {

constexpr std::string_view kConverted = "_converted";

const char* extensionOf(PictureFormat format)
{
    switch (format) {
    case PictureFormat::kPng:
        return ".png";
    case PictureFormat::kTiff:
        return ".tiff";
    case PictureFormat::kRaw:
        return ".raw";
    case PictureFormat::kNone:
        break;
    }
    return "";
}

std::string pathOf(const ExportSettings& settings, const std::string& name)
{
    return (std::filesystem::path(settings.folder) / name).string();
}

} // namespace

std::string pictureName(const ExportSettings& settings, std::uint64_t number, Instance instance)
{
    std::string digits = std::to_string(number);
    if (digits.size() < settings.digits) {
        digits.insert(0, settings.digits - digits.size(), '0');
    }
    return settings.prefix + digits +
           (instance == Instance::kConverted ? std::string(kConverted) : "") +
           extensionOf(settings.format);
}

bool isPictureName(const ExportSettings& settings, const std::string& name)
{
    if (!name.starts_with(settings.prefix)) {
        return false;
    }
    const std::string_view rest = std::string_view(name).substr(settings.prefix.size());
    const std::size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
    std::string_view end = rest.substr(digits);
    if (end.starts_with(kConverted)) {
        end.remove_prefix(kConverted.size());
    }
    constexpr std::array kFormats = {PictureFormat::kPng, PictureFormat::kTiff,
                                     PictureFormat::kRaw};
    return digits >= kFewestDigits && std::ranges::any_of(kFormats, [end](PictureFormat each) {
               return end == extensionOf(each);
           });
}

std::string findEarlierFile(const ExportSettings& settings)
{
    std::error_code code;
    for (const auto& entry : std::filesystem::directory_iterator(settings.folder, code)) {
        std::string name = entry.path().filename().string();
        const bool metadata = settings.metadata && name == kMetadataName;
        if (metadata ||
            (settings.format != PictureFormat::kNone && isPictureName(settings, name))) {
            return name;
        }
    }
    return "";
}

std::string PictureWriter::encode(const Codec& codec, const FrameInfo& info,
                                  const std::uint8_t* pixels)
{
    decode(codec, info.width, info.height, pixels, settings_.bayer, picture_);
    return settings_.format == PictureFormat::kPng
               ? encodePng(picture_, settings_.compression, file_)
               : encodeTiff(picture_, file_);
}

std::string PictureWriter::write(std::uint64_t number, const std::vector<std::uint8_t>& pixels,
                                 PictureRecord& record)
{
    record.file.clear();
    record.fileBytes = 0;
    if (settings_.folder.empty() || settings_.format == PictureFormat::kNone) {
        return "";
    }
    const FrameInfo& info = record.info;
    const std::string name = pictureName(settings_, number, info.instance);
    const Codec& codec = *findCodec(info.codec);
    std::span<const std::uint8_t> content(pixels.data(),
                                          pictureBytes(codec, info.width, info.height));
    if (settings_.format != PictureFormat::kRaw) {
        if (std::string error = encode(codec, info, pixels.data()); !error.empty()) {
            return "Cannot encode " + name + ": " + error + ".";
        }
        content = file_;
    }
    if (std::string error = writeWholeFile(pathOf(settings_, name), content); !error.empty()) {
        return error;
    }
    record.file = name;
    record.fileBytes = content.size();
    return "";
}

} // namespace kxhost
