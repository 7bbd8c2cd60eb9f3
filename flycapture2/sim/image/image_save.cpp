// Images as picture files: FlyCapture2::Image::Save.
//
// PNG and PGM take the levels of grey formats, RAW formats without colour processing; more than 8
// bits are written as 16. Colour goes to PNG and PPM. RAW files are the bytes as they are.
#include "base/sdk_error.h"
#include "image/image_record.h"
#include "scene/pixel_codec.h"
#include "scene/pixel_format.h"
#include "sdk/call_gate.h"

#include <FlyCapture2.h>

#include <png.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace FlyCapture2 {

namespace {

using fcsim::ImageRecord;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Samples as PNG and PNM files hold them: grey or RGB, 16 bits with the high byte first.
struct Samples {
    unsigned width = 0;
    unsigned height = 0;
    unsigned channels = 1;
    unsigned bits = 8;
    std::vector<unsigned char> bytes;
    std::size_t rowSize() const { return std::size_t{width} * channels * bits / 8; }
};

Samples samplesOf(const ImageRecord& image)
{
    const bool grey = fcsim::findPixelCodec(image.shape.format)->space == fcsim::Space::grey;
    const bool deep = grey && fcsim::findPixelLayout(image.shape.format)->bitsPerPixel > 8;
    const PixelFormat format = !grey  ? PIXEL_FORMAT_RGB8
                               : deep ? PIXEL_FORMAT_MONO16
                                      : PIXEL_FORMAT_MONO8;
    Samples samples{image.shape.cols, image.shape.rows, grey ? 1U : 3U, deep ? 16U : 8U, {}};
    samples.bytes.resize(samples.rowSize() * samples.height);
    fcsim::convertPicture(image.shape, image.pixels.data(), format, NO_COLOR_PROCESSING,
                          samples.bytes.data());
    if (deep) {
        for (std::size_t at = 0; at < samples.bytes.size(); at += 2) {
            std::swap(samples.bytes[at], samples.bytes[at + 1]);
        }
    }
    return samples;
}

bool writePng(std::FILE* file, Samples& samples)
{
    std::vector<png_byte*> rows(samples.height);
    for (std::size_t y = 0; y < rows.size(); ++y) {
        rows[y] = samples.bytes.data() + y * samples.rowSize();
    }
    png_struct* png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_info* info = png == nullptr ? nullptr : png_create_info_struct(png);
    if (info == nullptr || setjmp(png_jmpbuf(png)) != 0) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, samples.width, samples.height, static_cast<int>(samples.bits),
                 samples.channels == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_rows(png, info, rows.data());
    png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

bool writeBytes(std::FILE* file, const unsigned char* bytes, std::size_t size)
{
    return std::fwrite(bytes, 1, size, file) == size;
}

bool writePnm(std::FILE* file, const Samples& samples)
{
    return std::fprintf(file, "P%c\n%u %u\n%u\n", samples.channels == 1 ? '5' : '6', samples.width,
                        samples.height, (1U << samples.bits) - 1) > 0 &&
           writeBytes(file, samples.bytes.data(), samples.bytes.size());
}

ImageFileFormat formatOfName(const std::string& name)
{
    struct Ending {
        const char* text;
        ImageFileFormat format;
    };
    constexpr std::array kEndings = {Ending{".png", PNG}, Ending{".pgm", PGM}, Ending{".ppm", PPM},
                                     Ending{".raw", RAW}};
    const auto* found =
        std::find_if(kEndings.begin(), kEndings.end(), [&name](const Ending& ending) {
            const std::string text = ending.text;
            return name.size() >= text.size() &&
                   name.compare(name.size() - text.size(), text.size(), text) == 0;
        });
    return found == kEndings.end() ? FROM_FILE_EXT : found->format;
}

bool writeFile(std::FILE* file, const ImageRecord& image, ImageFileFormat format)
{
    if (format == RAW) {
        return writeBytes(file, image.pixels.data(), image.dataSize);
    }
    Samples samples = samplesOf(image);
    return format == PNG ? writePng(file, samples) : writePnm(file, samples);
}

/// Why the image cannot be written in this file format; success when it can.
Error checkSavable(const ImageRecord& image, ImageFileFormat format)
{
    if (format != PNG && format != PGM && format != PPM && format != RAW) {
        return fcsim::notImplemented();
    }
    if (!fcsim::holdsPicture(image)) {
        return fcsim::makeError(PGRERROR_IMAGE_CONSISTENCY_ERROR,
                                "The image's data is smaller than its dimensions");
    }
    if (format == RAW) {
        return fcsim::success();
    }
    const fcsim::PixelCodec* codec = fcsim::findPixelCodec(image.shape.format);
    const std::string obstacle = fcsim::conversionObstacle(
        image.shape, codec != nullptr && codec->space == fcsim::Space::grey ? PIXEL_FORMAT_MONO8
                                                                            : PIXEL_FORMAT_RGB8);
    if (!obstacle.empty()) {
        return fcsim::makeError(PGRERROR_IMAGE_CONVERSION_FAILED, obstacle);
    }
    if ((codec->space == fcsim::Space::grey) == (format == PPM) && format != PNG) {
        return fcsim::makeError(PGRERROR_INVALID_PARAMETER,
                                std::string(fcsim::pixelFormatName(image.shape.format)) +
                                    " does not fit this file format");
    }
    return fcsim::success();
}

Error saveImage(const ImageRecord& image, const char* name, ImageFileFormat format)
{
    if (name == nullptr) {
        return fcsim::makeError(PGRERROR_INVALID_PARAMETER, "Save needs a file name");
    }
    const ImageFileFormat asked = format == FROM_FILE_EXT ? formatOfName(name) : format;
    const Error check = checkSavable(image, asked);
    if (check != PGRERROR_OK) {
        return check;
    }
    File file(std::fopen(name, "wb"));
    if (file == nullptr || !writeFile(file.get(), image, asked) || std::fflush(file.get()) != 0) {
        return fcsim::makeError(PGRERROR_IMAGE_LIBRARY_FAILURE,
                                std::string("Cannot write ") + name);
    }
    return fcsim::success();
}

template <class Work>
Error gatedSave(const char* name, const Work& work)
{
    return fcsim::throughGate(
        fcsim::GateCall{"Image", "Save"},
        [name] { return std::string(name == nullptr ? "" : name); }, work);
}

Error refuseOptions(const char* name)
{
    return gatedSave(name, fcsim::notImplemented);
}

} // namespace

Error Image::Save(const char* pFilename, ImageFileFormat format)
{
    return gatedSave(pFilename,
                     [&] { return saveImage(fcsim::recordOf(*this), pFilename, format); });
}

Error Image::Save(const char* pFilename, PNGOption* /*pOption*/)
{
    return refuseOptions(pFilename);
}

Error Image::Save(const char* pFilename, PPMOption* /*pOption*/)
{
    return refuseOptions(pFilename);
}

Error Image::Save(const char* pFilename, PGMOption* /*pOption*/)
{
    return refuseOptions(pFilename);
}

Error Image::Save(const char* pFilename, TIFFOption* /*pOption*/)
{
    return refuseOptions(pFilename);
}

Error Image::Save(const char* pFilename, JPEGOption* /*pOption*/)
{
    return refuseOptions(pFilename);
}

Error Image::Save(const char* pFilename, JPG2Option* /*pOption*/)
{
    return refuseOptions(pFilename);
}

Error Image::Save(const char* pFilename, BMPOption* /*pOption*/)
{
    return refuseOptions(pFilename);
}

} // namespace FlyCapture2
