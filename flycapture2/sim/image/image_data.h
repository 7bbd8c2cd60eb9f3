// What stands behind FlyCapture2::Image: pixels shared by images, and what is known of them.
#ifndef FCSIM_IMAGE_DATA_H
#define FCSIM_IMAGE_DATA_H

#include <FlyCapture2.h>

#include <cstdint>
#include <memory>

namespace fcsim {

/// Who lends frame slots to images, i.e. the capture of a camera.
class SlotOwner {
public:
    SlotOwner() = default;
    SlotOwner(const SlotOwner&) = delete;
    SlotOwner& operator=(const SlotOwner&) = delete;
    virtual ~SlotOwner() = default;
    /// The last image lets go of `slot`. On the thread of that image, which may be inside a call on
    /// the same camera; exactly once for each frame attached.
    virtual void releaseSlot(unsigned slot) noexcept = 0;
};

/// A frame in a slot that belongs to the camera.
struct FrameView {
    unsigned rows = 0;
    unsigned cols = 0;
    unsigned stride = 0; ///< bytes from row to row
    FlyCapture2::PixelFormat format = FlyCapture2::UNSPECIFIED_PIXEL_FORMAT;
    FlyCapture2::BayerTileFormat tile = FlyCapture2::NONE;
    std::uint8_t* data = nullptr;
    unsigned dataSize = 0;         ///< bytes of the picture
    unsigned receivedDataSize = 0; ///< bytes that arrived; fewer when packets were lost
    FlyCapture2::TimeStamp timeStamp;
    FlyCapture2::ImageMetadata metadata;
    unsigned blockId = 0;
    std::shared_ptr<SlotOwner> owner; ///< told when the slot is free again; null: nobody is
    unsigned slot = 0;
};

/// Makes `image` show the frame; what it held before is let go first (its slot goes back to the
/// camera). The pixels are not copied. Allocates nothing once as many images have existed at a time
/// as do now. Thread-safe for different images.
void attachFrame(FlyCapture2::Image& image, const FrameView& frame);

} // namespace fcsim

#endif
