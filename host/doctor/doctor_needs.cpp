// What cameras need of a computer, as far as a configuration tells.
#include "doctor/doctor_needs.h"

#include <algorithm>

namespace kxhost {
namespace {

constexpr std::uint64_t kMega = 1048576;

/// Enough for the transfers of one camera of any size, and for two of most.
constexpr std::uint64_t kUsualMemoryMb = 1000;
/// A frame's worth of packets while the process does not run.
constexpr std::uint64_t kUsualReceiveBytes = 10485760;
/// Jumbo frames: what cameras and cards agree on.
constexpr std::uint64_t kJumboMtu = 9000;
/// What the plug-in tells a camera without `gige.packet_size`.
constexpr std::uint64_t kUsualMtu = 1500;

/// Bits of a pixel on its way, by the number of the pixel format.
std::uint64_t bitsOf(std::int32_t pixelFormat)
{
    constexpr std::int32_t kMono12Packed = 2;
    constexpr std::int32_t kMono12 = 3;
    constexpr std::int32_t kYuv411 = 4;
    constexpr std::int32_t kYuv422 = 5;
    switch (pixelFormat) {
    case kMono12Packed:
    case kYuv411:
        return 12;
    case kMono12:
    case kYuv422:
        return 16;
    default:
        return 8;
    }
}

/// Bytes of a frame; 0 = the camera keeps a size that is not known here.
std::uint64_t frameBytes(const Settings& settings)
{
    if (settings.width == kKeep || settings.height == kKeep) {
        return 0;
    }
    return std::uint64_t{settings.width} * settings.height * bitsOf(settings.pixelFormat) / 8;
}

Weight weigh(bool isMeant, bool otherIsMeant)
{
    return isMeant ? Weight::kSure : otherIsMeant ? Weight::kNone : Weight::kMaybe;
}

} // namespace

DoctorNeeds needsOf(const Configuration& configuration, const DoctorHints& hints)
{
    const Settings& settings = configuration.settings;
    const bool gige = hints.gige || findGiven(configuration, "gige", "packet_size") != nullptr;
    const std::uint64_t frame = frameBytes(settings);
    const std::uint64_t buffers = frame * settings.buffers;

    DoctorNeeds needs;
    needs.usb = weigh(hints.usb, gige);
    needs.gige = weigh(gige, hints.usb);
    needs.lines = settings.iobox.empty() ? Weight::kMaybe : Weight::kSure;
    // Doubled: the transfers under way are more than the buffers that they fill.
    needs.usbfsMb = frame == 0 ? kUsualMemoryMb : (2 * buffers + kMega - 1) / kMega;
    needs.lockBytes = frame == 0 ? kUsualMemoryMb * kMega : buffers;
    needs.receiveBytes = std::max(kUsualReceiveBytes, 2 * frame);
    needs.mtu = settings.packetSize != 0 ? settings.packetSize
                : hints.hasConfiguration ? kUsualMtu
                                         : kJumboMtu;
    return needs;
}

} // namespace kxhost
