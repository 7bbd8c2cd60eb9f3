// Sizes that follow from the image format: bytes of a line, of a buffer, and the period of a frame.
#ifndef KX_PG_SIZES_H
#define KX_PG_SIZES_H

#include <cstdint>

namespace KxPGrey {

/// Kind of bus, as far as it shapes the frame buffers.
enum class BusKind { kUsb2, kUsb3, kOther };

/// Bytes of an image line of `width` pixels, rounded up to whole bytes.
std::uint32_t lineStride(std::uint32_t bitsPerPixel, std::uint32_t width);

/// Size of one frame buffer: the frame's bytes rounded up to what the bus transfers at once, that
/// is `packetBytes` for USB 2 (0 rounds nothing), 1024 for USB 3 and 32 otherwise.
std::uint32_t paddedFrameSize(std::uint32_t frameBytes, BusKind bus, std::uint32_t packetBytes);

/// Frame period in whole microseconds. A rate of 0 or one that the camera does not have gives 0; a
/// negative one (the camera failed to answer) gives the lower 32 bits of the negative period.
std::uint32_t framePeriod(float framesPerSecond);

/// How many frames lie between two reports of the grab's state: 0.6 s worth of them, at least 1.
std::uint32_t statusInterval(float framesPerSecond);

} // namespace KxPGrey

#endif
