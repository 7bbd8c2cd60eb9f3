// Sizes that follow from the image format: bytes of a line, of a buffer, and the period of a frame.
#include "kx_pg_sizes.h"

#include "kx_pg_number.h"

#include <algorithm>
#include <cmath>

namespace KxPGrey {

namespace {

std::uint32_t roundUp(std::uint32_t bytes, std::uint32_t unit)
{
    return unit == 0 ? bytes : (bytes + unit - 1) / unit * unit;
}

} // namespace

std::uint32_t lineStride(std::uint32_t bitsPerPixel, std::uint32_t width)
{
    const float bytes = static_cast<float>(bitsPerPixel) * 0.125F * static_cast<float>(width);
    return truncateToU32(static_cast<double>(std::ceil(bytes)));
}

std::uint32_t paddedFrameSize(std::uint32_t frameBytes, BusKind bus, std::uint32_t packetBytes)
{
    switch (bus) {
    case BusKind::kUsb2:
        return roundUp(frameBytes, packetBytes);
    case BusKind::kUsb3:
        return roundUp(frameBytes, 1024);
    case BusKind::kOther:
        break;
    }
    return roundUp(frameBytes, 32);
}

std::uint32_t framePeriod(float framesPerSecond)
{
    constexpr float kSecond = 1'000'000.0F;
    return framesPerSecond == 0.0F ? 0 : roundToU32(kSecond / framesPerSecond);
}

std::uint32_t statusInterval(float framesPerSecond)
{
    if (framesPerSecond <= 1.0F) {
        return 1;
    }
    return std::max(1U, truncateToU32(static_cast<double>(framesPerSecond) * 0.6));
}

} // namespace KxPGrey
