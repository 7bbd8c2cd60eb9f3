// The record behind an image: what FlyCapture2::Image points to.
#ifndef FCSIM_IMAGE_RECORD_H
#define FCSIM_IMAGE_RECORD_H

#include "image/image_store.h"
#include "scene/convert.h"
#include "scene/pixel_format.h"

namespace fcsim {

/// All that an image knows.
struct ImageRecord {
    PictureShape shape;
    PixelShare pixels;
    unsigned dataSize = 0;         ///< bytes of the picture
    unsigned receivedDataSize = 0; ///< bytes that arrived
    FlyCapture2::ColorProcessingAlgorithm colourProcessing = FlyCapture2::DEFAULT;
    FlyCapture2::TimeStamp timeStamp;
    FlyCapture2::ImageMetadata metadata;
    unsigned blockId = 0;
};

/// Makes room for `size` bytes in `record`: memory given by the client or of its own is used again
/// when it suffices. False when memory given by the client is too small.
bool reserveData(ImageRecord& record, std::size_t size);

/// True when the pixels reach as far as the dimensions say.
bool holdsPicture(const ImageRecord& record);

/// The record of `image`.
ImageRecord& recordOf(FlyCapture2::Image& image);
const ImageRecord& recordOf(const FlyCapture2::Image& image);

/// Bytes from row to row of a packed picture.
inline unsigned packedStride(FlyCapture2::PixelFormat format, unsigned cols)
{
    return static_cast<unsigned>(packedRowSize(format, cols));
}

} // namespace fcsim

#endif
