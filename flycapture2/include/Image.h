// One image: its pixels, its shape and what came with it.
#ifndef KX_FLYCAPTURE2_IMAGE_H
#define KX_FLYCAPTURE2_IMAGE_H

#include "Error.h"
#include "FlyCapture2Defs.h"

namespace FlyCapture2 {

/// Pixels with their shape. The memory is the image's own, the library's (after RetrieveBuffer) or
/// the user's (constructors that take data, user buffers); copies by constructor and assignment
/// share the pixels, DeepCopy does not. An object belongs to one thread at a time.
///
/// Sizes are in pixels, strides and data sizes in bytes.
class FC2_API Image {
public:
    /// An empty image; pixels come by RetrieveBuffer, Convert or SetDimensions.
    Image();
    /// Wraps `dataSize` bytes at `data`, which stay with the caller and must outlive the image.
    Image(unsigned int rows, unsigned int cols, unsigned int stride, unsigned char* data,
          unsigned int dataSize, PixelFormat format, BayerTileFormat bayerFormat = NONE);
    /// The same with room for `dataSize` bytes, of which `receivedDataSize` hold pixels.
    Image(unsigned int rows, unsigned int cols, unsigned int stride, unsigned char* data,
          unsigned int dataSize, unsigned int receivedDataSize, PixelFormat format,
          BayerTileFormat bayerFormat = NONE);
    /// Wraps memory that the next image is written to; it stays with the caller.
    Image(unsigned char* data, unsigned int dataSize);
    /// Makes an image with pixels of its own.
    Image(unsigned int rows, unsigned int cols, PixelFormat format,
          BayerTileFormat bayerFormat = NONE);
    /// Shares the other's pixels.
    Image(const Image& other);
    /// Gives the pixels back to whoever lent them, or frees them.
    virtual ~Image();

    /// Shares the other's pixels.
    virtual Image& operator=(const Image& other);
    /// Address of the byte at `index`; null when it is beyond the data.
    virtual unsigned char* operator[](unsigned int index);
    /// Address of a pixel's first byte; null when it is outside.
    virtual unsigned char* operator()(unsigned int row, unsigned int col);

    /// Copies the other's pixels into memory of this image's own.
    virtual Error DeepCopy(const Image* other);
    /// Sets the shape; the pixels are allocated anew when they do not fit.
    virtual Error SetDimensions(unsigned int rows, unsigned int cols, unsigned int stride,
                                PixelFormat pixelFormat, BayerTileFormat bayerFormat);
    /// Points the image at memory that stays with the caller.
    virtual Error SetData(const unsigned char* data, unsigned int dataSize);
    /// Sets the transport's number of this image.
    virtual Error SetBlockId(const unsigned int blockId);
    /// The transport's number of this image.
    virtual unsigned int GetBlockId();

    /// Pixel format; UNSPECIFIED_PIXEL_FORMAT when empty.
    virtual PixelFormat GetPixelFormat() const;
    /// How Convert makes colour of tiles.
    virtual ColorProcessingAlgorithm GetColorProcessing() const;
    /// Chooses how Convert makes colour of tiles.
    virtual Error SetColorProcessing(ColorProcessingAlgorithm algorithm);
    /// Width in pixels.
    virtual unsigned int GetCols() const;
    /// Height in pixels.
    virtual unsigned int GetRows() const;
    /// Bytes from a row to the next.
    virtual unsigned int GetStride() const;
    /// Bits of a pixel, packed ones included: 12 for MONO12.
    virtual unsigned int GetBitsPerPixel() const;
    /// Tile of the sensor's filter.
    virtual BayerTileFormat GetBayerTileFormat() const;
    /// Bytes that the image has room for.
    virtual unsigned int GetDataSize() const;
    /// Bytes that came from the camera; less than the image needs when packets were lost.
    virtual unsigned int GetReceivedDataSize() const;
    /// The whole shape at once; outputs that are null are left out.
    virtual void GetDimensions(unsigned int* rows, unsigned int* cols = nullptr,
                               unsigned int* stride = nullptr, PixelFormat* pixelFormat = nullptr,
                               BayerTileFormat* bayerFormat = nullptr) const;
    /// First byte of the pixels; null when empty.
    virtual unsigned char* GetData();
// The const on the returned pointer means nothing, but belongs to the function's type.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-qualifiers"
    /// First byte of the pixels; null when empty.
    virtual unsigned char* const GetData() const;
#pragma GCC diagnostic pop
    /// What the camera embedded in the image.
    virtual ImageMetadata GetMetadata() const;
    /// Counts the pixels' values into `statistics`.
    virtual Error CalculateStatistics(ImageStatistics* statistics);
    /// When the image was taken.
    virtual TimeStamp GetTimeStamp() const;

    /// Writes the image to a file; FROM_FILE_EXT takes the format from the name's ending.
    virtual Error Save(const char* fileName, ImageFileFormat format = FROM_FILE_EXT);
    /// Writes a PNG file.
    virtual Error Save(const char* fileName, PNGOption* option);
    /// Writes a PPM file.
    virtual Error Save(const char* fileName, PPMOption* option);
    /// Writes a PGM file.
    virtual Error Save(const char* fileName, PGMOption* option);
    /// Writes a TIFF file.
    virtual Error Save(const char* fileName, TIFFOption* option);
    /// Writes a JPEG file.
    virtual Error Save(const char* fileName, JPEGOption* option);
    /// Writes a JPEG 2000 file.
    virtual Error Save(const char* fileName, JPG2Option* option);
    /// Writes a BMP file.
    virtual Error Save(const char* fileName, BMPOption* option);

    /// Writes this image into `destination` in another pixel format, reusing its memory when that
    /// is large enough. PGRERROR_IMAGE_CONVERSION_FAILED when there is no way between the two.
    virtual Error Convert(PixelFormat format, Image* destination) const;
    /// The same into the default output format.
    virtual Error Convert(Image* destination) const;
    /// Gives the library its buffer back before the image itself goes.
    virtual Error ReleaseBuffer();

    /// Sets how images made from now on make colour of tiles; for the whole process.
    static Error SetDefaultColorProcessing(ColorProcessingAlgorithm algorithm);
    /// How new images make colour of tiles.
    static ColorProcessingAlgorithm GetDefaultColorProcessing();
    /// Sets what the one-argument Convert makes; for the whole process.
    static Error SetDefaultOutputFormat(PixelFormat format);
    /// What the one-argument Convert makes.
    static PixelFormat GetDefaultOutputFormat();
    /// Bits of a pixel in `format`; 0 for an unknown one.
    static unsigned int DetermineBitsPerPixel(PixelFormat format);

private:
    struct ImageData;

    ImageData* m_pImageData;
};

} // namespace FlyCapture2

#endif
