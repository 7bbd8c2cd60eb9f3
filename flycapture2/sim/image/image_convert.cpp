// FlyCapture2::Image: from one image to another, converted or as it is.
#include "image/image_gate.h"
#include "image/image_record.h"
#include "scene/convert.h"
#include "scene/pixel_format.h"

#include <FlyCapture2.h>

#include <atomic>
#include <cstring>
#include <string>

namespace FlyCapture2 {

namespace {

using fcsim::gated;
using fcsim::ImageRecord;
using fcsim::noArguments;

std::atomic<ColorProcessingAlgorithm> defaultColourProcessing{DEFAULT};
std::atomic<PixelFormat> defaultOutputFormat{PIXEL_FORMAT_BGR};

Error tooSmall(std::size_t needed, std::size_t given)
{
    return fcsim::makeError(PGRERROR_BUFFER_TOO_SMALL, "The image's buffer holds " +
                                                           std::to_string(given) + " bytes, " +
                                                           std::to_string(needed) + " are needed");
}

/// What an image knows of a frame besides its pixels.
void copyFacts(const ImageRecord& from, ImageRecord& to)
{
    to.colourProcessing = from.colourProcessing;
    to.timeStamp = from.timeStamp;
    to.metadata = from.metadata;
    to.blockId = from.blockId;
}

Error convertRecord(const ImageRecord& source, PixelFormat format, ImageRecord& target)
{
    const std::string obstacle = fcsim::conversionObstacle(source.shape, format);
    if (!obstacle.empty()) {
        return fcsim::makeError(PGRERROR_IMAGE_CONVERSION_FAILED, obstacle);
    }
    if (!fcsim::holdsPicture(source)) {
        return fcsim::makeError(PGRERROR_IMAGE_CONSISTENCY_ERROR,
                                "The image's data is smaller than its dimensions");
    }
    const std::size_t size = fcsim::packedSize(format, source.shape.cols, source.shape.rows);
    if (!fcsim::reserveData(target, size)) {
        return tooSmall(size, target.pixels.capacity());
    }
    const ColorProcessingAlgorithm algorithm = source.colourProcessing == DEFAULT
                                                   ? Image::GetDefaultColorProcessing()
                                                   : source.colourProcessing;
    fcsim::convertPicture(source.shape, source.pixels.data(), format, algorithm,
                          target.pixels.data());
    copyFacts(source, target);
    target.shape = {source.shape.rows, source.shape.cols,
                    fcsim::packedStride(format, source.shape.cols), format,
                    fcsim::keepsMosaic(source.shape, format) ? source.shape.tile : NONE};
    target.dataSize = static_cast<unsigned>(size);
    target.receivedDataSize = target.dataSize;
    return fcsim::success();
}

} // namespace

Error Image::DeepCopy(const Image* pImage)
{
    return gated("DeepCopy", noArguments, [&] {
        if (pImage == nullptr || pImage == this) {
            return fcsim::makeError(PGRERROR_INVALID_PARAMETER,
                                    "DeepCopy needs another image to copy");
        }
        const ImageRecord& source = fcsim::recordOf(*pImage);
        ImageRecord& target = fcsim::recordOf(*this);
        if (source.pixels.data() == nullptr) {
            target = source;
            return fcsim::success();
        }
        if (!fcsim::reserveData(target, source.dataSize)) {
            return tooSmall(source.dataSize, target.pixels.capacity());
        }
        std::memcpy(target.pixels.data(), source.pixels.data(), source.dataSize);
        copyFacts(source, target);
        target.shape = source.shape;
        target.dataSize = source.dataSize;
        target.receivedDataSize = source.receivedDataSize;
        return fcsim::success();
    });
}

Error Image::Convert(PixelFormat format, Image* pDestImage) const
{
    return gated(
        "Convert", [format] { return std::string(fcsim::pixelFormatName(format)); },
        [&] {
            if (pDestImage == nullptr || pDestImage == this) {
                return fcsim::makeError(PGRERROR_INVALID_PARAMETER,
                                        "Convert needs another image as its destination");
            }
            return convertRecord(fcsim::recordOf(*this), format, fcsim::recordOf(*pDestImage));
        });
}

Error Image::Convert(Image* pDestImage) const
{
    return Convert(GetDefaultOutputFormat(), pDestImage);
}

Error Image::SetDefaultColorProcessing(ColorProcessingAlgorithm defaultMethod)
{
    defaultColourProcessing = defaultMethod;
    return fcsim::success();
}

ColorProcessingAlgorithm Image::GetDefaultColorProcessing()
{
    return defaultColourProcessing;
}

Error Image::SetDefaultOutputFormat(PixelFormat format)
{
    if (fcsim::findPixelLayout(format) == nullptr) {
        return fcsim::makeError(PGRERROR_INVALID_PARAMETER,
                                "The default output format is no pixel format");
    }
    defaultOutputFormat = format;
    return fcsim::success();
}

PixelFormat Image::GetDefaultOutputFormat()
{
    return defaultOutputFormat;
}

unsigned int Image::DetermineBitsPerPixel(PixelFormat format)
{
    const fcsim::PixelLayout* layout = fcsim::findPixelLayout(format);
    return layout == nullptr ? 0 : layout->bitsPerPixel;
}

} // namespace FlyCapture2
