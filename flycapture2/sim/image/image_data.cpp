// What stands behind FlyCapture2::Image: pixels shared by images, and what is known of them.
#include "image/image_data.h"

#include "image/image_record.h"
#include "scene/pixel_format.h"

namespace fcsim {

bool reserveData(ImageRecord& record, std::size_t size)
{
    PixelShare& pixels = record.pixels;
    if (pixels.isBorrowed()) {
        return pixels.capacity() >= size;
    }
    if (!pixels.isOwnAlone() || pixels.capacity() < size) {
        pixels = PixelShare::allocated(size);
    }
    return true;
}

bool holdsPicture(const ImageRecord& record)
{
    const PictureShape& shape = record.shape;
    const std::size_t rowSize = packedRowSize(shape.format, shape.cols);
    return record.pixels.data() != nullptr && shape.rows > 0 && shape.stride >= rowSize &&
           record.pixels.capacity() >= std::size_t{shape.stride} * (shape.rows - 1) + rowSize;
}

void attachFrame(FlyCapture2::Image& image, const FrameView& frame)
{
    ImageRecord& record = recordOf(image);
    record.pixels = PixelShare();
    record.pixels = PixelShare::lent(frame.data, frame.dataSize, frame.owner, frame.slot);
    record.shape = {frame.rows, frame.cols, frame.stride, frame.format, frame.tile};
    record.dataSize = frame.dataSize;
    record.receivedDataSize = frame.receivedDataSize;
    record.timeStamp = frame.timeStamp;
    record.metadata = frame.metadata;
    record.blockId = frame.blockId;
}

} // namespace fcsim
