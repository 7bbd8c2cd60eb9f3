// Reads PNG and TIFF pictures back, sample by sample.
#include "read_picture.h"

#include <png.h>
#include <tiffio.h>

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>

namespace kxtest {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Reads header and lines; false when the library gives up. Leaves by longjmp, so nothing in here
/// may need a destructor: the memory is the caller's.
bool readInto(png_structp png, png_infop info, std::FILE* file, ReadPicture& picture,
              std::vector<std::uint8_t>& bytes)
{
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_init_io(png, file);
    png_read_info(png, info);
    picture.width = png_get_image_width(png, info);
    picture.height = png_get_image_height(png, info);
    picture.channels = png_get_channels(png, info);
    picture.bitDepth = png_get_bit_depth(png, info);
    png_color_8p significant = nullptr;
    if (png_get_sBIT(png, info, &significant) != 0) {
        picture.significantBits = significant->gray;
    }
    const std::size_t line = png_get_rowbytes(png, info);
    bytes.resize(line * picture.height);
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        png_read_row(png, bytes.data() + y * line, nullptr);
    }
    png_read_end(png, nullptr);
    return true;
}

} // namespace

ReadPicture readPng(const std::string& path)
{
    ReadPicture picture;
    const File file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) {
        return picture;
    }
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    std::vector<std::uint8_t> bytes;
    const bool whole = readInto(png, info, file.get(), picture, bytes);
    png_destroy_read_struct(&png, &info, nullptr);
    if (!whole) {
        return ReadPicture{};
    }
    for (std::size_t i = 0; i < bytes.size(); i += picture.bitDepth / 8) {
        const unsigned high = bytes[i];
        const unsigned sample = picture.bitDepth == 16 ? (high << 8U) | bytes[i + 1] : high;
        picture.samples.push_back(static_cast<std::uint16_t>(sample));
    }
    return picture;
}

ReadPicture readTiff(const std::string& path)
{
    ReadPicture picture;
    TIFF* tiff = TIFFOpen(path.c_str(), "r");
    if (tiff == nullptr) {
        return picture;
    }
    std::uint16_t channels = 0;
    std::uint16_t bitDepth = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &picture.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &picture.height);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &channels);
    TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &bitDepth);
    picture.channels = channels;
    picture.bitDepth = bitDepth;
    std::vector<std::uint8_t> line(static_cast<std::size_t>(TIFFScanlineSize(tiff)));
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        if (TIFFReadScanline(tiff, line.data(), y) != 1) {
            picture = ReadPicture{};
            break;
        }
        for (std::size_t i = 0; i < line.size(); i += bitDepth / 8U) {
            std::uint16_t sample = line[i];
            if (bitDepth == 16) {
                std::memcpy(&sample, line.data() + i, 2); // the library gives the host's byte order
            }
            picture.samples.push_back(sample);
        }
    }
    TIFFClose(tiff);
    return picture;
}

} // namespace kxtest
