// One place of the export queue: a frame with its pictures and values, on its way to disk.
#include "export/export_place.h"

#include "picture/picture_codec.h"

#include <cstring>
#include <exception>
#include <span>

namespace kxhost {
namespace {

std::uint64_t microsecondsBetween(ExportPlace::Clock::time_point start,
                                  ExportPlace::Clock::time_point end)
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(end - start).count());
}

} // namespace

void WaitingPicture::reserve(std::size_t bytes)
{
    if (pixels.size() < bytes) {
        pixels.resize(bytes);
    }
}

bool WaitingPicture::keep(const void* from, std::size_t bytes)
{
    try {
        reserve(bytes);
    } catch (const std::exception&) { // no memory, or more than there can ever be
        return false;
    }
    std::memcpy(pixels.data(), from, bytes);
    return true;
}

void ExportPlace::stageFor(std::uint64_t frameTimestampUs)
{
    if (staging && timestampUs == frameTimestampUs) {
        return;
    }
    staging = true;
    timestampUs = frameTimestampUs;
    for (WaitingPicture& picture : pictures) {
        picture.present = false;
    }
}

bool ExportPlace::holdsStaged(std::uint64_t frameTimestampUs) const
{
    return staging && timestampUs == frameTimestampUs &&
           (pictures[0].present || pictures[1].present);
}

void ExportPlace::commit(std::uint64_t frameNumber, const ScenarioValues& frameValues)
{
    staging = false;
    number = frameNumber;
    values = frameValues;
    done = false;
    committed = Clock::now();
}

void ExportPlace::take()
{
    whole = false;
    fileCount = 0;
    fileBytes = 0;
    taken = Clock::now();
}

TappedFrame ExportPlace::shown() const
{
    const WaitingPicture& picture = pictures[0].present ? pictures[0] : pictures[1];
    std::span<const std::uint8_t> pixels;
    if (picture.copied) {
        const FrameInfo& info = picture.info;
        pixels = {picture.pixels.data(),
                  pictureBytes(*findCodec(info.codec), info.width, info.height)};
    }
    return {number, picture.info, pixels, values};
}

ReleasedFrame ExportPlace::released() const
{
    return {number,
            timestampUs,
            values,
            whole,
            microsecondsBetween(committed, taken),
            microsecondsBetween(taken, written)};
}

} // namespace kxhost
