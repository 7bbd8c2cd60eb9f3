// FlyCapture2::Image: a picture with what is known of it. Copies share the pixels.
#include "image/image_gate.h"
#include "image/image_pool.h"
#include "image/image_record.h"
#include "scene/pixel_format.h"

#include <FlyCapture2.h>

namespace FlyCapture2 {

using fcsim::gated;
using fcsim::ImageRecord;
using fcsim::noArguments;
using fcsim::note;
using fcsim::PixelShare;

/// The record of an image. For `fcsim::recordOf`.
ImageRecord& dataOf(const Image& image);

struct Image::ImageData : ImageRecord {
    static ImageRecord& of(const Image& image) { return *image.m_pImageData; }
    // The member is private to the SDK's class; a friend defined in here still reaches it.
    friend ImageRecord& dataOf(const Image& image) { return of(image); }
};

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
    m_pImageData->shape = {rows, cols, fcsim::packedStride(format, cols), format, bayerFormat};
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

Error Image::ReleaseBuffer()
{
    return gated("ReleaseBuffer", noArguments, [&] {
        m_pImageData->pixels = PixelShare();
        m_pImageData->dataSize = 0;
        m_pImageData->receivedDataSize = 0;
        return fcsim::success();
    });
}

} // namespace FlyCapture2

namespace fcsim {

ImageRecord& recordOf(FlyCapture2::Image& image)
{
    return FlyCapture2::dataOf(image);
}

const ImageRecord& recordOf(const FlyCapture2::Image& image)
{
    return FlyCapture2::dataOf(image);
}

} // namespace fcsim
