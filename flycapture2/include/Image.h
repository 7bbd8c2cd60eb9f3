// The camera maker's interface, first declaration.
#pragma once
#include "Error.h"
namespace FlyCapture2 {
class FC2_API Image {
public:
    virtual ~Image();
    virtual Image& operator=(const Image&);
    virtual unsigned char* operator[](unsigned int);
    virtual unsigned char* operator()(unsigned int, unsigned int);
    virtual Error DeepCopy(const Image*);
    virtual Error SetDimensions(unsigned int, unsigned int, unsigned int, PixelFormat,
                                BayerTileFormat);
    virtual Error SetData(const unsigned char*, unsigned int);
    virtual Error SetBlockId(const unsigned int);
    virtual unsigned int GetBlockId();
    virtual PixelFormat GetPixelFormat() const;
    virtual ColorProcessingAlgorithm GetColorProcessing() const;
    virtual Error SetColorProcessing(ColorProcessingAlgorithm);
    virtual unsigned int GetCols() const;
    virtual unsigned int GetRows() const;
    virtual unsigned int GetStride() const;
    virtual unsigned int GetBitsPerPixel() const;
    virtual BayerTileFormat GetBayerTileFormat() const;
    virtual unsigned int GetDataSize() const;
    virtual unsigned int GetReceivedDataSize() const;
    virtual void GetDimensions(unsigned int*, unsigned int* = nullptr, unsigned int* = nullptr,
                               PixelFormat* = nullptr, BayerTileFormat* = nullptr) const;
    virtual unsigned char* GetData();
// The const on the returned pointer means nothing, but belongs to the function's type.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-qualifiers"
    virtual unsigned char* const GetData() const;
#pragma GCC diagnostic pop
    virtual ImageMetadata GetMetadata() const;
    virtual Error CalculateStatistics(ImageStatistics*);
    virtual TimeStamp GetTimeStamp() const;
    virtual Error Save(const char*, ImageFileFormat = FROM_FILE_EXT);
    virtual Error Save(const char*, PNGOption*);
    virtual Error Save(const char*, PPMOption*);
    virtual Error Save(const char*, PGMOption*);
    virtual Error Save(const char*, TIFFOption*);
    virtual Error Save(const char*, JPEGOption*);
    virtual Error Save(const char*, JPG2Option*);
    virtual Error Save(const char*, BMPOption*);
    virtual Error Convert(PixelFormat, Image*) const;
    virtual Error Convert(Image*) const;
    virtual Error ReleaseBuffer();
    static Error SetDefaultColorProcessing(ColorProcessingAlgorithm);
    static ColorProcessingAlgorithm GetDefaultColorProcessing();
    static Error SetDefaultOutputFormat(PixelFormat);
    static PixelFormat GetDefaultOutputFormat();
    static unsigned int DetermineBitsPerPixel(PixelFormat);
    Image();
    Image(unsigned int, unsigned int, unsigned int, unsigned char*, unsigned int, PixelFormat,
          BayerTileFormat = NONE);
    Image(unsigned int, unsigned int, unsigned int, unsigned char*, unsigned int, unsigned int,
          PixelFormat, BayerTileFormat = NONE);
    Image(unsigned char*, unsigned int);
    Image(unsigned int, unsigned int, PixelFormat, BayerTileFormat = NONE);
    Image(const Image&);

private:
    struct ImageData;
    ImageData* m_pImageData;
};
} // namespace FlyCapture2
