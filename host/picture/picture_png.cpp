// Pictures as PNG.
#include "picture/picture_encode.h"

#include <png.h>

#include <bit>
#include <csetjmp>
#include <exception>

namespace kxhost {

namespace {

void keepError(png_structp png, png_const_charp text)
{
    *static_cast<std::string*>(png_get_error_ptr(png)) = text;
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

void appendBytes(png_structp png, png_bytep data, std::size_t size)
{
    auto& file = *static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
    bool done = true;
    try {
        file.insert(file.end(), data, data + size);
    } catch (const std::exception&) {
        done = false;
    }
    if (!done) {
        png_error(png, "no memory for the encoded picture");
    }
}

void flushNothing(png_structp) {}

void writeHeader(png_structp png, png_infop info, const Picture& picture)
{
    png_set_IHDR(png, info, picture.width, picture.height, static_cast<int>(picture.bitDepth),
                 picture.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (picture.significantBits < picture.bitDepth) {
        png_color_8 bits{};
        bits.gray = bits.red = bits.green = bits.blue =
            static_cast<png_byte>(picture.significantBits);
        png_set_sBIT(png, info, &bits);
    }
    png_write_info(png, info);
    if (picture.bitDepth == 16 && std::endian::native == std::endian::little) {
        png_set_swap(png);
    }
}

/// Runs the encoder. The library leaves through longjmp on an error, so that nothing in here may
/// need a destructor.
void writePicture(png_structp png, png_infop info, const Picture& picture, int compression)
{
    if (setjmp(png_jmpbuf(png)) != 0) {
        return;
    }
    png_set_compression_level(png, compression);
    // Differences to the left pay off for noisy pictures and cost little.
    png_set_filter(png, PNG_FILTER_TYPE_BASE, compression == 0 ? PNG_FILTER_NONE : PNG_FILTER_SUB);
    writeHeader(png, info, picture);
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        png_write_row(png, picture.bytes.data() + y * picture.lineBytes());
    }
    png_write_end(png, nullptr);
}

} // namespace

std::string encodePng(const Picture& picture, int compression, std::vector<std::uint8_t>& file)
{
    std::string error;
    file.clear();
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, keepError, ignoreWarning);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    if (info == nullptr) {
        png_destroy_write_struct(&png, nullptr);
        return "no memory for the encoder";
    }
    png_set_write_fn(png, &file, appendBytes, flushNothing);
    writePicture(png, info, picture, compression);
    png_destroy_write_struct(&png, &info);
    return error;
}

} // namespace kxhost
