// FlyCapture2::Image: a picture with what is known of it. Copies share the pixels.
#include "call_gate.h"
#include "convert.h"
#include "image_pool.h"
#include "image_record.h"
#include "pixel_format.h"
#include "sdk_error.h"

#include <FlyCapture2.h>

#include <atomic>
#include <cstring>
#include <string>

namespace FlyCapture2 {

using fcsim::ImageRecord;
using fcsim::PixelShare;

struct Image::ImageData : ImageRecord {
    static ImageRecord& of(Image& image) { return *image.m_pImageData; }
    friend ImageRecord& recordOf(Image& image) { return of(image); }
};

namespace {

std::atomic<ColorProcessingAlgorithm> defaultColourProcessing{DEFAULT};
std::atomic<PixelFormat> defaultOutputFormat{PIXEL_FORMAT_BGR};

std::string noArguments()
{
    return {};
}

/// Sends an operation of an image through the gate.
template <class Describe, class Work>
Error gated(const char* operation, const Describe& describe, const Work& work)
{
    return fcsim::throughGate(fcsim::GateCall{"Image", operation}, describe, work);
}

/// Leaves a trace of a call that cannot fail.
void note(const char* operation)
{
    if (fcsim::gateWatches.load(std::memory_order_relaxed)) {
        gated(operation, noArguments, fcsim::success);
    }
}

unsigned packedStride(PixelFormat format, unsigned cols)
{
    return static_cast<unsigned>(fcsim::packedRowSize(format, cols));
}

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
    target.shape = {source.shape.rows, source.shape.cols, packedStride(format, source.shape.cols),
                    format, fcsim::keepsMosaic(source.shape, format) ? source.shape.tile : NONE};
    target.dataSize = static_cast<unsigned>(size);
    target.receivedDataSize = target.dataSize;
    return fcsim::success();
}

} // namespace

Image::Image() : m_pImageData(fcsim::poolOf<ImageData>().take()) {}

Image::Image(unsigned int rows, unsigned int cols, unsigned int stride, unsigned char* pData,
             unsigned int dataSize, PixelFormat format, BayerTileFormat bayerFormat)
    : Image(rows, cols, stride, pData, dataSize, dataSize, format, bayerFormat)
{}

Image::Image(unsigned int rows, unsigned int cols, unsigned int stride, unsigned char* pData,
             unsigned int dataSize, unsigned int receivedDataSize, PixelFormat format,
             BayerTileFormat bayerFormat)
    : Image(pData, dataSize)
{
    m_pImageData->shape = {rows, cols, stride, format, bayerFormat};
    m_pImageData->receivedDataSize = receivedDataSize;
}

Image::Image(unsigned char* pData, unsigned int dataSize) : Image()
{
    m_pImageData->pixels = PixelShare::borrowed(pData, dataSize);
    m_pImageData->dataSize = dataSize;
    m_pImageData->receivedDataSize = dataSize;
}

Image::Image(unsigned int rows, unsigned int cols, PixelFormat format, BayerTileFormat bayerFormat)
    : Image()
{
    const std::size_t size = fcsim::packedSize(format, cols, rows);
    m_pImageData->pixels = PixelShare::allocated(size);
    m_pImageData->shape = {rows, cols, packedStride(format, cols), format, bayerFormat};
    m_pImageData->dataSize = static_cast<unsigned>(size);
    m_pImageData->receivedDataSize = m_pImageData->dataSize;
}

Image::Image(const Image& other) : Image()
{
    static_cast<ImageRecord&>(*m_pImageData) = *other.m_pImageData;
}

Image::~Image()
{
    static_cast<ImageRecord&>(*m_pImageData) = ImageRecord();
    fcsim::poolOf<ImageData>().give(m_pImageData);
}

Image& Image::operator=(const Image& other)
{
    if (this != &other) {
        static_cast<ImageRecord&>(*m_pImageData) = *other.m_pImageData;
    }
    return *this;
}

unsigned char* Image::operator[](unsigned int index)
{
    return index < m_pImageData->dataSize ? m_pImageData->pixels.data() + index : nullptr;
}

unsigned char* Image::operator()(unsigned int row, unsigned int col)
{
    const fcsim::PictureShape& shape = m_pImageData->shape;
    if (row >= shape.rows || col >= shape.cols || m_pImageData->pixels.data() == nullptr) {
        return nullptr;
    }
    return m_pImageData->pixels.data() + std::size_t{row} * shape.stride +
           std::size_t{col} * DetermineBitsPerPixel(shape.format) / 8;
}

Error Image::DeepCopy(const Image* pImage)
{
    return gated("DeepCopy", noArguments, [&] {
        if (pImage == nullptr || pImage == this) {
            return fcsim::makeError(PGRERROR_INVALID_PARAMETER,
                                    "DeepCopy needs another image to copy");
        }
        const ImageRecord& source = *pImage->m_pImageData;
        ImageRecord& target = *m_pImageData;
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

Error Image::SetDimensions(unsigned int rows, unsigned int cols, unsigned int stride,
                           PixelFormat pixelFormat, BayerTileFormat bayerFormat)
{
    return gated("SetDimensions", noArguments, [&] {
        m_pImageData->shape = {rows, cols, stride, pixelFormat, bayerFormat};
        return fcsim::success();
    });
}

Error Image::SetData(const unsigned char* pData, unsigned int dataSize)
{
    return gated("SetData", noArguments, [&] {
        if (pData == nullptr && dataSize > 0) {
            return fcsim::makeError(PGRERROR_INVALID_PARAMETER, "SetData needs a buffer");
        }
        // The SDK's signature promises not to write here, its Convert does so all the same.
        m_pImageData->pixels = PixelShare::borrowed(const_cast<unsigned char*>(pData), dataSize);
        m_pImageData->dataSize = dataSize;
        m_pImageData->receivedDataSize = dataSize;
        return fcsim::success();
    });
}

Error Image::SetBlockId(const unsigned int blockId)
{
    return gated("SetBlockId", noArguments, [&] {
        m_pImageData->blockId = blockId;
        return fcsim::success();
    });
}

unsigned int Image::GetBlockId()
{
    note("GetBlockId");
    return m_pImageData->blockId;
}

PixelFormat Image::GetPixelFormat() const
{
    note("GetPixelFormat");
    return m_pImageData->shape.format;
}

ColorProcessingAlgorithm Image::GetColorProcessing() const
{
    note("GetColorProcessing");
    return m_pImageData->colourProcessing;
}

Error Image::SetColorProcessing(ColorProcessingAlgorithm colorProc)
{
    return gated("SetColorProcessing", noArguments, [&] {
        m_pImageData->colourProcessing = colorProc;
        return fcsim::success();
    });
}

unsigned int Image::GetCols() const
{
    note("GetCols");
    return m_pImageData->shape.cols;
}

unsigned int Image::GetRows() const
{
    note("GetRows");
    return m_pImageData->shape.rows;
}

unsigned int Image::GetStride() const
{
    note("GetStride");
    return m_pImageData->shape.stride;
}

unsigned int Image::GetBitsPerPixel() const
{
    note("GetBitsPerPixel");
    return DetermineBitsPerPixel(m_pImageData->shape.format);
}

BayerTileFormat Image::GetBayerTileFormat() const
{
    note("GetBayerTileFormat");
    return m_pImageData->shape.tile;
}

unsigned int Image::GetDataSize() const
{
    note("GetDataSize");
    return m_pImageData->dataSize;
}

unsigned int Image::GetReceivedDataSize() const
{
    note("GetReceivedDataSize");
    return m_pImageData->receivedDataSize;
}

void Image::GetDimensions(unsigned int* pRows, unsigned int* pCols, unsigned int* pStride,
                          PixelFormat* pPixelFormat, BayerTileFormat* pBayerFormat) const
{
    note("GetDimensions");
    const auto answer = [](auto* out, auto value) {
        if (out != nullptr) {
            *out = value;
        }
    };
    const fcsim::PictureShape& shape = m_pImageData->shape;
    answer(pRows, shape.rows);
    answer(pCols, shape.cols);
    answer(pStride, shape.stride);
    answer(pPixelFormat, shape.format);
    answer(pBayerFormat, shape.tile);
}

unsigned char* Image::GetData()
{
    note("GetData");
    return m_pImageData->pixels.data();
}

// The SDK's declaration has this const, which means nothing but belongs to the function's type.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-qualifiers"
unsigned char* const Image::GetData() const
{
    note("GetData");
    return m_pImageData->pixels.data();
}
#pragma GCC diagnostic pop

ImageMetadata Image::GetMetadata() const
{
    note("GetMetadata");
    return m_pImageData->metadata;
}

TimeStamp Image::GetTimeStamp() const
{
    note("GetTimeStamp");
    return m_pImageData->timeStamp;
}

Error Image::CalculateStatistics(ImageStatistics* /*pStatistics*/)
{
    return gated("CalculateStatistics", noArguments, fcsim::notImplemented);
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
            return convertRecord(*m_pImageData, format, *pDestImage->m_pImageData);
        });
}

Error Image::Convert(Image* pDestImage) const
{
    return Convert(GetDefaultOutputFormat(), pDestImage);
}

Error Image::ReleaseBuffer()
{
    return gated("ReleaseBuffer", noArguments, [&] {
        m_pImageData->pixels = PixelShare();
        m_pImageData->dataSize = 0;
        m_pImageData->receivedDataSize = 0;
        return fcsim::success();
    });
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
